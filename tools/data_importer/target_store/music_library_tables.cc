// Tables of the music-library database (VTMusicV3.db) written here:
//   ShareFileItems, ShareFolders, LocalFiles, AppTools

#include <map>
#include <string>
#include <vector>

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

namespace {

const TableDef kShareFileItems = {
    "ShareFileItems",
    "CREATE TABLE ShareFileItems(id integer PRIMARY KEY NOT NULL,FileName nvarchar(260) NOT "
    "NULL DEFAULT '',FileNamePure nvarchar(260) NOT NULL DEFAULT '',FileSize integer NOT NULL "
    "DEFAULT 0,MD5 char(32),MpegMD5 char(32),CDNFlag integer NOT NULL DEFAULT 0,ShareFileType "
    "integer NOT NULL DEFAULT 0,Duration integer NOT NULL DEFAULT 0,CalcuDurationTimes integer "
    "NOT NULL DEFAULT 0,BitRate integer NOT NULL DEFAULT 0,IsShare Boolean NOT NULL DEFAULT "
    "0,LastWriteTime BigInt NOT NULL DEFAULT 0,FileHashUpdateTime BigInt NOT NULL DEFAULT "
    "0,OwnerCount integer NOT NULL DEFAULT 0,MpegOffset integer NOT NULL DEFAULT 0,MpegSize "
    "integer NOT NULL DEFAULT 0,LyricFile nvarchar(260) NOT NULL DEFAULT '',ReplayGain real "
    "NOT NULL DEFAULT 0.0,FileSource nvarchar(260) NOT NULL DEFAULT '',Artist nvarchar(260) NOT "
    "NULL DEFAULT '',Album nvarchar(260) NOT NULL DEFAULT '',CreateTime BigInt NOT NULL DEFAULT "
    "0,IsListen Boolean NOT NULL DEFAULT 0,IsUpdatedMD5 Boolean NOT NULL DEFAULT 0)"};

const TableDef kShareFolders = {
    "ShareFolders",
    "CREATE TABLE ShareFolders(id integer PRIMARY KEY NOT NULL,Path nvarchar(260) NOT NULL "
    "DEFAULT '',LastModifyTime BigInt NOT NULL DEFAULT 0,AddType integer NOT NULL DEFAULT 0)"};

const TableDef kLocalFiles = {
    "LocalFiles",
    "CREATE TABLE LocalFiles(FilePath nvarchar(260) PRIMARY KEY NOT NULL,FolderPath "
    "nvarchar(260) NOT NULL DEFAULT '',FileSize integer NOT NULL DEFAULT 0,AddTime BigInt NOT "
    "NULL DEFAULT 0,Artist nvarchar(256) NOT NULL DEFAULT '',Album nvarchar(256) NOT NULL "
    "DEFAULT '',SimpLetterByArtist nvarchar(256) NOT NULL DEFAULT '',FullLetterByArtist "
    "nvarchar(256) NOT NULL DEFAULT '',SimpLetterByTitle nvarchar(256) NOT NULL DEFAULT "
    "'',FullLetterByTitle nvarchar(256) NOT NULL DEFAULT '',SimpTitle nvarchar(256) NOT NULL "
    "DEFAULT '',LastWriteTime BigInt NOT NULL DEFAULT 0)"};

const TableDef kAppTools = {
    "AppTools",
    "CREATE TABLE AppTools(ID INTEGER PRIMARY KEY NOT NULL,Version BIGINT NOT NULL DEFAULT "
    "0,SoftIndex INTEGER NOT NULL DEFAULT 0,Path VARCHAR(260) NULL)"};

void FillShareFileRow(const ShareFileItem& f, RowBuilder* row) {
  AppendColumns(f, ShareFileColumns(), row);
}

// Builds every record's insert text first; the rows then receive
// consecutive ids (see InsertNumberedRows), answered in record order. Each
// row is counted in |report| as written or refused, and |inserted_out|,
// when given, receives which were inserted.
template <typename Record, typename FillRow>
std::vector<int> WriteNumberedTable(DatabaseHelper* db,
                                    const TableDef& definition,
                                    const RecordList<Record>& records,
                                    FillRow fill_row,
                                    ImportReport* report,
                                    std::vector<bool>* inserted_out = nullptr) {
  std::vector<std::string> statements;
  statements.reserve(records.size());
  RowBuilder row;
  for (const auto& record : records) {
    fill_row(*record, &row);
    statements.push_back(row.Statement(definition.name));
    row.Clear();
  }
  std::vector<bool> inserted;
  std::vector<int> ids = InsertNumberedRows(db, definition.name, "ID", statements, &inserted);
  TargetTableTally tally(report, definition.name);
  for (size_t i = 0; i < records.size(); ++i) {
    if (inserted[i])
      tally.Written(records[i]->origin);
    else
      tally.Dropped(records[i]->origin, drop_reason::kRowRefused, DropExampleOf(*records[i]));
  }
  if (inserted_out)
    *inserted_out = std::move(inserted);
  return ids;
}

}  // namespace

