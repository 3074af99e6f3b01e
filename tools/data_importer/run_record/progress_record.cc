#include "tools/data_importer/run_record/progress_record.h"

#include "base/file_util.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "tools/data_importer/run_record/import_report.h"

namespace data_importer {

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
  if (m_report)
    return m_report;
  if (!m_own_report)
    m_own_report = std::make_unique<ImportReport>();
  return m_own_report.get();
}

void ProgressRecord::WriteKey(const wchar_t* key, const std::wstring& value) {
  if (m_ini_path.empty())
    return;
  report()->NoteDBCheck(key, value);
  // A profile write that fails is ignored (see the header).
  (void)base::WritePrivateProfileStringW(kDBCheckSection, key, value.c_str(), m_ini_path.c_str(),
                                         m_ansi_code_page);
  if (m_key_observer)
    m_key_observer(key, value);
}

void ProgressRecord::Initialise(const base::FilePath& folder) {
  if (!folder.empty()) {
    m_ini_path = base::ResolvePathCase(folder.Append(kSettingsFileName)).value();
    // A new settings file is UTF-16: the player's settings hold folder
    // names and titles in any script. A file that cannot be made shows in
    // the writes below, which are ignored the same way.
    (void)base::CreateUnicodeProfileFile(m_ini_path);
  }
  WriteKey(kKeyImportProgress, L"");
  WriteKey(kKeyImportState, L"");
  WriteKey(kKeyUpdateProgress, L"");
  WriteKey(kKeyImportPlaylists, L"");
  WriteKey(kKeyForceDeleteDb, L"");
  WriteKey(kKeySourceEmpty, L"-1");
}

void ProgressRecord::Advance(int delta, int floor) {
  int64_t sum = static_cast<int64_t>(m_progress) + delta;
  if (sum < floor)
    m_progress = floor;
  else if (sum >= 100)
    m_progress = 99;
  else
    m_progress = static_cast<int32_t>(sum);
  WriteKey(kKeyImportProgress, base::IntToWString(m_progress));
}

void ProgressRecord::SetProgress(int value) {
  m_progress = value;
  WriteKey(kKeyImportProgress, base::IntToWString(m_progress));
}

void ProgressRecord::SetUpdateProgress(int value) {
  m_update_progress = value;
  WriteKey(kKeyUpdateProgress, base::IntToWString(m_update_progress));
}

void ProgressRecord::SetPlaylists(const std::wstring& text) {
  m_playlists = text;
  WriteKey(kKeyImportPlaylists, m_playlists);
}

void ProgressRecord::SetSourceEmpty(bool empty) {
  m_source_empty = empty;
  WriteKey(kKeySourceEmpty, empty ? L"1" : L"0");
}

uint32_t ProgressRecord::WriteEnd() {
  const wchar_t* end;
  if (m_source_empty)
    end = L"8";
  else if ((m_state & (kStateNotStarted | kStateBuildFailed)) == 0)
    end = L"4";
  else
    end = L"5";
  WriteKey(kKeyImportEnd, end);
  return m_state;
}

void ProgressRecord::ReportFailure(uint32_t bits) {
  m_state = WriteEnd() | bits;
  WriteKey(kKeyImportState, base::Int64ToWString(m_state));
}

void ProgressRecord::WriteImportStart() {
  WriteKey(kKeyImportStart, L"1");
}

}  // namespace data_importer
