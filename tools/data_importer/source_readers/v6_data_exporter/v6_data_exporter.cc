#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"

#include <algorithm>
#include <cwchar>
#include <exception>
#include <filesystem>
#include <system_error>

#include "base/file_util.h"
#include "tools/data_importer/environment/installation_lookup.h"
#include "logging/debug_output.h"
#include "logging/logging.h"
#include "tools/data_importer/environment/data_folder.h"
#include "tools/data_importer/run_record/import_report.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/settings/v6_settings_reader.h"
#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

namespace {

constexpr wchar_t kV1Database[] = L"VTData.db";
constexpr wchar_t kV1Copy[] = L"VT6Data.db";
constexpr wchar_t kLibraryPattern[] = L"VTLibrary*.db";

std::vector<base::FilePath> ListFiles(const base::FilePath& folder, const wchar_t* pattern) {
  std::vector<base::FilePath> files;
  base::FileEnumerator enumerator(folder, pattern);
  for (base::FilePath file = enumerator.Next(); !file.empty(); file = enumerator.Next())
    files.push_back(file);
  return files;
}

// Entries of |folder| matching |pattern| that are not regular files, such
// as a folder under a library file's name; the file enumeration passes over
// them, so they would otherwise go unnoticed.
std::vector<base::FilePath> ListNonFiles(const base::FilePath& folder, const wchar_t* pattern) {
  std::vector<base::FilePath> entries;
  std::error_code error;
  std::filesystem::path native(base::ResolvePathCase(folder).AsUTF8Unsafe());
  for (std::filesystem::directory_iterator it(native, error), end; !error && it != end;
       it.increment(error)) {
    base::FilePath entry = base::FilePath::FromUTF8Unsafe(it->path().string());
    std::error_code type_error;
    if (!it->is_regular_file(type_error) &&
        base::FileEnumerator::MatchPattern(entry.BaseName().value(), pattern))
      entries.push_back(entry);
  }
  return entries;
}

// The failure bits of the readers that read a library file: music items and
// lists from each, the downloads from "VTLibrary.db" as well.
uint32_t LibraryFileBits(const base::FilePath& file) {
  uint32_t bits = ProgressRecord::kStateMusicFailed | ProgressRecord::kStateListsFailed;
  if (base::FileEnumerator::MatchPattern(file.BaseName().value(), L"VTLibrary.db"))
    bits |= ProgressRecord::kStateTableFailed;
  return bits;
}

}  // namespace

V6DataExporter::V6DataExporter(const RunContext& context, ImportModel* model)
    : DataExporter(context, model) {}

V6DataExporter::~V6DataExporter() = default;

std::wstring V6DataExporter::Dump(const base::FilePath& path) {
  return std::wstring();
}

base::FilePath V6DataExporter::LocateInstallation() {
  base::FilePath program = GetGeneration6ProgramPath(m_context);
  return program.empty() ? program : program.DirName();
}

base::FilePath V6DataExporter::SettingsAndLyricsFolder() {
  base::FilePath program = LocateInstallation();
  // Without a program folder in the registry, the folder the player names
  // with --i=DIR is the installation the user points at: its settings file
  // and lyrics travel with its databases, as they do from a program folder,
  // rather than being silently left behind.
  return program.empty() ? m_context.m_source_folder : program;
}

base::FilePath V6DataExporter::GetDatabasePath() {
  base::FilePath folder = LocateInstallation();
  if (folder.empty())
    return folder;
  m_source_db = folder.Append(kV1Database);
  return m_source_db;
}

void V6DataExporter::ClearLookups() {
  m_list_ids.clear();
  m_music_items.clear();
  m_mv_items.clear();
  m_v2_music_items.clear();
}

ExportResult V6DataExporter::ExportData() {
  ClearLookups();
  CopyLyrics();

  bool v1 = CopyV1Database();
  bool v2 = !v1 && CopyV2Databases();
  if (!v1 && !v2) {
    logging::OutputDebugStringW(L"CopyV6DB Failed!!!");
    ReportState(ProgressRecord::kStateNotStarted);
    return ExportResult::kNothingExported;
  }
  V6LOG(logging::LOG_PROGRESS) << L"V6 DB version is {" << (v1 ? L"V1" : L"V2") << L"}.";
  ExportResult result = v1 ? ReadV1Layout() : ReadV2Layout();

  ClearLookups();
  V6LOG(logging::LOG_PROGRESS) << L"V6DataExporter::ExportData DONE!";
  return result;
}

const wchar_t* V6DataExporter::LogTag() const {
  return kV6LogTag;
}

void V6DataExporter::CopyLyrics() {
  base::FilePath program = SettingsAndLyricsFolder();
  if (program.empty())
    return;
  std::vector<base::FilePath> lyrics = ListFiles(program.Append(L"Lyric"), L"*.krc");
  if (lyrics.empty())
    return;
  base::FilePath target = GetLyricFolder(m_context);
  if (!base::DirectoryExists(target))
    // A folder that cannot be made makes every copy below fail.
    (void)base::CreateDirectory(target);
  for (const base::FilePath& lyric : lyrics)
    // A lyric file that cannot be copied is skipped.
    (void)base::CopyFile(lyric, target.Append(lyric.BaseName().value()));
}

