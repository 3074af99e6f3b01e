#include "tools/data_importer/run_record/progress_record.h"

#include "base/file_util.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "tools/data_importer/run_record/import_report.h"

using importer_names::kDBCheckSection;
using importer_names::kKeyForceDeleteDb;
using importer_names::kKeyImportEnd;
using importer_names::kKeyImportPlaylists;
using importer_names::kKeyImportProgress;
using importer_names::kKeyImportStart;
using importer_names::kKeyImportState;
using importer_names::kKeySourceEmpty;
using importer_names::kKeyUpdateProgress;
using importer_names::kSettingsFileName;

ProgressRecord::ProgressRecord() = default;
ProgressRecord::~ProgressRecord() = default;

ImportReport* ProgressRecord::report() {
  if (report_)
    return report_;
  if (!own_report_)
    own_report_ = std::make_unique<ImportReport>();
  return own_report_.get();
}

void ProgressRecord::WriteKey(const wchar_t* key, const std::wstring& value) {
  if (ini_path_.empty())
    return;
  report()->NoteDBCheck(key, value);
  // A profile write that fails is ignored (see the header).
  (void)base::WritePrivateProfileStringW(kDBCheckSection, key, value.c_str(), ini_path_.c_str());
  if (key_observer_)
    key_observer_(key, value);
}

void ProgressRecord::Initialise(const base::FilePath& folder) {
  if (!folder.empty())
    ini_path_ = base::ResolvePathCase(folder.Append(kSettingsFileName)).value();
  WriteKey(kKeyImportProgress, L"");
  WriteKey(kKeyImportState, L"");
  WriteKey(kKeyUpdateProgress, L"");
  WriteKey(kKeyImportPlaylists, L"");
  WriteKey(kKeyForceDeleteDb, L"");
  WriteKey(kKeySourceEmpty, L"-1");
}

void ProgressRecord::Advance(int delta, int floor) {
  int64_t sum = static_cast<int64_t>(progress_) + delta;
  if (sum < floor)
    progress_ = floor;
  else if (sum >= 100)
    progress_ = 99;
  else
    progress_ = static_cast<int32_t>(sum);
  WriteKey(kKeyImportProgress, base::IntToWString(progress_));
}

void ProgressRecord::SetProgress(int value) {
  progress_ = value;
  WriteKey(kKeyImportProgress, base::IntToWString(progress_));
}

void ProgressRecord::SetUpdateProgress(int value) {
  update_progress_ = value;
  WriteKey(kKeyUpdateProgress, base::IntToWString(update_progress_));
}

void ProgressRecord::SetPlaylists(const std::wstring& text) {
  playlists_ = text;
  WriteKey(kKeyImportPlaylists, playlists_);
}

void ProgressRecord::SetSourceEmpty(bool empty) {
  source_empty_ = empty;
  WriteKey(kKeySourceEmpty, empty ? L"1" : L"0");
}

uint32_t ProgressRecord::WriteEnd() {
  const wchar_t* end;
  if (source_empty_)
    end = L"8";
  else if ((state_ & (kStateNotStarted | kStateBuildFailed)) == 0)
    end = L"4";
  else
    end = L"5";
  WriteKey(kKeyImportEnd, end);
  return state_;
}

void ProgressRecord::ReportFailure(uint32_t bits) {
  state_ = WriteEnd() | bits;
  WriteKey(kKeyImportState, base::Int64ToWString(state_));
}

void ProgressRecord::WriteImportStart() {
  WriteKey(kKeyImportStart, L"1");
}
