// Tables of the music-library database (VTMusicV3.db) written here:
//   RadioChannelTable, PlayedNJRadioItem, DislikeRadioItem
// (the channels' own song tables, RadioChannel_<id>, are in
// playlist_tables.cc).

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace {

const TableDef kRadioChannelTable = {
    "RadioChannelTable",
    "CREATE TABLE RadioChannelTable(ID integer PRIMARY KEY NOT NULL,FMID nvarchar(260) NOT NULL "
    "DEFAULT '',FMName nvarchar(260) NOT NULL DEFAULT '',FMType integer NOT NULL DEFAULT "
    "0,ClassID integer NOT NULL DEFAULT 0,ClassName nvarchar(260) NOT NULL DEFAULT '',Offset "
    "nvarchar(260) NOT NULL DEFAULT '',Heat integer NOT NULL DEFAULT 0,ImageURL24 nvarchar(260) "
    "NOT NULL DEFAULT '',ImageURL32 nvarchar(260) NOT NULL DEFAULT '',Description "
    "nvarchar(260) NOT NULL DEFAULT '',SortID integer NOT NULL DEFAULT 0,IsCloud integer NOT "
    "NULL DEFAULT 0,LastPlayPos integer NOT NULL DEFAULT 0,FMUserID integer NOT NULL DEFAULT "
    "0,FMListID integer NOT NULL DEFAULT 0,FMListVersion integer NOT NULL DEFAULT 0,FMStatus "
    "integer NOT NULL DEFAULT 0,FMStat nvarchar(255) NOT NULL DEFAULT '')"};

// The spelling "ingeger" belongs to the format the player reads.
const TableDef kDislikeRadioItem = {
    "DislikeRadioItem",
    "CREATE TABLE DislikeRadioItem(ID integer PRIMARY KEY NOT NULL,ChannelInformationID "
    "integer NOT NULL DEFAULT 0,SongID integer NOT NULL DEFAULT 0,Hash char(32),DislikeType "
    "ingeger NOT NULL DEFAULT 0,FileNameWithExtension nvarchar(260) NOT NULL DEFAULT '',FileSize "
    "integer NOT NULL DEFAULT 0,Duration integer NOT NULL DEFAULT 0,Bitrate integer NOT NULL "
    "DEFAULT 0,CDNFlag integer NOT NULL DEFAULT 0)"};

const TableDef kPlayedNJRadioItem = {
    "PlayedNJRadioItem",
    "CREATE TABLE PlayedNJRadioItem(ID integer PRIMARY KEY NOT NULL,ChannelInformationID "
    "integer NOT NULL DEFAULT 0,SongID integer NOT NULL DEFAULT 0,Hash char(32))"};

}  // namespace

void ImportModel::WriteRadioChannelTable() {
  // FMStat is not carried over: the player recomputes it.
  WriteTable(m_music_db.get(), kRadioChannelTable, m_radio_channels, EmptyList::kSkipTable,
             [](const RadioChannelInfo& c, RowBuilder* row) {
               row->Int("ID", c.ID);
               row->Text("FMID", c.FMID);
               row->Text("FMName", c.FMName);
               row->Text("ClassName", c.ClassName);
               row->Text("Offset", c.Offset);
               row->Text("ImageURL24", c.ImageURL24);
               row->Text("ImageURL32", c.ImageURL32);
               row->Text("Description", c.Description);
               row->Int("FMType", c.FMType);
               row->Int("ClassID", c.ClassID);
               row->Int("Heat", c.Heat);
               row->Int("SortID", c.SortID);
               row->Int("IsCloud", c.IsCloud);
               row->Int("LastPlayPos", c.LastPlayPos);
               row->Int("FMUserID", c.FMUserID);
               row->Int("FMListID", c.FMListID);
               row->Int("FMListVersion", c.FMListVersion);
               row->Int("FMStatus", c.FMStatus);
               return true;
             }, report());
}

void ImportModel::WriteDislikeRadioItems() {
  WriteTable(m_music_db.get(), kDislikeRadioItem, m_dislike_radio, EmptyList::kSkipTable,
             [](const DislikeRadioRecord& d, RowBuilder* row) {
               row->Text("Hash", d.Hash);
               row->Text("FileNameWithExtension", d.FileNameWithExtension);
               row->Int("ChannelInformationID", d.ChannelInformationID);
               row->Int("SongID", d.SongID);
               row->Int("DislikeType", d.DislikeType);
               row->Int("FileSize", d.FileSize);
               row->Int("Duration", d.Duration);
               row->Int("Bitrate", d.Bitrate);
               row->Int("CDNFlag", d.CDNFlag);
               return true;
             }, report());
}

void ImportModel::WritePlayedRadioItems() {
  WriteTable(m_music_db.get(), kPlayedNJRadioItem, m_played_radio, EmptyList::kSkipTable,
             [](const PlayedRadioRecord& p, RowBuilder* row) {
               row->Text("Hash", p.Hash);
               row->Int("ChannelInformationID", p.ChannelInformationID);
               row->Int("SongID", p.SongID);
               return true;
             }, report());
}
