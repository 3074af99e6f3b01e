#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

#include <optional>

#include "base/file_util.h"
#include "base/path_service.h"
#include "logging/debug_output.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/settings/v7_settings_migration.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

namespace {

constexpr wchar_t kGeneration7Folder[] = L"Vantu7";
constexpr wchar_t kSourceDatabase[] = L"VTData.db";
constexpr wchar_t kWorkCopy[] = L"VT7Data.db";
constexpr wchar_t kPluginData[] = L"PlugCusData.VST";
constexpr wchar_t kPluginDataCopy[] = L"PlugData.VST";

}  // namespace

V7DataExporter::V7DataExporter(const RunContext& context, ImportModel* model)
    : DataExporter(context, model) {}

V7DataExporter::~V7DataExporter() = default;

const wchar_t* V7DataExporter::LogTag() const {
  return kV7LogTag;
}

std::wstring V7DataExporter::Dump(const base::FilePath& path) {
  return DumpTableSummary(path, Generation7DumpTables());
}

base::FilePath V7DataExporter::Generation7Folder() const {
  base::FilePath roaming = m_context.m_roaming_app_data;
  if (roaming.empty())
    return roaming;
  // The file operations find "Vantu7" in any letter case; resolving it here
  // also gives the log lines and the plug-in copy its real spelling.
  return base::ResolvePathCase(roaming.Append(kGeneration7Folder));
}

base::FilePath V7DataExporter::GetDatabasePath() {
  base::FilePath folder = Generation7Folder();
  return folder.empty() ? folder : folder.Append(kSourceDatabase);
}

void V7DataExporter::ClearLookups() {
  m_music_items.clear();
  m_share_folders.clear();
}

bool V7DataExporter::CopyDatabase() {
  base::FilePath work = m_context.m_data_folder;
  if (work.empty())
    return false;
  m_work_db = work.Append(kWorkCopy);
  WorkCopy copy = ObtainWorkCopy(
      m_work_db, [this] { return GetDatabasePath(); }, kWorkCopy);
  if (copy == WorkCopy::kNoSource || copy == WorkCopy::kCopyFailed)
    return false;

  base::FilePath folder = Generation7Folder();
  base::FilePath plugin = folder.empty() ? folder : folder.Append(kPluginData);
  if (!plugin.empty() && base::PathExists(plugin)) {
    if (!base::DirectoryExists(work))
      // A folder that cannot be made fails the copy below, which is logged.
      (void)base::CreateDirectory(work);
    // The plug-in data only travels along: a failed copy is logged and the
    // import goes on.
    (void)CopyWithLog(plugin, work.Append(kPluginDataCopy));
  }
  // The singer images belong to the skin migration, which this library does
  // not carry: there is nothing to copy for them here.
  return true;
}

ExportResult V7DataExporter::ExportData() {
  ClearLookups();
  if (m_context.m_data_folder.empty() || !CopyDatabase()) {
    ReportState(ProgressRecord::kStateNotStarted);
    if (base::PathExists(GetDatabasePath()))
      Report()->SetFailure(UncopiedSourceWords(GetDatabasePath()));
    logging::OutputDebugStringW(L"CopyV7DatabasePluginSingerImages Failed!!!");
    return ExportResult::kNothingExported;
  }
  if (!base::PathExists(m_work_db)) {
    V7LOG(logging::LOG_FAILURE) << L"File {" << m_work_db.value() << L"} do not exists.";
    ReportState(ProgressRecord::kStateNotStarted);
    return ExportResult::kNothingExported;
  }
  // A copy that no repair makes sound is read as far as it can be (its
  // salvage copy); only a file of which nothing at all can be read ends the
  // import here, before an empty library could be put in place of a later
  // run's chance to import it.
  if (!OpenSourceWithRepair(m_work_db) || NothingSalvaged()) {
    V7LOG(logging::LOG_FAILURE) << L"Failed to open database file {" << m_work_db.value() << L"}.";
    m_db->Close();
    ReportState(ProgressRecord::kStateNotStarted);
    Report()->SetFailure(UnreadableSourceWords(GetDatabasePath()));
    return ExportResult::kNothingExported;
  }
  if (!m_db->connection()->DoesTableExist("FileItems")) {
    V7LOG(logging::LOG_FAILURE) << L"Table {FileItems} do not exists.";
    ReportState(ProgressRecord::kStateNotStarted);
    return ExportResult::kNothingExported;
  }

  struct Step {
    bool (V7DataExporter::*read)();
    uint32_t failure_bit;
  };
  static constexpr Step kSteps[] = {
      {&V7DataExporter::ReadMusicItems, ProgressRecord::kStateMusicFailed},
      {&V7DataExporter::ReadPlayLists, ProgressRecord::kStateListsFailed},
      {&V7DataExporter::ReadType5ListItems, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadUnfinishedDownloads, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadFinishedDownloads, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadShareFolders, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadFolderItems, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadPlayedRadioSongs, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadRadioChannels, ProgressRecord::kStateTableFailed},
      {&V7DataExporter::ReadDislikedRadioSongs, ProgressRecord::kStateTableFailed},
  };
  ReadLastPlayed();
  // The progress moves after each reader, whether or not it could read its
  // table; the long readers have moved it by tenths of their rows as well.
  for (const Step& step : kSteps) {
    if (!(this->*step.read)())
      ReportState(step.failure_bit);
    TableRead();
  }
  ReportSalvageLosses({
      {"FileItems", ProgressRecord::kStateMusicFailed, nullptr, "ShareFileItems"},
      {"PlayLists", ProgressRecord::kStateListsFailed, nullptr, "GeneralListTable"},
      {"PlayListItems", ProgressRecord::kStateListsFailed, nullptr, "GeneralList"},
      {"Downing", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
      {"DownHistory", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
      {"ShareFolders", ProgressRecord::kStateTableFailed},
      {"FolderItems", ProgressRecord::kStateTableFailed, nullptr, "LocalFiles"},
      {"RadioListNJPlayedItems", ProgressRecord::kStateTableFailed, nullptr, "PlayedNJRadioItem"},
      {"RadioList", ProgressRecord::kStateTableFailed, nullptr, "RadioChannelTable"},
      {"RadioListSongs", ProgressRecord::kStateTableFailed, nullptr, "RadioChannel"},
      {"RadioListDislikeSongs", ProgressRecord::kStateTableFailed, nullptr, "DislikeRadioItem"},
  });

  MigrateSettings();
  ReadLoginHistory();
  ReadSearchHistory();
  MigrateSkins();
  ClearLookups();
  V7LOG(logging::LOG_PROGRESS) << L"V7DataExporter::ExportData DONE!";
  return ExportResult::kExported;
}

// m_last_played_list stays -1 (none): see the header.
void V7DataExporter::ReadLastPlayed() {}

void V7DataExporter::MigrateSettings() {
  std::optional<ImportedSettings> settings =
      MigrateV7Settings(Generation7Folder(), m_model->m_ansi_code_page);
  if (!settings)
    return;
  m_model->AddSettings(*settings);
  AdvanceReadProgress(1);
}

void V7DataExporter::ReadLoginHistory() {}

void V7DataExporter::ReadSearchHistory() {}

void V7DataExporter::MigrateSkins() {}

}  // namespace data_importer
