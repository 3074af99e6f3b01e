#include "tools/data_importer/database_helper/salvage_copy.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cctype>
#include <limits>
#include <optional>
#include <set>
#include <string_view>

#include "base/file_util.h"
#include "tools/data_importer/database_helper/index_witness.h"
#include "sql/connection.h"
#include "sql/statement.h"

namespace data_importer {

// Why a copy and not reading the damaged file in place: the readers run
// joins, sub-queries and per-list queries over several tables, and on a
// damaged file any of them may stop at a damaged page of a table it only
// consults. A copy holds every readable row under the same row ids and
// passes the integrity check, so every reader runs on it unchanged; the
// damage is met once, here, table by table. The SQLite inside the page
// encryption library we build on has no recovery extension, so the walk
// past a damaged page is done with row-id ranges.
//
// Which rows were lost is told by the damaged file's indexes: an index
// entry names a row that existed when the old player last wrote the file,
// and a row the old player deleted has no entry. The indexes are read by
// our own page reader (index_witness.h), never by the engine, which is not
// safe on a damaged index page. An index entry is itself only as sound as
// its page, so its row counts as lost only when it is not in the copy and
// either the index is proven (read without a damaged page, and it lists
// every row the copy holds, so no entry of it was damaged into another id)
// or the row id lies in a range the walk of the table had to skip.

namespace {

constexpr char kDamaged[] = "damaged";
constexpr int64_t kMinRowId = std::numeric_limits<int64_t>::min();
constexpr int64_t kMaxRowId = std::numeric_limits<int64_t>::max();
// A bound on the damaged parts one table may hold before its walk gives up.
constexpr int kMaxDamagedParts = 100000;

std::string Quoted(const std::string& name) {
  std::string out = "\"";
  for (char c : name) {
    out.push_back(c);
    if (c == '"')
      out.push_back('"');
  }
  return out + "\"";
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

bool ContainsIgnoringCase(const std::string& text, const std::string& word) {
  std::string lower = text;
  for (char& c : lower)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower.find(word) != std::string::npos;
}

struct SchemaEntry {
  std::string type;
  std::string name;
  std::string table;
  std::string sql;
  int64_t root_page = 0;
};

// As much of the damaged file's schema as can be read.
std::vector<SchemaEntry> ReadSchema(sql::Connection* db) {
  std::vector<SchemaEntry> entries;
  sql::Statement schema(db->GetUniqueStatement(
      "SELECT type, name, tbl_name, sql, rootpage FROM damaged.sqlite_master ORDER BY rowid"));
  while (schema.Step()) {
    entries.push_back({schema.ColumnString(0), schema.ColumnString(1), schema.ColumnString(2),
                       schema.ColumnString(3), schema.ColumnInt64(4)});
  }
  return entries;
}

// The time a salvage may take. Damage can make the engine wander a long way
// (a damaged page claiming children all over the file); once the time is
// spent, every statement still running is interrupted and the walk ends,
// keeping what it copied. A sound table of a large library is copied in
// seconds.
class TimeBudget {
 public:
  explicit TimeBudget(sql::Connection* db)
      : m_db(db), m_deadline(std::chrono::steady_clock::now() + std::chrono::seconds(kSeconds)) {}
  bool Spent() const { return std::chrono::steady_clock::now() > m_deadline; }
  // Whether statements are interrupted once the time is spent: on while
  // the damaged file is walked, off for the work on the copy alone
  // (counting it, building its indexes, committing it).
  void Arm(bool on) const {
    sqlite3_progress_handler(m_db->db(), on ? 10000 : 0, on ? &TimeBudget::Interrupt : nullptr,
                             const_cast<TimeBudget*>(this));
  }

 private:
  static constexpr int kSeconds = 60;
  static int Interrupt(void* self) { return static_cast<TimeBudget*>(self)->Spent() ? 1 : 0; }

  sql::Connection* m_db;
  std::chrono::steady_clock::time_point m_deadline;
};

// Copies one table of the attached damaged file into the main database.
class TableSalvage {
 public:
  TableSalvage(sql::Connection* db, const std::string& name, const TimeBudget* budget)
      : m_db(db), m_name(name), m_budget(budget) {
    m_source = std::string(kDamaged) + "." + Quoted(name);
    m_target = "main." + Quoted(name);
  }

  // |indexes| are the root pages of the table's indexes in the damaged
  // file, whose bytes are |file|.
  SalvagedTable Run(bool without_rowid,
                    const std::vector<int64_t>& indexes,
                    std::string_view file) {
    SalvagedTable result;
    result.name = m_name;
    if (!ReadColumns()) {
      result.complete = false;
      return result;
    }
    if (without_rowid || m_rowid.empty()) {
      // No row ids to walk by: the table comes whole or not at all.
      result.complete = m_db->Execute(("INSERT OR IGNORE INTO " + m_target + "(" + m_columns +
                                       ") SELECT " + m_columns + " FROM " + m_source)
                                          .c_str());
    } else if (!m_db->Execute((Insert() + " ORDER BY " + m_rowid).c_str())) {
      result.complete = false;
      Walk();
    }
    m_budget->Arm(false);
    // A table copied whole may still have lost rows without an error: a
    // page of another part of the table in place of one of its own hands
    // back rows twice and hides the rows it replaced.
    if (!without_rowid && !m_rowid.empty())
      result.lost_rowids = RowsIndexesName(indexes, file);
    sql::Statement count(m_db->GetUniqueStatement(("SELECT COUNT(*) FROM " + m_target).c_str()));
    result.rows_copied = count.Step() ? count.ColumnInt64(0) : 0;
    m_budget->Arm(true);
    return result;
  }

 private:
  // The column list and a name for the row id that no column takes.
  bool ReadColumns() {
    sql::Statement info(
        m_db->GetUniqueStatement(("PRAGMA damaged.table_info(" + Quoted(m_name) + ")").c_str()));
    std::vector<std::string> names;
    while (info.Step())
      names.push_back(info.ColumnString(1));
    if (names.empty())
      return false;
    for (const std::string& name : names)
      m_columns += (m_columns.empty() ? "" : ", ") + Quoted(name);
    for (const char* alias : {"rowid", "_rowid_", "oid"}) {
      if (std::none_of(names.begin(), names.end(),
                       [alias](const std::string& n) { return EqualsIgnoringCase(n, alias); })) {
        m_rowid = alias;
        break;
      }
    }
    return true;
  }

  // Damage can leave rows that break the table's constraints (a row id
  // twice, from a duplicated page; a damaged value in a unique or NOT NULL
  // column): such a row is left out rather than failing its whole range.
  std::string Insert() const {
    return "INSERT OR IGNORE INTO " + m_target + "(" + m_rowid + ", " + m_columns + ") SELECT " +
           m_rowid + ", " + m_columns + " FROM " + m_source;
  }
  std::string Select(int64_t from) const {
    return "SELECT " + m_rowid + ", " + m_columns + " FROM " + m_source + " WHERE " + m_rowid +
           " >= " + std::to_string(from) + " ORDER BY " + m_rowid;
  }

  // The row ids the copy holds, in order.
  std::vector<int64_t> CopiedRowIds() {
    std::vector<int64_t> ids;
    sql::Statement rows(m_db->GetUniqueStatement(
        ("SELECT " + m_rowid + " FROM " + m_target + " ORDER BY " + m_rowid).c_str()));
    while (rows.Step())
      ids.push_back(rows.ColumnInt64(0));
    return ids;
  }

  bool InSkippedRange(int64_t id) const {
    return std::any_of(m_skipped.begin(), m_skipped.end(),
                       [id](const auto& range) { return range.first <= id && id <= range.second; });
  }

  // Rows the indexes at |roots| name that the copy does not hold, in
  // row-id order: those of an index that is proven (read without a damaged
  // page and naming every copied row), else only those in a skipped range.
  std::vector<int64_t> RowsIndexesName(const std::vector<int64_t>& roots, std::string_view file) {
    if (roots.empty() || file.empty())
      return {};
    const std::vector<int64_t> copied = CopiedRowIds();
    std::set<int64_t> lost;
    for (int64_t root : roots) {
      if (root <= 0 || root > std::numeric_limits<uint32_t>::max())
        continue;
      IndexRowIds index = ReadIndexRowIds(file, static_cast<uint32_t>(root));
      std::sort(index.rowids.begin(), index.rowids.end());
      const bool proven = index.complete && std::includes(index.rowids.begin(), index.rowids.end(),
                                                          copied.begin(), copied.end());
      for (int64_t id : index.rowids) {
        if (!std::binary_search(copied.begin(), copied.end(), id) && (proven || InSkippedRange(id)))
          lost.insert(id);
      }
    }
    return std::vector<int64_t>(lost.begin(), lost.end());
  }

  enum class Probe { kRow, kEnd, kDamaged };
  // Whether a walk starting at row id |from| reads its first row.
  Probe ProbeFrom(int64_t from) {
    sql::Statement probe(m_db->GetUniqueStatement((Select(from) + " LIMIT 1").c_str()));
    if (probe.Step())
      return Probe::kRow;
    return probe.Succeeded() ? Probe::kEnd : Probe::kDamaged;
  }

  // The rows of the table in row-id order, past every damaged part. Each
  // range of row ids the walk had to skip is kept in m_skipped.
  void Walk() {
    WalkRanges();
    if (m_skip_from)
      m_skipped.emplace_back(*m_skip_from, kMaxRowId);
  }

  // A row |id| was read: it closes the range skipped before it, if any.
  void RowRead(int64_t id) {
    if (m_skip_from && id > *m_skip_from)
      m_skipped.emplace_back(*m_skip_from, id - 1);
    m_skip_from.reset();
    m_read_max = m_read_max ? std::max(*m_read_max, id) : id;
  }

  void WalkRanges() {
    bool first = true;
    int64_t from = kMinRowId;
    for (int part = 0; part < kMaxDamagedParts && !m_budget->Spent(); ++part) {
      std::string select = first ? "SELECT " + m_rowid + ", " + m_columns + " FROM " + m_source +
                                       " ORDER BY " + m_rowid
                                 : Select(from);
      sql::Statement walk(m_db->GetUniqueStatement(select.c_str()));
      int64_t last = from;
      int64_t rows = 0;
      // Damage can hand back row ids out of order; the walk goes on past
      // the largest one read, so it always moves forward.
      while (walk.Step()) {
        RowRead(walk.ColumnInt64(0));
        last = std::max(last, walk.ColumnInt64(0));
        ++rows;
      }
      const bool ended = walk.Succeeded();
      if (rows > 0) {
        // The rows just read, read again by the copy. A bound on the row id
        // would make the engine look at the next row to see the range end,
        // which lies in the damaged part; a limit stops at the last row.
        std::string range =
            first ? std::string() : " WHERE " + m_rowid + " >= " + std::to_string(from);
        // Should the copy fail all the same, these rows are lost with the
        // damaged part: they are not in the copy, and the index names them.
        (void)m_db->Execute(
            (Insert() + range + " ORDER BY " + m_rowid + " LIMIT " + std::to_string(rows)).c_str());
      }
      if (ended || last == kMaxRowId)
        return;
      // Rows after the last one read are skipped until the next one read.
      if (!m_skip_from) {
        if (m_read_max == kMaxRowId)
          return;
        m_skip_from = m_read_max ? *m_read_max + 1 : kMinRowId;
      }
      // The walk stopped at damage after |last| (or at |from| itself when
      // it read nothing): find the first row id past it that reads again.
      // A walk that could not even begin looks from row id 1 upward, where
      // the row ids of every table the importer reads begin; rows under
      // negative ids past a damaged start are not looked for.
      const int64_t base = first ? (rows > 0 ? last : 0) : std::max(last, from);
      std::optional<int64_t> next = NextReadable(base);
      if (!next)
        return;
      from = *next;
      first = false;
    }
  }

  // The smallest row id above |base| from which a walk reads again; none
  // when nothing past |base| can be read.
  std::optional<int64_t> NextReadable(int64_t base) {
    // Distances are counted unsigned: |base| may be negative.
    const uint64_t room = static_cast<uint64_t>(kMaxRowId) - static_cast<uint64_t>(base);
    auto plus = [base](uint64_t distance) {
      return static_cast<int64_t>(static_cast<uint64_t>(base) + distance);
    };
    uint64_t step = 1;
    uint64_t bad = 0;  // distance from |base| known to fail
    while (!m_budget->Spent()) {
      const uint64_t distance = std::min(step, room);
      Probe probe = ProbeFrom(plus(distance));
      if (probe == Probe::kEnd)
        return std::nullopt;
      if (probe == Probe::kRow) {
        step = distance;
        break;
      }
      if (distance == room)
        return std::nullopt;
      bad = distance;
      step = step > room / 2 ? room : step * 2;
    }
    if (m_budget->Spent())
      return std::nullopt;
    // Back down to the boundary: |bad| fails, |step| reads.
    uint64_t good = step;
    while (good - bad > 1) {
      uint64_t mid = bad + (good - bad) / 2;
      if (ProbeFrom(plus(mid)) == Probe::kRow)
        good = mid;
      else
        bad = mid;
    }
    return plus(good);
  }

  sql::Connection* m_db;
  std::string m_name;
  const TimeBudget* m_budget;
  std::string m_source;
  std::string m_target;
  std::string m_columns;
  std::string m_rowid;
  // Inclusive ranges of row ids the walk skipped, and the start of the
  // range it is skipping now.
  std::vector<std::pair<int64_t, int64_t>> m_skipped;
  std::optional<int64_t> m_skip_from;
  std::optional<int64_t> m_read_max;
};

}  // namespace

// A truncated file: its header claims more pages than it holds, and the
// engine refuses its whole schema when a table's first page lies past the
// end. Padded with empty pages to the size it claims, every page it still
// holds can be read again. Answers the padded copy's path beside |fresh|,
// or |damaged| itself when it needs no padding or cannot be padded.
// |bytes| are the damaged file's.
static base::FilePath PaddedWhenTruncated(const base::FilePath& damaged,
                                          std::string bytes,
                                          const base::FilePath& fresh) {
  if (bytes.size() < 100)
    return damaged;
  auto byte = [&bytes](size_t at) { return static_cast<unsigned char>(bytes[at]); };
  uint64_t page_size = (byte(16) << 8) | byte(17);
  if (page_size == 1)
    page_size = 65536;
  const uint64_t pages = (uint64_t{byte(28)} << 24) | (byte(29) << 16) | (byte(30) << 8) | byte(31);
  // Sizes a header can claim; beyond a gigabyte the damage is in the header.
  if (page_size < 512 || (page_size & (page_size - 1)) || pages * page_size <= bytes.size() ||
      pages * page_size > (uint64_t{1} << 30))
    return damaged;
  bytes.resize(pages * page_size, '\0');
  base::FilePath padded(fresh.value() + L".padded");
  return base::WriteFile(padded, bytes) ? padded : damaged;
}

// |bytes| are the damaged file's, where its indexes are read.
static SalvageResult SalvageReadable(const base::FilePath& damaged,
                                     std::string_view bytes,
                                     const base::FilePath& fresh) {
  SalvageResult result;
  sql::Connection db;
  if (!db.Open(fresh) || !db.AttachDatabase(damaged, kDamaged))
    return result;
  TimeBudget budget(&db);
  std::vector<SchemaEntry> schema = ReadSchema(&db);
  if (!db.BeginTransaction())
    return result;
  for (const SchemaEntry& entry : schema) {
    if (entry.type != "table" || entry.sql.empty() || entry.name.rfind("sqlite_", 0) == 0 ||
        ContainsIgnoringCase(entry.sql, "create virtual table"))
      continue;
    if (!db.Execute(entry.sql.c_str())) {
      result.tables.push_back({entry.name, 0, {}, false});
      continue;
    }
    std::vector<int64_t> indexes;
    for (const SchemaEntry& index : schema) {
      if (index.type == "index" && EqualsIgnoringCase(index.table, entry.name))
        indexes.push_back(index.root_page);
    }
    TableSalvage table(&db, entry.name, &budget);
    budget.Arm(true);
    result.tables.push_back(
        table.Run(ContainsIgnoringCase(entry.sql, "without rowid"), indexes, bytes));
    budget.Arm(false);
  }
  // The indexes are built anew from the copied rows; one that the rows no
  // longer satisfy (a unique index over damaged values) is left out.
  for (const SchemaEntry& entry : schema) {
    if (entry.type == "index" && !entry.sql.empty())
      (void)db.Execute(entry.sql.c_str());
  }
  if (!db.CommitTransaction())
    return result;
  result.ok = db.DetachDatabase(kDamaged);
  return result;
}

SalvageResult SalvageCopy(const base::FilePath& damaged, const base::FilePath& fresh) {
  SalvageResult result;
  if (!base::PathExists(damaged) || !base::DeleteFile(fresh))
    return result;
  // Without its bytes the file is still salvaged; only its lost rows are
  // not named then.
  std::string bytes;
  if (!base::ReadFileToString(damaged, &bytes))
    bytes.clear();
  const base::FilePath readable = PaddedWhenTruncated(damaged, bytes, fresh);
  result = SalvageReadable(readable, bytes, fresh);
  if (readable != damaged && !base::DeleteFile(readable))
    result.ok = false;  // a work file left behind: the caller must not trust the copy
  return result;
}

}  // namespace data_importer
