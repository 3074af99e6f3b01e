#include "tools/data_importer/version3_upgrade/upgrade_tasks.h"

#if !defined(_WIN32)
#include <signal.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <functional>
#include <memory>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/json_file.h"
#include "sql/connection.h"
#include "testing/fixtures/version2_fixture.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/version3_upgrade/cloud_list_cleanup.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

namespace {

using testing_support::ReadBytes;

class Version2TaskTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(base::CreateDirectory(m_profile.data_folder())); }

  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }

  // The file opened with the version-3 key, or null when it does not open.
  std::unique_ptr<sql::Connection> Keyed(const wchar_t* name) const {
    auto db = std::make_unique<sql::Connection>();
    return db->OpenWithKey(Data(name), kVersion3DatabaseKey) ? std::move(db) : nullptr;
  }

  // Every table of the database with its rows, as "name: row; row; ...".
  static std::set<std::string> Content(sql::Connection* db) {
    std::set<std::string> content;
    for (const std::string& table :
         QueryRows(db, "SELECT name FROM sqlite_master WHERE type = 'table'")) {
      std::string rows = table + ":";
      for (const std::string& row : QueryRows(db, "SELECT * FROM \"" + table + "\" ORDER BY 1"))
        rows += " " + row + ";";
      content.insert(rows);
    }
    return content;
  }

  std::set<std::string> PlainContent(const wchar_t* name) const {
    sql::Connection db;
    return db.Open(Data(name)) ? Content(&db) : std::set<std::string>();
  }

  std::set<std::string> Tables(const wchar_t* name) const {
    std::set<std::string> names;
    if (auto db = Keyed(name)) {
      for (const std::string& table :
           QueryRows(db.get(), "SELECT name FROM sqlite_master WHERE type = 'table'"))
        names.insert(table);
    }
    return names;
  }

  std::string Result() const { return ReadBytes(Data(kUpgradeResultFile)); }

  TestProfile m_profile;
};

