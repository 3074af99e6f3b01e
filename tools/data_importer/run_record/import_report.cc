#include "tools/data_importer/run_record/import_report.h"

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

namespace {

std::string Utf8(const std::wstring& text) {
  return base::WideToUTF8(text);
}

// Names of tables are written unquoted: "GeneralList_-3", not
// "\"GeneralList_-3\"".
std::string PlainTableName(std::string name) {
  if (name.size() >= 2 && name.front() == '"' && name.back() == '"')
    name = name.substr(1, name.size() - 2);
  return name;
}

base::Value ExampleJson(const ImportReport::DropExample& example) {
  base::Value json = {
      {"table", example.table}, {"old_id", example.old_id}, {"name", Utf8(example.name)}};
  if (example.entries >= 0)
    json["entries"] = example.entries;
  return json;
}

}  // namespace

ImportReport::ImportReport() {
  m_source_tables.push_back({L"", "(not recorded)"});
}

void ImportReport::SetTask(const std::wstring& task, int import_kind) {
  m_task = task;
  m_import_kind = import_kind;
}

ImportReport::Source* ImportReport::FindSource(const std::wstring& read_path) {
  for (Source& source : m_sources) {
    if (source.read_path == read_path)
      return &source;
  }
  return nullptr;
}

void ImportReport::AddSource(const base::FilePath& original,
                             const base::FilePath& read_path,
                             const std::string& layout,
                             unsigned flags) {
  if (Source* known = FindSource(read_path.value())) {
    known->flags |= flags;
    return;
  }
  m_sources.push_back({original.value(), read_path.value(), layout, flags, {}});
}

void ImportReport::NoteWorkCopy(const base::FilePath& read_path, const std::string& why) {
  if (!FindSource(read_path.value()))
    MarkSource(read_path, 0);
  FindSource(read_path.value())->work_copy = why;
}

void ImportReport::AddSalvagedTable(const base::FilePath& read_path,
                                    const std::string& table,
                                    int64_t rows_salvaged,
                                    int64_t rows_known_lost,
                                    bool complete) {
  MarkSource(read_path, kSalvaged);
  m_salvaged.push_back({read_path.value(), table, rows_salvaged, rows_known_lost, complete});
}

void ImportReport::MarkSource(const base::FilePath& read_path, unsigned flags) {
  if (Source* known = FindSource(read_path.value()))
    known->flags |= flags;
  else
    m_sources.push_back({read_path.value(), read_path.value(), std::string(), flags, {}});
}

int ImportReport::SourceTable(const base::FilePath& read_path, const std::string& table) {
  for (size_t i = 1; i < m_source_tables.size(); ++i) {
    if (m_source_tables[i].source == read_path.value() && m_source_tables[i].table == table)
      return static_cast<int>(i);
  }
  m_source_tables.push_back({read_path.value(), table});
  return static_cast<int>(m_source_tables.size() - 1);
}

void ImportReport::AddRead(int origin, int64_t rows, int64_t made) {
  if (origin <= 0 || static_cast<size_t>(origin) >= m_source_tables.size())
    origin = 0;
  m_source_tables[origin].rows_read += rows;
  m_source_tables[origin].records_made += made;
}

void ImportReport::AddMerged(int origin, int64_t rows) {
  if (origin <= 0 || static_cast<size_t>(origin) >= m_source_tables.size())
    origin = 0;
  m_source_tables[origin].records_made -= rows;
  m_source_tables[origin].rows_merged += rows;
}

void ImportReport::AddDrop(int origin,
                           const std::string& target,
                           const DropReason& reason,
                           const DropExample& example) {
  AddDrops(origin, target, reason, 1, {example});
}

void ImportReport::AddDrops(int origin,
                            const std::string& target,
                            const DropReason& reason,
                            int64_t count,
                            const std::vector<DropExample>& examples) {
  if (count <= 0)
    return;
  m_flows[{origin, PlainTableName(target)}].dropped[reason.key] += count;
  Drops& drops = m_drops.try_emplace(reason.key, Drops{reason, 0, {}}).first->second;
  drops.count += count;
  for (const DropExample& example : examples) {
    if (drops.examples.size() >= kMaxExamples)
      break;
    drops.examples.push_back(example);
    // A writer's example names the source table through the origin.
    if (example.table.empty() && origin > 0 && static_cast<size_t>(origin) < m_source_tables.size())
      drops.examples.back().table = m_source_tables[origin].table;
  }
}

void ImportReport::AddWritten(int origin, const std::string& target, int64_t rows) {
  m_flows[{origin, PlainTableName(target)}].written += rows;
}

void ImportReport::SetCountedRows(const std::string& database,
                                  const std::map<std::string, int64_t>& counts,
                                  bool ok,
                                  const std::string& error) {
  for (const auto& [table, rows] : counts)
    m_counted[table] = {database, rows};
  m_verified[database] = {ok, error};
}

