#include <gtest/gtest.h>

#include <string>

#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"

namespace data_importer {

namespace {

class PlaylistWritersTest : public testing::Test {
 protected:
  void SetUp() override { OpenTargets(&m_model, m_profile.root()); }
  sql::Connection* music() { return m_model.m_music_db->connection(); }
  sql::Connection* playlists() { return m_model.m_playlist_db->connection(); }

  TestProfile m_profile;
  ImportModel m_model;
};

// General-list entries need an imported audio file; radio entries are
// written untranslated; a list without entries still gets its table;
// negative ids keep their sign. Playability is one rule in every song
// table, whatever the record held: a local path that is not the unlinked
// mark (for general lists, the library file's).
TEST_F(PlaylistWritersTest, SongListsTranslateAndDrop) {
  AddFile(&m_model, 100, L"D:\\kept.mp3", HashOf(1));
  AddFile(&m_model, 101, L"", HashOf(2));  // known to the library, no local file
  AddFile(&m_model, 102, L"D:\\clip.mkv", HashOf(3), 2);
  AddFile(&m_model, 103, kUnlinkedFileMark, HashOf(4));
  AddList(&m_model, -3, L"Default", 2);
  AddList(&m_model, 7, L"Empty", 1);
  AddSong(&m_model, -3, 1, 100)->MusicFilePlayable = 0;
  AddSong(&m_model, -3, 2, 999);  // file never imported
  AddSong(&m_model, -3, 3, 101)->MusicFilePlayable = 1;
  AddSong(&m_model, -3, 4, 102);  // an MV id is no audio file
  AddSong(&m_model, -3, 5, 103)->MusicFilePath = L"D:\\stale.mp3";
  auto song_at = [](int id, const std::wstring& path, int playable) {
    auto song = std::make_shared<SongItem>();
    song->SongID = id;
    song->music_file_id = 999;
    song->MusicFilePath = path;
    song->MusicFilePlayable = playable;
    return song;
  };
  m_model.m_radio_songs[12] = {song_at(9, L"", 5), song_at(10, L"D:\\r.mp3", 0),
                               song_at(11, kUnlinkedFileMark, 1)};
  m_model.m_radio_songs[13];
  m_model.m_recent_songs = {song_at(1, L"D:\\r.mp3", 0), song_at(2, kUnlinkedFileMark, 1),
                            song_at(3, L"", 1)};

  m_model.WriteShareFileItems();
  m_model.WriteGeneralListTable();
  m_model.FillFileFlagMap();
  for (const auto& [id, songs] : m_model.m_list_songs)
    m_model.WriteSongList(id, songs, ImportModel::kGeneralList);
  for (const auto& [id, songs] : m_model.m_radio_songs)
    m_model.WriteSongList(id, songs, ImportModel::kRadioChannel);

  m_model.WriteRecentlyPlayedItems();
  EXPECT_EQ(
      (std::vector<std::string>{"1|song 1|1", "3|song 3|0", "5|song 5|0"}),
      QueryRows(playlists(),
                "SELECT SongID, TitleName, MusicFilePlayable FROM \"GeneralList_-3\" ORDER BY 1"));
  EXPECT_TRUE(playlists()->DoesTableExist("GeneralList_7"));
  EXPECT_TRUE(QueryRows(playlists(), "SELECT * FROM GeneralList_7").empty());
  EXPECT_EQ((std::vector<std::string>{"9|0", "10|1", "11|0"}),
            QueryRows(music(), "SELECT SongID, MusicFilePlayable FROM RadioChannel_12 ORDER BY 1"));
  EXPECT_EQ(
      (std::vector<std::string>{"1|1", "2|0", "3|0"}),
      QueryRows(music(), "SELECT rowid, MusicFilePlayable FROM RecentlyPlayedItem ORDER BY 1"));
  EXPECT_TRUE(music()->DoesTableExist("RadioChannel_13"));
  EXPECT_FALSE(music()->DoesTableExist("GeneralList_-3"));
  EXPECT_TRUE(playlists()->DoesTableExist("GeneralList_-3"));

  ProgressRecord record;
  record.Initialise(TestDataFolder());
  m_model.m_progress = &record;
  EXPECT_TRUE(m_model.ReportListCounts().ok());
  EXPECT_EQ(L"7:0,-3:3", m_profile.DBCheck(L"ImportPlayLists"));
  EXPECT_TRUE(m_model.m_file_flag_map.empty());
}

TEST_F(PlaylistWritersTest, ListCountReportFailsWithoutListTable) {
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  m_model.m_progress = &record;
  EXPECT_FALSE(m_model.ReportListCounts().ok());
  EXPECT_EQ(L"0", m_profile.DBCheck(L"ImportPlayLists"));
  m_model.m_playlist_db.reset();
  EXPECT_FALSE(m_model.ReportListCounts().ok());
}

// A download is kept when its file is found by old id or else by hash; only
// finished ones (100 percent, type 0 or 20) also go to the history.
TEST_F(PlaylistWritersTest, DownloadsResolveAndFinish) {
  const std::wstring zero = L"00000000000000000000000000000000";
  AddFile(&m_model, 1, L"clip.mkv", HashOf(9), 2);  // takes new id 1
  AddFile(&m_model, 1, L"a.mp3", HashOf(1));
  AddFile(&m_model, 2, L"b.mp3", zero);
  AddDownload(&m_model, 10, 1, L"", 99, 0);            // by id, unfinished
  AddDownload(&m_model, 11, 500, HashOf(1), 100, 20);  // by hash, finished
  AddDownload(&m_model, 12, 1, HashOf(1), 100, 1);     // finished but other type
  AddDownload(&m_model, 13, 500, zero, 100, 0);        // only the all-zero hash
  AddDownload(&m_model, 14, 2, zero, 100, 0);          // by id
  m_model.m_downloads[1]->RelevanceMusicId = 2;        // names an imported file
  m_model.m_downloads[4]->RelevanceMusicId = 77;       // names none
  m_model.WriteShareFileItems();
  m_model.WriteDownloadItems();
  m_model.WriteDownloadHistoryItems();

  // FileID and RelevanceMusicId hold new ids: file 1 is now 2, file 2 is 3.
  EXPECT_EQ((std::vector<std::string>{"10|99|2|0", "11|100|2|3", "12|100|2|0", "14|100|3|0"}),
            QueryRows(music(),
                      "SELECT DownloadID, Percent, FileID, RelevanceMusicId "
                      "FROM DownloadItem ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"11|20|3", "14|0|0"}),
            QueryRows(music(),
                      "SELECT DownloadID, DownType, RelevanceMusicId "
                      "FROM DownloadHistoryItem ORDER BY ID"));
}

// The recently-played table exists even when empty; the other history
// tables only with rows; FMStat is never carried.
TEST_F(PlaylistWritersTest, EmptyListsAndRadioChannels) {
  m_model.WriteRecentlyPlayedItems();
  m_model.WriteRadioChannelTable();
  m_model.WriteDislikeRadioItems();
  m_model.WritePlayedRadioItems();
  m_model.WriteDownloadItems();
  m_model.WriteDownloadHistoryItems();
  m_model.WriteUserLoginHistory();
  m_model.WriteKeywordSearchHistory();
  EXPECT_EQ((std::vector<std::string>{"RecentlyPlayedItem"}),
            QueryRows(music(), "SELECT name FROM sqlite_master WHERE type='table'"));

  auto channel = std::make_shared<RadioChannelInfo>();
  channel->ID = 4;
  channel->FMName = L"Jazz 'n' Blues";
  channel->FMStat = L"stats";
  m_model.m_radio_channels.push_back(channel);
  auto recent = std::make_shared<SongItem>();
  recent->SongID = 77;
  recent->TitleName = L"again";
  m_model.m_recent_songs.push_back(recent);
  m_model.m_recent_songs.push_back(recent);
  for (const wchar_t* keyword : {L"Jazz", L"jazz", L"Jazz"}) {
    auto search = std::make_shared<SearchKeywordRecord>();
    search->Keyword = keyword;
    m_model.m_search_keywords.push_back(search);
  }
  auto login = std::make_shared<LoginRecord>();
  login->Username = L"user";
  login->EncodedPassword = L"\u00ff\u0001'x";
  login->AutoLogin = true;
  m_model.m_login_history.push_back(login);
  EXPECT_TRUE(music()->Execute("DROP TABLE RecentlyPlayedItem"));
  m_model.WriteRecentlyPlayedItems();
  m_model.WriteRadioChannelTable();
  m_model.WriteKeywordSearchHistory();
  m_model.WriteUserLoginHistory();

  EXPECT_EQ((std::vector<std::string>{"4|Jazz 'n' Blues|"}),
            QueryRows(music(), "SELECT ID, FMName, FMStat FROM RadioChannelTable"));
  // SQLite numbers the recently played rows itself.
  EXPECT_EQ((std::vector<std::string>{"1|again", "2|again"}),
            QueryRows(music(), "SELECT SongID, TitleName FROM RecentlyPlayedItem"));
  EXPECT_EQ((std::vector<std::string>{"Jazz", "jazz"}),
            QueryRows(music(), "SELECT Keyword FROM KeywordSearchHistory ORDER BY rowid"));
  // An untouched Pattern writes the column's default, 1.
  EXPECT_EQ((std::vector<std::string>{"user|\u00ff\u0001'x|1|1"}),
            QueryRows(music(),
                      "SELECT Username, EncodedPassword, AutoLogin, Pattern "
                      "FROM UserLoginHistory"));
}

}  // namespace

}  // namespace data_importer
