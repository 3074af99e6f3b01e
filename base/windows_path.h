#ifndef BASE_WINDOWS_PATH_H_
#define BASE_WINDOWS_PATH_H_

#include <map>
#include <string>
#include <string_view>

#include "base/file_path.h"

namespace base {

// Turns a path that the user's Windows installation recorded (in the
// registry, on the player's command line) into a path of this machine.
//
// A path with a drive letter ("C:\Program Files\VanTa6\VanTa6.exe", "c:/x",
// "C:" alone) lives on the folder that |drives| gives for the letter (kept
// in upper case); the rest of the path follows it. Backslashes become separators; the letter
// case of each component is left to the case-insensitive file operations. A
// path on a drive with no folder, and a network path ("\\server\share"), map
// to the empty path, which every file operation treats as not found. Any
// other path (a POSIX path, a relative path) keeps its text with backslashes
// turned into separators.
//
// On Windows a drive the map names (a copied profile's drives) maps the
// same way; any other path is its own answer.
using DriveMap = std::map<wchar_t, FilePath>;
FilePath MapWindowsPath(const std::wstring& path, const DriveMap& drives);

// The drive folders of the process environment: VANTU_DRIVE_<LETTER> (the
// letter in upper case, e.g. VANTU_DRIVE_C) for each letter where it is set
// and not empty.
DriveMap DriveMapFromEnvironment();

// The form in which two recorded Windows paths are compared, as Windows
// compares them: letters in upper case (simple case mapping, every script),
// "/" as "\", without trailing separators ("d:\music" and "D:\Music\"
// name one folder). The same rule on every build, so that an import gives
// the same answer wherever it runs.
std::wstring WindowsPathKey(std::wstring_view path);

}  // namespace base

#endif  // BASE_WINDOWS_PATH_H_