void ImportReport::AddSettingsKey(const std::string& key) {
  m_settings_keys.push_back(key);
}

void ImportReport::NoteDBCheck(const std::wstring& key, const std::wstring& value) {
  for (auto& entry : m_dbcheck) {
    if (entry.first == key) {
      entry.second = value;
      return;
    }
  }
  m_dbcheck.emplace_back(key, value);
}

void ImportReport::AddStage(const std::string& name, double seconds) {
  m_stages.emplace_back(name, seconds);
}

int64_t ImportReport::WrittenRows(const std::string& target) const {
  int64_t rows = 0;
  for (const auto& [key, flow] : m_flows) {
    if (key.second == target)
      rows += flow.written;
  }
  return rows;
}

int64_t ImportReport::DropCount(const DropReason& reason) const {
  auto found = m_drops.find(reason.key);
  return found == m_drops.end() ? 0 : found->second.count;
}

base::Value ImportReport::ToJson() const {
  base::Value report = base::Value::object();
  report["report_version"] = kVersion;
  report["task"] = {{"name", Utf8(m_task)}, {"import_kind", m_import_kind}};
  report["time"] = m_end_time;

  base::Value sources = base::Value::array();
  for (const Source& s : m_sources) {
    sources.push_back({{"path", Utf8(s.original)},
                       {"read_from", Utf8(s.read_path)},
                       {"layout", s.layout},
                       {"copied", (s.flags & kCopied) != 0},
                       {"reused_copy", (s.flags & kReusedCopy) != 0},
                       {"repaired", (s.flags & kRepaired) != 0},
                       {"unreadable", (s.flags & kUnreadable) != 0},
                       {"salvaged", (s.flags & kSalvaged) != 0},
                       {"work_copy", s.work_copy}});
  }
  report["sources"] = std::move(sources);
  base::Value salvage = base::Value::array();
  for (const SalvagedTable& t : m_salvaged) {
    salvage.push_back({{"source", Utf8(t.source)},
                       {"table", t.table},
                       {"rows_salvaged", t.rows_salvaged},
                       {"rows_known_lost", t.rows_known_lost},
                       {"complete", t.complete}});
  }
  report["salvage"] = std::move(salvage);
  report["failure"] = Utf8(m_failure);

  base::Value tables = base::Value::array();
  for (size_t i = 1; i < m_source_tables.size(); ++i) {
    const SourceTableCount& t = m_source_tables[i];
    tables.push_back({{"source", Utf8(t.source)},
                      {"table", t.table},
                      {"rows_read", t.rows_read},
                      {"records_made", t.records_made},
                      {"rows_merged", t.rows_merged}});
  }
  report["source_tables"] = std::move(tables);

  // One entry per source-to-target pair: what was read for the target is
  // what was written plus what was dropped.
  base::Value flows = base::Value::array();
  for (const auto& [key, flow] : m_flows) {
    const SourceTableCount& from = m_source_tables[key.first];
    int64_t dropped = 0;
    base::Value reasons = base::Value::object();
    for (const auto& [reason, count] : flow.dropped) {
      reasons[reason] = count;
      dropped += count;
    }
    flows.push_back({{"source", Utf8(from.source)},
                     {"from", from.table},
                     {"to", key.second},
                     {"read", flow.written + dropped},
                     {"written", flow.written},
                     {"dropped", dropped},
                     {"dropped_by_reason", std::move(reasons)}});
  }
  report["flows"] = std::move(flows);

  // Per target table: rows the writers sent, and rows found in the finished
  // file when it was counted. A difference is reported, not corrected.
  std::map<std::string, int64_t> sent;
  for (const auto& [key, flow] : m_flows)
    sent[key.second] += flow.written;
  for (const auto& [table, counted] : m_counted)
    sent.try_emplace(table, 0);
  base::Value targets = base::Value::array();
  for (const auto& [table, rows] : sent) {
    base::Value entry = {{"table", table}, {"rows_sent", rows}};
    auto counted = m_counted.find(table);
    if (counted == m_counted.end()) {
      entry["database"] = nullptr;
      entry["rows_counted"] = nullptr;
      entry["matches"] = nullptr;
    } else {
      entry["database"] = counted->second.first;
      entry["rows_counted"] = counted->second.second;
      entry["matches"] = counted->second.second == rows;
    }
    targets.push_back(std::move(entry));
  }
  report["target_tables"] = std::move(targets);
  report["summary"] = Summary(sent);
  base::Value databases = base::Value::array();
  for (const auto& [database, result] : m_verified) {
    databases.push_back(
        {{"database", database}, {"read_back", result.first}, {"error", result.second}});
  }
  report["target_databases"] = std::move(databases);

  base::Value drops = base::Value::array();
  for (const auto& [key, d] : m_drops) {
    base::Value examples = base::Value::array();
    for (const DropExample& example : d.examples)
      examples.push_back(ExampleJson(example));
    drops.push_back({{"reason", key},
                     {"text", d.count == 1 ? d.reason.one : d.reason.many},
                     {"count", d.count},
                     {"examples", std::move(examples)}});
  }
  report["dropped"] = std::move(drops);

  base::Value kept = base::Value::object();
  for (const auto& [what, count] : m_kept_unlinked)
    kept[what] = count;
  report["kept_unlinked"] = std::move(kept);
  report["upgrade"] = m_upgrade;
  report["lookup"] = m_lookup;
  report["settings_keys"] = m_settings_keys;
  base::Value dbcheck = base::Value::object();
  for (const auto& [key, value] : m_dbcheck)
    dbcheck[Utf8(key)] = Utf8(value);
  report["dbcheck"] = std::move(dbcheck);
  base::Value stages = base::Value::array();
  for (const auto& [name, seconds] : m_stages)
    stages.push_back({{"name", name}, {"seconds", seconds}});
  report["stages"] = std::move(stages);
  return report;
}

