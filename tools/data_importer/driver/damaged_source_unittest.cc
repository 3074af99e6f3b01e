// Damaged sources of generations 6 and 7, seeded: zeroed, random, bit-flipped
// and duplicated pages, truncated files and damaged headers. The songs and
// list entries an export gets must be at least 99 % of what a plain
// "SELECT *" of each table gets, counting only the tables whose plain read
// completes. The figures of each kind of damage are printed.

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/file_util.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/run_context.h"
#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"

namespace data_importer {

namespace {

constexpr size_t kPage = 4096;
constexpr int kSeedsPerKind = 8;

enum class Damage { kZeroed, kRandom, kBitFlips, kDuplicated, kTruncated, kHeader };
const char* Name(Damage damage) {
  switch (damage) {
    case Damage::kZeroed:
      return "zeroed page";
    case Damage::kRandom:
      return "random page";
    case Damage::kBitFlips:
      return "bit flips";
    case Damage::kDuplicated:
      return "duplicated page";
    case Damage::kTruncated:
      return "truncated";
    case Damage::kHeader:
      return "damaged header";
  }
  return "";
}

// |bytes| damaged the way |damage| says, chosen by |seed|; page 1 (the
// header and the schema) is left alone except by kHeader.
std::string Damaged(std::string bytes, Damage damage, unsigned seed) {
  std::mt19937 random(seed);
  const size_t pages = bytes.size() / kPage;
  auto page = [&] { return 1 + random() % (pages - 1); };  // 0-based, past the header
  switch (damage) {
    case Damage::kZeroed:
      bytes.replace(page() * kPage, kPage, kPage, '\0');
      break;
    case Damage::kRandom:
      for (size_t i = 0, at = page() * kPage; i < kPage; ++i)
        bytes[at + i] = static_cast<char>(random());
      break;
    case Damage::kBitFlips:
      for (int i = 0; i < 16; ++i)
        bytes[kPage + random() % (bytes.size() - kPage)] ^= static_cast<char>(1 << (random() % 8));
      break;
    case Damage::kDuplicated: {
      size_t from = page(), to = page();
      bytes.replace(to * kPage, kPage, bytes.substr(from * kPage, kPage));
      break;
    }
    case Damage::kTruncated:
      bytes.resize((pages / 2 + random() % (pages / 2)) * kPage);
      break;
    case Damage::kHeader:
      for (int i = 0; i < 4; ++i)
        bytes[16 + random() % 84] ^= static_cast<char>(1 + random() % 255);
      break;
  }
  return bytes;
}

// The named |columns| of every row a plain "SELECT *" of |table| returns,
// as integers, and whether the read completed.
std::vector<std::vector<int64_t>> PlainRows(sql::Connection* db,
                                            const std::string& table,
                                            const std::vector<std::string>& columns,
                                            bool* complete) {
  std::vector<std::vector<int64_t>> rows;
  DbRowReader statement(*db, "SELECT * FROM " + table);
  while (statement.Step()) {
    std::vector<int64_t> row;
    for (const std::string& column : columns)
      row.push_back(statement.GetInt64(column));
    rows.push_back(row);
  }
  *complete = statement.Succeeded();
  return rows;
}

struct Counts {
  int64_t songs = 0;
  int64_t entries = 0;
};

// Where a generation keeps its songs, lists and list entries.
struct Layout {
  std::string songs;           // table
  std::string song_id;         // its id column
  std::string lists;           // table, with "PlayListID" and "PlayListType"
  std::string entries;         // table, with "PlayListID" and |entry_song|
  std::string entry_song;      // the column naming the entry's song
  std::set<int64_t> ordinary;  // list types imported when they have entries
  std::set<int64_t> always;    // list types imported always
};

// What a table-by-table read of the damaged file gets: the songs of a
// library table whose read completes, and the entries (of a list table
// whose read completes) whose list is imported and whose song is among
// those songs.
Counts TableByTable(const base::FilePath& file, const Layout& layout) {
  Counts counts;
  sql::Connection db;
  if (!db.OpenReadOnly(file))
    return counts;
  bool songs_ok = false, lists_ok = false, entries_ok = false;
  auto songs = PlainRows(&db, layout.songs, {layout.song_id}, &songs_ok);
  auto lists = PlainRows(&db, layout.lists, {"PlayListID", "PlayListType"}, &lists_ok);
  auto entries = PlainRows(&db, layout.entries, {"PlayListID", layout.entry_song}, &entries_ok);
  if (!songs_ok)
    return counts;
  std::set<int64_t> song_ids;
  for (const auto& row : songs)
    song_ids.insert(row[0]);
  // A duplicated page gives some songs twice; the library holds a song
  // once, so the songs are counted by their ids.
  counts.songs = static_cast<int64_t>(song_ids.size());
  if (!lists_ok || !entries_ok)
    return counts;
  std::map<int64_t, int64_t> kept_entries;
  for (const auto& row : entries) {
    if (song_ids.count(row[1]))
      ++kept_entries[row[0]];
  }
  for (const auto& row : lists) {
    bool ordinary = layout.ordinary.count(row[1]) && kept_entries[row[0]] > 0;
    if (ordinary || layout.always.count(row[1]))
      counts.entries += kept_entries[row[0]];
  }
  return counts;
}

Counts Exported(const ImportModel& model) {
  Counts counts;
  for (const auto& file : model.m_share_files)
    counts.songs += file->ShareFileType != 2;  // not the MV files
  for (const auto& [id, songs] : model.m_list_songs)
    counts.entries += static_cast<int64_t>(songs.size());
  counts.entries += static_cast<int64_t>(model.m_recent_songs.size());
  return counts;
}

class DamagedSourceTest : public testing::Test {
 protected:
  // Runs |export_one| over every kind of damage and seed of |original|
  // placed at |source|, and expects the 99 % goal per kind.
  template <typename Exporter>
  void ExpectSalvage(const char* generation,
                     const std::string& original,
                     const base::FilePath& source,
                     const Layout& layout) {
    Counts all_read, all_plain;
    for (Damage damage : {Damage::kZeroed, Damage::kRandom, Damage::kBitFlips, Damage::kDuplicated,
                          Damage::kTruncated, Damage::kHeader}) {
      Counts read, plain;
      for (int seed = 1; seed <= kSeedsPerKind; ++seed) {
        testing_support::WriteBytes(source, Damaged(original, damage, seed));
        Counts expected = TableByTable(source, layout);
        ProgressRecord record;
        record.Initialise(TestDataFolder());
        ImportModel model(&record);
        const RunContext context = TestRunContext();
        Exporter exporter(context, &model);
        // A source of which nothing can be read answers 1 and gives nothing.
        (void)exporter.ExportData();
        Counts got = Exported(model);
        read.songs += got.songs;
        read.entries += got.entries;
        plain.songs += expected.songs;
        plain.entries += expected.entries;
      }
      std::printf("%s, %s: songs %lld of %lld, list entries %lld of %lld (table-by-table)\n",
                  generation, Name(damage), static_cast<long long>(read.songs),
                  static_cast<long long>(plain.songs), static_cast<long long>(read.entries),
                  static_cast<long long>(plain.entries));
      EXPECT_GE(read.songs * 100, plain.songs * 99) << generation << ", " << Name(damage);
      EXPECT_GE(read.entries * 100, plain.entries * 99) << generation << ", " << Name(damage);
      all_read.songs += read.songs;
      all_read.entries += read.entries;
      all_plain.songs += plain.songs;
      all_plain.entries += plain.entries;
    }
    // The seeds must damage something a plain read notices, or the goal
    // proves nothing.
    EXPECT_GT(all_read.songs, all_plain.songs) << generation;
  }

