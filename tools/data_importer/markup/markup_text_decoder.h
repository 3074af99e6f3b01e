#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_TEXT_DECODER_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_TEXT_DECODER_H_

#include <string>

#include "base/file_path.h"

namespace data_importer {

namespace markup {

// The text of a markup file's bytes, its encoding found the way the player
// has always found it:
//  - UTF-16 little-endian when IsTextUnicode accepts the bytes (an FF FE
//    mark is skipped);
//  - else UTF-8 when the first byte is EF (an EF BB BF mark is skipped);
//  - else UTF-16 big-endian when the bytes start with FE FF;
//  - else UTF-8 (so text in a local 8-bit code page comes out with U+FFFD
//    for its non-ASCII bytes: the player reads such files so too).
// Bad UTF-8 becomes U+FFFD; a lone UTF-16 surrogate becomes U+FFFD. The text
// ends at the first NUL character.
std::wstring DecodeMarkupBytes(const std::string& bytes);

// Reads the whole file (found regardless of letter case) and decodes it.
// False, with |text| empty, when the file is missing, unreadable or empty.
bool ReadMarkupFile(const base::FilePath& path, std::wstring* text);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_TEXT_DECODER_H_
