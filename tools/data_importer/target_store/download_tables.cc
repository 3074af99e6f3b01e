// Tables of the music-library database (VTMusicV3.db) written here:
//   DownloadItem, DownloadHistoryItem
// A download is kept only when its file was imported: found by its old file
// id, or else by its hash. Its FileID column holds that file's new id; a
// RelevanceMusicId naming an imported file is translated the same way, one
// naming no imported file is written as 0 (no related file), since its old
// number would name an unrelated row of the new library.

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

namespace {

const TableDef kDownloadItem = {
    "DownloadItem",
    "CREATE TABLE DownloadItem(ID integer PRIMARY KEY NOT NULL,FileID integer NOT "
    "NULL,DownloadID integer NOT NULL,FileName nvarchar(260) NOT NULL DEFAULT '',DestFileName "
    "nvarchar(260) NOT NULL DEFAULT '',DestFileNameSaveAs NTEXT  NOT NULL DEFAULT "
    "'',TempFileName nvarchar(260) NOT NULL DEFAULT '',SuggestFileSize integer NOT NULL "
    "DEFAULT 0,FileSize integer NOT NULL DEFAULT 0,MD5 char(32),DownType integer NOT NULL "
    "DEFAULT 0,Method integer NOT NULL DEFAULT 0,OrderPriority integer NOT NULL DEFAULT "
    "2,SpeedPriority integer NOT NULL DEFAULT 1,Percent integer NOT NULL DEFAULT 0,StartTime "
    "bigint NOT NULL DEFAULT 0,CompleteTime bigint NOT NULL DEFAULT 0,UsedTime bigint NOT NULL "
    "DEFAULT 0,AccessTime bigint NOT NULL DEFAULT 0,DownFailed boolean NOT NULL DEFAULT "
    "0,Suspended boolean NOT NULL DEFAULT 0,SortID integer NOT NULL DEFAULT 0,PackageID "
    "integer NOT NULL DEFAULT 0,DownMethod integer NOT NULL DEFAULT 0,UserID integer NOT NULL "
    "DEFAULT 0,VipType integer NOT NULL DEFAULT 0,RelevanceMusicId integer NOT NULL DEFAULT "
    "0,MVType integer NOT NULL DEFAULT 0,TrackOrder integer NOT NULL DEFAULT 0,NumOfTracks "
    "integer NOT NULL DEFAULT 0,RelevanceFileName nvarchar(260) NOT NULL DEFAULT "
    "'',RelevanceFileHash char(32),RelevanceFileSize integer NOT NULL DEFAULT "
    "0,RelevanceBitRate integer NOT NULL DEFAULT 0,RelevanceDuration integer NOT NULL DEFAULT "
    "0,OriginalName nvarchar(260) NOT NULL DEFAULT '',Artist nvarchar(260) NOT NULL DEFAULT "
    "'',Album nvarchar(260) NOT NULL DEFAULT '',BitRate integer NOT NULL DEFAULT 0,Duration "
    "integer NOT NULL DEFAULT 0,CDNFlag integer NOT NULL DEFAULT 0,FileSource nvarchar(260) NOT "
    "NULL DEFAULT '')"};

const TableDef kDownloadHistoryItem = {
    "DownloadHistoryItem",
    "CREATE TABLE DownloadHistoryItem(ID integer PRIMARY KEY NOT NULL,DownloadID integer NOT "
    "NULL DEFAULT 0,FileName nvarchar(260) NOT NULL DEFAULT '',DestFileName nvarchar(260) NOT "
    "NULL DEFAULT '',FileSize integer NOT NULL DEFAULT 0,MD5 char(32),DownType integer NOT NULL "
    "DEFAULT 0,StartTime bigint NOT NULL DEFAULT 0,CompleteTime bigint NOT NULL DEFAULT "
    "0,UsedTime bigint NOT NULL DEFAULT 0,AccessTime bigint NOT NULL DEFAULT 0,SortID integer "
    "NOT NULL DEFAULT 0,RelevanceMusicId integer NOT NULL DEFAULT 0,MVType integer NOT NULL "
    "DEFAULT 0,TrackOrder integer NOT NULL DEFAULT 0,NumOfTracks integer NOT NULL DEFAULT "
    "0,RelevanceFileName nvarchar(260) NOT NULL DEFAULT '',RelevanceFileHash "
    "char(32),RelevanceFileSize integer NOT NULL DEFAULT 0,RelevanceBitRate integer NOT NULL "
    "DEFAULT 0,RelevanceDuration integer NOT NULL DEFAULT 0,OriginalName nvarchar(260) NOT NULL "
    "DEFAULT '',Artist nvarchar(260) NOT NULL DEFAULT '',Album nvarchar(260) NOT NULL DEFAULT "
    "'',BitRate integer NOT NULL DEFAULT 0,Duration integer NOT NULL DEFAULT 0,CDNFlag integer "
    "NOT NULL DEFAULT 0,UserID integer NOT NULL DEFAULT 0,VipType integer NOT NULL DEFAULT "
    "0,FileSource nvarchar(260) NOT NULL DEFAULT '')"};

bool IsFinished(const DownloadRecord& d) {
  return (d.DownType == 0 || d.DownType == 20) && d.Percent == 100;
}

// The new file id of a download's file: by its old id, else by its hash; 0
// when neither finds an imported file.
int ResolveDownloadFile(const ImportModel& model, const DownloadRecord& d) {
  auto by_id = model.m_music_id_map.find(d.file_id);
  if (by_id != model.m_music_id_map.end() && by_id->second != 0)
    return by_id->second;
  if (!IsFileHash(d.MD5))
    return 0;
  auto by_hash = model.m_hash_id_map.find(d.MD5.text);
  return by_hash == model.m_hash_id_map.end() ? 0 : by_hash->second;
}

// The new id of the related file named by |old_id|; 0 for none.
int ResolveRelevanceFile(const ImportModel& model, int old_id) {
  if (old_id == 0)
    return 0;
  auto found = model.m_music_id_map.find(old_id);
  return found == model.m_music_id_map.end() ? 0 : found->second;
}

// The columns both download tables share, in their common order from
// "RelevanceMusicId" to "CDNFlag".
ColumnList<DownloadRecord> TrackColumns() {
  using R = DownloadRecord;
  return {
      {"RelevanceMusicId", &R::RelevanceMusicId},
      {"MVType", &R::MVType},
      {"TrackOrder", &R::TrackOrder},
      {"NumOfTracks", &R::NumOfTracks},
      {"RelevanceFileName", &R::RelevanceFileName},
      {"RelevanceFileHash", &R::RelevanceFileHash},
      {"RelevanceFileSize", &R::RelevanceFileSize},
      {"RelevanceBitRate", &R::RelevanceBitRate},
      {"RelevanceDuration", &R::RelevanceDuration},
      {"OriginalName", &R::OriginalName},
      {"Artist", &R::Artist},
      {"Album", &R::Album},
      {"BitRate", &R::BitRate},
      {"Duration", &R::Duration},
      {"CDNFlag", &R::CDNFlag},
  };
}

}  // namespace

