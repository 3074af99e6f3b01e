#include "tools/vantu_import/run_outcome.h"

#include <sstream>

#include "base/file_util.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "base/utf_string_conversions.h"

namespace {

constexpr wchar_t kSettingsFile[] = L"Vantu.ini";
constexpr wchar_t kLogFile[] = L"DataImporter.log";
constexpr char kTaskMarker[] = "DataImporterMain: task {";

const wchar_t* const kResultFiles[] = {L"VTMusicV3.db", L"playlistV3.db"};

struct StateBitText {
  uint32_t bit;
  const char* text;
};

const StateBitText kStateBits[] = {
    {1, "the source or the first stage of the build failed"},
    {2, "lists could not be read"},
    {4, "music items could not be read"},
    {8, "a later stage of the build failed"},
    {16, "another source table could not be read"},
};

std::string TaskInWords(const std::wstring& task) {
  if (task.empty())
    return "nothing to do";
  if (task == L"updatevantu8")
    return "upgrade of the version-2 databases (updatevantu8)";
  if (task == L"copyv8dbv2")
    return "copy of the version-2 databases (copyv8dbv2)";
  if (task == L"importvantu8")
    return "re-import of the current generation (importvantu8)";
  if (task == L"importvantu7")
    return "import from generation 7 (importvantu7)";
  if (task == L"importvantu6")
    return "import from generation 6 (importvantu6)";
  if (task == L"importvantu2008")
    return "import from the 2008 edition (importvantu2008)";
  return base::WideToUTF8(task);
}

std::string DescribeImportEnd(const std::wstring& end) {
  if (end == L"4")
    return "4 (import finished)";
  if (end == L"5")
    return "5 (import finished with failures)";
  if (end == L"8")
    return "8 (the source held nothing to import)";
  return end.empty() ? "- (no import ran)" : base::WideToUTF8(end);
}

std::string OrDash(const std::wstring& value) {
  return value.empty() ? std::string("-") : base::WideToUTF8(value);
}

}  // namespace

std::wstring ReadDBCheck(const base::FilePath& ini, const wchar_t* key) {
  return base::GetPrivateProfileStringW(L"DBCheck", key, L"", ini.value());
}

size_t LogSize(const base::FilePath& data_folder) {
  base::FileInfo info;
  if (!base::GetFileInfo(data_folder.Append(kLogFile), &info))
    return 0;
  return static_cast<size_t>(info.size);
}

RunOutcome ReadRunOutcome(const base::FilePath& data_folder, size_t log_offset) {
  RunOutcome outcome;
  base::FilePath ini = base::ResolvePathCase(data_folder.Append(kSettingsFile));
  outcome.import_progress = ReadDBCheck(ini, L"ImportProgress");
  outcome.import_state = ReadDBCheck(ini, L"ImportState");
  outcome.update_progress = ReadDBCheck(ini, L"UpdateProgress");
  outcome.import_playlists = ReadDBCheck(ini, L"ImportPlayLists");
  outcome.import_end = ReadDBCheck(ini, L"ImportEnd");
  outcome.source_empty = ReadDBCheck(ini, L"BeforceImportEmpty");

  std::string log;
  if (base::ReadFileToString(data_folder.Append(kLogFile), &log) && log_offset <= log.size()) {
    size_t marker = log.find(kTaskMarker, log_offset);
    if (marker != std::string::npos) {
      size_t start = marker + sizeof(kTaskMarker) - 1;
      size_t end = log.find('}', start);
      if (end != std::string::npos)
        outcome.task = base::UTF8ToWide(log.substr(start, end - start));
    }
  }
  for (const wchar_t* name : kResultFiles) {
    base::FileInfo info;
    if (base::GetFileInfo(data_folder.Append(name), &info))
      outcome.files.emplace_back(name, info.size);
  }
  return outcome;
}

std::string DescribeImportState(const std::wstring& state) {
  if (state.empty())
    return "- (no failure reported)";
  int bits = base::WToI(state);
  if (bits == 0)
    return "0 (no failure)";
  std::string text = base::WideToUTF8(state) + " (";
  bool first = true;
  for (const auto& bit : kStateBits) {
    if (!(bits & bit.bit))
      continue;
    text += (first ? "" : "; ") + std::to_string(bit.bit) + ": " + bit.text;
    first = false;
  }
  return text + ")";
}

std::string DescribeOutcome(const RunOutcome& o) {
  std::ostringstream out;
  out << "Task:               " << TaskInWords(o.task) << "\n";
  out << "ImportEnd:          " << DescribeImportEnd(o.import_end) << "\n";
  out << "ImportState:        " << DescribeImportState(o.import_state) << "\n";
  out << "ImportProgress:     " << OrDash(o.import_progress) << "\n";
  out << "UpdateProgress:     " << OrDash(o.update_progress) << "\n";
  out << "ImportPlayLists:    " << OrDash(o.import_playlists) << "\n";
  out << "BeforceImportEmpty: " << OrDash(o.source_empty) << "\n";
  if (o.files.empty())
    out << "New databases:      none\n";
  for (const auto& [name, size] : o.files)
    out << "New database:       " << base::WideToUTF8(name) << " (" << size << " bytes)\n";
  return out.str();
}

int ExitStatusOf(const RunOutcome& outcome) {
  return base::WToI(outcome.import_state) != 0 ? 1 : 0;
}
