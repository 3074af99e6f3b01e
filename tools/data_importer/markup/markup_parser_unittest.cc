#include "tools/data_importer/markup/markup_parser.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/data_importer/markup/markup_document.h"
#include "tools/data_importer/markup/markup_node.h"

namespace data_importer {

namespace markup {
namespace {

TEST(MarkupParserTest, EntitiesInTextAndAttributes) {
  MarkupHandle root =
      Parse(L"<a v=\"&#65;&#x41;&#X4a;&AMP;&Lt;&gt;&quot;&apos;\">&#65;&amp;&#x41;</a>", L"");
  EXPECT_EQ(L"AAJ&<>\"'", Attribute(root, L"v"));
  EXPECT_EQ(L"A&A", Text(root));
  EXPECT_EQ(L"\U0001F3B5", Text(Parse(L"<a>&#x1F3B5;</a>", L"")));

  // Malformed numeric references fail the parse.
  for (const wchar_t* text : {L"<a>&#65</a>", L"<a>&#6x5;</a>", L"<a>&#;</a>", L"<a>&#x;</a>",
                              L"<a>&#xG1;</a>", L"<a v='&#65'/>", L"<a>&#0;</a>",
                              L"<a>&#xD800;</a>", L"<a>&#x110000;</a>", L"<a>&#99999999999;</a>"}) {
    SCOPED_TRACE(std::wstring(text).c_str());
    MarkupParseResult result = ParseMarkup(text);
    EXPECT_EQ(kMarkupBadReference, result.error);
    EXPECT_TRUE(Parse(text, L"").IsNull());
  }

  // An ampersand that starts no reference stays as it is.
  MarkupParseResult kept = ParseMarkup(L"<a>Rock & Roll &nbsp;</a>");
  EXPECT_EQ(kMarkupKeptAmpersand, kept.error);
  EXPECT_EQ(L"Rock & Roll &nbsp;", Text(Parse(L"<a>Rock & Roll &nbsp;</a>", L"")));
}

TEST(MarkupParserTest, SpecialSectionsStayApartFromText) {
  MarkupParseResult result = ParseMarkup(
      L"<?xml version=\"1.0\" encoding='utf-8'?>\n"
      L"<!DOCTYPE skin>\n"
      L"<root>before<![CDATA[<not a=\"tag\"> & ]]><!-- <b/> --><PRE> <x> </PRE>"
      L"<?php echo 1 ?>after</root>");
  ASSERT_EQ(kMarkupOk, result.error);
  EXPECT_FALSE(result.single_root);
  const MarkupNode& document = *result.document;
  ASSERT_EQ(3u, document.items().size());
  const MarkupNode& declaration = *document.items()[0];
  EXPECT_EQ(MarkupNode::kDeclaration, declaration.kind());
  EXPECT_EQ(L"xml", declaration.name());
  ASSERT_EQ(2, declaration.attribute_count());
  EXPECT_EQ(L"utf-8", declaration.attributes()[1].value);
  EXPECT_EQ(MarkupNode::kDocType, document.items()[1]->kind());
  EXPECT_EQ(L" skin", document.items()[1]->text());

  const MarkupNode& root = *document.items()[2];
  EXPECT_EQ(L"beforeafter", root.text());
  EXPECT_EQ(0, root.child_count());
  ASSERT_EQ(4u, root.items().size());
  EXPECT_EQ(MarkupNode::kCData, root.items()[0]->kind());
  EXPECT_EQ(L"<not a=\"tag\"> & ", root.items()[0]->text());
  EXPECT_EQ(MarkupNode::kComment, root.items()[1]->kind());
  EXPECT_EQ(L" <b/> ", root.items()[1]->text());
  EXPECT_EQ(MarkupNode::kPre, root.items()[2]->kind());
  EXPECT_EQ(L" <x> ", root.items()[2]->text());
  EXPECT_EQ(L"php", root.items()[3]->name());
  EXPECT_EQ(L"echo 1", root.items()[3]->text());
}

TEST(MarkupParserTest, TagsAndWhiteSpace) {
  MarkupHandle root = Parse(L"<a\tx = 'it\"s'\r\ny=\"1\"\n><b/><B></b ><c  /></A >", L"");
  ASSERT_FALSE(root.IsNull());
  EXPECT_EQ(L"it\"s", Attribute(root, L"x"));
  EXPECT_EQ(L"1", Attribute(root, L"y"));
  ASSERT_EQ(3, ChildCount(root));
  EXPECT_EQ(L"B", ChildAt(root, 1)->name());
  EXPECT_EQ(L"c", ChildAt(root, 2)->name());
  EXPECT_EQ(L"", Text(root));
}

TEST(MarkupParserTest, ErrorsStopTheParse) {
  const struct {
    const wchar_t* text;
    int error;
  } cases[] = {
      {L"<a><b></a>", kMarkupBadEndTag},
      {L"</a>", kMarkupBadEndTag},
      {L"<a>", kMarkupUnterminated},
      {L"<a x='1", kMarkupUnterminated},
      {L"<a><!-- open", kMarkupUnterminated},
      {L"<![CDATA[ open", kMarkupUnterminated},
      {L"<?xml", kMarkupUnterminated},
      {L"<a x=1/>", kMarkupBadTag},
      {L"<a x/>", kMarkupBadTag},
      {L"< a/>", kMarkupBadTag},
      {L"<a/ >", kMarkupBadTag},
      {L"<!ENTITY x>", kMarkupBadTag},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::wstring(c.text).c_str());
    EXPECT_EQ(c.error, ParseMarkup(c.text).error);
    EXPECT_TRUE(Parse(c.text, L"").IsNull());
  }
}

TEST(MarkupParserTest, HostileInputStaysBounded) {
  std::wstring deep;
  for (int i = 0; i < 100000; ++i)
    deep += L"<d>";
  EXPECT_EQ(kMarkupTooDeep, ParseMarkup(deep).error);

  std::wstring nested;
  for (int i = 0; i < MarkupNode::kMaxDepth; ++i)
    nested += L"<d>";
  for (int i = 0; i < MarkupNode::kMaxDepth; ++i)
    nested += L"</d>";
  EXPECT_EQ(kMarkupOk, ParseMarkup(nested).error);

  std::wstring wide = L"<a";
  for (int i = 0; i < 50000; ++i)
    wide += L" k" + std::to_wstring(i) + L"='v'";
  wide += L"/>";
  EXPECT_EQ(50000, Parse(wide, L"")->attribute_count());

  EXPECT_TRUE(Parse(std::wstring(L"<a>\0</a>", 8), L"a")->text() == std::wstring(1, L'\0'));
}

}  // namespace
}  // namespace markup

}  // namespace data_importer
