// Feeds arbitrary bytes through the markup loader's decoding and parser,
// runs lookups on the result and checks that a parsed tree, once written,
// parses back to the same tree.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "base/utf_string_conversions.h"
#include "tools/data_importer/markup/markup_document.h"
#include "tools/data_importer/markup/markup_text_decoder.h"
#include "tools/data_importer/markup/markup_values.h"
#include "tools/data_importer/markup/markup_writer.h"

using namespace data_importer;  // the importer under use

namespace {

// UTF-16LE bytes with the mark, as Save writes them.
std::string SavedBytes(const std::wstring& text) {
  std::string bytes = "\xFF\xFE";
  for (char16_t unit : base::WideToUTF16(text)) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

// Units that make the text detection refuse UTF-16LE: byte-swapped controls.
bool HasSwappedControl(const std::wstring& text) {
  for (wchar_t c : text) {
    if (c == 0x0D00 || c == 0x0A00 || c == 0x0900 || c == 0x2000)
      return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::wstring text = markup::DecodeMarkupBytes(bytes);

  markup::MarkupHandle root = markup::Parse(text, L"");
  markup::MarkupHandle named = markup::Parse(text, L"Skin");
  markup::MarkupHandle child = markup::Child(markup::ChildAt(root, 0), L"a");
  markup::AttributeInteger(child, L"x");
  markup::SplitIntegers(markup::Attribute(markup::ChildAt(root, 0), L"rect"));
  markup::Text(named);
  if (root.IsNull())
    return 0;

  const std::wstring saved = markup::SerializeMarkup(root);
  markup::MarkupHandle again = markup::Parse(saved, L"");
  if (again.IsNull() || markup::SerializeMarkup(again) != saved)
    abort();

  // The same through the file format (declaration, mark, UTF-16).
  const std::wstring file_text = std::wstring(markup::kStandardDeclaration) + saved;
  if (!HasSwappedControl(file_text.substr(0, 256))) {
    markup::MarkupHandle loaded =
        markup::Parse(markup::DecodeMarkupBytes(SavedBytes(file_text)), L"");
    if (loaded.IsNull())
      abort();
  }
  return 0;
}
