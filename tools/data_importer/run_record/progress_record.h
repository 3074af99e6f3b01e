#ifndef TOOLS_DATA_IMPORTER_RUN_RECORD_PROGRESS_RECORD_H_
#define TOOLS_DATA_IMPORTER_RUN_RECORD_PROGRESS_RECORD_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "base/file_path.h"
#include "tools/data_importer/run_record/importer_names.h"
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
  void set_key_observer(KeyObserver observer) { key_observer_ = std::move(observer); }

  // The run's import report, where every "DBCheck" value written is noted
  // too. Never null: a record that was given none keeps one of its own.
  ImportReport* report();
  void set_report(ImportReport* report) { report_ = report; }

  int progress() const { return progress_; }
  int update_progress() const { return update_progress_; }
  uint32_t state() const { return state_; }
  const std::wstring& playlists() const { return playlists_; }
  bool source_empty() const { return source_empty_; }
  const std::wstring& ini_path() const { return ini_path_; }
  int import_kind() const { return import_kind_; }
  void set_import_kind(int kind) { import_kind_ = kind; }

 private:
  int32_t progress_ = 0;
  int32_t update_progress_ = 0;
  uint32_t state_ = 0;
  std::wstring playlists_;
  bool source_empty_ = false;
  std::wstring ini_path_;
  int32_t import_kind_ = kKindNone;
  ImportReport* report_ = nullptr;
  KeyObserver key_observer_;
  std::unique_ptr<ImportReport> own_report_;
};

#endif  // TOOLS_DATA_IMPORTER_RUN_RECORD_PROGRESS_RECORD_H_
