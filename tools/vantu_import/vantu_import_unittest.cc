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
  EXPECT_EQ("option --demo takes 7, 6, v2 or v3, not \"8\"", error);
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

namespace {

TEST(RunOutcomeTest, UpgradeResultInWords) {
  EXPECT_EQ("VTMusicV3.db copied but left plain: the copy failed its integrity check; "
            "playlistV3.db not made: there is no version-2 file to copy",
            DescribeUpgradeResult(
                "{\"music\":\"left_plain\",\"playlist\":\"no_source\",\"task\":\"copyv8dbv2\"}"));
  EXPECT_EQ("cloud lists moved to playlistV3.db (1 list)",
            DescribeUpgradeResult("{\"cloud_lists\":\"moved\",\"cloud_lists_moved\":1,"
                                  "\"music\":\"opened\",\"task\":\"updatevantu8\"}"));
  // The music database's state wins over the cloud lists' word.
  EXPECT_EQ("VTMusicV3.db does not open with the key: left as it was",
            DescribeUpgradeResult("{\"cloud_lists\":\"not_run\",\"music\":\"key_refused\","
                                  "\"task\":\"updatevantu8\"}"));
  EXPECT_EQ("cloud lists already in playlistV3.db: nothing moved",
            DescribeUpgradeResult("{\"cloud_lists\":\"already_moved\",\"music\":\"opened\","
                                  "\"task\":\"updatevantu8\"}"));
  EXPECT_EQ("not recorded", DescribeUpgradeResult("[1,2]"));
  EXPECT_EQ("not recorded", DescribeUpgradeResult("{\"task\":"));

  RunOutcome outcome;
  outcome.task = L"copyv8dbv2";
  outcome.upgrade_done = "VTMusicV3.db copied and encrypted";
  EXPECT_NE(std::string::npos,
            DescribeOutcome(outcome).find(
                "Task:               copy of the version-2 databases to encrypted version 3 "
                "(copyv8dbv2)\nDone:               VTMusicV3.db copied and encrypted\n"));
}

TEST(HostOptionsTest, CurrentGenerationDemos) {
  HostOptions options;
  std::string error;
  ASSERT_TRUE(Parse({"--demo=v2"}, &options, &error));
  EXPECT_EQ(8, options.demo);
  EXPECT_EQ(2, options.demo_version);
  ASSERT_TRUE(Parse({"--demo=v3"}, &options, &error));
  EXPECT_EQ(3, options.demo_version);
  EXPECT_FALSE(Parse({"--demo=v4"}, &options, &error));
  EXPECT_EQ("option --demo takes 7, 6, v2 or v3, not \"v4\"", error);
}

}  // namespace
