#include "tools/vantu_import/run_outcome.h"

#include <sstream>

#include "base/file_util.h"
#include "base/json_file.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/importer_names.h"

namespace names = importer_names;

namespace {

const wchar_t* const kResultFiles[] = {names::kMusicDatabaseV3, names::kPlaylistDatabaseV3};

struct StateBitText {
  uint32_t bit;
  const char* text;
};

const StateBitText kStateBits[] = {
    {names::kStateNotStarted, "the source or the first stage of the build failed"},
    {names::kStateListsFailed, "lists could not be read"},
    {names::kStateMusicFailed, "music items could not be read"},
    {names::kStateBuildFailed, "a later stage of the build failed"},
    {names::kStateTableFailed, "another source table could not be read"},
};

struct TaskText {
  const wchar_t* task;
  const char* text;
};

const TaskText kTasks[] = {
    {names::kTaskUpdateVersion2, "upgrade of the version-3 databases"},
    {names::kTaskCopyVersion2, "copy of the version-2 databases to encrypted version 3"},
    {names::kTaskImportCurrent, "re-import of the current generation"},
    {names::kTaskImportGeneration7, "import from generation 7"},
    {names::kTaskImportGeneration6, "import from generation 6"},
    {names::kTaskImport2008, "import from the 2008 edition"},
};

std::string TaskInWords(const std::wstring& task) {
  if (task.empty())
    return "nothing to do";
  for (const auto& known : kTasks) {
    if (task == known.task)
      return std::string(known.text) + " (" + base::WideToUTF8(task) + ")";
  }
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

// The words of "UpgradeResult.json" (written by the library's
// upgrade_result.cc) and what they mean.
struct WordText {
  const char* word;
  const char* text;
};

const WordText kCopyWords[] = {
    {"encrypted", "copied and encrypted"},
    {"left_plain", "copied but left plain: the copy failed its integrity check"},
    {"encrypt_failed", "copied but left plain: the encryption failed"},
    {"no_source", "not made: there is no version-2 file to copy"},
    {"copy_failed", "not made: the version-2 file could not be copied"},
};

const WordText kOpenWords[] = {
    {"missing", "VTMusicV3.db is missing: nothing done"},
    {"key_refused", "VTMusicV3.db does not open with the key: left as it was"},
    {"corrupt", "VTMusicV3.db is damaged beyond repair: left as it was"},
};

const WordText kCloudListWords[] = {
    {"nothing_to_move", "no cloud lists to move"},
    {"already_moved", "cloud lists already in playlistV3.db: nothing moved"},
    {"no_playlist_database", "cloud lists not moved: no usable playlistV3.db"},
    {"attach_failed", "cloud lists not moved: the music database could not be attached"},
    {"copy_failed", "cloud lists not moved: a table copy failed, both databases as they were"},
};

std::string WordInText(const base::Value& value, const WordText* words, size_t count) {
  std::string word = value.is_string() ? value.get<std::string>() : std::string();
  for (size_t i = 0; i < count; ++i) {
    if (word == words[i].word)
      return words[i].text;
  }
  return word.empty() ? "not recorded" : word;
}

template <size_t N>
std::string WordInText(const base::Value& value, const WordText (&words)[N]) {
  return WordInText(value, words, N);
}

std::string OrDash(const std::wstring& value) {
  return value.empty() ? std::string("-") : base::WideToUTF8(value);
}

}  // namespace

std::wstring ReadDBCheck(const base::FilePath& ini, const wchar_t* key) {
  return base::GetPrivateProfileStringW(names::kDBCheckSection, key, L"", ini.value());
}

size_t LogSize(const base::FilePath& data_folder) {
  base::FileInfo info;
  if (!base::GetFileInfo(data_folder.Append(names::kLogFileName), &info))
    return 0;
  return static_cast<size_t>(info.size);
}

RunOutcome ReadRunOutcome(const base::FilePath& data_folder, size_t log_offset) {
  RunOutcome outcome;
  base::FilePath ini = base::ResolvePathCase(data_folder.Append(names::kSettingsFileName));
  outcome.import_progress = ReadDBCheck(ini, names::kKeyImportProgress);
  outcome.import_state = ReadDBCheck(ini, names::kKeyImportState);
  outcome.update_progress = ReadDBCheck(ini, names::kKeyUpdateProgress);
  outcome.import_playlists = ReadDBCheck(ini, names::kKeyImportPlaylists);
  outcome.import_end = ReadDBCheck(ini, names::kKeyImportEnd);
  outcome.source_empty = ReadDBCheck(ini, names::kKeySourceEmpty);

  std::string log;
  if (base::ReadFileToString(data_folder.Append(names::kLogFileName), &log) &&
      log_offset <= log.size()) {
    size_t marker = log.find(names::kTaskLogMarker, log_offset);
    if (marker != std::string::npos) {
      size_t start = marker + sizeof(names::kTaskLogMarker) - 1;
      size_t end = log.find('}', start);
      if (end != std::string::npos)
        outcome.task = base::UTF8ToWide(log.substr(start, end - start));
    }
  }
  if (outcome.task == names::kTaskCopyVersion2 || outcome.task == names::kTaskUpdateVersion2) {
    std::string result;
    if (base::ReadFileToString(data_folder.Append(names::kUpgradeResultFileName), &result))
      outcome.upgrade_done = DescribeUpgradeResult(result);
  }
  for (const wchar_t* name : kResultFiles) {
    base::FileInfo info;
    if (base::GetFileInfo(data_folder.Append(name), &info))
      outcome.files.emplace_back(name, info.size);
  }
  return outcome;
}

std::string DescribeUpgradeResult(const std::string& json) {
  base::Value root = base::Value::parse(json, nullptr, /*allow_exceptions=*/false);
  if (!root.is_object())
    return "not recorded";
  const base::Value none;
  auto field = [&](const char* key) -> const base::Value& {
    return root.contains(key) ? root[key] : none;
  };
  if (field("task") == base::WideToUTF8(names::kTaskCopyVersion2)) {
    return "VTMusicV3.db " + WordInText(field("music"), kCopyWords) + "; playlistV3.db " +
           WordInText(field("playlist"), kCopyWords);
  }
  if (field("music") != "opened")
    return WordInText(field("music"), kOpenWords);
  if (field("cloud_lists") == "moved") {
    int moved = field("cloud_lists_moved").is_number() ? field("cloud_lists_moved").get<int>() : 0;
    return "cloud lists moved to playlistV3.db (" + std::to_string(moved) +
           (moved == 1 ? " list)" : " lists)");
  }
  return WordInText(field("cloud_lists"), kCloudListWords);
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
  if (!o.upgrade_done.empty())
    out << "Done:               " << o.upgrade_done << "\n";
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