// The copy task: both files copied and encrypted with the key, readable by
// the sqlcipher tool with it and not without, the version-2 files untouched,
// "pls_storage" refreshed from the new playlist database.
TEST_F(Version2TaskTest, CopyEncryptsBothCopiesAndRefreshesPlaylistStorage) {
  ASSERT_TRUE(WriteSampleVersion2Databases(m_profile.data_folder()));
  testing_support::WriteBytes(Data(L"pls_storage"), "{\"modify_time\":1.5}");
  const std::string music_v2 = ReadBytes(Data(L"VTMusicV2.db"));
  const std::string playlist_v2 = ReadBytes(Data(L"playlist.db"));
  std::set<std::string> music_content = PlainContent(L"VTMusicV2.db");
  ASSERT_GT(music_content.size(), 6u);

  DataImporterMain();

  EXPECT_EQ(L"100", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportProgress"));
  EXPECT_EQ(music_v2, ReadBytes(Data(L"VTMusicV2.db")));
  EXPECT_EQ(playlist_v2, ReadBytes(Data(L"playlist.db")));
  for (const wchar_t* name : {L"VTMusicV3.db", L"playlistV3.db"}) {
    sql::Connection plain;
    EXPECT_FALSE(plain.Open(Data(name)));
#if !defined(_WIN32)  // the stock sqlcipher tool runs on the Linux build only
    EXPECT_NE(std::string::npos,
              SqlcipherOutput(Data(name), L"", "SELECT count(*) FROM sqlite_master;")
                  .find("not a database"));
#endif
  }
  auto music = Keyed(L"VTMusicV3.db");
  ASSERT_TRUE(music);
  EXPECT_EQ(music_content, Content(music.get()));  // the cloud lists stay for the upgrade
#if !defined(_WIN32)  // the stock sqlcipher tool runs on the Linux build only
  EXPECT_EQ("40\n", SqlcipherOutput(Data(L"VTMusicV3.db"), kVersion3DatabaseKey,
                                    "SELECT count(*) FROM ShareFileItems;"));
  EXPECT_EQ("List 1\nList 2\n",
            SqlcipherOutput(Data(L"playlistV3.db"), kVersion3DatabaseKey,
                            "SELECT PlaylistName FROM GeneralListTable ORDER BY SortID;"));
#endif
  for (const wchar_t* work : {L"VTMusicV2.db.tmp", L"playlist.db.tmp", L"VTMusicV2.db.tmp.enc",
                              L"DatabaseReplace.commit"})
    EXPECT_FALSE(base::PathExists(Data(work))) << base::FilePath(work).AsUTF8Unsafe();

  base::FileInfo info;
  ASSERT_TRUE(base::GetFileInfo(Data(L"playlistV3.db"), &info));
  base::Value storage;
  ASSERT_TRUE(base::ReadJsonFile(Data(L"pls_storage"), &storage));
  EXPECT_DOUBLE_EQ(info.last_modified, storage["modify_time"].get<double>());
  EXPECT_EQ("{\"music\":\"encrypted\",\"playlist\":\"encrypted\",\"task\":\"copyv8dbv2\"}",
            Result());

  // The next run finds the version-3 files and upgrades; a run with nothing
  // to do leaves no record of an earlier one. (The test's own connection
  // goes first: Windows deletes no open file.)
  music.reset();
  DataImporterMain();
  EXPECT_NE(std::string::npos, Result().find("\"task\":\"updatevantu8\""));
  for (const wchar_t* name : {L"VTMusicV2.db", L"VTMusicV3.db", L"playlistV3.db"})
    ASSERT_TRUE(base::DeleteFile(Data(name)));
  DataImporterMain();
  EXPECT_FALSE(base::PathExists(Data(kUpgradeResultFile)));
}

// Without "playlist.db" the music copy is still encrypted and no playlist
// database is made; a corrupt "VTMusicV2.db" is copied but left plain; an
// encryption that fails (a full disk, say) puts neither copy in place, so
// that the next run copies both again.
TEST_F(Version2TaskTest, CopyFailuresLeaveVersion2FilesAndPlainCopies) {
  ASSERT_TRUE(SampleMusicDatabase().Write(Data(L"VTMusicV2.db"), L""));
  DataImporterMain();
  EXPECT_EQ(L"100", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_TRUE(Keyed(L"VTMusicV3.db"));
  EXPECT_FALSE(base::PathExists(Data(L"playlistV3.db")));
  EXPECT_NE(std::string::npos, Result().find("\"playlist\":\"no_source\""));

  // Damage the song table's first page: beyond what a VACUUM repairs.
  std::string bytes = ReadBytes(Data(L"VTMusicV2.db"));
  bytes.replace(4096, 64, std::string(64, '\xA5'));
  testing_support::WriteBytes(Data(L"VTMusicV2.db"), bytes);
  ASSERT_TRUE(CurrentPlaylistDatabase().Write(Data(L"playlist.db"), L""));
  ASSERT_TRUE(base::DeleteFile(Data(L"VTMusicV3.db")));
  DataImporterMain();
  EXPECT_EQ(L"100", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_EQ(bytes, ReadBytes(Data(L"VTMusicV2.db")));
  EXPECT_FALSE(Keyed(L"VTMusicV3.db"));
  EXPECT_EQ(0u, ReadBytes(Data(L"VTMusicV3.db")).rfind("SQLite format 3", 0));
  EXPECT_TRUE(Keyed(L"playlistV3.db"));
  EXPECT_NE(std::string::npos, Result().find("\"music\":\"left_plain\""));

  // The encrypted sibling of the music copy cannot be made: the playlist
  // copy, encrypted, is withheld too; once the obstacle is gone the next run
  // makes both.
  ASSERT_TRUE(SampleMusicDatabase().Write(Data(L"VTMusicV2.db"), L""));
  ASSERT_TRUE(base::DeleteFile(Data(L"VTMusicV3.db")));
  ASSERT_TRUE(base::DeleteFile(Data(L"playlistV3.db")));
  const base::FilePath blocker = Data(L"VTMusicV2.db.tmp.enc");
  TestProfile::Touch(blocker.Append(L"blocker"));
  DataImporterMain();
  EXPECT_EQ("{\"music\":\"encrypt_failed\",\"playlist\":\"withheld\",\"task\":\"copyv8dbv2\"}",
            Result());
  for (const wchar_t* name : {L"VTMusicV3.db", L"playlistV3.db", L"VTMusicV2.db.tmp",
                              L"playlist.db.tmp", L"DatabaseReplace.commit"})
    EXPECT_FALSE(base::PathExists(Data(name))) << base::FilePath(name).AsUTF8Unsafe();
  ASSERT_TRUE(base::DeleteFile(blocker, true));
  DataImporterMain();
  EXPECT_EQ("{\"music\":\"encrypted\",\"playlist\":\"encrypted\",\"task\":\"copyv8dbv2\"}",
            Result());
  auto music = Keyed(L"VTMusicV3.db");
  ASSERT_TRUE(music);
  EXPECT_EQ(PlainContent(L"VTMusicV2.db"), Content(music.get()));
}

#if !defined(_WIN32)
// The file-size limit of a child process stands for a full disk: POSIX only.
// A disk that fills up during the copy (a file-size limit in a child
// process: the music copy no longer fits, the playlist copy does) leaves no
// version-3 file at all, so the run after it, with room again, copies both.
TEST_F(Version2TaskTest, FullDiskDuringCopyPutsNothingInPlace) {
  ASSERT_TRUE(WriteSampleVersion2Databases(m_profile.data_folder()));
  const size_t music_size = ReadBytes(Data(L"VTMusicV2.db")).size();
  const size_t playlist_size = ReadBytes(Data(L"playlist.db")).size();
  ASSERT_GT(music_size, playlist_size + 4096);
  pid_t child = fork();
  ASSERT_NE(-1, child);
  if (child == 0) {
    signal(SIGXFSZ, SIG_IGN);  // writes past the limit fail with EFBIG instead
    const rlim_t limit = music_size - 2048;
    rlimit size_limit{limit, limit};
    setrlimit(RLIMIT_FSIZE, &size_limit);
    DataImporterMain();
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ("{\"music\":\"copy_failed\",\"playlist\":\"withheld\",\"task\":\"copyv8dbv2\"}",
            Result());
  EXPECT_FALSE(base::PathExists(Data(L"VTMusicV3.db")));
  EXPECT_FALSE(base::PathExists(Data(L"playlistV3.db")));

  DataImporterMain();
  EXPECT_EQ("{\"music\":\"encrypted\",\"playlist\":\"encrypted\",\"task\":\"copyv8dbv2\"}",
            Result());
  EXPECT_TRUE(Keyed(L"VTMusicV3.db") && Keyed(L"playlistV3.db"));
}

#endif  // !defined(_WIN32)

// Running the copy twice replaces the version-3 files by fresh copies.
TEST_F(Version2TaskTest, CopyTwiceMakesFreshCopies) {
  ASSERT_TRUE(WriteSampleVersion2Databases(m_profile.data_folder()));
  UpgradeResult result;
  UpgradeTasks(m_profile.data_folder()).CopyVersion2Databases(&result);
  ASSERT_EQ(CopyOutcome::kEncrypted, result.music_copy);
  ASSERT_TRUE(Keyed(L"VTMusicV3.db")->Execute("DELETE FROM ShareFileItems"));
  {
    sql::Connection v2;
    ASSERT_TRUE(v2.Open(Data(L"playlist.db")));
    ASSERT_TRUE(v2.Execute("INSERT INTO GeneralListTable(PlayListID) VALUES (30)"));
  }
  UpgradeTasks(m_profile.data_folder()).CopyVersion2Databases(&result);
  EXPECT_EQ(CopyOutcome::kEncrypted, result.music_copy);
  EXPECT_EQ(CopyOutcome::kEncrypted, result.playlist_copy);
  EXPECT_EQ(std::vector<std::string>{"40"},
            QueryRows(Keyed(L"VTMusicV3.db").get(), "SELECT count(*) FROM ShareFileItems"));
  EXPECT_EQ(std::vector<std::string>{"3"},
            QueryRows(Keyed(L"playlistV3.db").get(), "SELECT count(*) FROM GeneralListTable"));
}

#if !defined(_WIN32)
// Kill tests fork a child process and kill it: the Windows build has no fork.
// A copy killed at any point, then run again, never leaves one version-3
// file without the other or a plain one under its final name: the next run
// either redoes the copy (a kill before the commit) or completes the commit
// and, finding both version-3 files, upgrades them, as it would after a
// copy that finished. No work file is left, the version-2 files keep their
// bytes. Kill points: each step of the commit that renames the copies into
// place, and random amounts of processor time into a whole run.
TEST_F(Version2TaskTest, KilledCopyIsCompletedOrRedoneByTheNextRun) {
  ASSERT_TRUE(WriteSampleVersion2Databases(m_profile.data_folder()));
  const std::string music_v2 = ReadBytes(Data(L"VTMusicV2.db"));
  const std::string playlist_v2 = ReadBytes(Data(L"playlist.db"));
  using State = std::pair<std::set<std::string>, std::set<std::string>>;
  // Both version-3 files as they are now, or empty sets for one that does
  // not open with the key.
  auto state = [&] {
    auto music = Keyed(L"VTMusicV3.db");
    auto playlist = Keyed(L"playlistV3.db");
    return State(music ? Content(music.get()) : std::set<std::string>(),
                 playlist ? Content(playlist.get()) : std::set<std::string>());
  };
  auto reset = [&] {
    for (const wchar_t* name : {L"VTMusicV3.db", L"playlistV3.db"}) {
      if (base::PathExists(Data(name))) {
        ASSERT_TRUE(base::DeleteFile(Data(name)));
      }
    }
  };

  // A whole copy, for its outcome and its processor time; then the upgrade
  // that the run after it makes.
  const long run_micros = ProcessorMicrosOfWholeRun();
  ASSERT_GT(run_micros, 0);
  const State copied = state();
  ASSERT_EQ(PlainContent(L"VTMusicV2.db"), copied.first);
  ASSERT_EQ(PlainContent(L"playlist.db"), copied.second);
  DataImporterMain();
  const State upgraded = state();
  ASSERT_NE(copied, upgraded);  // the cloud lists moved

  const std::vector<std::string> steps = {"CommitRecord", "ReplaceMusic", "ReplacePlaylist"};
  std::mt19937 random(29);
  constexpr int kRandomPoints = 8;
  for (size_t point = 0; point < steps.size() + kRandomPoints; ++point) {
    reset();
    const bool at_step = point < steps.size();
    const long micros =
        std::uniform_int_distribution<long>(200, std::max(400L, run_micros))(random);
    const std::string where = at_step ? steps[point] : "after " + std::to_string(micros) + " us";
    pid_t child = fork();
    ASSERT_NE(-1, child);
    if (child == 0) {
      if (at_step) {
        ProgressRecord record;
        record.Initialise(TestDataFolder());
        (void)RunVersion2Copy(TestDataFolder(), &record, [&](const char* step) {
          if (where == step)
            raise(SIGKILL);
        });
      } else {
        itimerval timer{{0, 0}, {micros / 1000000, micros % 1000000}};
        setitimer(ITIMER_PROF, &timer, nullptr);  // SIGPROF ends the process
        DataImporterMain();
      }
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    if (at_step) {
      EXPECT_TRUE(WIFSIGNALED(status)) << where;
    }

    DataImporterMain();  // the next run

    const State after = state();
    if (at_step) {
      EXPECT_TRUE(after == upgraded) << where;
    } else {
      EXPECT_TRUE(after == copied || after == upgraded) << where;
    }
    for (const wchar_t* work :
         {L"VTMusicV2.db.tmp", L"playlist.db.tmp", L"VTMusicV2.db.tmp.enc", L"playlist.db.tmp.enc",
          L"VTMusicV2.db.tmp-journal", L"playlist.db.tmp-journal", L"DatabaseReplace.commit"})
      EXPECT_FALSE(base::PathExists(Data(work)))
          << where << " " << base::FilePath(work).AsUTF8Unsafe();
    EXPECT_EQ(music_v2, ReadBytes(Data(L"VTMusicV2.db"))) << where;
    EXPECT_EQ(playlist_v2, ReadBytes(Data(L"playlist.db"))) << where;
    if (HasFailure())
      break;
  }
}

#endif  // !defined(_WIN32)

// A copy that cannot be renamed over its version-3 file (a folder in the
// way) is reported as not in place; the commit record makes a later run put
// it there once the obstacle is gone, after the music copy that did go in.
TEST_F(Version2TaskTest, CopyThatCannotTakeItsNameIsFinishedLater) {
  ASSERT_TRUE(WriteSampleVersion2Databases(m_profile.data_folder()));
  TestProfile::Touch(Data(L"playlistV3.db").Append(L"in the way"));
  UpgradeResult result;
  UpgradeTasks(m_profile.data_folder()).CopyVersion2Databases(&result);
  EXPECT_EQ(CopyOutcome::kEncrypted, result.music_copy);
  EXPECT_EQ(CopyOutcome::kReplaceFailed, result.playlist_copy);
  EXPECT_TRUE(Keyed(L"VTMusicV3.db"));
  EXPECT_TRUE(base::PathExists(Data(L"DatabaseReplace.commit")));

  ASSERT_TRUE(base::DeleteFile(Data(L"playlistV3.db"), true));
  EXPECT_TRUE(CompleteOrUndoReplacement(m_profile.data_folder()));
  auto playlist = Keyed(L"playlistV3.db");
  ASSERT_TRUE(playlist);
  EXPECT_EQ(PlainContent(L"playlist.db"), Content(playlist.get()));
  EXPECT_FALSE(base::PathExists(Data(L"DatabaseReplace.commit")));
}

// Lines of |content| for the tables named in |tables|.
std::set<std::string> Only(const std::set<std::string>& content,
                           const std::set<std::string>& tables) {
  std::set<std::string> lines;
  for (const std::string& line : content) {
    if (tables.count(line.substr(0, line.find(':'))))
      lines.insert(line);
  }
  return lines;
}

// The upgrade moves the cloud tables of lists with ids above 0, rows
// intact, removes them from the music database and compacts it; the song
// tables of ids 0 and below stay where they are. "pls_storage" is left alone.
TEST_F(Version2TaskTest, UpgradeMovesCloudLists) {
  ASSERT_TRUE(WriteSampleVersion3Databases(m_profile.data_folder(), kVersion3DatabaseKey));
  testing_support::WriteBytes(Data(L"pls_storage"), "{\"modify_time\":1.5}");
  std::set<std::string> before = Content(Keyed(L"VTMusicV3.db").get());
  const size_t size_before = ReadBytes(Data(L"VTMusicV3.db")).size();

  DataImporterMain();

  EXPECT_EQ(L"100", m_profile.DBCheck(L"UpdateProgress"));
  EXPECT_EQ("{\"modify_time\":1.5}", ReadBytes(Data(L"pls_storage")));
  const std::set<std::string> moved = {"CloudListTable", "NewCloudList_3", "NewCloudList_7",
                                       "CloudAccompanimentItemSet", "CloudOperation"};
  std::set<std::string> playlist = Content(Keyed(L"playlistV3.db").get());
  EXPECT_EQ(Only(before, moved), Only(playlist, moved));
  EXPECT_EQ((std::set<std::string>{"CloudAccompanimentItemSet", "CloudListTable", "CloudOperation",
                                   "GeneralListTable", "GeneralList_1", "GeneralList_2",
                                   "NewCloudList_3", "NewCloudList_7"}),
            Tables(L"playlistV3.db"));
  const std::set<std::string> kept = {"ShareFileItems", "NewCloudList_0", "NewCloudList_-2",
                                      "CloudAccompanimentItemSet"};
  EXPECT_EQ(Only(before, kept), Content(Keyed(L"VTMusicV3.db").get()));
  EXPECT_LT(ReadBytes(Data(L"VTMusicV3.db")).size(), size_before);  // compacted
  EXPECT_EQ(
      "{\"cloud_lists\":\"moved\",\"cloud_lists_moved\":2,\"music\":\"opened\","
      "\"task\":\"updatevantu8\"}",
      Result());
}

// With lists of ids 0 and below only, the list table moves, the playlist
// database keeps no "CloudOperation", and no song table is touched.
TEST_F(Version2TaskTest, UpgradeWithoutListsAboveZero) {
  CurrentMusicDatabase music;
  music.cloud_lists = {{0, L"zero", 2}, {-1, L"minus one", 3}};
  ASSERT_TRUE(music.Write(Data(L"VTMusicV3.db"), kVersion3DatabaseKey));
  ASSERT_TRUE(CurrentPlaylistDatabase().Write(Data(L"playlistV3.db"), kVersion3DatabaseKey));
  DataImporterMain();
  EXPECT_EQ((std::set<std::string>{"CloudAccompanimentItemSet", "CloudListTable",
                                   "GeneralListTable", "GeneralList_1", "GeneralList_2"}),
            Tables(L"playlistV3.db"));
  EXPECT_EQ((std::set<std::string>{"CloudAccompanimentItemSet", "NewCloudList_-1", "NewCloudList_0",
                                   "ShareFileItems"}),
            Tables(L"VTMusicV3.db"));
  EXPECT_NE(std::string::npos, Result().find("\"cloud_lists\":\"moved\",\"cloud_lists_moved\":0"));
}

// Whenever the move cannot happen whole, neither database changes: a
// playlist database that already has the lists, a music database without
// them, a music database that does not open with the key, a missing
// playlist database, and a table copy failing after others succeeded.
TEST_F(Version2TaskTest, UpgradeThatCannotMoveChangesNothing) {
  struct Case {
    const char* outcome;
    std::function<void()> prepare;
    bool playlist_unchanged;
    bool playlist_has_lists;  // its own "CloudListTable"
  };
  CurrentMusicDatabase without_lists;
  without_lists.cloud_list_table = false;
  CurrentPlaylistDatabase with_lists;
  with_lists.cloud_list_table = true;
  const std::wstring key = kVersion3DatabaseKey;
  const Case cases[] = {
      {"\"cloud_lists\":\"already_moved\"",
       [&] { ASSERT_TRUE(with_lists.Write(Data(L"playlistV3.db"), key)); }, true, true},
      {"\"cloud_lists\":\"nothing_to_move\"",
       [&] { ASSERT_TRUE(without_lists.Write(Data(L"VTMusicV3.db"), key)); }, true, false},
      {"\"music\":\"key_refused\"",
       [&] { ASSERT_TRUE(SampleMusicDatabase().Write(Data(L"VTMusicV3.db"), L"")); }, true, false},
      {"\"cloud_lists\":\"no_playlist_database\"",
       [&] { ASSERT_TRUE(base::DeleteFile(Data(L"playlistV3.db"))); }, true, false},
      {"\"cloud_lists\":\"copy_failed\"",
       [&] {
         ASSERT_TRUE(Keyed(L"playlistV3.db")->Execute("CREATE VIEW NewCloudList_7 AS SELECT 1"));
       },
       false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.outcome);
    ASSERT_TRUE(WriteSampleVersion3Databases(m_profile.data_folder(), key));
    c.prepare();
    const std::string music = ReadBytes(Data(L"VTMusicV3.db"));
    const std::string playlist = ReadBytes(Data(L"playlistV3.db"));
    DataImporterMain();
    EXPECT_NE(std::string::npos, Result().find(c.outcome)) << Result();
    EXPECT_EQ(music, ReadBytes(Data(L"VTMusicV3.db")));
    if (c.playlist_unchanged) {
      EXPECT_EQ(playlist, ReadBytes(Data(L"playlistV3.db")));
    }
    std::set<std::string> tables = Tables(L"playlistV3.db");
    EXPECT_EQ(0u, tables.count("NewCloudList_3"));
    EXPECT_EQ(c.playlist_has_lists, tables.count("CloudListTable") == 1);
  }
}

// The attachment is undone whatever the copy answered, and the music
// connection stays open for the caller.
TEST_F(Version2TaskTest, CleanupDetachesAndLeavesMusicOpen) {
  const std::wstring key = kVersion3DatabaseKey;
  for (bool lists : {true, false}) {
    CurrentMusicDatabase music = SampleMusicDatabase();
    music.cloud_list_table = lists;
    ASSERT_TRUE(music.Write(Data(L"VTMusicV3.db"), key));
    ASSERT_TRUE(CurrentPlaylistDatabase().Write(Data(L"playlistV3.db"), key));
    DatabaseHelper music_db;
    ASSERT_TRUE(music_db.OpenWithKey(Data(L"VTMusicV3.db"), key));
    CloudListCleanup cleanup(m_profile.data_folder());
    cleanup.SetUp(&music_db);
    EXPECT_EQ(lists ? CloudListOutcome::kMoved : CloudListOutcome::kNothingToMove, cleanup.Run());
    for (const std::string& row :
         QueryRows(cleanup.playlist_db()->connection(), "PRAGMA database_list"))
      EXPECT_EQ(std::string::npos, row.find("vantu_music_db")) << row;
    EXPECT_TRUE(music_db.connection()->is_open());
    std::vector<int32_t> ids = lists ? std::vector<int32_t>{3, 7} : std::vector<int32_t>();
    EXPECT_EQ(ids, cleanup.cloud_list_ids());
  }
}

}  // namespace

}  // namespace data_importer
