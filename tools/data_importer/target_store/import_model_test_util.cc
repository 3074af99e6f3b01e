#include "tools/data_importer/target_store/import_model_test_util.h"

#include <climits>
#include <cwchar>
#include <iterator>
#include <limits>
#include <random>
#include <variant>
#include <vector>

#include "tools/data_importer/target_store/table_columns.h"

#include <gtest/gtest.h>

namespace data_importer {

std::shared_ptr<ShareFileItem> AddFile(ImportModel* model,
                                       int old_id,
                                       const std::wstring& name,
                                       const std::wstring& md5,
                                       int type) {
  auto file = std::make_shared<ShareFileItem>();
  file->old_id = old_id;
  file->FileName = name;
  file->MD5 = md5;
  file->ShareFileType = type;
  model->m_share_files.push_back(file);
  return file;
}

std::shared_ptr<SongItem> AddSong(ImportModel* model, int list_id, int song_id, int music_file_id) {
  auto song = std::make_shared<SongItem>();
  song->SongID = song_id;
  song->music_file_id = music_file_id;
  song->TitleName = L"song " + std::to_wstring(song_id);
  model->m_list_songs[list_id].push_back(song);
  return song;
}

std::shared_ptr<PlayListInfo> AddList(ImportModel* model,
                                      int id,
                                      const std::wstring& name,
                                      int sort_id) {
  auto list = std::make_shared<PlayListInfo>();
  list->PlaylistID = id;
  list->PlaylistName = name;
  list->SortID = sort_id;
  model->m_play_lists.push_back(list);
  model->m_list_songs[id];
  return list;
}

std::shared_ptr<DownloadRecord> AddDownload(ImportModel* model,
                                            int download_id,
                                            int file_id,
                                            const std::wstring& md5,
                                            int percent,
                                            int down_type) {
  auto download = std::make_shared<DownloadRecord>();
  download->DownloadID = download_id;
  download->file_id = file_id;
  download->MD5 = md5;
  download->Percent = percent;
  download->DownType = down_type;
  download->FileName = L"download " + std::to_wstring(download_id);
  model->m_downloads.push_back(download);
  return download;
}

void OpenTargets(ImportModel* model, const base::FilePath& folder) {
  model->m_music_db = std::make_unique<DatabaseHelper>();
  EXPECT_TRUE(model->m_music_db->OpenAndCheck(folder.Append(L"music.db")));
  model->m_playlist_db = std::make_unique<DatabaseHelper>();
  EXPECT_TRUE(model->m_playlist_db->OpenAndCheck(folder.Append(L"playlist.db")));
}

std::wstring HashOf(int n) {
  wchar_t buffer[40];
  std::swprintf(buffer, 40, L"%032X", n);
  return buffer;
}

namespace {

// Values of the generated model.
class ValueSource {
 public:
  explicit ValueSource(uint32_t seed) : m_random(seed) {}

  size_t Below(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_random); }
  bool Chance(int percent) { return static_cast<int>(Below(100)) < percent; }

  std::wstring Text() {
    static const wchar_t* const kPieces[] = {
        L"a'b",       L"''",     L"\"quoted\"", L"|",       L"\\", L"C:\\Music\\",
        L"%s %d",     L"\t\r\n", L"歌曲",       L"Ünïcødé", L"😀🎵", L"ʻokina",
        L"; DROP --", L"(x, y)", L" ",          L"NULL",    L"0",  L"مرحبا",
    };
    if (Chance(5))
      return std::wstring();
    if (Chance(3))
      return std::wstring(300, L'W');
    std::wstring text;
    for (size_t pieces = 1 + Below(3); pieces > 0; --pieces)
      text += kPieces[Below(std::size(kPieces))];
    if (Chance(3))
      text.push_back(L'\0');  // never stored: the statement would end early
    if (Chance(3))
      text.push_back(static_cast<wchar_t>(0xD800));  // stored as U+FFFD
    return text + std::to_wstring(m_counter++);
  }

  int Int() {
    static const int kExtremes[] = {INT32_MIN, INT32_MAX, -1, 0, 1};
    if (Chance(30))
      return kExtremes[Below(std::size(kExtremes))];
    return std::uniform_int_distribution<int>(-100000, 100000)(m_random);
  }