void ImportModel::WriteDownloadItems() {
  WriteTable(
      m_music_db.get(), kDownloadItem, m_downloads, EmptyList::kSkipTable,
      [this](const DownloadRecord& d, RowBuilder* row) {
        if (d.tables == DownloadRecord::Tables::kHistoryOnly)
          return RowFate::Skip();
        int file_id = ResolveDownloadFile(*this, d);
        if (file_id == 0)
          return RowFate::Drop(drop_reason::kDownloadUnresolved);
        AppendColumnsReplacing<DownloadRecord, int>(
            d, DownloadItemColumns(),
            {{&DownloadRecord::FileID, file_id},
             {&DownloadRecord::RelevanceMusicId, ResolveRelevanceFile(*this, d.RelevanceMusicId)}},
            row);
        return RowFate::Write();
      },
      report());
}

// A finished download whose file is missing is counted as dropped once, by
// the DownloadItem writer; here it is only left out. A record of this table
// alone is written whether finished or not, and counted here when dropped.
void ImportModel::WriteDownloadHistoryItems() {
  WriteTable(
      m_music_db.get(), kDownloadHistoryItem, m_downloads, EmptyList::kSkipTable,
      [this](const DownloadRecord& d, RowBuilder* row) {
        using Tables = DownloadRecord::Tables;
        if (d.tables == Tables::kItemOnly)
          return RowFate::Skip();
        const bool resolved = ResolveDownloadFile(*this, d) != 0;
        if (d.tables == Tables::kHistoryOnly && !resolved)
          return RowFate::Drop(drop_reason::kDownloadUnresolved);
        if (!resolved || (d.tables == Tables::kByRule && !IsFinished(d)))
          return RowFate::Skip();
        AppendColumnsReplacing<DownloadRecord, int>(
            d, DownloadHistoryColumns(),
            {{&DownloadRecord::RelevanceMusicId, ResolveRelevanceFile(*this, d.RelevanceMusicId)}},
            row);
        return RowFate::Write();
      },
      report());
}

const ColumnList<DownloadRecord>& DownloadItemColumns() {
  using R = DownloadRecord;
  static const ColumnList<R> columns = JoinColumns<R>({
      {
          {"FileName", &R::FileName},
          {"DestFileName", &R::DestFileName},
          {"DestFileNameSaveAs", &R::DestFileNameSaveAs},
          {"TempFileName", &R::TempFileName},
          {"MD5", &R::MD5},
          {"FileID", &R::FileID},
          {"DownloadID", &R::DownloadID},
          {"SuggestFileSize", &R::SuggestFileSize},
          {"FileSize", &R::FileSize},
          {"DownType", &R::DownType},
          {"Method", &R::Method},
          {"OrderPriority", &R::OrderPriority},
          {"SpeedPriority", &R::SpeedPriority},
          {"Percent", &R::Percent},
          {"StartTime", &R::StartTime},
          {"CompleteTime", &R::CompleteTime},
          {"UsedTime", &R::UsedTime},
          {"AccessTime", &R::AccessTime},
          {"DownFailed", &R::DownFailed},
          {"Suspended", &R::Suspended},
          {"SortID", &R::SortID},
          {"PackageID", &R::PackageID},
          {"DownMethod", &R::DownMethod},
          {"UserID", &R::UserID},
          {"VipType", &R::VipType},
      },
      TrackColumns(),
      {{"FileSource", &R::FileSource}},
  });
  return columns;
}

const ColumnList<DownloadRecord>& DownloadHistoryColumns() {
  using R = DownloadRecord;
  static const ColumnList<R> columns = JoinColumns<R>({
      {
          {"DownloadID", &R::DownloadID},
          {"FileName", &R::FileName},
          {"DestFileName", &R::DestFileName},
          {"FileSize", &R::FileSize},
          {"MD5", &R::MD5},
          {"DownType", &R::DownType},
          {"StartTime", &R::StartTime},
          {"CompleteTime", &R::CompleteTime},
          {"UsedTime", &R::UsedTime},
          {"AccessTime", &R::AccessTime},
          {"SortID", &R::SortID},
      },
      TrackColumns(),
      {
          {"UserID", &R::UserID},
          {"VipType", &R::VipType},
          {"FileSource", &R::FileSource},
      },
  });
  return columns;
}

}  // namespace data_importer
