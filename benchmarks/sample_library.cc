#include "benchmarks/sample_library.h"

#include <cstdlib>

#include <cmath>
#include <cwchar>
#include <random>
#include <string>

#include "base/file_util.h"
#include "tools/data_importer/source_readers/source_reader_util.h"

namespace data_importer {

namespace {

const wchar_t* const kArtists[] = {L"\u5468\u6770\u502b", L"Beyonc\u00e9",
                                   L"Guns N' Roses",      L"\u0411\u0438-2",
                                   L"The Beatles",        L"\u5b87\u591a\u7530\u30d2\u30ab\u30eb",
                                   L"Sigur R\u00f3s",     L"Mot\u00f6rhead"};
const wchar_t* const kWords[] = {L"love",         L"\u591c\u66f2", L"don't", L"stop",
                                 L"\u7a3b\u9999", L"caf\u00e9",    L"night", L"\u6674\u5929",
                                 L"rock'n'roll",  L"blue"};

std::wstring Hash(std::mt19937& random) {
  wchar_t buffer[40];
  std::swprintf(buffer, 40, L"%08X%08X%08X%08X", random(), random(), random(), random());
  return buffer;
}

}  // namespace

void FillSampleLibrary(ImportModel* model, int files, int lists, int entries, int downloads) {
  std::mt19937 random(20261123);
  for (int i = 1; i <= files; ++i) {
    auto file = std::make_shared<ShareFileItem>();
    file->old_id = i;
    file->ShareFileType = i % 50 == 0 ? 2 : 0;
    std::wstring artist = kArtists[random() % 8];
    std::wstring title;
    while (title.size() < 24)
      title += std::wstring(kWords[random() % 10]) + L" ";
    file->FileNamePure = artist + L" - " + title + std::to_wstring(i);
    file->FileName = L"D:\\Music\\" + artist + L"\\" + file->FileNamePure.str() +
                     (file->ShareFileType == 2 ? L".mkv" : L".mp3");
    file->Artist = artist;
    file->Album = L"Album " + std::to_wstring(i % 700);
    file->MD5 = i % 200 == 0 ? L"00000000000000000000000000000000" : Hash(random);
    file->FileSize = 3000000 + static_cast<int>(random() % 9000000);
    file->Duration = 120000 + static_cast<int>(random() % 240000);
    file->BitRate = 320;
    file->ReplayGain = -(random() % 1000) / 100.0;
    file->CreateTime = 1300000000 + i;
    file->LastWriteTime = 1300000000 + i * 7;
    file->IsShare = i % 3 == 0;
    model->m_share_files.push_back(file);
  }

  // List sizes fall off geometrically from the first to the last list.
  double ratio = lists > 1 ? std::pow(150.0 / 20000.0, 1.0 / (lists - 1)) : 1.0;
  double total_weight = 0;
  for (int l = 0; l < lists; ++l)
    total_weight += std::pow(ratio, l);
  int song_id = 0;
  for (int l = 0; l < lists; ++l) {
    auto list = std::make_shared<PlayListInfo>();
    list->PlaylistID = l == 0 ? -3 : l;
    list->PlaylistName = l == 0 ? L"\u9ed8\u8ba4\u5217\u8868" : L"List " + std::to_wstring(l);
    list->SortID = l;
    model->m_play_lists.push_back(list);
    int size = static_cast<int>(entries * std::pow(ratio, l) / total_weight);
    SongList& songs = model->m_list_songs[list->PlaylistID];
    for (int e = 0; e < size; ++e) {
      const ShareFileItem& file = *model->m_share_files[random() % files];
      auto song = std::make_shared<SongItem>();
      song->SongID = ++song_id;
      FillSongFromFile(file, song.get());
      song->SortID = e;
      song->CreationTime = 1300000000 + e;
      songs.push_back(song);
    }
  }

  for (int d = 1; d <= downloads; ++d) {
    const ShareFileItem& file = *model->m_share_files[random() % files];
    auto download = std::make_shared<DownloadRecord>();
    download->DownloadID = d;
    download->file_id = d % 10 == 0 ? -1 : file.old_id;  // some found by hash
    download->MD5 = file.MD5;
    download->FileName = file.FileNamePure.str() + L".mp3";
    download->DestFileName = file.FileName;
    download->Percent = d % 3 == 0 ? 40 : 100;
    download->DownType = d % 2 == 0 ? 0 : 20;
    download->FileSize = file.FileSize;
    download->Artist = file.Artist;
    model->m_downloads.push_back(download);
  }
}

double PeakMemoryMegabytes() {
  // VmHWM rather than the resource usage's maximum: after an exec the latter
  // still holds the peak of the process image before it.
  std::string status;
  if (!base::ReadFileToString(base::FilePath(L"/proc/self/status"), &status))
    return 0;
  size_t at = status.find("VmHWM:");
  return at == std::string::npos ? 0 : std::strtod(status.c_str() + at + 6, nullptr) / 1024.0;
}

}  // namespace data_importer
