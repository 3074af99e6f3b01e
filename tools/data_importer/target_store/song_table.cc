#include "tools/data_importer/target_store/song_table.h"

#include <boost/format.hpp>

#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

namespace {

// The spelling "interger" belongs to the format the player reads.
constexpr char kSongTableSchema[] =
    "CREATE TABLE %s(SongID integer PRIMARY KEY NOT NULL,SortID integer NOT NULL DEFAULT "
    "0,TitleName nvarchar(260) NOT NULL DEFAULT '',PlayCount integer NOT NULL DEFAULT "
    "0,CreationTime BigInt NOT NULL DEFAULT 0,LastPlayTime BigInt NOT NULL DEFAULT "
    "0,LastMatchMVTime BigInt NOT NULL DEFAULT 0,CueBeginTime BigInt NOT NULL DEFAULT "
    "0,CueEndTime BigInt NOT NULL DEFAULT 0,ServerFileID integer NOT NULL DEFAULT 0,ImageURL "
    "nvarchar(260) NOT NULL DEFAULT'',SongItemType integer NOT NULL DEFAULT 0,NumOfTracks "
    "interger NOT NULL DEFAULT 0,MVType integer NOT NULL DEFAULT 0,TrackOrder integer NOT NULL "
    "DEFAULT 0,LyricFileName nvarchar(512) NOT NULL DEFAULT'',Singer nvarchar(260) NOT NULL "
    "DEFAULT'',FileSourceStatisticFlag integer NOT NULL DEFAULT 0,MusicFilePath nvarchar(260) "
    "NOT NULL DEFAULT'',MusicFileSize integer NOT NULL DEFAULT 0,MusicFileHash "
    "char(32),MusicFileCDNFlag integer NOT NULL DEFAULT 0,MusicFileDuration integer NOT NULL "
    "DEFAULT 0,MusicFileBitrate integer NOT NULL DEFAULT 0,MusicFileSource nvarchar(260) NOT "
    "NULL DEFAULT'',MusicFileArtist nvarchar(260) NOT NULL DEFAULT'',MusicFileAlbum "
    "nvarchar(260) NOT NULL DEFAULT'',MusicFilePlayable integer NOT NULL DEFAULT "
    "0,MusicFileLastModifyTime BigInt NOT NULL DEFAULT 0,MVFilePath nvarchar(260) NOT NULL "
    "DEFAULT'',MVFileSize integer NOT NULL DEFAULT 0,MVFileHash char(32),MVFileCDNFlag "
    "integer NOT NULL DEFAULT 0,MVFileDuration integer NOT NULL DEFAULT 0,MVFileBitrate "
    "integer NOT NULL DEFAULT 0,MVFileSource nvarchar(260) NOT NULL "
    "DEFAULT'',MVFileLastModifyTime BigInt NOT NULL DEFAULT 0,MandatoryBitrate integer NOT "
    "NULL DEFAULT 0,DownloadState integer NOT NULL DEFAULT 0,SongFileSource nvarchar(260) NOT "
    "NULL DEFAULT'',NetworkFailure integer NOT NULL DEFAULT 0,Genre nvarchar(32) NOT NULL "
    "DEFAULT'',LastGenreDownloadTime BigInt NOT NULL DEFAULT 0)";

}  // namespace

std::string SongTableSchema(const std::string& table) {
  return (boost::format(kSongTableSchema) % table).str();
}

int MusicFilePlayableFromPath(const std::wstring& music_file_path) {
  return !music_file_path.empty() && music_file_path != kUnlinkedFileMark ? 1 : 0;
}

void AppendSongColumns(const SongItem& s, int music_file_playable, RowBuilder* row) {
  AppendColumnsReplacing<SongItem, int>(s, SongColumns(),
                                        {{&SongItem::MusicFilePlayable, music_file_playable}}, row);
}

const ColumnList<SongItem>& SongColumns() {
  using S = SongItem;
  static const ColumnList<S> columns = {
      {"TitleName", &S::TitleName},
      {"ImageURL", &S::ImageURL},
      {"LyricFileName", &S::LyricFileName},
      {"Singer", &S::Singer},
      {"SortID", &S::SortID},
      {"PlayCount", &S::PlayCount},
      {"CreationTime", &S::CreationTime},
      {"LastPlayTime", &S::LastPlayTime},
      {"LastMatchMVTime", &S::LastMatchMVTime},
      {"ServerFileID", &S::ServerFileID},
      {"SongItemType", &S::SongItemType},
      {"CueBeginTime", &S::CueBeginTime},
      {"CueEndTime", &S::CueEndTime},
      {"NumOfTracks", &S::NumOfTracks},
      {"MVType", &S::MVType},
      {"TrackOrder", &S::TrackOrder},
      {"FileSourceStatisticFlag", &S::FileSourceStatisticFlag},
      {"MusicFilePath", &S::MusicFilePath},
      {"MusicFileSize", &S::MusicFileSize},
      {"MusicFileHash", &S::MusicFileHash},
      {"MusicFileCDNFlag", &S::MusicFileCDNFlag},
      {"MusicFileDuration", &S::MusicFileDuration},
      {"MusicFileBitrate", &S::MusicFileBitrate},
      {"MusicFileSource", &S::MusicFileSource},
      {"MusicFileArtist", &S::MusicFileArtist},
      {"MusicFileAlbum", &S::MusicFileAlbum},
      {"MusicFilePlayable", &S::MusicFilePlayable},
      {"MusicFileLastModifyTime", &S::MusicFileLastModifyTime},
      {"MVFilePath", &S::MVFilePath},
      {"MVFileSize", &S::MVFileSize},
      {"MVFileHash", &S::MVFileHash},
      {"MVFileCDNFlag", &S::MVFileCDNFlag},
      {"MVFileDuration", &S::MVFileDuration},
      {"MVFileBitrate", &S::MVFileBitrate},
      {"MVFileSource", &S::MVFileSource},
      {"MVFileLastModifyTime", &S::MVFileLastModifyTime},
      {"MandatoryBitrate", &S::MandatoryBitrate},
      {"DownloadState", &S::DownloadState},
      {"SongFileSource", &S::SongFileSource},
      {"NetworkFailure", &S::NetworkFailure},
      {"Genre", &S::Genre},
      {"LastGenreDownloadTime", &S::LastGenreDownloadTime},
  };
  return columns;
}

}  // namespace data_importer
