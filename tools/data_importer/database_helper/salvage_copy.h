#ifndef TOOLS_DATA_IMPORTER_DATABASE_HELPER_SALVAGE_COPY_H_
#define TOOLS_DATA_IMPORTER_DATABASE_HELPER_SALVAGE_COPY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/file_path.h"

namespace data_importer {

// What a salvage copy got of one table.
struct SalvagedTable {
  std::string name;
  int64_t rows_copied = 0;
  // Row ids known to be lost, in order: rows an index of the damaged file
  // names that the copy does not hold (see SalvageCopy).
  std::vector<int64_t> lost_rowids;
  // False when the walk met a damaged part of the table: rows there are
  // lost, by id where an index names them.
  bool complete = true;

  bool lost_rows() const { return !complete || !lost_rowids.empty(); }
};

struct SalvageResult {
  // The fresh file was made and holds every table whose definition could
  // be read (possibly none).
  bool ok = false;
  std::vector<SalvagedTable> tables;
};

// Copies every row that can still be read from the damaged plain database
// |damaged| into the new database |fresh| (replaced when it exists), table
// by table under the same definitions and row ids, then recreates the
// indexes from the copied rows. |damaged| is only read.
//
// A table is first copied whole. When that stops at a damaged page, its
// rows are walked in row-id order and copied up to the last one read; the
// walk then looks for the first row id past the damage from which a seek
// reads again (doubling the distance, then halving back to the boundary) and
// goes on from there. So a damaged page costs the rows it holds, not the
// rest of the table. The damaged file's indexes are never read by the
// engine, which is not safe on a damaged index page; the copy's indexes are
// built anew from its rows. The rows the damaged file's indexes name that
// the copy lacks are the rows known lost: an index is read by our own page
// reader, and its entries count only where they can be trusted (a proven
// index, or the row-id ranges the walk skipped), so a row the old player
// deleted is never called lost. Triggers and views are not copied: a copy
// made to be read needs neither, and a trigger would fire on every copied
// row.
[[nodiscard]] SalvageResult SalvageCopy(const base::FilePath& damaged, const base::FilePath& fresh);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DATABASE_HELPER_SALVAGE_COPY_H_
