#ifndef BASE_MD5_H_
#define BASE_MD5_H_

#include <string>

#include "base/file_path.h"

namespace base {

// MD5 of a whole file as 32 lower-case hexadecimal characters. False (and
// |*digest| empty) when the file cannot be read.
[[nodiscard]] bool MD5OfFile(const FilePath& path, std::wstring* digest);

// MD5 of a byte string as 32 lower-case hexadecimal characters.
std::string MD5String(const std::string& data);

}  // namespace base

#endif  // BASE_MD5_H_