  TestProfile m_profile;
};

TEST_F(DamagedSourceTest, Generation7SalvagesWhatATableByTableReadGets) {
  base::FilePath source = Generation7Folder(m_profile.roaming()).Append(L"VTData.db");
  V7SampleSize size;
  size.songs = 600;
  size.list_entries = 800;
  ASSERT_TRUE(WriteSampleV7Installation(m_profile.roaming(), size));
  const std::string original = testing_support::ReadBytes(source);
  ExpectSalvage<V7DataExporter>(
      "generation 7", original, source,
      {"FileItems", "FileItemID", "PlayLists", "PlayListItems", "FileItemID", {0}, {1, 5}});
}

TEST_F(DamagedSourceTest, Generation6SalvagesWhatATableByTableReadGets) {
  base::FilePath program = m_profile.root().Append(L"VanTa6");
  ASSERT_TRUE(WriteSampleV6Installation(program, 600));
  ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program)));
  TestProfile::Touch(program.Append(L"VanTa6.exe"));
  base::FilePath source = program.Append(L"VTData.db");
  const std::string original = testing_support::ReadBytes(source);
  ExpectSalvage<V6DataExporter>(
      "generation 6", original, source,
      {"MusicItems", "ID", "PlayLists", "PlayListItems", "MusicItemID", {0, 6, 10}, {3}});
}

}  // namespace

}  // namespace data_importer
