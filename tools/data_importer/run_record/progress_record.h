#ifndef TOOLS_DATA_IMPORTER_RUN_RECORD_PROGRESS_RECORD_H_
#define TOOLS_DATA_IMPORTER_RUN_RECORD_PROGRESS_RECORD_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "base/code_page.h"
#include "base/file_path.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

class ImportReport;

// How far the run has got and how it ended, as the player reads it from
// section "DBCheck" of "Vantu.ini" in the data folder. This record is the
// one writer of that section: every key goes out through
// WritePrivateProfileStringW as soon as its value changes, so the player sees
// progress while it waits. A profile write that fails is ignored.
//
// One record exists per run. The entry point creates it and hands it by
// reference to each step; exporters and the build sequence reach it through
// the import model.
class ProgressRecord {
 public:
  // Failure bits of "ImportState" and import kinds, also reachable as
  // ProgressRecord::kState... and ProgressRecord::kKind...
  using StateBits = importer_names::StateBits;
  using enum importer_names::StateBits;
  using ImportKind = importer_names::ImportKind;
  using enum importer_names::ImportKind;

  ProgressRecord();
  ~ProgressRecord();
  ProgressRecord(const ProgressRecord&) = delete;
  ProgressRecord& operator=(const ProgressRecord&) = delete;

  // Takes "Vantu.ini" in |data_folder| (which the caller has made) as the
  // settings file and resets the section: "ImportProgress", "ImportState",
  // "UpdateProgress", "ImportPlayLists" and "ForceDeleteDb" empty, then
  // "BeforceImportEmpty" = "-1". With an empty |data_folder| nothing is
  // written, now or later.
  void Initialise(const base::FilePath& data_folder);

  // The code page in which an existing 8-bit settings file is written (the
  // user's ANSI code page); set before Initialise.
  void SetAnsiCodePage(uint32_t code_page) { m_ansi_code_page = code_page; }
  [[nodiscard]] uint32_t ansi_code_page() const { return m_ansi_code_page; }

  // Adds |delta| to the progress; a sum below |floor| becomes |floor|, one
  // of 100 or more becomes 99 (only the entry point writes "100"). Writes
  // "ImportProgress".
  void Advance(int delta, int floor);

  // Sets the progress outright and writes "ImportProgress" (the entry
  // point's "10" and "100").
  void SetProgress(int value);

  // Sets the progress of the version-2 steps and writes "UpdateProgress".
  void SetUpdateProgress(int value);

  // Stores |text| and writes it as "ImportPlayLists".
  void SetPlaylists(const std::wstring& text);

  // Stores the empty-source flag and writes "BeforceImportEmpty" ("1"/"0").
  void SetSourceEmpty(bool empty);

  // Writes "ImportEnd" ("8" for an empty source, "4" without failure bits 1
  // or 8, "5" otherwise) and returns the state.
  uint32_t WriteEnd();

  // Writes "ImportEnd" as it stands, then adds |bits| to the state and
  // writes "ImportState".
  void ReportFailure(uint32_t bits);

  // Writes "ImportStart" = "1" (the import was skipped because a version-2
  // music database already exists).
  void WriteImportStart();

  // Writes one key of the section (used by the steps above).
  void WriteKey(const wchar_t* key, const std::wstring& value);

  // Called after each key has gone to the file, with the key and its value:
  // lets a caller watch the section while a step runs (as the player does by
  // reading the file). Empty by default.
  using KeyObserver = std::function<void(const wchar_t* key, const std::wstring& value)>;
  void set_key_observer(KeyObserver observer) { m_key_observer = std::move(observer); }

  // The run's import report, where every "DBCheck" value written is noted
  // too. Never null: a record that was given none keeps one of its own.
  ImportReport* report();
  void set_report(ImportReport* report) { m_report = report; }

  int progress() const { return m_progress; }
  int update_progress() const { return m_update_progress; }
  uint32_t state() const { return m_state; }
  const std::wstring& playlists() const { return m_playlists; }
  bool source_empty() const { return m_source_empty; }
  const std::wstring& ini_path() const { return m_ini_path; }
  int import_kind() const { return m_import_kind; }
  void set_import_kind(int kind) { m_import_kind = kind; }

 private:
  int32_t m_progress = 0;
  int32_t m_update_progress = 0;
  uint32_t m_state = 0;
  std::wstring m_playlists;
  bool m_source_empty = false;
  std::wstring m_ini_path;
  int32_t m_import_kind = kKindNone;
  ImportReport* m_report = nullptr;
  KeyObserver m_key_observer;
  std::unique_ptr<ImportReport> m_own_report;
  uint32_t m_ansi_code_page = base::kCodePageSimplifiedChinese;
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_RUN_RECORD_PROGRESS_RECORD_H_
