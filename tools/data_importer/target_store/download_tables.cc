// Tables of the music-library database (VTMusicV3.db) written here:
//   DownloadItem, DownloadHistoryItem
// A download is kept only when its file was imported: found by its old file
// id, or else by its hash. Its FileID column holds that file's new id; a
// RelevanceMusicId naming an imported file is translated the same way, one
// naming no imported file is written as 0 (no related file), since its old
// number would name an unrelated row of the new library.

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_writer.h"

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
  auto by_hash = model.m_hash_id_map.find(d.MD5);
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
void AppendTrackColumns(const ImportModel& model, const DownloadRecord& d, RowBuilder* row) {
  row->Int("RelevanceMusicId", ResolveRelevanceFile(model, d.RelevanceMusicId));
  row->Int("MVType", d.MVType);
  row->Int("TrackOrder", d.TrackOrder);
  row->Int("NumOfTracks", d.NumOfTracks);
  row->Text("RelevanceFileName", d.RelevanceFileName);
  row->Text("RelevanceFileHash", d.RelevanceFileHash);
  row->Int("RelevanceFileSize", d.RelevanceFileSize);
  row->Int("RelevanceBitRate", d.RelevanceBitRate);
  row->Int("RelevanceDuration", d.RelevanceDuration);
  row->Text("OriginalName", d.OriginalName);
  row->Text("Artist", d.Artist);
  row->Text("Album", d.Album);
  row->Int("BitRate", d.BitRate);
  row->Int("Duration", d.Duration);
  row->Int("CDNFlag", d.CDNFlag);
}

}  // namespace

void ImportModel::WriteDownloadItems() {
  WriteTable(m_music_db.get(), kDownloadItem, m_downloads, EmptyList::kSkipTable,
             [this](const DownloadRecord& d, RowBuilder* row) {
               int file_id = ResolveDownloadFile(*this, d);
               if (file_id == 0)
                 return false;
               row->Text("FileName", d.FileName);
               row->Text("DestFileName", d.DestFileName);
               row->Text("DestFileNameSaveAs", d.DestFileNameSaveAs);
               row->Text("TempFileName", d.TempFileName);
               row->Text("MD5", d.MD5);
               row->Int("FileID", file_id);
               row->Int("DownloadID", d.DownloadID);
               row->Int("SuggestFileSize", d.SuggestFileSize);
               row->Int("FileSize", d.FileSize);
               row->Int("DownType", d.DownType);
               row->Int("Method", d.Method);
               row->Int("OrderPriority", d.OrderPriority);
               row->Int("SpeedPriority", d.SpeedPriority);
               row->Int("Percent", d.Percent);
               row->Int("StartTime", d.StartTime);
               row->Int("CompleteTime", d.CompleteTime);
               row->Int("UsedTime", d.UsedTime);
               row->Int("AccessTime", d.AccessTime);
               row->Bool("DownFailed", d.DownFailed);
               row->Bool("Suspended", d.Suspended);
               row->Int("SortID", d.SortID);
               row->Int("PackageID", d.PackageID);
               row->Int("DownMethod", d.DownMethod);
               row->Int("UserID", d.UserID);
               row->Int("VipType", d.VipType);
               AppendTrackColumns(*this, d, row);
               row->Text("FileSource", d.FileSource);
               return true;
             });
}

void ImportModel::WriteDownloadHistoryItems() {
  WriteTable(m_music_db.get(), kDownloadHistoryItem, m_downloads, EmptyList::kSkipTable,
             [this](const DownloadRecord& d, RowBuilder* row) {
               if (ResolveDownloadFile(*this, d) == 0 || !IsFinished(d))
                 return false;
               row->Int("DownloadID", d.DownloadID);
               row->Text("FileName", d.FileName);
               row->Text("DestFileName", d.DestFileName);
               row->Int("FileSize", d.FileSize);
               row->Text("MD5", d.MD5);
               row->Int("DownType", d.DownType);
               row->Int("StartTime", d.StartTime);
               row->Int("CompleteTime", d.CompleteTime);
               row->Int("UsedTime", d.UsedTime);
               row->Int("AccessTime", d.AccessTime);
               row->Int("SortID", d.SortID);
               AppendTrackColumns(*this, d, row);
               row->Int("UserID", d.UserID);
               row->Int("VipType", d.VipType);
               row->Text("FileSource", d.FileSource);
               return true;
             });
}
