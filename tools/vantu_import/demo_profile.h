#ifndef TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_
#define TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_

#include <string>

#include "base/file_path.h"

// Builds a sample user profile under |root| for "--demo=<kind>": the folders
// AppData/Local and AppData/Roaming, the registry file "registry.reg", and,
// by |kind|, an older installation of the player for the importer to find
// ("v6"), plain version-2 databases in the data folder ("v2"), or version-3
// databases still holding their cloud lists in the music database ("v3"). Answers the
// registry file's path, or an empty path when the profile could not be made
// (|error| says why).
base::FilePath BuildDemoProfile(const base::FilePath& root, const std::string& kind,
                                std::string* error);

#endif  // TOOLS_VANTU_IMPORT_DEMO_PROFILE_H_
