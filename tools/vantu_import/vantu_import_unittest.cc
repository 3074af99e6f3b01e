#include <gtest/gtest.h>

#include "tools/vantu_import/host_options.h"
#include "tools/vantu_import/run_outcome.h"

namespace {

bool Parse(std::vector<const char*> args, HostOptions* options, std::string* error) {
  args.insert(args.begin(), "vantu-import");
  return ParseHostOptions(static_cast<int>(args.size()), args.data(), options, error);
}

TEST(HostOptionsTest, ValuesInBothFormsAndBadUsage) {
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--local-appdata", "/a", "--roaming-appdata=/b", "--registry", "/r.reg",
                     "--i=/old player", "--quiet"},
                    &options, &error));
  EXPECT_EQ("/a", options.local_appdata);
  EXPECT_EQ("/b", options.roaming_appdata);
  EXPECT_EQ("/r.reg", options.registry);
  EXPECT_EQ("/old player", options.source);
  EXPECT_TRUE(options.quiet);
  EXPECT_EQ(0, options.demo);

  HostOptions demo;
  ASSERT_TRUE(Parse({"--demo"}, &demo, &error));
  EXPECT_EQ(7, demo.demo);
  ASSERT_TRUE(Parse({"--demo=6"}, &demo, &error));
  EXPECT_EQ(6, demo.demo);

  HostOptions bad;
  EXPECT_FALSE(Parse({"--profile"}, &bad, &error));
  EXPECT_EQ("option --profile needs a value", error);
  EXPECT_FALSE(Parse({"--local-appdatax=/a"}, &bad, &error));
  EXPECT_EQ("unknown option --local-appdatax=/a", error);
  EXPECT_FALSE(Parse({"--demo=8"}, &bad, &error));
  EXPECT_EQ("option --demo takes 7 or 6, not \"8\"", error);
}

TEST(RunOutcomeTest, StateBitsInWordsAndExitStatus) {
  EXPECT_EQ("0 (no failure)", DescribeImportState(L"0"));
  EXPECT_EQ("18 (2: lists could not be read; 16: another source table could not be read)",
            DescribeImportState(L"18"));
  RunOutcome outcome;
  EXPECT_EQ(0, ExitStatusOf(outcome));
  outcome.import_state = L"8";
  EXPECT_EQ(1, ExitStatusOf(outcome));
  outcome.task = L"importvantu6";
  outcome.files = {{L"VTMusicV3.db", 4096}};
  std::string text = DescribeOutcome(outcome);
  EXPECT_NE(std::string::npos, text.find("import from generation 6 (importvantu6)"));
  EXPECT_NE(std::string::npos, text.find("VTMusicV3.db (4096 bytes)"));
}

}  // namespace
