#ifndef TOOLS_DATA_IMPORTER_DRIVER_LEFTOVER_FILES_H_
#define TOOLS_DATA_IMPORTER_DRIVER_LEFTOVER_FILES_H_

#include <string>

#include "base/file_path.h"

namespace data_importer {

// Removes the temporary files that a killed run of the importer left behind
// and that no later run would ever reuse: "Vantu.ini.tmp<pid>" (the profile
// writer's) and "<name>.copy-<pid>" (the file copier's, e.g.
// "VT6Data.db.copy-<pid>", "DataImporter.db.copy-<pid>") in the data folder,
// its "Lyric" folder and each folder under its "Backup" folder. A file is
// removed only when the process <pid> no longer exists, so the files of a
// run still going are left alone. Each removal, and each failure to remove,
// is logged; nothing else is touched. Answers the number removed.
int RemoveStaleWorkFiles(const base::FilePath& data_folder);

// The process id that ends a temporary file's |name| after |marker|
// ("Vantu.ini.tmp" + digits, or anything + ".copy-" + digits), or 0 when the
// name is not of that form.
int StaleFileOwner(const std::wstring& name, const std::wstring& marker);

// True while a process with id |pid| exists.
bool ProcessExists(int pid);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_DRIVER_LEFTOVER_FILES_H_
