#include "tools/vantu_import/run_outcome.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <vector>

#include "base/code_page.h"
#include "base/profile_string.h"
#include "base/string_number_conversions.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/run_record/importer_names.h"

using namespace data_importer;  // the importer under use

namespace names = importer_names;

namespace {

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

// |value|[key], or null when |value| is no object or lacks the key (a
// report from another version may lack any part).
const base::Value& At(const base::Value& value, const char* key) {
  static const base::Value kNull;
  if (!value.is_object())
    return kNull;
  auto found = value.find(key);
  return found == value.end() ? kNull : *found;
}

std::string Text(const base::Value& value) {
  return value.is_string() ? value.get<std::string>() : std::string();
}

int64_t Number(const base::Value& value) {
  return value.is_number() ? value.get<int64_t>() : 0;
}

std::string DBCheckValue(const base::Value& report, const char* key) {
  return Text(At(At(report, "dbcheck"), key));
}

std::string Utf8(const wchar_t* text) {
  return base::WideToUTF8(text);
}

bool IsTask(const std::string& task, const wchar_t* name) {
  return task == Utf8(name);
}

// "1 song", "3 songs".
std::string Count(int64_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

// "a", "a and b", "a, b and c".
std::string JoinWords(const std::vector<std::string>& parts) {
  std::string text;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i > 0)
      text += i + 1 == parts.size() ? " and " : ", ";
    text += parts[i];
  }
  return text;
}

uint32_t StateBits(const base::Value& report) {
  return static_cast<uint32_t>(base::WToI(base::UTF8ToWide(DBCheckValue(report, "ImportState"))));
}

