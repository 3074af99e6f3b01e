#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_SOURCE_READER_UTIL_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_SOURCE_READER_UTIL_H_

#include <string>

namespace data_importer {

struct ShareFileItem;
struct SongItem;

// Small rules that every source reader applies the same way.

// The fixed name of the default list.
extern const wchar_t kDefaultListName[];

// |hash|, or the all-zero hash when the row supplied none.
std::wstring HashOrZero(const std::wstring& hash);

// The file name of a stored path (either separator), without its
// extension: "C:\\Music\\a.b.mp3" gives "a.b"; a leading dot is kept.
std::wstring BaseNameWithoutExtension(const std::wstring& path);

// Fills the music-file half of a list entry from the library file it
// refers to: its old id, path, hash, size, duration, bit rate and time, and
// the file's title and artist as the entry's.
void FillSongFromFile(const ShareFileItem& file, SongItem* song);

// Fills the MV half of a list entry from the library file that is its MV:
// path, hash, source, size, CDN flag, duration, bit rate and time.
void FillSongVideoFromFile(const ShareFileItem& video, SongItem* song);

// How the import report names a music item it has nothing else of, such as
// the one a dropped list entry refers to: "music item <id>".
std::wstring MusicItemName(int id);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_SOURCE_READER_UTIL_H_
