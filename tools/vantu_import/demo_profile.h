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

#endif  // TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_
