#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_ENTITIES_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_ENTITIES_H_

#include <string>
#include <string_view>

namespace data_importer {

namespace markup {

enum class EntityResult {
  kOk,
  // An '&' that starts no reference (a lone "&", an unknown name) was kept
  // as it is.
  kKeptAmpersand,
  // A numeric reference is malformed: no digits, a character that is not a
  // digit, no closing ';', or a value that is no character (0, a surrogate,
  // beyond U+10FFFF). |out| is unusable.
  kBadReference,
};

// Replaces the references in |raw| and appends the result to |out|: the
// named "&amp;", "&lt;", "&gt;", "&quot;" and "&apos;" (names in any case),
// and "&#" decimal ";" or "&#x" hexadecimal ";" (x and digits in any case).
EntityResult DecodeEntities(std::wstring_view raw, std::wstring* out);

// Appends |text| to |out| with "&", "<" and ">" (and with |in_attribute|,
// '"') written as named references, so that DecodeEntities gives |text|
// back.
void AppendEscaped(std::wstring_view text, bool in_attribute, std::wstring* out);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_ENTITIES_H_
