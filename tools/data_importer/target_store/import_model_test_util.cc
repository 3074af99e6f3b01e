#include "tools/data_importer/target_store/import_model_test_util.h"

#include <cwchar>

#include <gtest/gtest.h>

std::shared_ptr<ShareFileItem> AddFile(ImportModel* model, int old_id, const std::wstring& name,
                                       const std::wstring& md5, int type) {
  auto file = std::make_shared<ShareFileItem>();
  file->old_id = old_id;
  file->FileName = name;
  file->MD5 = md5;
  file->ShareFileType = type;
  model->m_share_files.push_back(file);
  return file;
}

std::shared_ptr<SongItem> AddSong(ImportModel* model, int list_id, int song_id,
                                  int music_file_id) {
  auto song = std::make_shared<SongItem>();
  song->SongID = song_id;
  song->music_file_id = music_file_id;
  song->TitleName = L"song " + std::to_wstring(song_id);
  model->m_list_songs[list_id].push_back(song);
  return song;
}

std::shared_ptr<PlayListInfo> AddList(ImportModel* model, int id, const std::wstring& name,
                                      int sort_id) {
  auto list = std::make_shared<PlayListInfo>();
  list->PlaylistID = id;
  list->PlaylistName = name;
  list->SortID = sort_id;
  model->m_play_lists.push_back(list);
  model->m_list_songs[id];
  return list;
}

std::shared_ptr<DownloadRecord> AddDownload(ImportModel* model, int download_id, int file_id,
                                            const std::wstring& md5, int percent, int down_type) {
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
