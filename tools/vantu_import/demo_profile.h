#ifndef TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_
#define TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_

#include <string>

#include "base/file_path.h"

// Builds a sample user profile under |root| for "--demo": the folders
// AppData/Local and AppData/Roaming, the registry file "registry.reg", and
// an older installation of the player for the importer to find: a
// generation-7 one in the roaming folder when |generation| is 7, else a
// generation-6 one named in the registry. Answers the registry file's path,
// or an empty path when the profile could not be made (|error| says why).
base::FilePath BuildDemoProfile(const base::FilePath& root, int generation, std::string* error);

// The same for "--demo=v1", "--demo=v2" and "--demo=v3": no older
// installation, but the current generation's own databases in the data
// folder: the plain "VTMusic.db" and "vantu.db" of its first releases to
// import again (|version| 1), plain version-2 ones to copy (|version| 2) or
// version-3 ones whose cloud lists are still in the music database
// (|version| 3).
base::FilePath BuildCurrentGenerationDemo(const base::FilePath& root,
                                          int version,
                                          std::string* error);

#endif  // TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_
