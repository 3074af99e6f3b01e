#include <gtest/gtest.h>

#include <string>

#include "testing/test_support.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"

namespace {

class PlaylistWritersTest : public testing::Test {
 protected:
  void SetUp() override { OpenTargets(&model_, profile_.root()); }
  sql::Connection* music() { return model_.m_music_db->connection(); }
  sql::Connection* playlists() { return model_.m_playlist_db->connection(); }

  TestProfile profile_;
  ImportModel model_;
};

// General-list entries need an imported audio file and take their
// playability from the library; radio entries are written as they are; a
// list without entries still gets its table; negative ids keep their sign.
TEST_F(PlaylistWritersTest, SongListsTranslateAndDrop) {
  AddFile(&model_, 100, L"D:\\kept.mp3", HashOf(1));
  AddFile(&model_, 101, L"", HashOf(2));  // known to the library, no local file
  AddFile(&model_, 102, L"D:\\clip.mkv", HashOf(3), 2);
  AddList(&model_, -3, L"Default", 2);
  AddList(&model_, 7, L"Empty", 1);
  AddSong(&model_, -3, 1, 100)->MusicFilePlayable = 0;
  AddSong(&model_, -3, 2, 999);  // file never imported
  AddSong(&model_, -3, 3, 101)->MusicFilePlayable = 1;
  AddSong(&model_, -3, 4, 102);  // an MV id is no audio file
  auto radio_song = std::make_shared<SongItem>();
  radio_song->SongID = 9;
  radio_song->music_file_id = 999;
  radio_song->MusicFilePlayable = 5;
  model_.m_radio_songs[12].push_back(radio_song);
  model_.m_radio_songs[13];

  model_.WriteShareFileItems();
  model_.WriteGeneralListTable();
  model_.FillFileFlagMap();
  for (const auto& [id, songs] : model_.m_list_songs)
    model_.WriteSongList(id, songs, ImportModel::kGeneralList);
  for (const auto& [id, songs] : model_.m_radio_songs)
    model_.WriteSongList(id, songs, ImportModel::kRadioChannel);

  EXPECT_EQ((std::vector<std::string>{"1|song 1|1", "3|song 3|0"}),
            QueryRows(playlists(),
                      "SELECT SongID, TitleName, MusicFilePlayable FROM \"GeneralList_-3\" ORDER BY 1"));
  EXPECT_TRUE(playlists()->DoesTableExist("GeneralList_7"));
  EXPECT_TRUE(QueryRows(playlists(), "SELECT * FROM GeneralList_7").empty());
  EXPECT_EQ((std::vector<std::string>{"9|5"}),
            QueryRows(music(), "SELECT SongID, MusicFilePlayable FROM RadioChannel_12"));
  EXPECT_TRUE(music()->DoesTableExist("RadioChannel_13"));
  EXPECT_FALSE(music()->DoesTableExist("GeneralList_-3"));
  EXPECT_TRUE(playlists()->DoesTableExist("GeneralList_-3"));

  ProgressRecord record;
  record.Initialise(TestDataFolder());
  model_.m_progress = &record;
  EXPECT_TRUE(model_.ReportListCounts().ok());
  EXPECT_EQ(L"7:0,-3:2", profile_.DBCheck(L"ImportPlayLists"));
  EXPECT_TRUE(model_.m_file_flag_map.empty());
}

TEST_F(PlaylistWritersTest, ListCountReportFailsWithoutListTable) {
  ProgressRecord record;
  record.Initialise(TestDataFolder());
  model_.m_progress = &record;
  EXPECT_FALSE(model_.ReportListCounts().ok());
  EXPECT_EQ(L"0", profile_.DBCheck(L"ImportPlayLists"));
  model_.m_playlist_db.reset();
  EXPECT_FALSE(model_.ReportListCounts().ok());
}

// A download is kept when its file is found by old id or else by hash; only
// finished ones (100 percent, type 0 or 20) also go to the history.
TEST_F(PlaylistWritersTest, DownloadsResolveAndFinish) {
  const std::wstring zero = L"00000000000000000000000000000000";
  AddFile(&model_, 1, L"clip.mkv", HashOf(9), 2);  // takes new id 1
  AddFile(&model_, 1, L"a.mp3", HashOf(1));
  AddFile(&model_, 2, L"b.mp3", zero);
  AddDownload(&model_, 10, 1, L"", 99, 0);          // by id, unfinished
  AddDownload(&model_, 11, 500, HashOf(1), 100, 20);  // by hash, finished
  AddDownload(&model_, 12, 1, HashOf(1), 100, 1);   // finished but other type
  AddDownload(&model_, 13, 500, zero, 100, 0);      // only the all-zero hash
  AddDownload(&model_, 14, 2, zero, 100, 0);        // by id
  model_.m_downloads[1]->RelevanceMusicId = 2;       // names an imported file
  model_.m_downloads[4]->RelevanceMusicId = 77;      // names none
  model_.WriteShareFileItems();
  model_.WriteDownloadItems();
  model_.WriteDownloadHistoryItems();

  // FileID and RelevanceMusicId hold new ids: file 1 is now 2, file 2 is 3.
  EXPECT_EQ((std::vector<std::string>{"10|99|2|0", "11|100|2|3", "12|100|2|0", "14|100|3|0"}),
            QueryRows(music(), "SELECT DownloadID, Percent, FileID, RelevanceMusicId "
                               "FROM DownloadItem ORDER BY ID"));
  EXPECT_EQ((std::vector<std::string>{"11|20|3", "14|0|0"}),
            QueryRows(music(), "SELECT DownloadID, DownType, RelevanceMusicId "
                               "FROM DownloadHistoryItem ORDER BY ID"));
}

// The recently-played table exists even when empty; the other history
// tables only with rows; FMStat is never carried.
TEST_F(PlaylistWritersTest, EmptyListsAndRadioChannels) {
  model_.WriteRecentlyPlayedItems();
  model_.WriteRadioChannelTable();
  model_.WriteDislikeRadioItems();
  model_.WritePlayedRadioItems();
  model_.WriteDownloadItems();
  model_.WriteDownloadHistoryItems();
  model_.WriteUserLoginHistory();
  model_.WriteKeywordSearchHistory();
  EXPECT_EQ((std::vector<std::string>{"RecentlyPlayedItem"}),
            QueryRows(music(), "SELECT name FROM sqlite_master WHERE type='table'"));

  auto channel = std::make_shared<RadioChannelInfo>();
  channel->ID = 4;
  channel->FMName = L"Jazz 'n' Blues";
  channel->FMStat = L"stats";
  model_.m_radio_channels.push_back(channel);
  auto recent = std::make_shared<SongItem>();
  recent->SongID = 77;
  recent->TitleName = L"again";
  model_.m_recent_songs.push_back(recent);
  model_.m_recent_songs.push_back(recent);
  for (const wchar_t* keyword : {L"Jazz", L"jazz", L"Jazz"}) {
    auto search = std::make_shared<SearchKeywordRecord>();
    search->Keyword = keyword;
    model_.m_search_keywords.push_back(search);
  }
  auto login = std::make_shared<LoginRecord>();
  login->Username = L"user";
  login->EncodedPassword = L"\u00ff\u0001'x";
  login->AutoLogin = true;
  model_.m_login_history.push_back(login);
  EXPECT_TRUE(music()->Execute("DROP TABLE RecentlyPlayedItem"));
  model_.WriteRecentlyPlayedItems();
  model_.WriteRadioChannelTable();
  model_.WriteKeywordSearchHistory();
  model_.WriteUserLoginHistory();

  EXPECT_EQ((std::vector<std::string>{"4|Jazz 'n' Blues|"}),
            QueryRows(music(), "SELECT ID, FMName, FMStat FROM RadioChannelTable"));
  // SQLite numbers the recently played rows itself.
  EXPECT_EQ((std::vector<std::string>{"1|again", "2|again"}),
            QueryRows(music(), "SELECT SongID, TitleName FROM RecentlyPlayedItem"));
  EXPECT_EQ((std::vector<std::string>{"Jazz", "jazz"}),
            QueryRows(music(), "SELECT Keyword FROM KeywordSearchHistory ORDER BY rowid"));
  // An untouched Pattern writes the column's default, 1.
  EXPECT_EQ((std::vector<std::string>{"user|\u00ff\u0001'x|1|1"}),
            QueryRows(music(), "SELECT Username, EncodedPassword, AutoLogin, Pattern "
                               "FROM UserLoginHistory"));
}

}  // namespace
