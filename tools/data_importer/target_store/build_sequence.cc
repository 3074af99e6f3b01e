#include "tools/data_importer/target_store/build_sequence.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "sql/connection.h"
#include "tools/data_importer/database_helper/database_helper.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/replacement_commit.h"
#include "tools/data_importer/target_store/verify_database.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/importer_names.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/settings/settings_writer.h"

namespace data_importer {

namespace {

namespace names = importer_names;

constexpr int kProgressFloor = 50;

// Creates the temporary database |temp_name| for |helper|, unless the final
// version-2 file |blocking_name| exists (an earlier release's database: the
// build must not run over it). A file that does not open, or stays corrupt
// after the repair attempt, is deleted.
bool PrepareFile(const base::FilePath& data_folder,
                 const wchar_t* temp_name,
                 const wchar_t* blocking_name,
                 std::unique_ptr<DatabaseHelper>* helper) {
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
  bool music =
      PrepareFile(data_folder, names::kMusicBuildFile, names::kMusicDatabaseV2, &model->m_music_db);
  bool playlist = PrepareFile(data_folder, names::kPlaylistBuildFile, names::kPlaylistDatabaseV2,
                              &model->m_playlist_db);
  if (music && playlist)
    return true;
  // Neither file is kept when the other could not be made.
  for (auto [helper, name] : {std::pair{&model->m_music_db, names::kMusicBuildFile},
                              std::pair{&model->m_playlist_db, names::kPlaylistBuildFile}}) {
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

// Carries the imported settings records into section "Settings" of the
// data folder's "Vantu.ini". A failure is logged and never fails the build.
// The keys carried are named in the import report.
void WriteSettings(ImportModel* model, const base::FilePath& data_folder) {
  const base::FilePath ini = data_folder.Append(names::kSettingsFileName);
  if (!WriteImportedSettings(model->m_settings, ini, model->m_ansi_code_page)) {
    VLOG_AT(logging::LOG_FAILURE) << L"Writing the imported settings to {" << ini.value()
                                  << L"} failed.";
    return;
  }
  std::set<std::wstring> keys;
  for (const ImportedSettings& settings : model->m_settings) {
    model->report()->AddSettingsRead(settings.m_source_values);
    for (const auto& [key, value] : SettingsEntries(settings)) {
      if (keys.insert(key).second)
        model->report()->AddSettingsKey(base::WideToUTF8(key));
    }
  }
}

struct WriterStep {
  const char* name;
  void (*write)(ImportModel* model);  // null: the settings writer
  int weight;                         // progress added after the step
};

// The writers after ShareFileItems, in their fixed order.
// What a writer step writes, in the words of the progress display.
const char* WritingWhat(const char* step) {
  static constexpr std::pair<const char*, const char*> kWords[] = {
      {"ShareFolders", "watched folders"},
      {"GeneralListTable", "lists"},
      {"RecentlyPlayedItem", "recently played songs"},
      {"GeneralList", "list entries"},
      {"RadioChannelTable", "radio channels"},
      {"DislikeRadioItem", "radio dislikes"},
      {"RadioChannel", "radio songs"},
      {"PlayedNJRadioItem", "played radio songs"},
      {"LocalFiles", "local files"},
      {"DownloadItem", "downloads"},
      {"DownloadHistoryItem", "download history"},
      {"UserLoginHistory", "logins"},
      {"KeywordSearchHistory", "search history"},
      {"Settings", "settings"}};
  for (const auto& [name, words] : kWords) {
    if (std::string_view(name) == step)
      return words;
  }
  return step;
}

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
    // The settings and the skin carry-over write into the data folder's
    // "Vantu.ini", not into these databases (see BuildDatabases).
    {"Settings", nullptr, 1},
    // Skins and the window layout of older generations are not carried over
    // (their files' meaning is not known); the step keeps its weight.
    {"Skin", [](ImportModel*) {}, 1},
    {"AppTools", [](ImportModel* m) { m->WriteAppTools(); }, 1},
};

struct TargetFile {
  std::unique_ptr<DatabaseHelper> ImportModel::*helper;
  const wchar_t* temp_name;
  const wchar_t* final_name;
  VerifiedDatabase ImportModel::*verified;
};

// In the order they are encrypted.
constexpr TargetFile kTargetFiles[] = {
    {&ImportModel::m_playlist_db, names::kPlaylistBuildFile, names::kPlaylistDatabaseV3,
     &ImportModel::m_verified_playlist},
    {&ImportModel::m_music_db, names::kMusicBuildFile, names::kMusicDatabaseV3,
     &ImportModel::m_verified_music},
};

// Why a finished file may not take its final name, or empty when it may:
// the encryption reported success, and the encrypted file opens with the
// key and holds exactly the tables and row counts of the plain file it was
// made from (|plain|).
std::string CheckEncryptedFile(const base::FilePath& path,
                               bool encrypted,
                               const VerifiedDatabase& plain,
                               VerifiedDatabase* verified) {
  if (!plain.ok)
    return "plain database unreadable before encryption: " + plain.error;
  if (!encrypted)
    return "encryption failed";
  *verified = VerifyEncryptedDatabase(path);
  if (!verified->ok)
    return verified->error;
  for (const auto& [table, rows] : plain.row_counts) {
    auto found = verified->row_counts.find(table);
    if (found == verified->row_counts.end())
      return "table " + table + " is missing";
    if (found->second != rows) {
      return "table " + table + " holds " + std::to_string(found->second) + " rows, " +
             std::to_string(rows) + " written";
    }
  }
  if (verified->row_counts.size() != plain.row_counts.size())
    return "unexpected tables";
  return std::string();
}

// Encrypts both files and reads them back. The encryption's result and
// the replacement would otherwise go unexamined: a full disk then leaves a
// plain or truncated file under the final name that the player cannot open,
// the user's library is lost, and no failure is recorded. So only files that
// were encrypted without error and read back completely may replace the
// final ones. On failure both temporary files are deleted, the final files
// stay as they were, and the log names the file and the reason.
// |done| is told "CountRows", "Encrypt" and "Verify" as each stage ends.
bool EncryptAndVerify(ImportModel* model,
                      const base::FilePath& data_folder,
                      const std::function<void(const char*)>& done) {
  model->report()->EnterStage("counting rows");
  VerifiedDatabase plain[std::size(kTargetFiles)];
  for (size_t i = 0; i < std::size(kTargetFiles); ++i)
    plain[i] = CountTableRows((model->*kTargetFiles[i].helper)->connection());
  done("CountRows");
  model->report()->EnterStage("encrypting");
  bool encrypted[std::size(kTargetFiles)];
  for (size_t i = 0; i < std::size(kTargetFiles); ++i) {
    std::unique_ptr<DatabaseHelper>& helper = model->*kTargetFiles[i].helper;
    encrypted[i] = plain[i].ok && helper->connection()->DbEncrypt(kVersion3DatabaseKey);
    ReleaseDatabase(&helper);
  }
  done("Encrypt");
  model->report()->EnterStage("verifying");

  bool all_good = true;
  for (size_t i = 0; i < std::size(kTargetFiles); ++i) {
    const TargetFile& file = kTargetFiles[i];
    base::FilePath temp = data_folder.Append(file.temp_name);
    VerifiedDatabase& verified = model->*file.verified;
    verified = VerifiedDatabase();
    std::string error = CheckEncryptedFile(temp, encrypted[i], plain[i], &verified);
    if (!error.empty()) {
      verified.ok = false;
      verified.error = error;
      VLOG_AT(logging::LOG_FAILURE)
          << L"Database file {" << temp.value() << L"} FAILED: {" << base::UTF8ToWide(error)
          << L"}; {" << file.final_name << L"} is not replaced.";
      all_good = false;
    }
  }
  if (!all_good) {
    for (const TargetFile& file : kTargetFiles) {
      base::FilePath temp = data_folder.Append(file.temp_name);
      if (!base::DeleteFile(temp) ||
          !base::DeleteFile(base::FilePath(temp.value() + sql::kEncryptedSiblingSuffix))) {
        VLOG_AT(logging::LOG_FAILURE) << L"Failed to delete {" << temp.value() << L"}, error code {"
                                      << base::GetLastSystemError() << L"}.";
      }
    }
  }
  done("Verify");
  return all_good;
}

}  // namespace

base::Status BuildDatabases(ImportModel* model,
                            const base::FilePath& data_folder,
                            const BuildStageCallback& stage_done) {
  std::function<void(const char*)> done = [&](const char* stage) {
    if (stage_done)
      stage_done(stage);
  };
  if (!PrepareFiles(model, data_folder)) {
    model->ReportState(ProgressRecord::kStateNotStarted);
    return base::Status::Error(L"the temporary database files could not be prepared");
  }
  if (model->m_progress)
    model->m_progress->SetSourceEmpty(IsSourceEmpty(*model));
  done("Prepare");

  model->report()->EnterStage("writing songs");
  model->WriteShareFileItems();
  Step(model, 10);
  done("ShareFileItems");
  for (const WriterStep& step : kWriterSteps) {
    model->report()->EnterStage(std::string("writing ") + WritingWhat(step.name));
    if (step.write)
      step.write(model);
    else
      WriteSettings(model, data_folder);
    Step(model, step.weight);
    done(step.name);
  }

  model->report()->EnterStage("writing cloud lists");
  if (!model->CarryCloudLists()) {
    VLOG_AT(logging::LOG_FAILURE) << L"The cloud lists were not all carried into the new files.";
    model->ReportState(ProgressRecord::kStateTableFailed);
  }

  model->report()->EnterStage("counting list entries");
  base::Status counted = model->ReportListCounts();
  if (!counted.ok()) {
    VLOG_AT(logging::LOG_FAILURE) << L"List-count report FAILED: {" << counted.message() << L"}.";
    model->ReportState(ProgressRecord::kStateBuildFailed);
  }
  done("ListCountReport");

  bool verified = EncryptAndVerify(model, data_folder, done);
  if (!verified) {
    model->ReportState(ProgressRecord::kStateBuildFailed);
    return base::Status::Error(L"a finished database did not read back as written");
  }

  // Unlike a plain pair of renames, the commit either puts both files in
  // place or leaves a record that the next run completes; its failure is
  // recorded rather than passed over.
  model->report()->EnterStage("replacing");
  bool replaced = CommitReplacement(data_folder, done);
  done("Replace");
  if (!replaced) {
    model->ReportState(ProgressRecord::kStateBuildFailed);
    return base::Status::Error(L"the finished databases could not be put in place");
  }
  return base::Status::OK();
}

}  // namespace data_importer
