#ifndef BASE_WINDOWS_HEADERS_H_
#define BASE_WINDOWS_HEADERS_H_

// <windows.h> for the Windows implementations, without the A/W macros whose
// names the base library uses for its own functions (base::CopyFile and the
// like). The system calls are made by their W names.
#include <windows.h>

#undef CopyFile
#undef CreateDirectory
#undef DeleteFile
#undef ReplaceFile
#undef GetCommandLine
#undef GetPrivateProfileString
#undef WritePrivateProfileString
#undef IsTextUnicode

#endif  // BASE_WINDOWS_HEADERS_H_
