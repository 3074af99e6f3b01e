#ifndef BASE_JSON_FILE_H_
#define BASE_JSON_FILE_H_

#include <nlohmann/json.hpp>

#include "base/file_path.h"

namespace base {

// JSON file serialisation. A DictionaryValue is a JSON object; other roots
// (lists, scalars) are read as they are so that the caller can tell.
using Value = nlohmann::json;

// Reads and parses the whole file. False when it is missing, unreadable or
// not valid JSON; |*root| is then left null.
[[nodiscard]] bool ReadJsonFile(const FilePath& path, Value* root);

// Writes |root| as the whole file (compact form, UTF-8). False when the file
// cannot be written.
[[nodiscard]] bool WriteJsonFile(const FilePath& path, const Value& root);

}  // namespace base

#endif  // BASE_JSON_FILE_H_
