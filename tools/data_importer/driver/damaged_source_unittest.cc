// Damaged sources of generations 6 and 7 and of the re-import, seeded:
// zeroed, random, bit-flipped and duplicated pages, truncated files and
// damaged headers. The songs and list entries an export gets must be at least
// 99 % of what a plain "SELECT *" of each table gets, counting only the
// tables whose plain read completes; every row the salvage calls lost must
// have been in the undamaged file (the samples hold rows the old player
// deleted, and indexes that name the rows). The figures of each kind of
// damage are printed.
//
// A few seeds run by default; VANTU_DAMAGE_SEEDS="first-last" runs another
// range (the longer sets registered under the CTest label "seeded").

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/environment.h"
#include "base/file_util.h"
#include "base/json_file.h"
#include "sql/connection.h"
#include "sql/statement.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/fixtures/reimport_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/environment/run_context.h"
#include "tools/data_importer/source_readers/data_exporter.h"
#include "tools/data_importer/database_helper/db_row_reader.h"
#include "tools/data_importer/database_helper/salvage_copy.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/run_record/progress_record.h"
#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/source_readers/v6_data_exporter/v6_data_exporter.h"
#include "tools/data_importer/source_readers/v7_data_exporter/v7_data_exporter.h"
#include "tools/data_importer/source_readers/v8_data_exporter/v8_data_exporter.h"

