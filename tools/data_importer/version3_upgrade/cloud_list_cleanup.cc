#include "tools/data_importer/version3_upgrade/cloud_list_cleanup.h"

#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

namespace {

constexpr char kMusicAlias[] = "vantu_music_db";
constexpr char kCloudListTable[] = "CloudListTable";
constexpr char kCloudOperation[] = "CloudOperation";
constexpr char kAccompaniment[] = "CloudAccompanimentItemSet";
constexpr char kListIdQuery[] = "SELECT CloudListID FROM CloudListTable ";
constexpr char kOldCloudTablesQuery[] =
    "SELECT * FROM sqlite_master where type = 'table' and name like 'CloudList_%' ";
constexpr char kSongTablesQuery[] =
    "SELECT * FROM sqlite_master where type = 'table' and name like 'NewCloudList_%' ";

std::string SongTableName(int32_t id) {
  return "NewCloudList_" + std::to_string(id);
}

// The ids above 0 of "CloudListTable" on |db|, in table order.
std::vector<int32_t> ReadListIds(sql::Connection* db) {
  std::vector<int32_t> ids;
  DbRowReader reader(*db, kListIdQuery);
  while (reader.Step()) {
    int32_t id = reader.GetInt("CloudListID");
    if (id > 0)
      ids.push_back(id);
  }
  return ids;
}

// Every name |query| answers in its column "name", read to the end before
// anything is dropped (a table cannot be dropped while a statement reads the
// schema).
std::vector<std::string> ReadTableNames(sql::Connection* db, const char* query) {
  std::vector<std::string> names;
  DbRowReader reader(*db, query);
  while (reader.Step())
    names.push_back(reader.GetString("name"));
  return names;
}

void DropTable(sql::Connection* db, const std::string& table) {
  // A table that cannot be dropped stays behind as a harmless leftover: its
  // content already stands in the playlist database.
  (void)db->Execute(("DROP TABLE " + SqlTableName(table)).c_str());
}

}  // namespace

CloudListCleanup::CloudListCleanup(const base::FilePath& data_folder)
    : m_playlist_path(data_folder.Append(importer_names::kPlaylistDatabaseV3)),
      m_music_path(data_folder.Append(importer_names::kMusicDatabaseV3)) {}

CloudListCleanup::~CloudListCleanup() = default;

void CloudListCleanup::SetUp(DatabaseHelper* music_db) {
  // The playlist database is never created here: without one there is no
  // place to move the lists to, and they stay in the music database. One that
  // stays corrupt after the repair is closed rather than written to.
  if (m_playlist_db.OpenWithKey(m_playlist_path, kVersion3DatabaseKey))
    (void)m_playlist_db.CheckOrRepair();  // closes the connection on failure
  m_music_db = music_db;
}

CloudListOutcome CloudListCleanup::Run() {
  if (!m_music_db || !m_music_db->connection()->is_open())
    return CloudListOutcome::kNotRun;
  m_cloud_list_ids.clear();
  m_moved.clear();
  if (!m_playlist_db.connection()->is_open())
    return CloudListOutcome::kNoPlaylistDatabase;
  if (!m_playlist_db.Attach(m_music_path, kMusicAlias))
    return CloudListOutcome::kAttachFailed;
  CloudListOutcome copied = CopyCloudTables();
  // Whatever the copy answered; a failed detach only leaves the alias until
  // the connection closes.
  (void)m_playlist_db.connection()->DetachDatabase(kMusicAlias);
  if (copied != CloudListOutcome::kMoved)
    return copied;
  RemoveFromMusicDatabase();
  DropSongTablesWithoutLists();
  (void)m_music_db->connection()->Execute("VACUUM");  // compaction only
  return CloudListOutcome::kMoved;
}

CloudListOutcome CloudListCleanup::CopyCloudTables() {
  sql::Connection* playlist = m_playlist_db.connection();
  if (playlist->DoesTableExist(kCloudListTable))
    return CloudListOutcome::kAlreadyMoved;
  if (!m_music_db->connection()->DoesTableExist(kCloudListTable))
    return CloudListOutcome::kNothingToMove;
  if (!playlist->BeginTransaction())
    return CloudListOutcome::kCopyFailed;
  bool copied = CopyAndNote(kCloudListTable);
  if (copied)
    m_cloud_list_ids = ReadListIds(playlist);
  for (int32_t id : m_cloud_list_ids) {
    if (!copied)
      break;
    copied = CopyTableIfMissing(SongTableName(id));
  }
  copied = copied && CopyTableIfMissing(kAccompaniment) && CopyTableIfMissing(kCloudOperation);
  // A failed copy rolls back the tables copied before it, so the playlist
  // database holds all of the cloud tables or none (and a later run can
  // try again, which a half-filled "CloudListTable" would refuse).
  if (!copied || !playlist->CommitTransaction()) {
    if (!copied)
      playlist->RollbackTransaction();
    m_moved.clear();
    return CloudListOutcome::kCopyFailed;
  }
  return CloudListOutcome::kMoved;
}

bool CloudListCleanup::CopyAndNote(const std::string& table) {
  // The rows are counted where the copy reads them, before the copy, for
  // the import report only.
  DbRowReader count(*m_playlist_db.connection(), std::string("SELECT count(*) AS n FROM ") +
                                                     kMusicAlias + "." + SqlTableName(table));
  int64_t rows = count.Step() ? count.GetInt64("n") : 0;
  if (!m_playlist_db.CopyTable("", table))
    return false;
  m_moved.push_back({table, rows, false});
  return true;
}

bool CloudListCleanup::CopyTableIfMissing(const std::string& table) {
  if (!m_music_db->connection()->DoesTableExist(table.c_str()) ||
      m_playlist_db.connection()->DoesTableExist(table.c_str())) {
    return true;
  }
  return CopyAndNote(table);
}

void CloudListCleanup::RemoveFromMusicDatabase() {
  // Order of the drops: "CloudListTable" first, then the song tables of the
  // ids the copy read from it (the copied table holds the same rows), then
  // whatever "CloudList_%" still finds. The pattern's "_" matches any
  // character, so it would also name "CloudListTable" were that still there.
  // All drops form one transaction: a run killed among them leaves the music
  // database with every cloud table, never with a part of them.
  sql::Connection* music = m_music_db->connection();
  bool in_transaction = music->BeginTransaction();
  DropTable(music, kCloudListTable);
  for (int32_t id : m_cloud_list_ids)
    DropTable(music, SongTableName(id));
  for (const std::string& table : ReadTableNames(music, kOldCloudTablesQuery))
    DropTable(music, table);
  if (music->DoesTableExist(kCloudOperation))
    (void)music->Execute("DROP TABLE CloudOperation");  // a leftover at worst
  if (in_transaction)
    (void)music->CommitTransaction();  // a failed commit keeps every table
}

void CloudListCleanup::DropSongTablesWithoutLists() {
  sql::Connection* playlist = m_playlist_db.connection();
  if (!playlist->DoesTableExist(kCloudListTable) || !ReadListIds(playlist).empty())
    return;
  std::vector<std::string> dropped = ReadTableNames(playlist, kSongTablesQuery);
  for (const std::string& table : dropped)
    DropTable(playlist, table);
  if (playlist->DoesTableExist(kCloudOperation)) {
    // A table that stays is empty and unused: nothing to undo or report.
    (void)playlist->Execute("DROP TABLE CloudOperation");
    dropped.push_back(kCloudOperation);
  }
  for (MovedTable& moved : m_moved) {
    for (const std::string& table : dropped)
      moved.dropped = moved.dropped || moved.name == table;
  }
}

}  // namespace data_importer
