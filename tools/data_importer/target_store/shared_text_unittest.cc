#include "tools/data_importer/target_store/shared_text.h"

#include <gtest/gtest.h>

#include <string>

namespace data_importer {

namespace {

// Copies share one buffer; giving one of them a new text leaves the others
// as they were; empty texts are equal however they were made.
TEST(SharedTextTest, CopiesShareAndStayApart) {
  SharedText path = std::wstring(L"D:\\Music\\\u7a3b\u9999 - Don't.mp3");
  SharedText copy = path;
  EXPECT_EQ(&path.str(), &copy.str());
  EXPECT_EQ(path, copy);

  copy = L"D:\\Other.mp3";
  EXPECT_EQ(L"D:\\Music\\\u7a3b\u9999 - Don't.mp3", path.str());
  EXPECT_EQ(L"D:\\Other.mp3", copy.str());
  EXPECT_FALSE(path == copy);

  copy.clear();
  EXPECT_TRUE(copy.empty());
  EXPECT_EQ(SharedText(L""), copy);
  EXPECT_EQ(SharedText(), SharedText(std::wstring()));
  EXPECT_EQ(0u, copy.size());
  EXPECT_EQ(L"", copy.view());
}

}  // namespace

}  // namespace data_importer
