#include "tools/data_importer/build_sequence.h"

#include <memory>

#include "base/file_util.h"
#include "logging/logging.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/import_model.h"
#include "tools/data_importer/progress_record.h"

namespace {

constexpr int kProgressFloor = 50;

// Creates the temporary database |temp_name| for |helper|, unless the final
// version-2 file |blocking_name| exists (an earlier release's database: the
// build must not run over it). A file that does not open, or stays corrupt
// after the repair attempt, is deleted.
bool PrepareFile(const base::FilePath& data_folder, const wchar_t* temp_name,
                 const wchar_t* blocking_name, std::unique_ptr<DatabaseHelper>* helper) {
  base::FilePath temp = data_folder.Append(temp_name);
  if (base::PathExists(temp))
    base::DeleteFile(temp);
  if (base::PathExists(data_folder.Append(blocking_name))) {
    VLOG_AT(logging::LOG_FAILURE) << L"File {" << blocking_name
                                  << L"} exists already; no database is built.";
    return false;
  }
  *helper = std::make_unique<DatabaseHelper>();
  if (!(*helper)->OpenAndCheck(temp)) {
    VLOG_AT(logging::LOG_FAILURE) << L"Failed to open database file {" << temp.value() << L"}.";
    (*helper)->Close();
    base::DeleteFile(temp);
    return false;
  }
  // The temporary files need no durability until they are finished: a
  // failed build deletes them, and the encryption writes the final content
  // into a new file with the engine's default safety.
  sql::Connection* connection = (*helper)->connection();
  connection->Execute("PRAGMA synchronous=OFF");
  connection->Execute("PRAGMA journal_mode=MEMORY");
  return true;
}

bool PrepareFiles(ImportModel* model, const base::FilePath& data_folder) {
  bool music = PrepareFile(data_folder, L"VTMusicV2.db.tmp", L"VTMusicV2.db", &model->m_music_db);
  bool playlist =
      PrepareFile(data_folder, L"playlist.db.tmp", L"playlist.db", &model->m_playlist_db);
  if (music && playlist)
    return true;
  // Neither file is kept when the other could not be made.
  for (auto [helper, name] : {std::pair{&model->m_music_db, L"VTMusicV2.db.tmp"},
                              std::pair{&model->m_playlist_db, L"playlist.db.tmp"}}) {
    if (*helper) {
      (*helper)->Close();
      helper->reset();
    }
    base::DeleteFile(data_folder.Append(name));
  }
  return false;
}

// One list without entries, or none at all, counts as an empty source.
bool IsSourceEmpty(const ImportModel& model) {
  if (model.m_list_songs.empty())
    return true;
  return model.m_list_songs.size() == 1 && model.m_list_songs.begin()->second.empty();
}

void Step(ImportModel* model, int weight) {
  if (model->m_progress)
    model->m_progress->Advance(weight, kProgressFloor);
}

void ReleaseDatabase(std::unique_ptr<DatabaseHelper>* helper) {
  if (*helper) {
    (*helper)->Close();
    helper->reset();
  }
}

}  // namespace

int BuildDatabases(ImportModel* model, const base::FilePath& data_folder) {
  if (!PrepareFiles(model, data_folder)) {
    model->ReportState(ProgressRecord::kStateNotStarted);
    return 1;
  }

  if (model->m_progress)
    model->m_progress->SetSourceEmpty(IsSourceEmpty(*model));

  model->WriteShareFileItems();
  Step(model, 10);

  model->WriteShareFolders();
  Step(model, 2);
  model->WriteGeneralListTable();
  Step(model, 2);
  model->WriteRecentlyPlayedItems();
  Step(model, 2);
  model->FillFileFlagMap();
  for (const auto& [id, songs] : model->m_list_songs)
    model->WriteSongList(id, songs, ImportModel::kGeneralList);
  Step(model, 4);
  model->WriteRadioChannelTable();
  Step(model, 4);
  model->WriteDislikeRadioItems();
  Step(model, 2);
  for (const auto& [id, songs] : model->m_radio_songs)
    model->WriteSongList(id, songs, ImportModel::kRadioChannel);
  Step(model, 2);
  model->WritePlayedRadioItems();
  Step(model, 2);
  model->WriteLocalFiles();
  Step(model, 2);
  model->WriteDownloadItems();
  Step(model, 2);
  model->WriteDownloadHistoryItems();
  Step(model, 4);
  model->WriteUserLoginHistory();
  Step(model, 2);
  model->WriteKeywordSearchHistory();
  Step(model, 2);
  // The settings and the skin carry-over belong to the current generation's
  // settings writer, which writes nothing into these databases; each keeps
  // its progress step.
  Step(model, 1);
  Step(model, 1);
  model->WriteAppTools();
  Step(model, 1);

  if (!model->ReportListCounts())
    model->ReportState(ProgressRecord::kStateBuildFailed);

  model->m_playlist_db->connection()->DbEncrypt(kVersion3DatabaseKey);
  model->m_music_db->connection()->DbEncrypt(kVersion3DatabaseKey);
  ReleaseDatabase(&model->m_playlist_db);
  ReleaseDatabase(&model->m_music_db);

  base::ReplaceFile(data_folder.Append(L"VTMusicV2.db.tmp"), data_folder.Append(L"VTMusicV3.db"));
  base::ReplaceFile(data_folder.Append(L"playlist.db.tmp"), data_folder.Append(L"playlistV3.db"));
  return 0;
}
