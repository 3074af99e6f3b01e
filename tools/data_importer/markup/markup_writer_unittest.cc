#include "tools/data_importer/markup/markup_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "base/utf_string_conversions.h"
#include "testing/test_support.h"
#include "tools/data_importer/markup/markup_document.h"
#include "tools/data_importer/markup/markup_node.h"

namespace data_importer {

namespace markup {
namespace {

// The file's text after the U+FEFF mark, or a marker when it is missing.
std::wstring SavedText(const base::FilePath& path) {
  const std::string bytes = testing_support::ReadBytes(path);
  if (bytes.size() < 2 || bytes[0] != '\xFF' || bytes[1] != '\xFE' || bytes.size() % 2)
    return L"<no UTF-16LE mark>";
  std::u16string units;
  for (size_t i = 2; i + 1 < bytes.size(); i += 2)
    units.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                          (static_cast<unsigned char>(bytes[i + 1]) << 8)));
  return base::UTF16ToWide(units);
}

TEST(MarkupWriterTest, LayoutOfASavedDocument) {
  testing_support::ScopedTempDir temp;
  MarkupHandle document = NewDocument();
  MarkupHandle root = CreateElement(document, L"Skin");
  AddAttribute(root, L"name", L"A & \"B\"");
  MarkupHandle window = CreateElement(root, L"Window");
  AddAttribute(window, L"id", L"Main");
  AddAttribute(window, L"rect", L"1,2,3,4");
  SetText(CreateElement(window, L"Title"), L"<Hi>");
  CreateElement(root, L"Empty");

  const base::FilePath path = temp.path().Append(L"skin.xml");
  ASSERT_EQ(kSaveOk, Save(document, path));
  EXPECT_EQ(40u, std::wstring(kStandardDeclaration).size());
  EXPECT_EQ(std::wstring(kStandardDeclaration) +
                L"<Skin name=\"A &amp; &quot;B&quot;\">\n"
                L"\t<Window id=\"Main\" rect=\"1,2,3,4\">\n"
                L"\t\t<Title>&lt;Hi&gt;</Title>\n"
                L"\t</Window>\n"
                L"\t<Empty/>\n"
                L"</Skin>",
            SavedText(path));
}

// A saved tree loads back to the same tree, whatever it holds.
TEST(MarkupWriterTest, SaveAndLoadRoundTrip) {
  testing_support::ScopedTempDir temp;
  const wchar_t text[] =
      L"<?xml version=\"1.0\" encoding=\"utf-16\"?>\n"
      L"<!-- list -->\n"
      L"<Library count='2'>\n"
      L"  <Song title=\"\u6b4c &lt;1&gt;\" path='C:\\Music\\a&amp;b.mp3'>  &#32;padded&#9;</Song>\n"
      L"  <Song title=\"\U0001F3B5\">line&#10;break<![CDATA[raw <x>]]><Tag/></Song>\n"
      L"  <PRE>keep  this</PRE>\n"
      L"</Library>";
  MarkupHandle document = Parse(text, L"");
  ASSERT_FALSE(document.IsNull());
  const base::FilePath path = temp.path().Append(L"library.xml");
  ASSERT_EQ(kSaveOk, Save(document, path));
  MarkupHandle reloaded = Load(path, L"");
  ASSERT_FALSE(reloaded.IsNull());
  EXPECT_EQ(SerializeMarkup(document), SerializeMarkup(reloaded));
  MarkupHandle first = Child(Load(path, L"Library"), L"Song");
  EXPECT_EQ(L" padded\t", Text(first));
  EXPECT_EQ(L"C:\\Music\\a&b.mp3", Attribute(first, L"path"));

  // The document began with a declaration: no second one is written.
  const std::wstring saved = SavedText(path);
  EXPECT_EQ(0u, saved.find(L"<?xml"));
  EXPECT_EQ(saved.find(L"<?xml"), saved.rfind(L"<?xml"));

  // A root element saved alone gets the standard declaration in front.
  ASSERT_EQ(kSaveOk, Save(Child(reloaded, L"Library"), path));
  EXPECT_EQ(0u, SavedText(path).find(kStandardDeclaration));
  // The declaration is a top-level item of its own, so the nameless
  // container holds it and the element.
  EXPECT_EQ(MarkupNode::kDocument, Load(path, L"")->kind());
  EXPECT_EQ(L"2", Attribute(Load(path, L"library"), L"count"));
}

TEST(MarkupWriterTest, SaveStatuses) {
  testing_support::ScopedTempDir temp;
  MarkupHandle root = Parse(L"<a/>", L"");

  // Nothing to write: no file, status 0.
  const base::FilePath nothing = temp.path().Append(L"nothing.xml");
  EXPECT_EQ(kSaveOk, Save(MarkupHandle(), nothing));
  EXPECT_EQ(kSaveOk, Save(NewDocument(), nothing));
  EXPECT_TRUE(testing_support::ReadBytes(nothing).empty());

  // A folder that does not exist, or a folder in place of the file.
  EXPECT_EQ(kSaveCannotCreate, Save(root, temp.path().Append(L"missing").Append(L"a.xml")));
  EXPECT_EQ(kSaveCannotCreate, Save(root, temp.path()));

#if !defined(_WIN32)
  // The data cannot be written out (Windows has no device that is always full).
  EXPECT_EQ(kSaveWriteFailed, Save(root, base::FilePath(L"/dev/full")));
#endif
}

}  // namespace
}  // namespace markup

}  // namespace data_importer
