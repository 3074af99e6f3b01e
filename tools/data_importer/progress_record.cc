#include "tools/data_importer/progress_record.h"

#include "base/file_util.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "tools/data_importer/data_folder.h"
#include "tools/data_importer/import_report.h"

namespace {

constexpr wchar_t kSection[] = L"DBCheck";

}  // namespace

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
  base::WritePrivateProfileStringW(kSection, key, value.c_str(), ini_path_.c_str());
}

void ProgressRecord::Initialise() {
  base::FilePath folder = GetDataFolder();
  if (!folder.empty())
    ini_path_ = base::ResolvePathCase(folder.Append(L"Vantu.ini")).value();
  WriteKey(L"ImportProgress", L"");
  WriteKey(L"ImportState", L"");
  WriteKey(L"UpdateProgress", L"");
  WriteKey(L"ImportPlayLists", L"");
  WriteKey(L"ForceDeleteDb", L"");
  WriteKey(L"BeforceImportEmpty", L"-1");
}

void ProgressRecord::Advance(int delta, int floor) {
  int64_t sum = static_cast<int64_t>(progress_) + delta;
  if (sum < floor)
    progress_ = floor;
  else if (sum >= 100)
    progress_ = 99;
  else
    progress_ = static_cast<int32_t>(sum);
  WriteKey(L"ImportProgress", base::IntToWString(progress_));
}

void ProgressRecord::SetProgress(int value) {
  progress_ = value;
  WriteKey(L"ImportProgress", base::IntToWString(progress_));
}

void ProgressRecord::SetUpdateProgress(int value) {
  update_progress_ = value;
  WriteKey(L"UpdateProgress", base::IntToWString(update_progress_));
}

void ProgressRecord::SetPlaylists(const std::wstring& text) {
  playlists_ = text;
  WriteKey(L"ImportPlayLists", playlists_);
}

void ProgressRecord::SetSourceEmpty(bool empty) {
  source_empty_ = empty;
  WriteKey(L"BeforceImportEmpty", empty ? L"1" : L"0");
}

uint32_t ProgressRecord::WriteEnd() {
  const wchar_t* end;
  if (source_empty_)
    end = L"8";
  else if ((state_ & (kStateNotStarted | kStateBuildFailed)) == 0)
    end = L"4";
  else
    end = L"5";
  WriteKey(L"ImportEnd", end);
  return state_;
}

void ProgressRecord::ReportFailure(uint32_t bits) {
  state_ = WriteEnd() | bits;
  WriteKey(L"ImportState", base::Int64ToWString(state_));
}

void ProgressRecord::WriteImportStart() {
  WriteKey(L"ImportStart", L"1");
}
