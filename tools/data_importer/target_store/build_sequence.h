#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_BUILD_SEQUENCE_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_BUILD_SEQUENCE_H_

#include <functional>

#include "base/file_path.h"
#include "base/status.h"

namespace data_importer {

class ImportModel;

// The database key of every version-3 database (the SQLCipher passphrase).
inline constexpr wchar_t kVersion3DatabaseKey[] = L"3C5A0F1E9D2B47A6B8E1C4D7F0A29B63";

// Turns a filled import model into the two version-3 databases of
// |data_folder| and moves them into place:
//  1. prepares "VTMusicV2.db.tmp" and "playlist.db.tmp" (a stale ".tmp" is
//     deleted; an existing "VTMusicV2.db" or "playlist.db" stops the build);
//     on failure records state 1 and returns 1, leaving no ".tmp" behind;
//  2. writes "BeforceImportEmpty";
//  3. runs the table writers in their fixed order, moving "ImportProgress"
//     from at least 50 towards 99 by fixed weights; among them the settings
//     writer, which puts the model's imported settings into section
//     "Settings" of the data folder's "Vantu.ini";
//  4. runs the list-count report (state 8 when it fails);
//  5. encrypts the playlist file, then the music file, with the version-3
//     key and closes both;
//  6. reads both back with the key (schema and rows per table, kept in the
//     model's m_verified_music and m_verified_playlist). When either was
//     not encrypted without error or does not read back the tables and rows
//     that were written, both ".tmp" files are deleted, the final files are
//     left as they were, state 8 is recorded and the answer is 1;
//  7. replaces "VTMusicV3.db" and "playlistV3.db" as one commit
//     (replacement_commit.h); a failed step records state 8 and answers 1.
// OK once the files are in place; otherwise the error says which step
// failed (the state bit is recorded already). Writers never fail the build.
// |stage_done|, when given, is told the name of each stage as it ends
// ("Prepare", each writer's table, "ListCountReport", "CountRows",
// "Encrypt", "Verify", the commit's steps, "Replace"), for measurements and
// for tests that stop the process at a given point.
using BuildStageCallback = std::function<void(const char* stage)>;
base::Status BuildDatabases(ImportModel* model,
                            const base::FilePath& data_folder,
                            const BuildStageCallback& stage_done = nullptr);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_BUILD_SEQUENCE_H_
