#include "tools/data_importer/target_store/replacement_commit.h"

#include <iterator>

#include "base/file_util.h"
#include "base/utf_string_conversions.h"
#include "logging/logging.h"
#include "sql/connection.h"
#include "tools/data_importer/run_record/importer_names.h"

namespace data_importer {

namespace {

struct Replacement {
  const wchar_t* temp_name;
  const wchar_t* final_name;
};

constexpr Replacement kPairs[] = {
    {importer_names::kMusicBuildFile, importer_names::kMusicDatabaseV3},
    {importer_names::kPlaylistBuildFile, importer_names::kPlaylistDatabaseV3},
};

bool Replace(const base::FilePath& data_folder, const Replacement& pair) {
  base::FilePath from = data_folder.Append(pair.temp_name);
  base::FilePath to = data_folder.Append(pair.final_name);
  if (base::ReplaceFile(from, to))
    return true;
  VLOG_AT(logging::LOG_FAILURE) << L"Replace file {" << to.value() << L"} with {" << from.value()
                                << L"} FAILED, error code {" << base::GetLastSystemError() << L"}.";
  return false;
}

bool DeleteWithLog(const base::FilePath& path) {
  if (base::DeleteFile(path))
    return true;
  VLOG_AT(logging::LOG_FAILURE) << L"Delete file {" << path.value() << L"} FAILED, error code {"
                                << base::GetLastSystemError() << L"}.";
  return false;
}

}  // namespace

bool CommitReplacement(const base::FilePath& data_folder,
                       const std::function<void(const char*)>& step_done,
                       ReplacedFiles files) {
  auto done = [&](const char* step) {
    if (step_done)
      step_done(step);
  };
  // The record is written under another name and renamed into place: the
  // rename makes its name durable (and the temporary files' names with it)
  // before the first final file changes.
  base::FilePath record = data_folder.Append(importer_names::kReplaceRecordName);
  base::FilePath record_new(record.value() + L".new");
  const bool included[] = {files.music, files.playlist};
  std::string text;
  for (size_t i = 0; i < std::size(kPairs); ++i) {
    if (included[i])
      text += base::WideToUTF8(kPairs[i].temp_name) + " > " +
              base::WideToUTF8(kPairs[i].final_name) + "\n";
  }
  if (!base::WriteFile(record_new, text) || !base::ReplaceFile(record_new, record)) {
    VLOG_AT(logging::LOG_FAILURE) << L"Write file {" << record.value() << L"} FAILED, error code {"
                                  << base::GetLastSystemError() << L"}; no database is replaced.";
    (void)base::DeleteFile(record_new);  // clean-up after the failure logged above
    return false;
  }
  done("CommitRecord");
  const char* const steps[] = {"ReplaceMusic", "ReplacePlaylist"};
  for (size_t i = 0; i < std::size(kPairs); ++i) {
    if (!included[i])
      continue;
    if (!Replace(data_folder, kPairs[i]))
      return false;
    done(steps[i]);
  }
  bool removed = DeleteWithLog(record);
  done("CommitDone");
  return removed;
}

bool CompleteOrUndoReplacement(const base::FilePath& data_folder) {
  base::FilePath record = data_folder.Append(importer_names::kReplaceRecordName);
  // A record never renamed into place means no commit began.
  (void)DeleteWithLog(base::FilePath(record.value() + L".new"));
  if (!base::PathExists(record)) {
    for (const Replacement& pair : kPairs) {
      base::FilePath temp = data_folder.Append(pair.temp_name);
      base::FilePath encrypted(temp.value() + sql::kEncryptedSiblingSuffix);
      for (const base::FilePath& path :
           {temp, encrypted, base::FilePath(temp.value() + sql::kJournalSuffix),
            base::FilePath(encrypted.value() + sql::kJournalSuffix)}) {
        if (base::PathExists(path)) {
          VLOG_AT(logging::LOG_FAILURE)
              << L"File {" << path.value() << L"} of an interrupted build is deleted.";
          DeleteWithLog(path);
        }
      }
    }
    return true;
  }
  VLOG_AT(logging::LOG_FAILURE) << L"File {" << record.value()
                                << L"} found: completing an interrupted replacement.";
  bool complete = true;
  for (const Replacement& pair : kPairs) {
    if (base::PathExists(data_folder.Append(pair.temp_name)))
      complete = Replace(data_folder, pair) && complete;
  }
  return complete && DeleteWithLog(record);
}

}  // namespace data_importer
