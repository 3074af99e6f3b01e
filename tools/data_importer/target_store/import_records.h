#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_RECORDS_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_RECORDS_H_

#include <cstdint>
#include <string>
#include <utility>

#include "tools/data_importer/target_store/shared_text.h"

namespace data_importer {

// The plain records through which every source reader hands its data to the
// database writers. Text fields are wide strings (SharedText in the library
// files and the list entries, which copy one another's texts); numbers
// default to 0, texts to empty. A field named like a column of the new databases is written to
// that column; the lower-case fields are old ids that the writers translate.
// A field whose column declares another default starts at that default, so a
// reader that has no value for a column produces what the table would.
// Times are carried in the units of the source database. |origin| is the
// source table a reader made the record from, as the import report numbers
// it (0: not recorded); the writers count rows by it and write it nowhere.

// The hash of a file that has no hash.
inline constexpr wchar_t kNoFileHash[] = L"00000000000000000000000000000000";

// What a text field of generation 7 holds where the user took the file's
// link away: the file has no path. The mark is shown to the user in place of
// the path; it names no file.
inline constexpr wchar_t kUnlinkedFileMark[] =
    L"\u7528\u6237\u53d6\u6d88\u5173\u8054";  // 用户取消关联

// The text of a column that may hold NULL; a NULL read is written back as
// NULL.
struct NullableText {
  NullableText() = default;
  NullableText(std::wstring value) : text(std::move(value)) {}  // NOLINT: a text is no NULL
  NullableText(const wchar_t* value) : text(value) {}           // NOLINT: as above
  NullableText(SharedText value) : text(std::move(value)) {}    // NOLINT: as above
  bool operator==(const NullableText&) const = default;

  static NullableText Null() {
    NullableText null;
    null.is_null = true;
    return null;
  }

  SharedText text;
  bool is_null = false;
};

// Whether |hash| names a file's content: not NULL, not empty and not
// kNoFileHash. Only such hashes find files.
inline bool IsFileHash(const NullableText& hash) {
  return !hash.is_null && !hash.text.empty() && hash.text != kNoFileHash;
}

// One media file known to the player.
struct ShareFileItem {
  int origin = 0;
  int old_id = 0;         // file id in the source database
  int ShareFileType = 0;  // 2 = MV (video) file, anything else audio
  // The hashes: 32 hex characters, kNoFileHash or empty; NULL only where
  // a database of our own format held NULL.
  NullableText MD5;
  NullableText MpegMD5;
  SharedText FileName;
  SharedText FileNamePure;
  SharedText Artist;
  SharedText Album;
  SharedText LyricFile;
  SharedText FileSource;
  int FileSize = 0;
  int CDNFlag = 0;
  int MpegOffset = 0;
  int MpegSize = 0;
  int Duration = 0;
  int CalcuDurationTimes = 0;
  int BitRate = 0;
  int OwnerCount = 0;
  double ReplayGain = 0.0;
  bool IsShare = false;
  bool IsListen = false;
  bool IsUpdatedMD5 = false;
  int64_t CreateTime = 0;
  int64_t LastWriteTime = 0;
  int64_t FileHashUpdateTime = 0;
};

// One folder the library watches.
struct ShareFolderItem {
  int origin = 0;
  int old_id = 0;
  std::wstring Path;
  int64_t LastModifyTime = 0;
  int AddType = 0;
};

// One user list; PlaylistID is also the key of its songs in the model.
struct PlayListInfo {
  int origin = 0;
  int PlaylistID = 0;
  std::wstring PlaylistName;
  std::wstring DownloadPath;
  int PlaylistType = 0;
  int SortID = 0;
};

// One entry of a list, of the recently-played list or of a radio channel.
struct SongItem {
  int origin = 0;
  int SongID = 0;
  int music_file_id = 0;  // old id of the audio file
  int mv_file_id = 0;     // old id of the MV file; 0 or less for none
  int SortID = 0;
  int PlayCount = 0;
  int ServerFileID = 0;
  int SongItemType = 0;
  int NumOfTracks = 0;
  int MVType = 0;
  int TrackOrder = 0;
  int FileSourceStatisticFlag = 0;
  int MandatoryBitrate = 0;
  int DownloadState = 0;
  int NetworkFailure = 0;
  SharedText TitleName;
  SharedText ImageURL;
  SharedText LyricFileName;
  SharedText Singer;
  SharedText SongFileSource;
  SharedText Genre;
  int64_t CreationTime = 0;
  int64_t LastPlayTime = 0;
  int64_t LastMatchMVTime = 0;
  int64_t CueBeginTime = 0;
  int64_t CueEndTime = 0;
  int64_t LastGenreDownloadTime = 0;
  // The music-file half.
  SharedText MusicFilePath;
  NullableText MusicFileHash;
  SharedText MusicFileSource;
  SharedText MusicFileArtist;
  SharedText MusicFileAlbum;
  int MusicFileSize = 0;
  int MusicFileCDNFlag = 0;
  int MusicFileDuration = 0;
  int MusicFileBitrate = 0;
  int MusicFilePlayable = 0;
  int64_t MusicFileLastModifyTime = 0;
  // The MV half.
  SharedText MVFilePath;
  NullableText MVFileHash;
  SharedText MVFileSource;
  int MVFileSize = 0;
  int MVFileCDNFlag = 0;
  int MVFileDuration = 0;
  int MVFileBitrate = 0;
  int64_t MVFileLastModifyTime = 0;
};

// One radio channel.
struct RadioChannelInfo {
  int origin = 0;
  int ID = 0;
  int FMType = 0;
  int ClassID = 0;
  int Heat = 0;
  int SortID = 0;
  int IsCloud = 0;
  int LastPlayPos = 0;
  int FMUserID = 0;
  int FMListID = 0;
  int FMListVersion = 0;
  int FMStatus = 0;
  std::wstring FMID;
  std::wstring FMName;
  std::wstring ClassName;
  std::wstring Offset;
  std::wstring ImageURL24;
  std::wstring ImageURL32;
  std::wstring Description;
  std::wstring FMStat;  // kept, never written: the new table takes its default
};

struct DislikeRadioRecord {
  int origin = 0;
  int ChannelInformationID = 0;
  int SongID = 0;
  int DislikeType = 0;
  int FileSize = 0;
  int Duration = 0;
  int Bitrate = 0;
  int CDNFlag = 0;
  NullableText Hash;
  std::wstring FileNameWithExtension;
};

struct PlayedRadioRecord {
  int origin = 0;
  int ChannelInformationID = 0;
  int SongID = 0;
  NullableText Hash;
};

struct LocalFileInfo {
  int origin = 0;
  std::wstring FilePath;
  std::wstring FolderPath;  // replaced on writing by the path of old_folder_id, when found
  std::wstring Artist;
  std::wstring Album;
  std::wstring SimpLetterByArtist;
  std::wstring FullLetterByArtist;
  std::wstring SimpLetterByTitle;
  std::wstring FullLetterByTitle;
  std::wstring SimpTitle;
  int FileSize = 0;
  int64_t AddTime = 0;
  int64_t LastWriteTime = 0;
  int old_file_id = 0;
  int old_folder_id = 0;
};

// One download, finished or not. Percent 100 with DownType 0 or 20 is a
// finished download and also goes to the history.
struct DownloadRecord {
  // The download tables a record goes to: by the rule above, or exactly
  // one of them (a re-import gives each table back its own rows).
  enum class Tables { kByRule, kItemOnly, kHistoryOnly };

