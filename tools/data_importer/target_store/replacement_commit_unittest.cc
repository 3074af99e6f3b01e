#include "tools/data_importer/target_store/replacement_commit.h"

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <string>

#include "base/file_util.h"
#include "testing/test_support.h"

namespace data_importer {

namespace {

using testing_support::ReadBytes;

class ReplacementCommitTest : public testing::Test {
 protected:
  base::FilePath Path(const wchar_t* name) const { return m_dir.path().Append(name); }

  void WriteFiles() {
    ASSERT_TRUE(base::WriteFile(Path(L"VTMusicV3.db"), "old music"));
    ASSERT_TRUE(base::WriteFile(Path(L"playlistV3.db"), "old lists"));
    ASSERT_TRUE(base::WriteFile(Path(L"VTMusicV2.db.tmp"), "new music"));
    ASSERT_TRUE(base::WriteFile(Path(L"playlist.db.tmp"), "new lists"));
  }

#if !defined(_WIN32)
  // Kill tests fork a child process and kill it: the Windows build has no fork.
  // Runs the commit in a child process killed right after |step|.
  void CommitKilledAfter(const std::string& step) {
    pid_t child = fork();
    ASSERT_NE(-1, child);
    if (child == 0) {
      bool ok = CommitReplacement(m_dir.path(), [&](const char* done) {
        if (step == done)
          raise(SIGKILL);
      });
      _exit(ok ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    ASSERT_TRUE(WIFSIGNALED(status)) << step;
  }

#endif  // !defined(_WIN32)
  void ExpectNoWorkFiles() {
    for (const wchar_t* name : {L"VTMusicV2.db.tmp", L"playlist.db.tmp", L"DatabaseReplace.commit",
                                L"DatabaseReplace.commit.new"})
      EXPECT_FALSE(base::PathExists(Path(name))) << base::FilePath(name).AsUTF8Unsafe();
  }

  testing_support::ScopedTempDir m_dir;
};

#if !defined(_WIN32)
// Kill tests fork a child process and kill it: the Windows build has no fork.
// A kill after any step of the commit is completed by the next run: both
// final files end up new, never one new and one old.
TEST_F(ReplacementCommitTest, KillAfterEachStepIsCompletedByTheNextRun) {
  for (const char* step : {"CommitRecord", "ReplaceMusic", "ReplacePlaylist", "CommitDone"}) {
    WriteFiles();
    CommitKilledAfter(step);
    EXPECT_TRUE(CompleteOrUndoReplacement(m_dir.path())) << step;
    EXPECT_EQ("new music", ReadBytes(Path(L"VTMusicV3.db"))) << step;
    EXPECT_EQ("new lists", ReadBytes(Path(L"playlistV3.db"))) << step;
    ExpectNoWorkFiles();
  }
}

#endif  // !defined(_WIN32)

// Without a record, a build was interrupted before its files were known to
// be good: they are deleted, with the rollback journal that a fresh file of
// the same name would otherwise inherit, and the final files stay as they
// were.
TEST_F(ReplacementCommitTest, TemporaryFilesWithoutRecordAreUndone) {
  WriteFiles();
  ASSERT_TRUE(base::WriteFile(Path(L"VTMusicV2.db.tmp.enc"), "half encrypted"));
  ASSERT_TRUE(base::WriteFile(Path(L"playlist.db.tmp-journal"), "pages of a killed vacuum"));
  ASSERT_TRUE(base::WriteFile(Path(L"DatabaseReplace.commit.new"), "half a record"));
  EXPECT_TRUE(CompleteOrUndoReplacement(m_dir.path()));
  EXPECT_EQ("old music", ReadBytes(Path(L"VTMusicV3.db")));
  EXPECT_EQ("old lists", ReadBytes(Path(L"playlistV3.db")));
  EXPECT_FALSE(base::PathExists(Path(L"VTMusicV2.db.tmp.enc")));
  EXPECT_FALSE(base::PathExists(Path(L"playlist.db.tmp-journal")));
  ExpectNoWorkFiles();
}

// A rename that fails is reported, and the record stays so that a later run
// finishes the pair once the obstacle is gone.
TEST_F(ReplacementCommitTest, FailedRenameKeepsTheRecord) {
  WriteFiles();
  ASSERT_TRUE(base::DeleteFile(Path(L"playlistV3.db")));
  ASSERT_TRUE(base::CreateDirectory(Path(L"playlistV3.db")));
  ASSERT_TRUE(base::WriteFile(Path(L"playlistV3.db").Append(L"x"), "in the way"));

  EXPECT_FALSE(CommitReplacement(m_dir.path()));
  EXPECT_EQ("new music", ReadBytes(Path(L"VTMusicV3.db")));
  EXPECT_TRUE(base::PathExists(Path(L"DatabaseReplace.commit")));
  EXPECT_FALSE(CompleteOrUndoReplacement(m_dir.path()));
  EXPECT_TRUE(base::PathExists(Path(L"DatabaseReplace.commit")));

  ASSERT_TRUE(base::DeleteFile(Path(L"playlistV3.db"), true));
  EXPECT_TRUE(CompleteOrUndoReplacement(m_dir.path()));
  EXPECT_EQ("new lists", ReadBytes(Path(L"playlistV3.db")));
  ExpectNoWorkFiles();
}

}  // namespace

}  // namespace data_importer
