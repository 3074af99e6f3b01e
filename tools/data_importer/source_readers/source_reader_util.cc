#include "tools/data_importer/source_readers/source_reader_util.h"

#include "tools/data_importer/target_store/import_records.h"

namespace data_importer {

const wchar_t kDefaultListName[] = L"默认列表";

std::wstring HashOrZero(const std::wstring& hash) {
  return hash.empty() ? std::wstring(kNoFileHash) : hash;
}

std::wstring BaseNameWithoutExtension(const std::wstring& path) {
  size_t slash = path.find_last_of(L"\\/");
  std::wstring name = slash == std::wstring::npos ? path : path.substr(slash + 1);
  size_t dot = name.rfind(L'.');
  return dot == std::wstring::npos || dot == 0 ? name : name.substr(0, dot);
}

void FillSongFromFile(const ShareFileItem& file, SongItem* song) {
  song->music_file_id = file.old_id;
  song->TitleName = file.FileNamePure;
  song->Singer = file.Artist;
  song->MusicFilePath = file.FileName;
  song->MusicFileHash = file.MD5;
  song->MusicFileSize = file.FileSize;
  song->MusicFileDuration = file.Duration;
  song->MusicFileBitrate = file.BitRate;
  song->MusicFileLastModifyTime = file.LastWriteTime;
}

void FillSongVideoFromFile(const ShareFileItem& video, SongItem* song) {
  song->MVFilePath = video.FileName;
  song->MVFileHash = video.MD5;
  song->MVFileSource = video.FileSource;
  song->MVFileSize = video.FileSize;
  song->MVFileCDNFlag = video.CDNFlag;
  song->MVFileDuration = video.Duration;
  song->MVFileBitrate = video.BitRate;
  song->MVFileLastModifyTime = video.LastWriteTime;
}

std::wstring MusicItemName(int id) {
  return L"music item " + std::to_wstring(id);
}

}  // namespace data_importer
