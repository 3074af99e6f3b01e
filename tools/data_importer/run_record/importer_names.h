#ifndef TOOLS_DATA_IMPORTER_RUN_RECORD_IMPORTER_NAMES_H_
#define TOOLS_DATA_IMPORTER_RUN_RECORD_IMPORTER_NAMES_H_

#include <cstdint>

namespace data_importer {

// The names the importer shares with whoever runs it and reads its results
// (the player, the vantu-import host): task names, import kinds, the keys
// and failure bits of section "DBCheck", the data folder and the files in
// it. Both sides include this header, so a name is typed once. Constants
// only: no code, no includes beyond the standard library.

namespace importer_names {

// Task names of a run, compared case-sensitively.
inline constexpr wchar_t kTaskUpgradeVersion3[] = L"updatevantu8";
inline constexpr wchar_t kTaskCopyVersion2[] = L"copyv8dbv2";
inline constexpr wchar_t kTaskImportCurrent[] = L"importvantu8";
inline constexpr wchar_t kTaskImportGeneration7[] = L"importvantu7";
inline constexpr wchar_t kTaskImportGeneration6[] = L"importvantu6";
inline constexpr wchar_t kTaskImport2008[] = L"importvantu2008";

// How the entry point's log line names the task: the marker, the task name,
// then "}".
inline constexpr char kTaskLogMarker[] = "DataImporterMain: task {";

// Import kinds.
enum ImportKind : int {
  kKindNone = 0,
  kKind2008 = 1,
  kKindGeneration6 = 2,
  kKindGeneration7 = 3,
  kKindCurrent = 4,
};

// Section "DBCheck" of the settings file and its keys.
inline constexpr wchar_t kDBCheckSection[] = L"DBCheck";
inline constexpr wchar_t kKeyImportProgress[] = L"ImportProgress";
inline constexpr wchar_t kKeyImportState[] = L"ImportState";
inline constexpr wchar_t kKeyUpdateProgress[] = L"UpdateProgress";
inline constexpr wchar_t kKeyImportPlaylists[] = L"ImportPlayLists";
inline constexpr wchar_t kKeyImportEnd[] = L"ImportEnd";
inline constexpr wchar_t kKeySourceEmpty[] = L"BeforceImportEmpty";
inline constexpr wchar_t kKeyForceDeleteDb[] = L"ForceDeleteDb";
inline constexpr wchar_t kKeyImportStart[] = L"ImportStart";

// Section of the settings file holding the settings carried over from older
// generations (keys listed in README.md).
inline constexpr wchar_t kSettingsSection[] = L"Settings";

// Failure bits of "ImportState".
enum StateBits : uint32_t {
  kStateNotStarted = 1,    // the source or the build's first stage failed
  kStateListsFailed = 2,   // lists could not be read
  kStateMusicFailed = 4,   // music items could not be read
  kStateBuildFailed = 8,   // a later stage of the build failed
  kStateTableFailed = 16,  // another source table could not be read
};

// The data folder (under the per-user application-data folder) and the
// files and folders in it that the host reads.
inline constexpr wchar_t kDataFolderName[] = L"VanTu8";
inline constexpr wchar_t kSettingsFileName[] = L"Vantu.ini";
inline constexpr wchar_t kLogFileName[] = L"DataImporter.log";
inline constexpr wchar_t kCrashFolderName[] = L"crash";
inline constexpr wchar_t kMusicDatabaseV3[] = L"VTMusicV3.db";
inline constexpr wchar_t kPlaylistDatabaseV3[] = L"playlistV3.db";
inline constexpr wchar_t kMusicDatabaseV2[] = L"VTMusicV2.db";
inline constexpr wchar_t kPlaylistDatabaseV2[] = L"playlist.db";
// The files a build writes before they replace the version-3 pair, and the
// record that makes that replacement one step (replacement_commit.h).
inline constexpr wchar_t kMusicBuildFile[] = L"VTMusicV2.db.tmp";
inline constexpr wchar_t kPlaylistBuildFile[] = L"playlist.db.tmp";
inline constexpr wchar_t kReplaceRecordName[] = L"DatabaseReplace.commit";
// The account of the run (import_report.h), and the name it is written
// under before it replaces the earlier one.
inline constexpr wchar_t kReportFileName[] = L"ImportReport.json";
inline constexpr wchar_t kReportTempFileName[] = L"ImportReport.json.tmp";
// Every run's report is kept as well, in this folder of the data folder, as
// "<UTC time>-<task>-<n>.json" ("nothing" for a run without a task; n
// counts the runs of that second from 1); the newest ones are kept.
inline constexpr wchar_t kReportHistoryFolder[] = L"reports";
inline constexpr wchar_t kReportHistoryNoTask[] = L"nothing";
inline constexpr int kReportHistoryKept = 20;
// What a version-2 task did (see upgrade_result.h for its content).
inline constexpr wchar_t kUpgradeResultFileName[] = L"UpgradeResult.json";

}  // namespace importer_names

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_RUN_RECORD_IMPORTER_NAMES_H_
