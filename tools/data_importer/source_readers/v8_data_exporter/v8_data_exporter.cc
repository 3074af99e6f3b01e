#include "tools/data_importer/source_readers/v8_data_exporter/v8_data_exporter.h"

#include "base/file_util.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/progress_record.h"

namespace data_importer {

namespace {

constexpr wchar_t kMusicDatabase[] = L"VTMusic.db";
constexpr wchar_t kListDatabase[] = L"vantu.db";
// Our work copies, beside the originals in the data folder.
constexpr wchar_t kMusicCopy[] = L"VT8Music.db";
constexpr wchar_t kListCopy[] = L"VT8Playlist.db";

const DumpTableList& CurrentGenerationDumpTables() {
  static const DumpTableList tables = {
      {"ShareFileItems", "id"},
      {"ShareFolders", "id"},
      {"LocalFiles", "FilePath"},
      {"AppTools", "ID"},
      {"GeneralListTable", "PlayListID"},
      {"RecentlyPlayedItem", "SongID"},
      {"RadioChannelTable", "ID"},
      {"DislikeRadioItem", "ID"},
      {"PlayedNJRadioItem", "ID"},
      {"DownloadItem", "ID"},
      {"DownloadHistoryItem", "ID"},
      {"UserLoginHistory", "ID"},
      {"KeywordSearchHistory", "Keyword"},
  };
  return tables;
}

}  // namespace

V8DataExporter::V8DataExporter(const RunContext& context, ImportModel* model)
    : DataExporter(context, model) {}

V8DataExporter::~V8DataExporter() = default;

const wchar_t* V8DataExporter::LogTag() const {
  return kV8LogTag;
}

base::FilePath V8DataExporter::GetDatabasePath() {
  m_music_copy = m_context.m_data_folder.Append(kMusicCopy);
  return m_music_copy;
}

std::wstring V8DataExporter::Dump(const base::FilePath& path) {
  return DumpTableSummary(path, CurrentGenerationDumpTables());
}

bool V8DataExporter::PrepareWorkCopy(const wchar_t* original, const base::FilePath& work_copy) {
  base::FilePath source = m_context.m_data_folder.Append(original);
  // A copy left by an interrupted run is complete (files are copied under
  // a temporary name first) and is read again.
  WorkCopy copy = ObtainWorkCopy(
      work_copy, [&source] { return source; }, original);
  switch (copy) {
    case WorkCopy::kReused:
      V8LOG(logging::LOG_PROGRESS) << L"Work copy {" << work_copy.value() << L"} read again.";
      return true;
    case WorkCopy::kCopied:
      return true;
    case WorkCopy::kNoSource:
      V8LOG(logging::LOG_FAILURE) << L"File {" << source.value() << L"} do not exists.";
      return false;
    case WorkCopy::kCopyFailed:
      return false;
  }
  return false;
}

ExportResult V8DataExporter::ExportData() {
  GetDatabasePath();
  m_list_copy = m_context.m_data_folder.Append(kListCopy);
  bool music = PrepareWorkCopy(kMusicDatabase, m_music_copy);
  bool lists = PrepareWorkCopy(kListDatabase, m_list_copy);
  if (!music)
    ReportState(ProgressRecord::kStateNotStarted);
  if (!lists)
    ReportState(ProgressRecord::kStateNotStarted);
  if (!music && !lists)
    return ExportResult::kNothingExported;

  // The library comes first: the list readers find their files in it.
  bool read = false;
  if (music) {
    V8LOG(logging::LOG_PROGRESS) << Dump(m_music_copy);
    read = ReadMusicDatabase();
  }
  if (lists) {
    V8LOG(logging::LOG_PROGRESS) << Dump(m_list_copy);
    read = ReadListDatabase() || read;
  }
  ResetDatabase();
  // Files found, of which nothing could be read: no empty library is put in
  // place, so that the next run tries again (a good file put back, say).
  if (!read) {
    ReportState(ProgressRecord::kStateNotStarted);
    Report()->SetFailure(UnreadableSourceWords(m_music_copy));
    return ExportResult::kNothingExported;
  }
  V8LOG(logging::LOG_PROGRESS) << L"V8DataExporter::ExportData DONE!";
  return ExportResult::kExported;
}

}  // namespace data_importer
