#ifndef TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_CLOUD_LIST_CLEANUP_H_
#define TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_CLOUD_LIST_CLEANUP_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/version3_upgrade/upgrade_result.h"

namespace data_importer {

// Moves the user's cloud lists out of the keyed music database
// "VTMusicV3.db" into the playlist database "playlistV3.db", both in the data
// folder: "CloudListTable", the song table "NewCloudList_<id>" of every list
// with an id above 0, "CloudAccompanimentItemSet" and "CloudOperation". Then
// removes the cloud tables (the old "CloudList_..." ones too) from the music
// database and compacts it.
//
// Nothing is removed unless every table was copied: the copy runs in one
// transaction on the playlist database, and any failure rolls it back, so
// the playlist database never holds half of the tables and the music
// database keeps all of them. Nothing is logged or written to "DBCheck"; the
// outcome is the answer of Run.
//
//   CloudListCleanup cleanup(data_folder);
//   cleanup.SetUp(&music_db);     // opens "playlistV3.db" with the key
//   CloudListOutcome outcome = cleanup.Run();
class CloudListCleanup {
 public:
  explicit CloudListCleanup(const base::FilePath& data_folder);
  ~CloudListCleanup();
  CloudListCleanup(const CloudListCleanup&) = delete;
  CloudListCleanup& operator=(const CloudListCleanup&) = delete;

  // Opens "playlistV3.db" with the version-3 key (page size 4096, 64 pages
  // of cache), checks it and repairs it by one "VACUUM" if it must, and
  // keeps |music_db|, the upgrader's open connection to "VTMusicV3.db" (not
  // owned; it must outlive Run). A playlist database that is missing, does
  // not open with the key or stays corrupt is left closed, and Run then
  // stops before touching anything.
  void SetUp(DatabaseHelper* music_db);

  // Attaches the music database to the playlist connection as
  // "vantu_music_db", copies, detaches (whatever the copy answered), and
  // after a successful copy removes the cloud tables from the music
  // database, drops the song tables of the playlist database when it has no
  // list with an id above 0, and compacts the music database. Leaves the
  // music connection open.
  CloudListOutcome Run();

  // The ids above 0 read from the copied "CloudListTable" by the last Run.
  const std::vector<int32_t>& cloud_list_ids() const { return m_cloud_list_ids; }

  // The tables the last Run copied; empty unless it answered kMoved.
  const std::vector<MovedTable>& moved_tables() const { return m_moved; }

  // The connection to the playlist database (for tests).
  DatabaseHelper* playlist_db() { return &m_playlist_db; }

 private:
  // Copies the cloud tables into the playlist database in one transaction;
  // kMoved when they now stand there.
  CloudListOutcome CopyCloudTables();
  // Copies |table| unless the music database lacks it or the playlist
  // database already has it (true then). False when the copy fails.
  bool CopyTableIfMissing(const std::string& table);
  // CopyTable on the playlist connection; a table copied is noted in
  // m_moved with its rows in the music database.
  bool CopyAndNote(const std::string& table);
  void RemoveFromMusicDatabase();
  void DropSongTablesWithoutLists();

  base::FilePath m_playlist_path;
  base::FilePath m_music_path;
  DatabaseHelper m_playlist_db;
  DatabaseHelper* m_music_db = nullptr;
  std::vector<int32_t> m_cloud_list_ids;
  std::vector<MovedTable> m_moved;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_CLOUD_LIST_CLEANUP_H_