std::string FileName(const std::string& path) {
  size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// What the new databases hold, e.g. "300 songs, 4 lists with 342 entries
// and 8 downloads".
std::string ImportedCounts(const base::Value& report) {
  const base::Value& s = At(report, "summary");
  std::vector<std::string> parts = {Count(Number(At(s, "songs")), "song", "songs")};
  if (Number(At(s, "videos")))
    parts.push_back(Count(Number(At(s, "videos")), "video", "videos"));
  if (Number(At(s, "lists"))) {
    parts.push_back(Count(Number(At(s, "lists")), "list", "lists") + " with " +
                    Count(Number(At(s, "list_entries")), "entry", "entries"));
  }
  if (Number(At(s, "downloads")))
    parts.push_back(Count(Number(At(s, "downloads")), "download", "downloads"));
  if (Number(At(s, "settings")))
    parts.push_back(Count(Number(At(s, "settings")), "setting", "settings"));
  return JoinWords(parts);
}

// "; skipped 1 list entry whose song is not in the library", or empty.
std::string Skipped(const base::Value& report) {
  std::vector<std::string> parts;
  for (const auto& drop : At(report, "dropped"))
    parts.push_back(std::to_string(Number(At(drop, "count"))) + " " + Text(At(drop, "text")));
  return parts.empty() ? std::string() : "; skipped " + JoinWords(parts);
}

// The sources that were damaged, and tables whose finished file holds
// other rows than were written.
std::string Damage(const base::Value& report) {
  std::string text;
  for (const auto& source : At(report, "sources")) {
    std::string name = Text(At(source, "path"));
    if (At(source, "unreadable") == true)
      text += "; " + name + " could not be read: its records are missing";
    else if (At(source, "repaired") == true)
      text += "; " + name + " was damaged and repaired: some of its records may be missing";
    else if (At(source, "salvaged") == true)
      text += "; " + name + " was damaged beyond repair and read row by row";
  }
  for (const auto& table : At(report, "salvage")) {
    if (At(table, "complete") == true && Number(At(table, "rows_known_lost")) == 0)
      continue;
    text += "; its table " + Text(At(table, "table")) + " gave " +
            std::to_string(Number(At(table, "rows_salvaged"))) + " rows";
    if (Number(At(table, "rows_known_lost")))
      text += ", " + std::to_string(Number(At(table, "rows_known_lost"))) + " known lost";
    if (At(table, "complete") == false)
      text += ", more may be lost";
  }
  for (const auto& target : At(report, "target_tables")) {
    if (At(target, "matches") == false) {
      text += "; table " + Text(At(target, "table")) + " holds " +
              std::to_string(Number(At(target, "rows_counted"))) + " rows of " +
              std::to_string(Number(At(target, "rows_sent"))) + " written";
    }
  }
  for (const auto& database : At(report, "target_databases")) {
    if (At(database, "read_back") == false)
      text +=
          "; " + Text(At(database, "database")) + " did not verify: " + Text(At(database, "error"));
  }
  return text;
}

struct WordText {
  const char* word;
  const char* text;
};

const WordText kCopyWords[] = {
    {"encrypted", "copied and encrypted"},
    {"left_plain", "copied but left plain: the copy failed its integrity check"},
    {"encrypt_failed", "not made: the encryption failed; the next run tries again"},
    {"no_source", "not made: there is no version-2 file to copy"},
    {"copy_failed", "not made: the version-2 file could not be copied"},
    {"replace_failed", "not in place: the copy could not be renamed; the next run retries"},
    {"withheld", "not in place: the other database could not be copied; the next run tries again"},
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

}  // namespace

std::string ReportTask(const base::Value& report) {
  return Text(At(At(report, "task"), "name"));
}

std::string TaskInWords(const std::string& task) {
  if (task.empty())
    return "nothing to do";
  if (IsTask(task, names::kTaskUpgradeVersion3))
    return "upgrade of the version-3 databases (" + task + ")";
  if (IsTask(task, names::kTaskCopyVersion2))
    return "copy of the version-2 databases to encrypted version 3 (" + task + ")";
  if (IsTask(task, names::kTaskImportCurrent))
    return "re-import of older databases of the current generation (" + task + ")";
  if (IsTask(task, names::kTaskImportGeneration7))
    return "import from generation 7 (" + task + ")";
  if (IsTask(task, names::kTaskImportGeneration6))
    return "import from generation 6 (" + task + ")";
  if (IsTask(task, names::kTaskImport2008))
    return "import from the 2008 edition (" + task + ")";
  return task;
}

std::wstring ReadDBCheck(const base::FilePath& ini, const wchar_t* key) {
  // The values of "DBCheck" are ASCII, which reads the same in every code
  // page; the importer's default is taken for the rest of the file.
  return base::GetPrivateProfileStringW(names::kDBCheckSection, key, L"", ini.value(),
                                        base::kCodePageSimplifiedChinese);
}

bool ReadReport(const base::FilePath& path, base::Value* report) {
  return base::ReadJsonFile(path, report) && report->is_object();
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

std::string ProgressBarLine(const std::string& label,
                            int percent,
                            double seconds,
                            int columns,
                            const std::string& stage) {
  // Room kept for the stage, whatever its length, so the bar does not
  // jump as the stage changes.
  constexpr int kStageRoom = 24;
  percent = std::clamp(percent, 0, 100);
  char figures[48];
  std::snprintf(figures, sizeof(figures), "] %3d%% %6.1fs", percent, seconds);
  const int fixed = static_cast<int>(label.size() + 2 + std::strlen(figures)) +
                    (stage.empty() ? 0 : 1 + kStageRoom);
  const int width = std::clamp(columns - 1 - fixed, 10, 40);
  const int filled = percent * width / 100;
  std::string line =
      label + " [" + std::string(filled, '#') + std::string(width - filled, ' ') + figures;
  if (!stage.empty())
    line += " " + stage;
  if (columns > 1 && static_cast<int>(line.size()) > columns - 1)
    line.resize(columns - 1);
  return line;
}

bool ReplacedDatabases(const base::Value& report) {
  for (const auto& stage : At(report, "stages")) {
    std::string name = Text(At(stage, "name"));
    if (name == "ReplaceMusic" || name == "ReplacePlaylist")
      return true;
  }
  return false;
}

namespace {

// An installation the registry names whose files were not found, in words
// with the option that would map it.
std::string UnreachableInWords(const base::Value& entry) {
  std::string text = Text(At(entry, "generation")) + " at \"" + Text(At(entry, "expanded")) + "\"";
  std::string drive = Text(At(entry, "drive"));
  std::string tried = Text(At(entry, "tried"));
  if (tried.empty())
    text += " (no folder stands for drive " + drive + ":";
  else
    text += " (not found at " + tried;
  if (!drive.empty())
    text += "; give --drive " + drive + "=FOLDER with the copy of drive " + drive + ":";
  return text + ")";
}

// What the lookup adds to the verdict of a run that imported an earlier
// generation: the installations passed over and those that could not be
// reached. A run on the data folder's own databases (the upgrade, the
// copy, the re-import) follows an import made earlier: the installations
// stay in its report alone.
std::string LookupNotes(const base::Value& report) {
  std::string notes;
  std::string task = ReportTask(report);
  if (!IsTask(task, names::kTaskImportGeneration7) &&
      !IsTask(task, names::kTaskImportGeneration6) && !IsTask(task, names::kTaskImport2008))
    return notes;
  const base::Value& lookup = At(report, "lookup");
  for (const auto& entry : At(lookup, "passed_over")) {
    notes += "; " + Text(At(entry, "generation")) + " at " + Text(At(entry, "path")) +
             " was found and not imported (" + Text(At(entry, "rule")) + ")";
  }
  for (const auto& entry : At(lookup, "unreachable"))
    notes += "; " + UnreachableInWords(entry) + " could not be reached";
  return notes;
}

}  // namespace

std::string FollowedImport(const base::Value& report, const base::Value& last_import) {
  std::string task = ReportTask(last_import);
  if (task.empty() ||
      (Text(At(last_import, "time")) == Text(At(report, "time")) && ReportTask(report) == task))
    return std::string();
  std::string date = Text(At(last_import, "time")).substr(0, 10);
  std::string when = date.empty() ? std::string() : " on " + date;
  if (DBCheckValue(last_import, "ImportEnd") == "5")
    return "Follows the " + TaskInWords(task) + ", which failed" + when + ".";
  return "Follows the " + TaskInWords(task) + ", imported" + when + ": " +
         ImportedCounts(last_import) + ".";
}

namespace {

// The verdict on the run of |report| alone.
std::string RunVerdict(const base::Value& report) {
  std::string task = ReportTask(report);
  if (task.empty()) {
    const base::Value& unreachable = At(At(report, "lookup"), "unreachable");
    if (unreachable.empty())
      return "Nothing to import: no earlier installation of the player was found.";
    std::string line =
        "Nothing imported: an earlier installation is named but could not be reached: ";
    bool first = true;
    for (const auto& entry : unreachable) {
      line += (first ? "" : "; ") + UnreachableInWords(entry);
      first = false;
    }
    return line + ".";
  }
  return TaskVerdict(report, task) + LookupNotes(report) + ".";
}

}  // namespace

std::string VerdictLine(const base::Value& report, const base::Value& last_import) {
  std::string followed = FollowedImport(report, last_import);
  std::string line = RunVerdict(report);
  return followed.empty() ? line : line + " " + followed;
}

std::string LookupLines(const base::Value& report) {
  std::string text;
  for (const auto& line : At(At(report, "lookup"), "lines"))
    text += "  " + Text(line) + "\n";
  return text.empty() ? text : "Looked for earlier installations:\n" + text;
}

std::string TaskVerdict(const base::Value& report, const std::string& task) {
  if (IsTask(task, names::kTaskUpgradeVersion3))
    return "Ran the upgrade of the version-3 databases";
  if (IsTask(task, names::kTaskCopyVersion2))
    return "Ran the copy of the version-2 databases to encrypted version 3";
  if (DBCheckValue(report, "ImportStart") == "1")
    return "Nothing imported: the databases of an earlier release of the player exist already";
  std::string end = DBCheckValue(report, "ImportEnd");
  std::string state = DBCheckValue(report, "ImportState");
  if (end == "5") {
    std::string failure = Text(At(report, "failure"));
    if (!failure.empty() && failure.back() == '.')
      failure.pop_back();  // the line gets its own full stop
    return std::string(ReplacedDatabases(report) ? "Import failed after the new databases "
                                                   "replaced the old ones"
                                                 : "Import failed, nothing was replaced") +
           ": ImportState " + DescribeImportState(base::UTF8ToWide(state)) + Damage(report) +
           (failure.empty() ? std::string() : ". " + failure);
  }
  std::string line = "Imported " + ImportedCounts(report) + Skipped(report) + Damage(report);
  uint32_t source_bits = StateBits(report) & (names::kStateListsFailed | names::kStateMusicFailed |
                                              names::kStateTableFailed);
  if (source_bits) {
    line += "; some source tables could not be read (ImportState " +
            DescribeImportState(std::to_wstring(source_bits)) + ")";
  }
  if (end == "8")
    line += "; the old installation counts as empty (ImportEnd 8)";
  return line;
}

std::string DroppedByName(const base::Value& report) {
  std::string text;
  for (const auto& drop : At(report, "dropped")) {
    const std::string why = Text(At(drop, "text"));
    int64_t named = 0;
    for (const auto& example : At(drop, "examples")) {
      ++named;
      std::string name = Text(At(example, "name"));
      const base::Value& entries = At(example, "entries");
      if (entries.is_number()) {
        text += "  skipped list '" + name + "' (" + Count(Number(entries), "entry", "entries") +
                "): " + why + "\n";
        continue;
      }
      text += "  skipped " + Text(At(example, "table")) + " " +
              std::to_string(Number(At(example, "old_id"))) +
              (name.empty() ? std::string() : " '" + name + "'") + ": " + why + "\n";
    }
    int64_t more = Number(At(drop, "count")) - named;
    if (more > 0)
      text += "  and " + std::to_string(more) + " more: " + why + " (not named in the report)\n";
  }
  return text.empty() ? text : "Dropped records, by reason:\n" + text;
}

std::string DescribeDetails(const base::Value& report) {
  std::ostringstream out;
  out << LookupLines(report);
  out << "DBCheck values written by this run:\n";
  for (const auto& [key, value] : At(report, "dbcheck").items())
    out << "  " << key << " = " << Text(value) << "\n";
  if (!At(report, "sources").empty())
    out << "Sources:\n";
  for (const auto& s : At(report, "sources")) {
    out << "  " << Text(At(s, "path")) << " [" << Text(At(s, "layout")) << "]"
        << (At(s, "copied") == true ? " copied" : "")
        << (At(s, "reused_copy") == true ? " reused copy" : "")
        << (At(s, "repaired") == true ? " repaired" : "")
        << (At(s, "unreadable") == true ? " unreadable" : "") << "\n";
  }
  if (!At(report, "flows").empty())
    out << "Read -> written + dropped, per source and target table:\n";
  for (const auto& f : At(report, "flows")) {
    out << "  " << FileName(Text(At(f, "source"))) << " " << Text(At(f, "from")) << " -> "
        << Text(At(f, "to")) << ": " << Number(At(f, "read")) << " -> " << Number(At(f, "written"))
        << " + " << Number(At(f, "dropped")) << "\n";
  }
  if (!At(report, "target_tables").empty())
    out << "Target tables (rows written / counted in the finished file):\n";
  for (const auto& t : At(report, "target_tables")) {
    out << "  " << Text(At(t, "table")) << ": " << Number(At(t, "rows_sent")) << " / "
        << (At(t, "rows_counted").is_null() ? std::string("-")
                                            : std::to_string(Number(At(t, "rows_counted"))))
        << "\n";
  }
  out << DroppedByName(report);
  const base::Value& summary = At(report, "summary");
  if (Number(At(summary, "settings_written"))) {
    out << "Settings: " << Number(At(summary, "settings")) << " read from the source; "
        << std::max<int64_t>(
               0, Number(At(summary, "settings_written")) - Number(At(summary, "settings")))
        << " defaults written beside them\n";
  }
  out << "Stages:";
  for (const auto& stage : At(report, "stages")) {
    char seconds[32];
    std::snprintf(seconds, sizeof(seconds), "%.3f",
                  At(stage, "seconds").is_number() ? At(stage, "seconds").get<double>() : 0.0);
    out << " " << Text(At(stage, "name")) << " " << seconds << "s";
  }
  out << "\n";
  return out.str();
}

int ExitStatusOf(const base::Value& report) {
  if (!report.is_object())
    return kExitFailed;
  if (ReportTask(report).empty() && !At(At(report, "lookup"), "unreachable").empty())
    return kExitUnreachable;
  uint32_t bits = StateBits(report);
  if (DBCheckValue(report, "ImportEnd") == "5" ||
      (bits & (names::kStateNotStarted | names::kStateBuildFailed)))
    return kExitFailed;
  for (const auto& database : At(report, "target_databases")) {
    if (At(database, "read_back") == false)
      return kExitFailed;
  }
  for (const auto& target : At(report, "target_tables")) {
    if (At(target, "matches") == false)
      return kExitFailed;
  }
  if (bits & (names::kStateListsFailed | names::kStateMusicFailed | names::kStateTableFailed))
    return kExitDamaged;
  for (const auto& source : At(report, "sources")) {
    if (At(source, "repaired") == true || At(source, "unreadable") == true)
      return kExitDamaged;
  }
  return kExitImported;
}
