#include "tools/data_importer/target_store/song_table.h"

#include <boost/format.hpp>

#include "tools/data_importer/target_store/table_writer.h"

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

void AppendSongColumns(const SongItem& s, int music_file_playable, RowBuilder* row) {
  row->Text("TitleName", s.TitleName);
  row->Text("ImageURL", s.ImageURL);
  row->Text("LyricFileName", s.LyricFileName);
  row->Text("Singer", s.Singer);
  row->Int("SortID", s.SortID);
  row->Int("PlayCount", s.PlayCount);
  row->Int("CreationTime", s.CreationTime);
  row->Int("LastPlayTime", s.LastPlayTime);
  row->Int("LastMatchMVTime", s.LastMatchMVTime);
  row->Int("ServerFileID", s.ServerFileID);
  row->Int("SongItemType", s.SongItemType);
  row->Int("CueBeginTime", s.CueBeginTime);
  row->Int("CueEndTime", s.CueEndTime);
  row->Int("NumOfTracks", s.NumOfTracks);
  row->Int("MVType", s.MVType);
  row->Int("TrackOrder", s.TrackOrder);
  row->Int("FileSourceStatisticFlag", s.FileSourceStatisticFlag);
  row->Text("MusicFilePath", s.MusicFilePath);
  row->Int("MusicFileSize", s.MusicFileSize);
  row->Text("MusicFileHash", s.MusicFileHash);
  row->Int("MusicFileCDNFlag", s.MusicFileCDNFlag);
  row->Int("MusicFileDuration", s.MusicFileDuration);
  row->Int("MusicFileBitrate", s.MusicFileBitrate);
  row->Text("MusicFileSource", s.MusicFileSource);
  row->Text("MusicFileArtist", s.MusicFileArtist);
  row->Text("MusicFileAlbum", s.MusicFileAlbum);
  row->Int("MusicFilePlayable", music_file_playable);
  row->Int("MusicFileLastModifyTime", s.MusicFileLastModifyTime);
  row->Text("MVFilePath", s.MVFilePath);
  row->Int("MVFileSize", s.MVFileSize);
  row->Text("MVFileHash", s.MVFileHash);
  row->Int("MVFileCDNFlag", s.MVFileCDNFlag);
  row->Int("MVFileDuration", s.MVFileDuration);
  row->Int("MVFileBitrate", s.MVFileBitrate);
  row->Text("MVFileSource", s.MVFileSource);
  row->Int("MVFileLastModifyTime", s.MVFileLastModifyTime);
  row->Int("MandatoryBitrate", s.MandatoryBitrate);
  row->Int("DownloadState", s.DownloadState);
  row->Text("SongFileSource", s.SongFileSource);
  row->Int("NetworkFailure", s.NetworkFailure);
  row->Text("Genre", s.Genre);
  row->Int("LastGenreDownloadTime", s.LastGenreDownloadTime);
}
