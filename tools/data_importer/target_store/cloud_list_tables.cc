// Tables of the playlist database (playlistV3.db) carried here, not
// written: the cloud lists of a re-imported music database, as the
// cloud-list move of the version-3 upgrade places them.

#include <string>
#include <vector>

#include "logging/logging.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/target_store/import_model.h"

namespace {

constexpr char kSourceAlias[] = "carried_cloud_lists";

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
  bool ok = true;
  auto carry = [&](const std::string& table) {
    if (!in_source(table) || playlist->DoesTableExist(table.c_str()))
      return;
    if (!m_playlist_db->CopyTable(std::string(), table)) {
      VLOG_AT(logging::LOG_FAILURE) << L"Cloud-list table {" << table.c_str()
                                    << L"} could not be carried.";
      ok = false;
    }
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
  // The older layout's tables ("CloudList_..."), which the move drops
  // after copying the lists, stay behind here too.
  for (const std::string& name : source_tables) {
    if (name.rfind("CloudList_", 0) == 0) {
      VLOG_AT(logging::LOG_PROGRESS) << L"Cloud-list table {" << name.c_str()
                                     << L"} of an older layout is not carried.";
    }
  }
  if (!playlist->DetachDatabase(kSourceAlias))
    ok = false;
  return ok;
}