bool V6DataExporter::CopyV1Database() {
  m_work_db = m_context.m_data_folder.Append(kV1Copy);
  bool reused = base::PathExists(m_work_db);
  if (reused) {
    logging::OutputDebugStringW(L"v6bak DB exist!!!");
  } else {
    V6LOG(logging::LOG_FAILURE) << L"File {" << m_work_db.value() << L"} do not found.";
  }
  WorkCopy copy = ObtainWorkCopy(
      m_work_db, [this] { return GetDatabasePath(); }, kV1Copy, "V1");
  if (copy == WorkCopy::kNoSource) {
    V6LOG(logging::LOG_FAILURE) << L"File {" << m_source_db.value() << L"} do not found.";
    logging::OutputDebugStringW(L"v6 DB is not exist!!!");
    return false;
  }
  // A failed copy has been logged; reading then finds no work copy and
  // reports it, so the layout still counts as found.
  return true;
}

bool V6DataExporter::CopyV2Databases() {
  try {
    return CopyV2DatabasesUnguarded();
  } catch (...) {
    V6LOG(logging::LOG_FAILURE) << L"V6DataExporter::CopyV6DBV2: UNKNOWN EXCEPTION.";
    logging::OutputDebugStringW(L"CopyV6DBv2 exception!!!");
    return false;
  }
}

bool V6DataExporter::CopyV2DatabasesUnguarded() {
  base::FilePath work = m_context.m_data_folder;
  V6LOG(logging::LOG_PROGRESS) << L"Search folder {" << work.value() << L"} with pattern {"
                               << kLibraryPattern << L"}.";
  std::vector<base::FilePath> copies = ListFiles(work, kLibraryPattern);
  if (!copies.empty()) {
    V6LOG(logging::LOG_PROGRESS) << L"V6BakDB files exists, backup file count {" << copies.size()
                                 << L"}.";
    logging::OutputDebugStringW(L"v6bak DBv2 exist!!!");
  }
  base::FilePath program = LocateInstallation();
  std::vector<base::FilePath> sources;
  if (!program.empty()) {
    sources = ListFiles(program, kLibraryPattern);
    // A library file that exists but cannot be read still loses data: it is
    // reported with the bits of the readers it would have fed.
    for (const base::FilePath& entry : ListNonFiles(program, kLibraryPattern)) {
      V6LOG(logging::LOG_FAILURE) << L"File {" << entry.value() << L"} is not a readable file.";
      ReportState(LibraryFileBits(entry));
    }
  }
  if (sources.empty() && copies.empty()) {
    V6LOG(logging::LOG_FAILURE) << L"V6DB files do not exists.";
    logging::OutputDebugStringW(L"v6 DBv2 is not exist!!!");
    return false;
  }
  // Copies an earlier run left are read again only while they reflect their
  // source files, as the "V1" copy is (ObtainWorkCopy): a library file the
  // old player changed since, or a good backup the user put in place of a
  // damaged one, is copied again; a copy whose source is gone is kept. A
  // library file without a copy yet is copied.
  std::vector<std::wstring> names;
  for (const auto* list : {&copies, &sources}) {
    for (const base::FilePath& file : *list) {
      std::wstring name = file.BaseName().value();
      if (std::find(names.begin(), names.end(), name) == names.end())
        names.push_back(name);
    }
  }
  for (const std::wstring& name : names) {
    base::FilePath source = program.empty() ? base::FilePath() : program.Append(name);
    WorkCopy copy = ObtainWorkCopy(
        work.Append(name), [&source] { return source; }, name, "V2", /*intermediate=*/false);
    if (copy == WorkCopy::kCopyFailed)
      ReportState(LibraryFileBits(source));  // logged by the copy
  }
  return true;
}