// What the new databases hold, in the terms a person counts in: rows as
// counted in the finished files where they were counted, else as sent.
base::Value ImportReport::Summary(const std::map<std::string, int64_t>& sent) const {
  auto rows = [&](const std::string& table) -> int64_t {
    auto counted = m_counted.find(table);
    if (counted != m_counted.end())
      return counted->second.second;
    auto found = sent.find(table);
    return found == sent.end() ? 0 : found->second;
  };
  int64_t entries = 0;
  for (const auto& [table, unused] : sent) {
    if (table.rfind("GeneralList_", 0) == 0)
      entries += rows(table);
  }
  int64_t library = rows("ShareFileItems");
  return {{"songs", library - m_library_videos},
          {"videos", m_library_videos},
          {"lists", rows("GeneralListTable")},
          {"list_entries", entries},
          {"downloads", rows("DownloadItem")},
          {"settings", m_settings_read},
          {"settings_written", static_cast<int64_t>(m_settings_keys.size())}};
}

std::string ImportReport::ToText() const {
  try {
    return ToJson().dump(2, ' ', false, base::Value::error_handler_t::replace) + "\n";
  } catch (...) {
    return std::string();
  }
}

bool ImportReport::Write(const base::FilePath& data_folder) const {
  base::FilePath temp = data_folder.Append(importer_names::kReportTempFileName);
  std::string text = ToText();
  if (text.empty() || !base::WriteFile(temp, text)) {
    // The failure is what the caller reports; a half-written temporary
    // file is only tidied away.
    (void)base::DeleteFile(temp);
    return false;
  }
  return base::ReplaceFile(temp, data_folder.Append(importer_names::kReportFileName));
}

SourceTableTally::SourceTableTally(ImportReport* report,
                                   const base::FilePath& read_path,
                                   const std::string& table)
    : m_report(report), m_table(table) {
  if (m_report) {
    m_origin = m_report->SourceTable(read_path, table);
    m_report->EnterStage("reading " + PlainTableName(table));
  }
}

SourceTableTally::~SourceTableTally() {
  if (m_report)
    m_report->AddRead(m_origin, m_read, m_made);
}

void SourceTableTally::Dropped(const std::string& target,
                               const DropReason& reason,
                               int64_t old_id,
                               const std::wstring& name,
                               int64_t entries) {
  if (m_report)
    m_report->AddDrop(m_origin, target, reason, {m_table, old_id, name, entries});
}

TargetTableTally::TargetTableTally(ImportReport* report, std::string target)
    : m_report(report), m_target(std::move(target)) {}

TargetTableTally::~TargetTableTally() {
  if (!m_report)
    return;
  for (const auto& [origin, counts] : m_counts) {
    if (counts.written)
      m_report->AddWritten(origin, m_target, counts.written);
    for (const auto& [reason, dropped] : counts.dropped)
      m_report->AddDrops(origin, m_target, *reason, dropped.first, dropped.second);
  }
}

TargetTableTally::Counts& TargetTableTally::For(int origin) {
  if (origin != m_last_origin || !m_last) {
    m_last = &m_counts[origin];
    m_last_origin = origin;
  }
  return *m_last;
}

void TargetTableTally::Written(int origin) {
  if (m_report)
    ++For(origin).written;
}

void TargetTableTally::Dropped(int origin,
                               const DropReason& reason,
                               const ImportReport::DropExample& example) {
  if (!m_report)
    return;
  auto& dropped = For(origin).dropped[&reason];
  ++dropped.first;
  if (dropped.second.size() < ImportReport::kMaxExamples)
    dropped.second.push_back(example);
}

}  // namespace data_importer
