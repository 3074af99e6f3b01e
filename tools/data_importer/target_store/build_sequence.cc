#include "tools/data_importer/target_store/build_sequence.h"

#include <memory>

#include "base/file_util.h"
#include "logging/logging.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/target_store/import_model.h"
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
    // A stale file that cannot be deleted fails the open below.
    (void)base::DeleteFile(temp);
  if (base::PathExists(data_folder.Append(blocking_name))) {
    VLOG_AT(logging::LOG_FAILURE) << L"File {" << blocking_name
                                  << L"} exists already; no database is built.";
    return false;
  }
  *helper = std::make_unique<DatabaseHelper>();
  if (!(*helper)->OpenAndCheck(temp)) {
    VLOG_AT(logging::LOG_FAILURE) << L"Failed to open database file {" << temp.value() << L"}.";
    (*helper)->Close();
    // Clean-up after the failure answered below.
    (void)base::DeleteFile(temp);
    return false;
  }
  // The temporary files need no durability until they are finished: a
  // failed build deletes them, and the encryption writes the final content
  // into a new file with the engine's default safety.
  sql::Connection* connection = (*helper)->connection();
  // Speed only: without them the build is slower, not wrong.
  (void)connection->Execute("PRAGMA synchronous=OFF");
  (void)connection->Execute("PRAGMA journal_mode=MEMORY");
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
    // Clean-up after the failure answered below.
    (void)base::DeleteFile(data_folder.Append(name));
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

struct WriterStep {
  const char* name;
  void (*write)(ImportModel* model);
  int weight;  // progress added after the step
};

// The writers after ShareFileItems, in their fixed order.
constexpr WriterStep kWriterSteps[] = {
    {"ShareFolders", [](ImportModel* m) { m->WriteShareFolders(); }, 2},
    {"GeneralListTable", [](ImportModel* m) { m->WriteGeneralListTable(); }, 2},
    {"RecentlyPlayedItem", [](ImportModel* m) { m->WriteRecentlyPlayedItems(); }, 2},
    {"GeneralList",
     [](ImportModel* m) {
       m->FillFileFlagMap();
       for (const auto& [id, songs] : m->m_list_songs)
         m->WriteSongList(id, songs, ImportModel::kGeneralList);
     },
     4},
    {"RadioChannelTable", [](ImportModel* m) { m->WriteRadioChannelTable(); }, 4},
    {"DislikeRadioItem", [](ImportModel* m) { m->WriteDislikeRadioItems(); }, 2},
    {"RadioChannel",
     [](ImportModel* m) {
       for (const auto& [id, songs] : m->m_radio_songs)
         m->WriteSongList(id, songs, ImportModel::kRadioChannel);
     },
     2},
    {"PlayedNJRadioItem", [](ImportModel* m) { m->WritePlayedRadioItems(); }, 2},
    {"LocalFiles", [](ImportModel* m) { m->WriteLocalFiles(); }, 2},
    {"DownloadItem", [](ImportModel* m) { m->WriteDownloadItems(); }, 2},
    {"DownloadHistoryItem", [](ImportModel* m) { m->WriteDownloadHistoryItems(); }, 4},
    {"UserLoginHistory", [](ImportModel* m) { m->WriteUserLoginHistory(); }, 2},
    {"KeywordSearchHistory", [](ImportModel* m) { m->WriteKeywordSearchHistory(); }, 2},
    // The settings and the skin carry-over belong to the current
    // generation's settings writer, which writes nothing into these
    // databases; each keeps its progress step.
    {"Settings", [](ImportModel*) {}, 1},
    {"Skin", [](ImportModel*) {}, 1},
    {"AppTools", [](ImportModel* m) { m->WriteAppTools(); }, 1},
};

}  // namespace

int BuildDatabases(ImportModel* model, const base::FilePath& data_folder,
                   const BuildStageCallback& stage_done) {
  auto done = [&](const char* stage) {
    if (stage_done)
      stage_done(stage);
  };
  if (!PrepareFiles(model, data_folder)) {
    model->ReportState(ProgressRecord::kStateNotStarted);
    return 1;
  }
  if (model->m_progress)
    model->m_progress->SetSourceEmpty(IsSourceEmpty(*model));
  done("Prepare");

  model->WriteShareFileItems();
  Step(model, 10);
  done("ShareFileItems");
  for (const WriterStep& step : kWriterSteps) {
    step.write(model);
    Step(model, step.weight);
    done(step.name);
  }

  if (!model->ReportListCounts())
    model->ReportState(ProgressRecord::kStateBuildFailed);
  done("ListCountReport");

  // Deliberately not checked here: the build goes on to move the files into
  // place whatever the encryption answered.
  (void)model->m_playlist_db->connection()->DbEncrypt(kVersion3DatabaseKey);
  (void)model->m_music_db->connection()->DbEncrypt(kVersion3DatabaseKey);
  ReleaseDatabase(&model->m_playlist_db);
  ReleaseDatabase(&model->m_music_db);
  done("Encrypt");

  // Deliberately not checked here: the build ends without a failure bit
  // whether or not the files could be moved.
  (void)base::ReplaceFile(data_folder.Append(L"VTMusicV2.db.tmp"),
                          data_folder.Append(L"VTMusicV3.db"));
  (void)base::ReplaceFile(data_folder.Append(L"playlist.db.tmp"),
                          data_folder.Append(L"playlistV3.db"));
  done("Replace");
  return 0;
}