namespace data_importer {

namespace {

constexpr size_t kPage = 4096;

// The seeds each kind of damage runs: |first| to |last|, or the range
// VANTU_DAMAGE_SEEDS names.
std::pair<int, int> Seeds(int first, int last) {
  std::wstring range;
  int from = 0, to = 0;
  if (base::GetEnvironmentString("VANTU_DAMAGE_SEEDS", &range) &&
      std::swscanf(range.c_str(), L"%d-%d", &from, &to) == 2 && from <= to)
    return {from, to};
  return {first, last};
}

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
  int64_t known_lost = 0;  // rows the report says were lost (all tables)
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
  const base::Value report = const_cast<ImportModel&>(model).report()->ToJson();
  for (const base::Value& table : report["salvage"])
    counts.known_lost += table["rows_known_lost"].get<int64_t>();
  return counts;
}

// The row ids of |table| in |db|, in order.
std::vector<int64_t> RowIds(sql::Connection* db, const std::string& table) {
  std::vector<int64_t> ids;
  sql::Statement rows(
      db->GetUniqueStatement(("SELECT rowid FROM \"" + table + "\" ORDER BY rowid").c_str()));
  while (rows.Step())
    ids.push_back(rows.ColumnInt64(0));
  return ids;
}

// Salvages |damaged| (the bytes of |original| after damage) on its own and
// expects every row it calls lost to be a row of |original| that the salvage
// copy lacks. Answers the number of rows called lost.
int64_t ExpectLostRowsExisted(const std::string& original, const std::string& damaged) {
  testing_support::ScopedTempDir dir;
  const base::FilePath original_path = dir.path().Append(L"original.db");
  const base::FilePath damaged_path = dir.path().Append(L"damaged.db");
  const base::FilePath copy_path = dir.path().Append(L"copy.db");
  testing_support::WriteBytes(original_path, original);
  testing_support::WriteBytes(damaged_path, damaged);
  SalvageResult salvage = SalvageCopy(damaged_path, copy_path);
  if (!salvage.ok)
    return 0;
  sql::Connection before, copy;
  EXPECT_TRUE(before.OpenReadOnly(original_path));
  EXPECT_TRUE(copy.OpenReadOnly(copy_path));
  int64_t lost = 0;
  for (const SalvagedTable& table : salvage.tables) {
    if (table.lost_rowids.empty())
      continue;
    const std::vector<int64_t> existed = RowIds(&before, table.name);
    const std::vector<int64_t> copied = RowIds(&copy, table.name);
    for (int64_t id : table.lost_rowids) {
      EXPECT_TRUE(std::binary_search(existed.begin(), existed.end(), id))
          << table.name << " row " << id << " was never there";
      EXPECT_FALSE(std::binary_search(copied.begin(), copied.end(), id))
          << table.name << " row " << id << " was copied";
    }
    lost += static_cast<int64_t>(table.lost_rowids.size());
  }
  return lost;
}

// One source file of a generation and its undamaged bytes.
struct Source {
  base::FilePath path;
  std::string original;
};

// Runs |statements| on the file at |path|.
void Execute(const base::FilePath& path, const std::string& statements) {
  sql::Connection db;
  ASSERT_TRUE(db.Open(path));
  ASSERT_TRUE(db.Execute(statements.c_str())) << statements;
}

class DamagedSourceTest : public testing::Test {
 protected:
  // Runs an export over every kind of damage and seed (seeds |first| to
  // |last| unless the environment names others), each damaging one of
  // |sources| (in turn) while the others stay whole, and expects the 99 %
  // goal per kind against |table_by_table| of the damaged sources.
  template <typename Exporter>
  void ExpectSalvage(const char* generation,
                     const std::vector<Source>& sources,
                     const std::function<Counts()>& table_by_table,
                     int first,
                     int last) {
    const auto [from, to] = Seeds(first, last);
    Counts all_read, all_plain;
    for (Damage damage : {Damage::kZeroed, Damage::kRandom, Damage::kBitFlips, Damage::kDuplicated,
                          Damage::kTruncated, Damage::kHeader}) {
      Counts read, plain;
      int64_t checked_lost = 0;
      for (int seed = from; seed <= to; ++seed) {
        const size_t which = static_cast<size_t>(seed) % sources.size();
        const std::string damaged = Damaged(sources[which].original, damage, seed);
        for (size_t i = 0; i < sources.size(); ++i)
          testing_support::WriteBytes(sources[i].path, i == which ? damaged : sources[i].original);
        Counts expected = table_by_table();
        checked_lost += ExpectLostRowsExisted(sources[which].original, damaged);
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
        read.known_lost += got.known_lost;
        plain.songs += expected.songs;
        plain.entries += expected.entries;
      }
      std::printf(
          "%s, %s: songs %lld of %lld, list entries %lld of %lld (table-by-table); rows known "
          "lost %lld (%lld checked against the undamaged files)\n",
          generation, Name(damage), static_cast<long long>(read.songs),
          static_cast<long long>(plain.songs), static_cast<long long>(read.entries),
          static_cast<long long>(plain.entries), static_cast<long long>(read.known_lost),
          static_cast<long long>(checked_lost));
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
  // Songs the old player deleted, and indexes over the songs and entries.
  Execute(source,
          "DELETE FROM FileItems WHERE FileItemID % 13 = 0;"
          "CREATE INDEX FileItemsByName ON FileItems(FileName);"
          "CREATE INDEX PlayListItemsByList ON PlayListItems(PlayListID);");
  const Layout layout = {"FileItems",  "FileItemID", "PlayLists", "PlayListItems",
                         "FileItemID", {0},          {1, 5}};
  ExpectSalvage<V7DataExporter>(
      "generation 7", {{source, testing_support::ReadBytes(source)}},
      [&] { return TableByTable(source, layout); }, 1, 8);
}

TEST_F(DamagedSourceTest, Generation6SalvagesWhatATableByTableReadGets) {
  base::FilePath program = m_profile.root().Append(L"VanTa6");
  ASSERT_TRUE(WriteSampleV6Installation(program, 600));
  ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(program)));
  TestProfile::Touch(program.Append(L"VanTa6.exe"));
  base::FilePath source = program.Append(L"VTData.db");
  Execute(source,
          "DELETE FROM MusicItems WHERE ID % 13 = 0;"
          "CREATE INDEX MusicItemsByName ON MusicItems(FileName);");
  const Layout layout = {"MusicItems",  "ID",       "PlayLists", "PlayListItems",
                         "MusicItemID", {0, 6, 10}, {3}};
  ExpectSalvage<V6DataExporter>(
      "generation 6", {{source, testing_support::ReadBytes(source)}},
      [&] { return TableByTable(source, layout); }, 1, 8);
}

// The re-import: "VTMusic.db" holds the library and the recently played
// songs, "vantu.db" the lists, each list's entries in a table of its own
// that names its songs by path and hash. A duplicated page gives entries
// twice as well, so they are counted by their ids, as the songs are.
Counts ReimportTableByTable(const base::FilePath& music, const base::FilePath& lists) {
  Counts counts;
  auto distinct_entries = [&counts](sql::Connection* db, const char* table) {
    bool ok = false;
    auto entries = PlainRows(db, table, {"SongID"}, &ok);
    std::set<std::vector<int64_t>> ids(entries.begin(), entries.end());
    if (ok)
      counts.entries += static_cast<int64_t>(ids.size());
  };
  sql::Connection db;
  if (db.OpenReadOnly(music)) {
    bool ok = false;
    auto songs = PlainRows(&db, "ShareFileItems", {"id", "ShareFileType"}, &ok);
    std::set<int64_t> ids;
    for (const auto& row : songs) {
      if (row[1] != 2)  // not the MV files
        ids.insert(row[0]);
    }
    if (ok)
      counts.songs = static_cast<int64_t>(ids.size());
    distinct_entries(&db, "RecentlyPlayedItem");
  }
  db.Close();
  if (db.OpenReadOnly(lists)) {
    distinct_entries(&db, "GeneralList_1");
    distinct_entries(&db, "GeneralList_2");
  }
  return counts;
}

TEST_F(DamagedSourceTest, ReimportSalvagesWhatATableByTableReadGets) {
  const base::FilePath folder = TestDataFolder();
  ASSERT_TRUE(WriteSampleReimportDatabases(folder));
  const base::FilePath music = folder.Append(L"VTMusic.db");
  const base::FilePath lists = folder.Append(L"vantu.db");
  // The sample grown to a library of some 600 songs with two long lists,
  // some songs deleted by the old player, and indexes over both.
  Execute(music,
          "WITH RECURSIVE n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 1600) "
          "INSERT INTO ShareFileItems(id, FileName, FileNamePure, FileSize, MD5) SELECT i, "
          "'D:\\Music\\Grown ' || i || '.mp3', 'Grown ' || i, i * 1000, hex(randomblob(16)) "
          "FROM n;"
          "DELETE FROM ShareFileItems WHERE id >= 1000 AND id % 13 = 0;"
          "CREATE INDEX ShareFileItemsByName ON ShareFileItems(FileName);");
  Execute(lists,
          "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < 500) "
          "INSERT INTO GeneralList_1(SongID, SortID, TitleName, MusicFilePath, MusicFileHash) "
          "SELECT i, i, 'Grown ' || (i + 900), 'D:\\Music\\Grown ' || (i + 900) || '.mp3', "
          "NULL FROM n;"
          "INSERT INTO GeneralList_2(SongID, SortID, TitleName, MusicFilePath, MusicFileHash) "
          "SELECT SongID, SortID, TitleName, MusicFilePath, MusicFileHash FROM GeneralList_1 "
          "WHERE SongID >= 100;"
          "CREATE INDEX GeneralList1BySort ON GeneralList_1(SortID);");
  ExpectSalvage<V8DataExporter>(
      "re-import",
      {{music, testing_support::ReadBytes(music)}, {lists, testing_support::ReadBytes(lists)}},
      [&] { return ReimportTableByTable(music, lists); }, 1, 3);
}

}  // namespace

}  // namespace data_importer
