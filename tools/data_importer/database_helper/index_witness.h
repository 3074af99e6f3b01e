#ifndef TOOLS_DATA_IMPORTER_DATABASE_HELPER_INDEX_WITNESS_H_
#define TOOLS_DATA_IMPORTER_DATABASE_HELPER_INDEX_WITNESS_H_

#include <cstdint>
#include <string_view>
#include <vector>

namespace data_importer {

// The row ids one index of a damaged plain database file lists.
struct IndexRowIds {
  // In the order the pages were met, each id once per entry that names it.
  std::vector<int64_t> rowids;
  // False when a page of the index could not be read (not an index page,
  // out of the file, met twice or on the free list), a cell did not parse,
  // or an entry's row id lay on an overflow page: ids there are not known.
  bool complete = true;
};

// Reads the index whose root page is |root| straight from the bytes |file|
// of a plain database, without the engine: our own reader of its pages, in
// which every length and offset is checked against the page it lies in.
// The engine we build on is not safe here: walking a damaged index page it
// reads past its memory, with or without "PRAGMA cell_size_check" (found by
// fuzzing, shown under AddressSanitizer). A page that is not part of the
// index's tree as far as can be told (wrong type, on the free list, met
// before) is left out with its children, so a damaged pointer cannot lead
// the walk into the stale entries of a freed page.
[[nodiscard]] IndexRowIds ReadIndexRowIds(std::string_view file, uint32_t root);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DATABASE_HELPER_INDEX_WITNESS_H_