  int64_t Int64() {
    static const int64_t kExtremes[] = {INT64_MIN, INT64_MAX, -1, 0, 4102444800000LL};
    if (Chance(30))
      return kExtremes[Below(std::size(kExtremes))];
    return std::uniform_int_distribution<int64_t>(-(1LL << 40), 1LL << 40)(m_random);
  }

  double Real() {
    static const double kExtremes[] = {-0.0,
                                       4.9406564584124654e-324,
                                       1.7976931348623157e308,
                                       -2.2250738585072014e-308,
                                       0.1,
                                       std::numeric_limits<double>::quiet_NaN()};
    if (Chance(30))
      return kExtremes[Below(std::size(kExtremes))];
    return std::uniform_real_distribution<double>(-20.0, 20.0)(m_random);
  }

  // Fills every field bound to a column with a value.
  template <typename Record>
  void Fill(Record* record, const ColumnList<Record>& columns) {
    for (const auto& column : columns)
      std::visit([&](auto field) { Set(&(record->*field)); }, column.field);
  }

 private:
  void Set(std::wstring* value) { *value = Text(); }
  void Set(SharedText* value) { *value = Text(); }
  void Set(NullableText* value) {
    value->text = Text();
    value->is_null = value->text.empty() && Chance(50);
  }
  void Set(int* value) { *value = Int(); }
  void Set(int64_t* value) { *value = Int64(); }
  void Set(bool* value) { *value = Chance(50); }
  void Set(double* value) { *value = Real(); }

  std::mt19937 m_random;
  int m_counter = 0;
};

template <typename Record>
std::shared_ptr<Record> Generate(ValueSource* values, const ColumnList<Record>& columns) {
  auto record = std::make_shared<Record>();
  values->Fill(record.get(), columns);
  return record;
}

// An entry of |file| (and of |video| when given), its other fields drawn.
std::shared_ptr<SongItem> GenerateSong(ValueSource* values,
                                       const ShareFileItem& file,
                                       const ShareFileItem* video) {
  auto song = Generate(values, SongColumns());
  song->SongID = values->Int();
  song->music_file_id = file.old_id;
  song->MusicFilePath = file.FileName;
  song->MusicFileHash = file.MD5;
  song->mv_file_id = video ? video->old_id : 0;
  song->MVFilePath = video ? video->FileName : SharedText();
  song->MVFileHash = video ? video->MD5 : NullableText();
  return song;
}

}  // namespace