  int origin = 0;
  Tables tables = Tables::kByRule;
  int file_id = 0;  // old id of the downloaded file
  NullableText MD5;
  int FileID = 0;
  int DownloadID = 0;
  int SuggestFileSize = 0;
  int FileSize = 0;
  int DownType = 0;
  int Method = 0;
  int OrderPriority = 2;  // the table's defaults
  int SpeedPriority = 1;
  int Percent = 0;
  int SortID = 0;
  int PackageID = 0;
  int DownMethod = 0;
  int UserID = 0;
  int VipType = 0;
  int RelevanceMusicId = 0;
  int MVType = 0;
  int TrackOrder = 0;
  int NumOfTracks = 0;
  int RelevanceFileSize = 0;
  int RelevanceBitRate = 0;
  int RelevanceDuration = 0;
  int BitRate = 0;
  int Duration = 0;
  int CDNFlag = 0;
  int64_t StartTime = 0;
  int64_t CompleteTime = 0;
  int64_t UsedTime = 0;
  int64_t AccessTime = 0;
  bool DownFailed = false;
  bool Suspended = false;
  std::wstring FileName;
  std::wstring DestFileName;
  std::wstring DestFileNameSaveAs;
  std::wstring TempFileName;
  std::wstring RelevanceFileName;
  NullableText RelevanceFileHash;
  std::wstring OriginalName;
  std::wstring Artist;
  std::wstring Album;
  std::wstring FileSource;
};

// A saved login. EncodedPassword is carried exactly as the source stored it.
struct LoginRecord {
  int origin = 0;
  int UserID = 0;
  int Pattern = 1;  // the table's default
  int FunctionBitmap = 0;
  int Mark = 0;
  int ListManageVersion = 0;
  int ListManageCount = 0;
  int MobileStatus = 0;
  int ExtraUserID = 0;
  std::wstring Username;
  std::wstring EncodedPassword;
  std::wstring HardwareInfo;
  std::wstring ExtraOpenID;
  std::wstring ExtraPassword;
  std::wstring ExtraPartner;
  std::wstring ExtraPicture;
  int64_t RegisterStamp = 0;
  bool AutoLogin = false;
  bool RememberPassword = false;
  bool LastAccess = false;
};

struct SearchKeywordRecord {
  int origin = 0;
  std::wstring Keyword;  // unique in the new table
  int64_t TimeTick = 0;
  int Type = 0;
};

struct AppToolRecord {
  int origin = 0;
  int ID = 0;
  int SoftIndex = 0;
  int64_t Version = 0;
  NullableText Path;  // "AppTools.Path" may be NULL
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_IMPORT_RECORDS_H_