ExportResult V6DataExporter::ReadV1Layout() {
  // A source that was found but of which nothing could be read imports
  // nothing: an empty library in place of the new databases would make the
  // next run an upgrade, and the library would never come across, not even
  // once the user puts a good file back.
  ExportResult result = ExportResult::kNothingExported;
  if (!base::PathExists(m_work_db)) {
    V6LOG(logging::LOG_FAILURE) << L"File {" << m_work_db.value() << L"} do not exists.";
    ReportState(ProgressRecord::kStateNotStarted);
    Report()->SetFailure(UncopiedSourceWords(m_source_db.empty() ? m_work_db : m_source_db));
  } else if (OpenSourceWithRepair(m_work_db) && !NothingSalvaged() &&
             m_db->connection()->DoesTableExist("MusicItems")) {
    result = ExportResult::kExported;
    if (!ReadMusicVideos())
      ReportState(ProgressRecord::kStateTableFailed);
    TableRead();
    if (!ReadMusicItems())
      ReportState(ProgressRecord::kStateMusicFailed);
    TableRead();
    IndexListEntries();
    if (!ReadPlayLists(false, 0))
      ReportState(ProgressRecord::kStateListsFailed);
    TableRead();
    if (!ReadUnfinishedDownloads(false))
      ReportState(ProgressRecord::kStateTableFailed);
    TableRead();
    if (!ReadFinishedDownloads())
      ReportState(ProgressRecord::kStateTableFailed);
    TableRead();
    ReportSalvageLosses({
        {"MVItems", ProgressRecord::kStateTableFailed, nullptr, "ShareFileItems"},
        {"MusicItems", ProgressRecord::kStateMusicFailed, nullptr, "ShareFileItems"},
        {"PlayLists", ProgressRecord::kStateListsFailed, nullptr, "GeneralListTable"},
        {"PlayListItems", ProgressRecord::kStateListsFailed, nullptr, "GeneralList"},
        {"Downing", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
        {"DownHistory", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
    });
  } else {
    V6LOG(logging::LOG_FAILURE) << L"Table {MusicItems} do not exists.";
    ReportState(ProgressRecord::kStateNotStarted);
    Report()->SetFailure(UnreadableSourceWords(m_source_db.empty() ? m_work_db : m_source_db));
  }
  if (m_read_extras) {
    ReadSettings();
    ReadLoginHistory();
  }
  return result;
}

ExportResult V6DataExporter::ReadV2Layout() {
  base::FilePath work = m_context.m_data_folder;
  std::vector<base::FilePath> libraries = ListFiles(work, kLibraryPattern);
  if (libraries.empty()) {
    V6LOG(logging::LOG_FAILURE) << L"Files of V6 DB V2 not found.";
    ReportState(ProgressRecord::kStateNotStarted);
    return ExportResult::kNothingExported;
  }

  bool any_read = false;
  for (const base::FilePath& library : libraries) {
    int number = 0;
    std::swscanf(library.BaseName().value().c_str(), L"VTLibrary%d.db", &number);
    if (!base::PathExists(library)) {
      V6LOG(logging::LOG_FAILURE) << L"File {" << library.value() << L"} not found.";
      ReportState(ProgressRecord::kStateNotStarted);
      continue;
    }
    // An unsound file leaves m_db closed: every reader then fails and
    // reports its bits. Each file is opened (and, when damaged, salvaged)
    // once: the downloads, which live in "VTLibrary.db" only, are read from
    // it before its music items.
    const bool downloads = library.BaseName().value() == L"VTLibrary.db";
    if (downloads)
      V6LOG(logging::LOG_PROGRESS) << L"Loading {VTLibrary.db}.";
    if (OpenSourceWithRepair(library) && !NothingSalvaged())
      any_read = true;
    else
      V6LOG(logging::LOG_FAILURE) << L"Database {" << library.value() << L"} does not open.";
    if (downloads) {
      if (!ReadUnfinishedDownloads(true))
        ReportState(ProgressRecord::kStateTableFailed);
      TableRead();
      if (!ReadFinishedDownloads())
        ReportState(ProgressRecord::kStateTableFailed);
      TableRead();
    }
    if (!ReadMusicItemsV2(number))
      ReportState(ProgressRecord::kStateMusicFailed);
    TableRead();
    IndexListEntries();
    if (!ReadPlayLists(true, number))
      ReportState(ProgressRecord::kStateListsFailed);
    TableRead();
    ReportSalvageLosses({
        {"PlayListItems", ProgressRecord::kStateMusicFailed | ProgressRecord::kStateListsFailed,
         kV2MusicItemsTable, "ShareFileItems"},
        {"PlayLists", ProgressRecord::kStateListsFailed, nullptr, "GeneralListTable"},
        {"Downing", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
        {"DownHistory", ProgressRecord::kStateTableFailed, nullptr, "DownloadItem"},
    });
  }
  if (m_read_extras) {
    ReadSettings();
    ReadLoginHistory();
  }
  // Library files of which nothing could be read: see ReadV1Layout.
  if (!any_read) {
    ReportState(ProgressRecord::kStateNotStarted);
    Report()->SetFailure(UnreadableSourceWords(libraries.front()));
    return ExportResult::kNothingExported;
  }
  return ExportResult::kExported;
}

void V6DataExporter::ReadSettings() {
  const base::FilePath program = SettingsAndLyricsFolder();
  if (program.empty())
    return;
  // Read in place: the markup reader only opens the file for reading.
  std::optional<ImportedSettings> settings = ReadV6Settings(program);
  if (!settings) {
    V6LOG(logging::LOG_FAILURE) << L"No settings read from {"
                                << program.Append(L"VanTa.xml").value() << L"}.";
    return;
  }
  m_model->AddSettings(*settings);
}

void V6DataExporter::ReadLoginHistory() {}

}  // namespace data_importer