void FillGeneratedModel(ImportModel* model, uint32_t seed) {
  ValueSource values(seed);

  // Files: audio and video, old ids scattered over the whole range.
  std::vector<std::shared_ptr<ShareFileItem>> audio, video;
  for (int i = 0; i < 60; ++i) {
    auto file = Generate(&values, ShareFileColumns());
    file->old_id = i == 0 ? INT32_MIN : i == 1 ? INT32_MAX : i * 7919 - 200000;
    file->ShareFileType = i % 6 == 5 ? 2 : (i % 3 == 1 ? 1 : 0);
    file->FileName = L"D:\\Music\\" + values.Text() + L".mp3";
    file->MD5 = HashOf(i + 1);
    (file->ShareFileType == 2 ? video : audio).push_back(file);
    model->m_share_files.push_back(file);
  }
  // Without a hash, found by their paths only: the all-zero hash, NULL and
  // an empty text, each of which must come back as it was.
  audio[3]->MD5 = kNoFileHash;
  audio[5]->MD5 = NullableText::Null();
  audio[2]->MD5 = std::wstring();
  video[1]->MD5 = NullableText::Null();
  audio[4]->FileName.clear();     // found by its hash only; not playable
  audio[6]->MD5 = audio[7]->MD5;  // one hash, two files
  audio[9]->FileName.clear();     // no path, and the hash of an earlier file with one
  audio[9]->MD5 = audio[8]->MD5;

  // Folders, one path twice; local files in them, one in no folder.
  for (int i = 0; i < 6; ++i) {
    auto folder = Generate(&values, ShareFolderColumns());
    folder->old_id = 1000 - i * 300;
    model->m_share_folders.push_back(folder);
  }
  model->m_share_folders[4]->Path = model->m_share_folders[1]->Path;
  for (int i = 0; i < 12; ++i) {
    auto local = Generate(&values, LocalFileColumns());
    local->old_folder_id = i == 0 ? 12345 : model->m_share_folders[values.Below(6)]->old_id;
    local->old_file_id = audio[values.Below(audio.size())]->old_id;
    model->m_local_files.push_back(local);
  }
  model->m_local_files[11]->FilePath = model->m_local_files[10]->FilePath;

  for (int i = 0; i < 4; ++i)
    model->m_app_tools.push_back(Generate(&values, AppToolColumns()));
  model->m_app_tools[3]->ID = model->m_app_tools[2]->ID;

  // Lists: extreme and negative ids, one without entries, one without a
  // table of entries; and entries of a list the list table does not name.
  const int list_ids[] = {-3, 0, 7, INT32_MAX, INT32_MIN, 42};
  for (int id : list_ids) {
    auto list = Generate(&values, GeneralListColumns());
    list->PlaylistID = id;
    model->m_play_lists.push_back(list);
    if (id == 42)
      continue;
    SongList& songs = model->m_list_songs[id];
    size_t count = id == 0 ? 0 : 8 + values.Below(8);
    for (size_t i = 0; i < count; ++i) {
      const ShareFileItem& file = *audio[values.Below(audio.size())];
      songs.push_back(GenerateSong(
          &values, file, values.Chance(40) ? video[values.Below(video.size())].get() : nullptr));
      songs.back()->SongID = static_cast<int>(i) * 3 - 5;
    }
  }
  for (const auto& file : {audio[3], audio[4], audio[9]})
    model->m_list_songs[7].push_back(GenerateSong(&values, *file, nullptr));
  auto lost = GenerateSong(&values, *audio[0], nullptr);
  lost->music_file_id = 99;  // no file has this id: the entry is not written
  model->m_list_songs[7].push_back(lost);
  model->m_list_songs[-77].push_back(GenerateSong(&values, *audio[1], nullptr));

  for (int i = 0; i < 6; ++i)
    model->m_recent_songs.push_back(
        GenerateSong(&values, *audio[values.Below(audio.size())], nullptr));

  // Radio: channels, their entries (written untranslated), one channel's
  // entries without the channel.
  for (int i = 0; i < 3; ++i) {
    auto channel = Generate(&values, RadioChannelColumns());
    channel->ID = i == 0 ? -9 : i * 100;
    channel->FMStat = values.Text();
    model->m_radio_channels.push_back(channel);
    for (int n = 0; n < 4; ++n) {
      auto song = GenerateSong(&values, *audio[values.Below(audio.size())], nullptr);
      song->SongID = n;
      model->m_radio_songs[channel->ID].push_back(song);
    }
  }
  model->m_radio_songs[555].push_back(GenerateSong(&values, *audio[2], video[0].get()));
  for (int i = 0; i < 4; ++i) {
    model->m_dislike_radio.push_back(Generate(&values, DislikeRadioColumns()));
    model->m_played_radio.push_back(Generate(&values, PlayedRadioColumns()));
  }

  // Downloads: finished (both tables) and not, found by their old file id
  // alone or also by path or by hash, one of a file that was not imported,
  // one finished download twice; related files imported or not.
  for (int i = 0; i < 14; ++i) {
    auto download = Generate(&values, DownloadItemColumns());
    const ShareFileItem& file = *audio[10 + values.Below(audio.size() - 10)];
    download->file_id = file.old_id;
    download->RelevanceMusicId = i % 5 ? 0 : audio[values.Below(audio.size())]->old_id;
    if (i % 4 == 1)
      download->DestFileName = file.FileName;
    else if (i % 4 == 3)
      download->MD5 = file.MD5;  // else found by its old id alone
    if (i % 3 == 0) {
      download->Percent = 100;
      download->DownType = i % 2 ? 0 : 20;
    }
    model->m_downloads.push_back(download);
  }
  model->m_downloads.push_back(std::make_shared<DownloadRecord>(*model->m_downloads[0]));
  auto unknown = Generate(&values, DownloadItemColumns());
  unknown->file_id = 99;
  unknown->MD5 = HashOf(9999);
  model->m_downloads.push_back(unknown);

  for (int i = 0; i < 3; ++i)
    model->m_login_history.push_back(Generate(&values, LoginColumns()));
  for (int i = 0; i < 4; ++i)
    model->m_search_keywords.push_back(Generate(&values, SearchKeywordColumns()));
  model->m_search_keywords[3]->Keyword = model->m_search_keywords[0]->Keyword;
}

}  // namespace data_importer
