#ifndef TOOLS_VANTU_IMPORT_DATA_FOLDER_CHECK_H_
#define TOOLS_VANTU_IMPORT_DATA_FOLDER_CHECK_H_

#include <string>

#include "base/file_path.h"

// Makes sure the importer can work in |data_folder| before it runs: the
// folder is created when missing (as the importer would), a file in its
// place, a folder that cannot be written (a file is created and removed to
// find out) or a settings file "Vantu.ini" that cannot be opened for
// writing is refused. The importer itself cannot report any of these: it
// has nowhere to record them. Answers false with |error| set to one line
// naming the path and the system's reason.
bool CheckDataFolder(const base::FilePath& data_folder, std::string* error);

// Copies the folder |from| with everything in it to |to| (which must not
// exist), for a dry run. False with |error| set when it fails.
bool CopyFolder(const base::FilePath& from, const base::FilePath& to, std::string* error);

#endif  // TOOLS_VANTU_IMPORT_DATA_FOLDER_CHECK_H_
