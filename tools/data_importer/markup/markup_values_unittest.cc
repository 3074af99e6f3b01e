#include "tools/data_importer/markup/markup_values.h"

#include <gtest/gtest.h>

#include <climits>

#include "tools/data_importer/markup/markup_document.h"

namespace data_importer {

namespace markup {
namespace {

TEST(MarkupValuesTest, Conversions) {
  MarkupHandle node = Parse(L"<w x=' -12px' y='abc' big='99999999999' rect='10, 20,300,x'/>", L"");
  EXPECT_EQ(-12, AttributeInteger(node, L"x"));
  EXPECT_EQ(0, AttributeInteger(node, L"y"));
  EXPECT_EQ(0, AttributeInteger(node, L"big"));
  EXPECT_EQ(0, AttributeInteger(node, L"missing"));
  EXPECT_EQ(std::vector<int>({10, 20, 300, 0}), SplitIntegers(Attribute(node, L"rect")));
  EXPECT_EQ(std::vector<int>({1, 0, 0}), SplitIntegers(L"1,,"));
  EXPECT_TRUE(SplitIntegers(L"").empty());
  EXPECT_EQ(L"-2147483648", FormatInteger(INT_MIN));
  EXPECT_EQ(L"42", FormatInteger(42));
  EXPECT_EQ(123456, ParseInteger(FormatInteger(123456)));
}

}  // namespace
}  // namespace markup

}  // namespace data_importer
