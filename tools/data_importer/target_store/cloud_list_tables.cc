// Tables of the playlist database (playlistV3.db) carried here, not
// written: the cloud lists of a re-imported music database, as the
// cloud-list move of the version-3 upgrade places them.

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "logging/logging.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

namespace {

constexpr char kSourceAlias[] = "carried_cloud_lists";

// Whether |table| belongs to the cloud lists: the tables the cloud-list move
// carries and the older layout's "CloudList_..." tables.
bool IsCloudListTable(const std::string& table) {
  return table == "CloudListTable" || table == "CloudAccompanimentItemSet" ||
         table == "CloudOperation" || table.rfind("NewCloudList_", 0) == 0 ||
         table.rfind("CloudList_", 0) == 0;
}

// Rows of |table| in |schema| of |db|; -1 when they cannot be counted.
int64_t CountRows(sql::Connection* db, const std::string& schema, const std::string& table) {
  DbRowReader count(*db, "SELECT count(*) AS n FROM " + schema + "." + SqlTableName(table));
  return count.Step() ? count.GetInt64("n") : -1;
}

}  // namespace

bool ImportModel::CarryCloudLists() {
  if (m_cloud_list_source.empty() || !m_playlist_db || !m_playlist_db->connection()->is_open())
    return true;
  sql::Connection* playlist = m_playlist_db->connection();
  std::vector<std::string> source_tables;
  if (!m_playlist_db->Attach(m_cloud_list_source, kSourceAlias))
    return false;
  {
    DbRowReader names(*playlist, std::string("SELECT name FROM ") + kSourceAlias +
                                     ".sqlite_master WHERE type = 'table' ORDER BY name");
    while (names.Step())
      source_tables.push_back(names.GetString("name"));
  }
  auto in_source = [&](const std::string& table) {
    for (const std::string& name : source_tables) {
      if (name == table)
        return true;
    }
    return false;
  };
  // Each cloud-list table of the source is counted in the report: its rows
  // written when it was carried, else dropped as left behind, as the move
  // leaves it.
  ImportReport* report = this->report();
  std::set<std::string> carried;
  std::set<std::string> failed;
  bool ok = true;
  auto carry = [&](const std::string& table) {
    if (!in_source(table) || playlist->DoesTableExist(table.c_str()))
      return;
    if (!m_playlist_db->CopyTable(std::string(), table)) {
      VLOG_AT(logging::LOG_FAILURE)
          << L"Cloud-list table {" << table.c_str() << L"} could not be carried.";
      ok = false;
      failed.insert(table);
      return;
    }
    carried.insert(table);
  };
  carry("CloudListTable");
  if (playlist->DoesTableExist("CloudListTable")) {
    std::vector<int> ids;
    {
      DbRowReader list(*playlist, "SELECT CloudListID FROM CloudListTable ");
      while (list.Step()) {
        if (list.GetInt("CloudListID") > 0)
          ids.push_back(list.GetInt("CloudListID"));
      }
    }
    for (int id : ids)
      carry("NewCloudList_" + std::to_string(id));
  }
  carry("CloudAccompanimentItemSet");
  carry("CloudOperation");
  for (const std::string& table : source_tables) {
    if (!IsCloudListTable(table))
      continue;
    int64_t rows = CountRows(playlist, kSourceAlias, table);
    if (rows < 0) {
      VLOG_AT(logging::LOG_FAILURE)
          << L"Rows of cloud-list table {" << table.c_str() << L"} could not be counted.";
      continue;
    }
    int origin = report->SourceTable(m_cloud_list_source, table);
    report->AddRead(origin, rows, rows);
    if (carried.count(table)) {
      report->AddWritten(origin, table, rows);
      continue;
    }
    if (failed.count(table)) {
      if (rows > 0)
        report->AddDrops(origin, table, drop_reason::kRowRefused, rows, {{table, 0, L""}});
      continue;
    }
    // The older layout's tables, and the song tables of lists the server
    // does not know (ids 0 and below), which the move drops as well.
    VLOG_AT(logging::LOG_PROGRESS) << L"Cloud-list table {" << table.c_str()
                                   << L"} is left behind, as the cloud-list move leaves it.";
    if (rows > 0) {
      report->AddDrops(origin, table, drop_reason::kCloudListLeftBehind, rows, {{table, 0, L""}});
    }
  }
  if (!playlist->DetachDatabase(kSourceAlias))
    ok = false;
  return ok;
}

}  // namespace data_importer
