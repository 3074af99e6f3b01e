#ifndef TOOLS_DATA_IMPORTER_MARKUP_MARKUP_WRITER_H_
#define TOOLS_DATA_IMPORTER_MARKUP_MARKUP_WRITER_H_

#include <cstdint>
#include <string>

#include "base/file_path.h"
#include "tools/data_importer/markup/markup_handle.h"

namespace data_importer {

namespace markup {

enum SaveStatus : int32_t {
  kSaveOk = 0,
  kSaveCannotCreate = 15,  // the file could not be created
  kSaveWriteFailed = 16,   // a write or the final close failed
};

// The declaration written in front of a document that has none.
inline constexpr wchar_t kStandardDeclaration[] = L"<?xml version=\"1.0\" encoding=\"utf-16\"?>\n";

// The markup text of |node| and everything under it: one item per line, one
// tab of indentation per level, attributes as name="value" separated by
// spaces, "/>" for an element without text or items, "?>" for declarations.
// "&", "<", ">" (and '"' in attribute values) are written as references, and
// so is white space at either end of an element's text, so parsing the text
// gives the same tree back. A document container writes its items one after
// another at the outer level.
std::wstring SerializeMarkup(const MarkupHandle& node);

// Writes |document| (a document container or a root element) to |path| as
// UTF-16 little-endian: the mark U+FEFF, kStandardDeclaration unless the
// document's first item is already a named declaration, then the text of
// SerializeMarkup. An existing file is replaced. The null node, or a
// container without any item or text, writes nothing and answers kSaveOk.
int32_t Save(const MarkupHandle& document, const base::FilePath& path);

}  // namespace markup

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_MARKUP_MARKUP_WRITER_H_
