#include "base/json_file.h"

#include "base/file_util.h"

namespace base {

bool ReadJsonFile(const FilePath& path, Value* root) {
  *root = Value();
  std::string text;
  if (!ReadFileToString(path, &text))
    return false;
  Value parsed = Value::parse(text, nullptr, /*allow_exceptions=*/false);
  if (parsed.is_discarded())
    return false;
  *root = std::move(parsed);
  return true;
}

bool WriteJsonFile(const FilePath& path, const Value& root) {
  std::string text;
  try {
    // Invalid UTF-8 in strings is replaced rather than refused.
    text = root.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
  } catch (...) {
    return false;
  }
  return WriteFile(path, text);
}

}  // namespace base
