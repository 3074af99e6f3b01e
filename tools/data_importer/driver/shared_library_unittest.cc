// The shipped library as the player uses it: loaded at run time, its one
// export looked up by name and called.

#include <gtest/gtest.h>

#if defined(_WIN32)
#include "base/utf_string_conversions.h"
#include "base/windows_headers.h"
#else
#include <dlfcn.h>
#endif

#include "base/file_util.h"
#include "testing/fixtures/generation6_fixture.h"
#include "testing/importer_test_util.h"

namespace data_importer {

namespace {

TEST(SharedLibraryTest, LoadedAtRunTimeItImports) {
  TestProfile profile;
  base::FilePath program = profile.root().Append(L"Program Files").Append(L"VanTa6");
  ASSERT_TRUE(WriteSampleV6Installation(program, 5));
  ASSERT_TRUE(base::WriteFile(profile.root().Append(L"user.reg"), V6RegistryText(program)));

#if defined(_WIN32)
  HMODULE library = LoadLibraryW(base::UTF8ToWide(VANTU_IMPORTER_LIBRARY).c_str());
  ASSERT_NE(nullptr, library) << GetLastError();
  auto entry = reinterpret_cast<void (*)()>(
      reinterpret_cast<void*>(GetProcAddress(library, "DataImporterMain")));
  ASSERT_NE(nullptr, entry);
  entry();
  EXPECT_TRUE(FreeLibrary(library));
#else
  // Kept loaded after dlclose: the library's function-local statics (a
  // locale, a table) live for the process, as they do in the player, and a
  // leak checker would report them once the library was unmapped.
  void* library = dlopen(VANTU_IMPORTER_LIBRARY, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  ASSERT_NE(nullptr, library) << dlerror();
  // The core's own functions stay inside the library (the name is that of
  // data_importer::RunDataImporter(const RunContext&), which the host links).
  EXPECT_EQ(nullptr, dlsym(library, "_ZN13data_importer15RunDataImporterERKNS_10RunContextE"));
  auto entry = reinterpret_cast<void (*)()>(dlsym(library, "DataImporterMain"));
  ASSERT_NE(nullptr, entry);
  entry();
  EXPECT_EQ(0, dlclose(library));

#endif

  EXPECT_EQ(L"4", profile.DBCheck(L"ImportEnd"));
  EXPECT_EQ(L"100", profile.DBCheck(L"ImportProgress"));
  base::Value report = ReadImportReport(profile.data_folder());
  EXPECT_EQ("importvantu6", report["task"]["name"].get<std::string>());
  EXPECT_EQ(5, report["summary"]["songs"].get<int>());
}

}  // namespace

}  // namespace data_importer
