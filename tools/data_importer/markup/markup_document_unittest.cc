#include "tools/data_importer/markup/markup_document.h"

#include <gtest/gtest.h>

#include <string>

#include "base/utf_string_conversions.h"
#include "testing/test_support.h"
#include "tools/data_importer/markup/markup_writer.h"

namespace data_importer {

namespace markup {
namespace {

const wchar_t kSkinText[] =
    L"<Skin name=\"\u9ed8\u8ba4\" version='2'>\r\n"
    L"  <Window id=\"Main\" rect=\"1,2,300,400\">Caf\u00e9 \U0001F3B5</Window>\r\n"
    L"  <Window id=\"Mini\"/>\r\n"
    L"</Skin>\r\n";

using testing_support::UTF16Bytes;

// The same document as UTF-8 with and without a mark, as UTF-16LE with and
// without a mark and as UTF-16BE with a mark loads to the same tree.
TEST(MarkupDocumentTest, EveryEncodingLoadsToTheSameTree) {
  testing_support::ScopedTempDir temp;
  const std::string utf8 = base::WideToUTF8(kSkinText);
  const std::pair<const wchar_t*, std::string> files[] = {
      {L"utf8.xml", utf8},
      {L"utf8-bom.xml", "\xEF\xBB\xBF" + utf8},
      {L"utf16le-bom.xml", "\xFF\xFE" + UTF16Bytes(kSkinText, false)},
      {L"utf16le.xml", UTF16Bytes(kSkinText, false)},
      {L"utf16be-bom.xml", "\xFE\xFF" + UTF16Bytes(kSkinText, true)},
  };
  const std::wstring expected = SerializeMarkup(Parse(kSkinText, L""));
  ASSERT_NE(std::wstring::npos, expected.find(L"Caf\u00e9 \U0001F3B5"));
  for (const auto& [name, bytes] : files) {
    SCOPED_TRACE(base::WideToUTF8(name));
    const base::FilePath path = temp.path().Append(name);
    testing_support::WriteBytes(path, bytes);
    MarkupHandle root = Load(path, L"");
    EXPECT_EQ(L"Skin", root->name());
    EXPECT_EQ(L"\u9ed8\u8ba4", Attribute(root, L"name"));
    EXPECT_EQ(expected, SerializeMarkup(root));
  }
}

TEST(MarkupDocumentTest, EightBitFilesAreReadAsUTF8) {
  testing_support::ScopedTempDir temp;
  const base::FilePath path = temp.path().Append(L"latin1.xml");
  testing_support::WriteBytes(path, "<a n=\"Caf\xE9!\"/>");
  EXPECT_EQ(L"Caf\uFFFD!", Attribute(Load(path, L"a"), L"n"));
}

TEST(MarkupDocumentTest, MissingEmptyAndBrokenFilesGiveTheNullNode) {
  testing_support::ScopedTempDir temp;
  EXPECT_TRUE(Load(temp.path().Append(L"missing.xml"), L"").IsNull());
  testing_support::WriteBytes(temp.path().Append(L"empty.xml"), "");
  EXPECT_TRUE(Load(temp.path().Append(L"empty.xml"), L"").IsNull());
  testing_support::WriteBytes(temp.path().Append(L"broken.xml"), "<a><b></a>");
  EXPECT_TRUE(Load(temp.path().Append(L"broken.xml"), L"").IsNull());
  EXPECT_TRUE(Load(temp.path(), L"").IsNull());
}

TEST(MarkupDocumentTest, RootNameRules) {
  // One top-level element: it is the root.
  MarkupHandle root = Parse(kSkinText, L"");
  EXPECT_EQ(L"Skin", root->name());
  EXPECT_EQ(nullptr, root->parent());
  EXPECT_EQ(L"Skin", Parse(kSkinText, L"sKiN")->name());
  // A name that is not the root's finds the root's first child of that name.
  EXPECT_EQ(L"Main", Attribute(Parse(kSkinText, L"window"), L"id"));
  EXPECT_TRUE(Parse(kSkinText, L"Other").IsNull());

  // A declaration at the top makes the nameless container the root.
  const wchar_t with_declaration[] = L"<?xml version=\"1.0\"?>\n<Config><Item/></Config>";
  MarkupHandle container = Parse(with_declaration, L"");
  EXPECT_EQ(MarkupNode::kDocument, container->kind());
  EXPECT_EQ(L"", container->name());
  EXPECT_EQ(2u, container->items().size());
  EXPECT_EQ(L"Config", Parse(with_declaration, L"config")->name());
  EXPECT_TRUE(Parse(with_declaration, L"Item").IsNull());

  // Without any element: the empty container, or the null node for a name.
  MarkupHandle empty = Parse(L"  <!-- nothing -->  ", L"");
  EXPECT_FALSE(empty.IsNull());
  EXPECT_EQ(0, ChildCount(empty));
  EXPECT_FALSE(Parse(L"", L"").IsNull());
  EXPECT_EQ(0, ChildCount(Parse(L"", L"")));
  EXPECT_TRUE(Parse(L"<!-- nothing -->", L"Config").IsNull());
}

TEST(MarkupDocumentTest, LookupsOnTheNullNodeChain) {
  MarkupHandle root = Parse(kSkinText, L"Skin");
  MarkupHandle missing = Child(Child(Child(root, L"Nope"), L"Window"), L"Deeper");
  EXPECT_TRUE(missing.IsNull());
  EXPECT_EQ(MarkupNode::Null(), missing.get());
  EXPECT_EQ(L"", Attribute(missing, L"id"));
  EXPECT_EQ(L"", Text(missing));
  EXPECT_EQ(0, ChildCount(missing));
  EXPECT_TRUE(ChildAt(root, 2).IsNull());
  EXPECT_TRUE(ChildAt(root, -1).IsNull());
  // Changes to the null node are ignored; it stays empty for everyone.
  AddAttribute(missing, L"id", L"x");
  SetText(missing, L"text");
  EXPECT_TRUE(CreateElement(missing, L"child").IsNull());
  EXPECT_EQ(L"", Attribute(MarkupHandle(), L"id"));
  EXPECT_EQ(0u, MarkupNode::Null()->text().size());
}

TEST(MarkupDocumentTest, ChildrenAndAttributeLookup) {
  MarkupHandle root = Parse(kSkinText, L"");
  ASSERT_EQ(2, ChildCount(root));
  EXPECT_EQ(L"Mini", Attribute(ChildAt(root, 1), L"ID"));
  const std::vector<MarkupHandle> windows = Children(root, L"WINDOW");
  ASSERT_EQ(2u, windows.size());
  EXPECT_EQ(L"Main", Attribute(windows[0], L"id"));
  EXPECT_EQ(L"Caf\u00e9 \U0001F3B5", Text(windows[0]));
  EXPECT_EQ(root.get(), windows[0]->parent());

  // Names are compared over the stored name's length: a stored "Col"
  // answers "Color" but a stored "Color" does not answer "Col". The first
  // match wins.
  MarkupHandle item = Parse(L"<i Col='1' Color='2' Colour='3'/>", L"");
  EXPECT_EQ(L"1", Attribute(item, L"color"));
  EXPECT_EQ(L"2", Attribute(Parse(L"<i Color='2'/>", L""), L"COLORS"));
  EXPECT_EQ(L"", Attribute(Parse(L"<i Color='2'/>", L""), L"Col"));
}

TEST(MarkupDocumentTest, HandlesKeepNodesAlive) {
  MarkupHandle window;
  {
    MarkupHandle root = Parse(kSkinText, L"");
    window = Child(root, L"Window");
  }
  // The root is gone; the child lives on, without a parent.
  EXPECT_EQ(L"Main", Attribute(window, L"id"));
  EXPECT_EQ(nullptr, window->parent());
  MarkupHandle copy = window;
  window = MarkupHandle();
  // Assigning a handle to itself while it holds the last count keeps the node.
  MarkupHandle& alias = copy;
  copy = alias;
  EXPECT_EQ(L"Main", Attribute(copy, L"id"));
}

TEST(MarkupDocumentTest, BuildingATree) {
  MarkupHandle document = NewDocument();
  MarkupHandle root = CreateElement(document, L"Settings");
  MarkupHandle first = CreateElement(root, L"Item");
  MarkupHandle second = CreateElement(root, L"Item");
  AddAttribute(first, L"key", L"a");
  AddAttribute(second, L"key", L"b");
  SetText(second, L"value");
  EXPECT_EQ(2, ChildCount(root));
  EXPECT_EQ(second, ChildAt(root, 1));
  EXPECT_EQ(L"value", Text(Children(root, L"item")[1]));
  EXPECT_EQ(root.get(), second->parent());

  // Nesting stops at the depth limit instead of growing without bound.
  MarkupHandle node = root;
  int depth = 1;
  while (!node.IsNull()) {
    node = CreateElement(node, L"d");
    depth += node.IsNull() ? 0 : 1;
  }
  EXPECT_EQ(MarkupNode::kMaxDepth, depth);
}

}  // namespace
}  // namespace markup

}  // namespace data_importer
