#include "base/profile_string.h"

#include "base/file_path.h"
#include "base/file_util.h"

namespace base {

ProfileFileCreation CreateUnicodeProfileFile(const std::wstring& file) {
  const FilePath path = ResolvePathCase(FilePath(file));
  if (PathExists(path))
    return ProfileFileCreation::kExisted;
  if (WriteNewFile(path, std::string("\xFF\xFE", 2)))
    return ProfileFileCreation::kCreated;
  // Made by another process between the two steps: it is theirs as it is.
  return PathExists(path) ? ProfileFileCreation::kExisted : ProfileFileCreation::kFailed;
}

}  // namespace base
