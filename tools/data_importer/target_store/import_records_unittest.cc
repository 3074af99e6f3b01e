#include "tools/data_importer/target_store/import_records.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "sql/connection.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/import_model_test_util.h"

namespace data_importer {

namespace {

// The columns of |table| whose first row differs from the table's declared
// default, as "column=value (default)".
std::vector<std::string> ColumnsOffDefault(sql::Connection* db, const std::string& table) {
  std::vector<std::string> off;
  // Rows of "cid|name|type|notnull|dflt_value|pk"; a column without a
  // default has an empty dflt_value.
  std::vector<std::pair<std::string, std::string>> defaults;
  for (const std::string& info : QueryRows(db, "PRAGMA table_info(\"" + table + "\")")) {
    std::vector<std::string> fields;
    for (size_t start = 0, bar;; start = bar + 1) {
      bar = info.find('|', start);
      fields.push_back(info.substr(start, bar - start));
      if (bar == std::string::npos)
        break;
    }
    if (fields.size() == 6 && !fields[4].empty())
      defaults.emplace_back(fields[1], fields[4]);
  }
  if (defaults.empty())
    off.push_back("no column with a default");
  for (const auto& [column, fallback] : defaults) {
    std::vector<std::string> same =
        QueryRows(db, "SELECT " + column + " IS " + fallback + ", " + column + " FROM \"" + table +
                          "\" ORDER BY rowid LIMIT 1");
    if (same.size() != 1)
      off.push_back(column + ": no row");
    else if (same[0].substr(0, 2) != "1|")
      off.push_back(column + "=" + same[0].substr(2) + " (" + fallback + ")");
  }
  return off;
}

// A record a reader leaves untouched writes every column with a declared
// default as that default: the player cannot tell "not imported" from
// "imported as the default".
TEST(ImportRecordsTest, UntouchedRecordsWriteTheTableDefaults) {
  TestProfile profile;
  ImportModel model;
  OpenTargets(&model, profile.root());
  model.m_share_files.push_back(std::make_shared<ShareFileItem>());
  model.m_share_folders.push_back(std::make_shared<ShareFolderItem>());
  model.m_local_files.push_back(std::make_shared<LocalFileInfo>());
  model.m_app_tools.push_back(std::make_shared<AppToolRecord>());
  model.m_recent_songs.push_back(std::make_shared<SongItem>());
  model.m_list_songs[1].push_back(std::make_shared<SongItem>());
  model.m_radio_songs[1].push_back(std::make_shared<SongItem>());
  model.m_play_lists.push_back(std::make_shared<PlayListInfo>());
  model.m_radio_channels.push_back(std::make_shared<RadioChannelInfo>());
  model.m_dislike_radio.push_back(std::make_shared<DislikeRadioRecord>());
  model.m_played_radio.push_back(std::make_shared<PlayedRadioRecord>());
  model.m_login_history.push_back(std::make_shared<LoginRecord>());
  model.m_search_keywords.push_back(std::make_shared<SearchKeywordRecord>());
  model.m_downloads.push_back(std::make_shared<DownloadRecord>());
  // Only a finished download reaches the history table.
  auto finished = std::make_shared<DownloadRecord>();
  finished->Percent = 100;
  model.m_downloads.push_back(finished);

  model.WriteShareFileItems();  // the untouched file has old id 0: entries resolve
  model.WriteShareFolders();
  model.WriteLocalFiles();
  model.WriteAppTools();
  model.WriteRecentlyPlayedItems();
  model.WriteGeneralListTable();
  model.WriteSongList(1, model.m_list_songs[1], ImportModel::kGeneralList);
  model.WriteSongList(1, model.m_radio_songs[1], ImportModel::kRadioChannel);
  model.WriteRadioChannelTable();
  model.WriteDislikeRadioItems();
  model.WritePlayedRadioItems();
  model.WriteDownloadItems();
  model.WriteDownloadHistoryItems();
  model.WriteUserLoginHistory();
  model.WriteKeywordSearchHistory();

  sql::Connection* music = model.m_music_db->connection();
  sql::Connection* lists = model.m_playlist_db->connection();
  for (const char* table :
       {"ShareFileItems", "ShareFolders", "LocalFiles", "AppTools", "RecentlyPlayedItem",
        "RadioChannel_1", "RadioChannelTable", "DislikeRadioItem", "PlayedNJRadioItem",
        "DownloadItem", "DownloadHistoryItem", "UserLoginHistory", "KeywordSearchHistory"}) {
    ASSERT_TRUE(music->DoesTableExist(table)) << table;
    EXPECT_EQ(std::vector<std::string>{}, ColumnsOffDefault(music, table)) << table;
  }
  for (const char* table : {"GeneralListTable", "GeneralList_1"}) {
    ASSERT_TRUE(lists->DoesTableExist(table)) << table;
    EXPECT_EQ(std::vector<std::string>{}, ColumnsOffDefault(lists, table)) << table;
  }
}

}  // namespace

}  // namespace data_importer
