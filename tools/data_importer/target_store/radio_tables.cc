// Tables of the music-library database (VTMusicV3.db) written here:
//   RadioChannelTable, PlayedNJRadioItem, DislikeRadioItem
// (the channels' own song tables, RadioChannel_<id>, are in
// playlist_tables.cc).

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

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
  WriteTable(
      m_music_db.get(), kRadioChannelTable, m_radio_channels, EmptyList::kSkipTable,
      [](const RadioChannelInfo& c, RowBuilder* row) {
        AppendColumns(c, RadioChannelColumns(), row);
        return true;
      },
      report());
}

void ImportModel::WriteDislikeRadioItems() {
  WriteTable(
      m_music_db.get(), kDislikeRadioItem, m_dislike_radio, EmptyList::kSkipTable,
      [](const DislikeRadioRecord& d, RowBuilder* row) {
        AppendColumns(d, DislikeRadioColumns(), row);
        return true;
      },
      report());
}

void ImportModel::WritePlayedRadioItems() {
  WriteTable(
      m_music_db.get(), kPlayedNJRadioItem, m_played_radio, EmptyList::kSkipTable,
      [](const PlayedRadioRecord& p, RowBuilder* row) {
        AppendColumns(p, PlayedRadioColumns(), row);
        return true;
      },
      report());
}

const ColumnList<RadioChannelInfo>& RadioChannelColumns() {
  using R = RadioChannelInfo;
  static const ColumnList<R> columns = {
      {"ID", &R::ID},
      {"FMID", &R::FMID},
      {"FMName", &R::FMName},
      {"ClassName", &R::ClassName},
      {"Offset", &R::Offset},
      {"ImageURL24", &R::ImageURL24},
      {"ImageURL32", &R::ImageURL32},
      {"Description", &R::Description},
      {"FMType", &R::FMType},
      {"ClassID", &R::ClassID},
      {"Heat", &R::Heat},
      {"SortID", &R::SortID},
      {"IsCloud", &R::IsCloud},
      {"LastPlayPos", &R::LastPlayPos},
      {"FMUserID", &R::FMUserID},
      {"FMListID", &R::FMListID},
      {"FMListVersion", &R::FMListVersion},
      {"FMStatus", &R::FMStatus},
  };
  return columns;
}

const ColumnList<DislikeRadioRecord>& DislikeRadioColumns() {
  using R = DislikeRadioRecord;
  static const ColumnList<R> columns = {
      {"Hash", &R::Hash},
      {"FileNameWithExtension", &R::FileNameWithExtension},
      {"ChannelInformationID", &R::ChannelInformationID},
      {"SongID", &R::SongID},
      {"DislikeType", &R::DislikeType},
      {"FileSize", &R::FileSize},
      {"Duration", &R::Duration},
      {"Bitrate", &R::Bitrate},
      {"CDNFlag", &R::CDNFlag},
  };
  return columns;
}

const ColumnList<PlayedRadioRecord>& PlayedRadioColumns() {
  using R = PlayedRadioRecord;
  static const ColumnList<R> columns = {
      {"Hash", &R::Hash},
      {"ChannelInformationID", &R::ChannelInformationID},
      {"SongID", &R::SongID},
  };
  return columns;
}

}  // namespace data_importer
