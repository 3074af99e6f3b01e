#include "tools/data_importer/version3_upgrade/upgrade_report.h"

#include <map>

#include "base/file_util.h"
#include "sql/connection.h"
#include "tools/data_importer/run_record/import_report.h"

namespace data_importer {

namespace {

constexpr char kVersion2Layout[] = "version 2";
constexpr char kVersion3Layout[] = "version 3";

std::string FileName(const base::FilePath& path) {
  return path.BaseName().AsUTF8Unsafe();
}

// The counts of the user's tables: SQLite's own ("sqlite_sequence") are no
// records, and both databases may have one of the same name.
std::map<std::string, int64_t> UserTables(const std::map<std::string, int64_t>& counts) {
  std::map<std::string, int64_t> tables;
  for (const auto& [table, rows] : counts) {
    if (table.rfind("sqlite_", 0) != 0)
      tables.emplace(table, rows);
  }
  return tables;
}

}  // namespace

VerifiedDatabase CountPlainDatabase(const base::FilePath& path) {
  VerifiedDatabase counted;
  if (!base::PathExists(path)) {
    counted.error = "missing";
    return counted;
  }
  // The user's version-2 file: read as it lies, never written (a plain
  // open would create a missing file and roll back a journal it finds).
  sql::Connection db;
  if (!db.OpenReadOnly(path)) {
    counted.error = "cannot be opened";
    return counted;
  }
  return CountTableRows(&db);
}

void ReportCopiedDatabase(ImportReport* report,
                          const base::FilePath& source,
                          const VerifiedDatabase& read,
                          const base::FilePath& target,
                          CopyOutcome outcome) {
  if (outcome == CopyOutcome::kNoSource || outcome == CopyOutcome::kNotRun)
    return;
  report->AddSource(source, source, kVersion2Layout,
                    read.ok ? 0u : unsigned{ImportReport::kUnreadable});
  const bool encrypted = outcome == CopyOutcome::kEncrypted;
  for (const auto& [table, rows] : UserTables(read.row_counts)) {
    int origin = report->SourceTable(source, table);
    report->AddRead(origin, rows, rows);
    if (encrypted) {
      report->AddWritten(origin, table, rows);
    } else {
      report->AddDrops(origin, table, drop_reason::kCopyNotEncrypted, rows,
                       {{table, 0, source.BaseName().value()}});
    }
  }
  if (!encrypted) {
    const char* why = outcome == CopyOutcome::kReplaceFailed || outcome == CopyOutcome::kWithheld
                          ? "not in place: "
                          : "no encrypted copy: ";
    report->SetCountedRows(FileName(target), {}, false, std::string(why) + OutcomeWord(outcome));
    return;
  }
  VerifiedDatabase written = VerifyEncryptedDatabase(target);
  report->SetCountedRows(FileName(target), UserTables(written.row_counts), written.ok,
                         written.error);
}

void ReportMovedTables(ImportReport* report,
                       const base::FilePath& data_folder,
                       const UpgradeResult& result) {
  // The music database is a source of this report only for what it gave.
  if (result.music_open != OpenOutcome::kOpened || result.moved_tables.empty())
    return;
  base::FilePath music = data_folder.Append(L"VTMusicV3.db");
  report->AddSource(music, music, kVersion3Layout, 0);
  base::FilePath playlist = data_folder.Append(L"playlistV3.db");
  VerifiedDatabase written = VerifyEncryptedDatabase(playlist);
  // Only the moved tables are compared: the others were not this task's.
  std::map<std::string, int64_t> counted;
  for (const MovedTable& moved : result.moved_tables) {
    int origin = report->SourceTable(music, moved.name);
    report->AddRead(origin, moved.rows, moved.rows);
    if (moved.dropped) {
      report->AddDrops(origin, moved.name, drop_reason::kCloudListsMissing, moved.rows,
                       {{moved.name, 0, L""}});
      continue;
    }
    report->AddWritten(origin, moved.name, moved.rows);
    auto found = written.row_counts.find(moved.name);
    counted[moved.name] = found == written.row_counts.end() ? 0 : found->second;
  }
  report->SetCountedRows(FileName(playlist), counted, written.ok, written.error);
}

}  // namespace data_importer