void ImportModel::WriteShareFileItems() {
  // Created even for an empty library: the player expects the table.
  CreateTable(m_music_db.get(), kShareFileItems.create_sql);
  if (m_share_files.empty())
    return;
  std::vector<bool> inserted;
  std::vector<int> ids = WriteNumberedTable(m_music_db.get(), kShareFileItems, m_share_files,
                                            FillShareFileRow, report(), &inserted);
  m_hash_id_map.reserve(m_hash_id_map.size() + m_share_files.size());
  m_music_id_map.reserve(m_music_id_map.size() + m_share_files.size());
  int64_t videos = 0;
  for (size_t i = 0; i < m_share_files.size(); ++i) {
    const ShareFileItem& file = *m_share_files[i];
    if (file.ShareFileType == 2 && inserted[i])
      ++videos;
    if (IsFileHash(file.MD5))
      m_hash_id_map[file.MD5.text] = ids[i];
    if (file.ShareFileType == 2)
      m_mv_id_map[file.old_id] = ids[i];
    else
      m_music_id_map[file.old_id] = ids[i];
  }
  report()->AddLibraryVideos(videos);
}

void ImportModel::WriteShareFolders() {
  if (m_share_folders.empty())
    return;
  CreateTable(m_music_db.get(), kShareFolders.create_sql);
  std::vector<int> ids = WriteNumberedTable(
      m_music_db.get(), kShareFolders, m_share_folders,
      [](const ShareFolderItem& f, RowBuilder* row) {
        AppendColumns(f, ShareFolderColumns(), row);
      },
      report());
  for (size_t i = 0; i < m_share_folders.size(); ++i)
    m_folder_id_map[m_share_folders[i]->old_id] = ids[i];
}

void ImportModel::WriteLocalFiles() {
  if (m_local_files.empty())
    return;
  // Folder path by old folder id; the first folder with an id wins.
  std::map<int, const std::wstring*> folder_paths;
  for (const auto& folder : m_share_folders)
    folder_paths.emplace(folder->old_id, &folder->Path);
  // The old file id needs no translation here: the table is keyed by the
  // file path and has no column for a file id.
  WriteTable(
      m_music_db.get(), kLocalFiles, m_local_files, EmptyList::kSkipTable,
      [&](const LocalFileInfo& f, RowBuilder* row) {
        // The table is keyed by the path; a file whose link the user
        // took away has none (two of them would collide on the mark).
        if (f.FilePath == kUnlinkedFileMark)
          return RowFate::Drop(drop_reason::kUnlinkedFile);
        auto folder = folder_paths.find(f.old_folder_id);
        AppendColumnsReplacing<LocalFileInfo, std::wstring>(
            f, LocalFileColumns(),
            {{&LocalFileInfo::FolderPath,
              folder == folder_paths.end() ? f.FolderPath : *folder->second}},
            row);
        return RowFate::Write();
      },
      report());
}

void ImportModel::WriteAppTools() {
  WriteTable(
      m_music_db.get(), kAppTools, m_app_tools, EmptyList::kSkipTable,
      [](const AppToolRecord& t, RowBuilder* row) {
        AppendColumns(t, AppToolColumns(), row);
        return true;
      },
      report());
}

const ColumnList<ShareFileItem>& ShareFileColumns() {
  using F = ShareFileItem;
  static const ColumnList<F> columns = {
      {"FileName", &F::FileName},
      {"FileNamePure", &F::FileNamePure},
      {"Artist", &F::Artist},
      {"Album", &F::Album},
      {"LyricFile", &F::LyricFile},
      {"MD5", &F::MD5},
      {"MpegMD5", &F::MpegMD5},
      {"FileSource", &F::FileSource},
      {"ShareFileType", &F::ShareFileType},
      {"FileSize", &F::FileSize},
      {"CDNFlag", &F::CDNFlag},
      {"MPEGOffset", &F::MpegOffset},
      {"MPEGSize", &F::MpegSize},
      {"Duration", &F::Duration},
      {"CalcuDurationTimes", &F::CalcuDurationTimes},
      {"BitRate", &F::BitRate},
      {"ReplayGain", &F::ReplayGain},
      {"IsShare", &F::IsShare},
      {"OwnerCount", &F::OwnerCount},
      {"CreateTime", &F::CreateTime},
      {"LastWriteTime", &F::LastWriteTime},
      {"FileHashUpdateTime", &F::FileHashUpdateTime},
      {"IsListen", &F::IsListen},
      {"IsUpdatedMD5", &F::IsUpdatedMD5},
  };
  return columns;
}

const ColumnList<ShareFolderItem>& ShareFolderColumns() {
  using F = ShareFolderItem;
  static const ColumnList<F> columns = {
      {"Path", &F::Path},
      {"LastModifyTime", &F::LastModifyTime},
      {"AddType", &F::AddType},
  };
  return columns;
}

const ColumnList<LocalFileInfo>& LocalFileColumns() {
  using F = LocalFileInfo;
  static const ColumnList<F> columns = {
      {"FilePath", &F::FilePath},
      {"FolderPath", &F::FolderPath},
      {"FileSize", &F::FileSize},
      {"AddTime", &F::AddTime},
      {"Artist", &F::Artist},
      {"Album", &F::Album},
      {"SimpLetterByArtist", &F::SimpLetterByArtist},
      {"FullLetterByArtist", &F::FullLetterByArtist},
      {"SimpLetterByTitle", &F::SimpLetterByTitle},
      {"FullLetterByTitle", &F::FullLetterByTitle},
      {"SimpTitle", &F::SimpTitle},
      {"LastWriteTime", &F::LastWriteTime},
  };
  return columns;
}

const ColumnList<AppToolRecord>& AppToolColumns() {
  using F = AppToolRecord;
  static const ColumnList<F> columns = {
      {"ID", &F::ID},
      {"Version", &F::Version},
      {"SoftIndex", &F::SoftIndex},
      {"Path", &F::Path},
  };
  return columns;
}

}  // namespace data_importer
