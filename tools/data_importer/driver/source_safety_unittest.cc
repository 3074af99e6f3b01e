// Whole runs over the sources of every generation: the user's files are
// never written, created beside or changed in their attributes, read-only
// and damaged ones included; and a source that could not be read leaves
// nothing in place that would stop the next run from importing it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/file_util.h"
#include "sql/connection.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/fixtures/generation7_fixture.h"
#include "testing/fixtures/version2_fixture.h"
#include "testing/test_support.h"
#include "tools/data_importer/data_importer_main.h"
#include "testing/importer_test_util.h"
#include "tools/data_importer/target_store/build_sequence.h"

namespace data_importer {

namespace {

constexpr size_t kPage = 4096;

class SourceSafetyTest : public testing::Test {
 protected:
  base::FilePath Data(const wchar_t* name) const { return m_profile.data_folder().Append(name); }
  base::FilePath V7Source() const {
    return Generation7Folder(m_profile.roaming()).Append(L"VTData.db");
  }
  base::FilePath V6Program() const { return m_profile.root().Append(L"VanTa6"); }

  void InstallV6(int songs) {
    ASSERT_TRUE(WriteSampleV6Installation(V6Program(), songs));
    ASSERT_TRUE(base::WriteFile(m_profile.root().Append(L"user.reg"), V6RegistryText(V6Program())));
    TestProfile::Touch(V6Program().Append(L"VanTa6.exe"));
  }

  // Songs (not MV files) in the finished library; -1 when there is none.
  int64_t LibrarySongs() const {
    sql::Connection db;
    if (!db.OpenWithKey(Data(L"VTMusicV3.db"), kVersion3DatabaseKey))
      return -1;
    std::vector<std::string> count =
        QueryRows(&db, "SELECT count(*) FROM ShareFileItems WHERE ShareFileType <> 2");
    return count.size() == 1 ? std::stoll(count[0]) : -1;
  }

  // Runs the importer over read-only |sources| and expects them unchanged.
  void RunOverReadOnly(const std::vector<base::FilePath>& sources) {
    MakeReadOnly(sources);
    const std::string before = SourceFilesState(sources);
    DataImporterMain();
    EXPECT_EQ(before, SourceFilesState(sources));
  }

  TestProfile m_profile;
};

TEST_F(SourceSafetyTest, Generation7OriginalReadOnlyAndDamagedStaysAsItWas) {
  ASSERT_TRUE(WriteSampleV7Installation(m_profile.roaming(), V7SampleSize()));
  // A zeroed page in the middle: the file fails the check and no compaction
  // repairs it, so the summary and the salvage both meet the damage.
  std::string bytes = testing_support::ReadBytes(V7Source());
  bytes.replace((bytes.size() / kPage / 2) * kPage, kPage, kPage, '\0');
  testing_support::WriteBytes(V7Source(), bytes);

  RunOverReadOnly({V7Source()});
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_GT(LibrarySongs(), 250);  // of 300
  EXPECT_NE(
      std::string::npos,
      testing_support::ReadBytes(Data(L"DataImporter.log")).find("fails the integrity check"));
  EXPECT_FALSE(base::PathExists(base::FilePath(Data(L"VT7Data.db").value() + L".salvage")));
  // The rows lost with the damaged page are part of the report's sums.
  ExpectReportReconciles(ReadImportReport(m_profile.data_folder()), m_profile.data_folder());
}

TEST_F(SourceSafetyTest, Generation6OriginalReadOnlyStaysAsItWas) {
  InstallV6(40);
  RunOverReadOnly({V6Program().Append(L"VTData.db"), V6Program().Append(L"VanTa.xml")});
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(40, LibrarySongs());
}

TEST_F(SourceSafetyTest, EarlierReleaseOriginalsReadOnlyStayAsTheyWere) {
  ASSERT_TRUE(base::CreateDirectory(m_profile.data_folder()));
  for (const wchar_t* name : {L"VTMusic.db", L"vantu.db"}) {
    sql::Connection db;
    ASSERT_TRUE(db.Open(Data(name)));
    ASSERT_TRUE(db.Execute(
        "CREATE TABLE ShareFileItems(id integer PRIMARY KEY, FileName text);"
        "INSERT INTO ShareFileItems(FileName) VALUES ('D:\\a.mp3'), ('D:\\b.mp3');"
        "CREATE TABLE GeneralListTable(PlayListID integer PRIMARY KEY, PlaylistName text);"
        "INSERT INTO GeneralListTable VALUES (1, 'One');"));
  }
  RunOverReadOnly({Data(L"VTMusic.db"), Data(L"vantu.db")});
  base::Value report = ReadImportReport(m_profile.data_folder());
  for (const wchar_t* copy : {L"VT8Music.db", L"VT8Playlist.db"}) {
    const base::Value* source =
        FindEntry(report["sources"], "read_from", Data(copy).AsUTF8Unsafe());
    ASSERT_NE(nullptr, source);
    EXPECT_EQ(true, (*source)["copied"]);
  }
}

// A source of which nothing can be read imports nothing and says why; no
// empty library takes its place, so once the user puts a good file back
// the next run imports it: the earlier run's work copy, made of the
// damaged file, is not read again.
TEST_F(SourceSafetyTest, RestoredSourceArrivesOnTheNextRun) {
  ASSERT_TRUE(WriteSampleV7Installation(m_profile.roaming(), V7SampleSize()));
  const std::string good = testing_support::ReadBytes(V7Source());
  std::string garbage = good;
  for (size_t i = 0; i < garbage.size(); i += 7)
    garbage[i] = static_cast<char>(garbage[i] ^ 0x5a);
  garbage.replace(0, 16, "SQLite format 3");  // still looks like a database
  testing_support::WriteBytes(V7Source(), garbage);

  DataImporterMain();
  EXPECT_EQ(L"5", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_FALSE(base::PathExists(Data(L"VTMusicV3.db")));
  EXPECT_FALSE(base::PathExists(Data(L"playlistV3.db")));
  base::Value report = ReadImportReport(m_profile.data_folder());
  EXPECT_NE(std::string::npos, report["failure"].get<std::string>().find("start again"));

  testing_support::WriteBytes(V7Source(), good);
  DataImporterMain();
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"", m_profile.DBCheck(L"ImportState"));
  EXPECT_EQ(300, LibrarySongs());
  report = ReadImportReport(m_profile.data_folder());
  const base::Value* source =
      FindEntry(report["sources"], "read_from", Data(L"VT7Data.db").AsUTF8Unsafe());
  ASSERT_NE(nullptr, source);
  EXPECT_EQ("copied again: the source changed since the copy", (*source)["work_copy"]);
}

// The same for generation 6, whose unreadable database used to be imported
// as an empty library.
TEST_F(SourceSafetyTest, RestoredGeneration6SourceArrivesOnTheNextRun) {
  InstallV6(30);
  base::FilePath source = V6Program().Append(L"VTData.db");
  const std::string good = testing_support::ReadBytes(source);
  testing_support::WriteBytes(source, std::string(good.size(), 'x'));

  DataImporterMain();
  EXPECT_EQ(L"5", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_FALSE(base::PathExists(Data(L"VTMusicV3.db")));

  testing_support::WriteBytes(source, good);
  DataImporterMain();
  EXPECT_EQ(L"4", m_profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(30, LibrarySongs());
}

}  // namespace

}  // namespace data_importer
