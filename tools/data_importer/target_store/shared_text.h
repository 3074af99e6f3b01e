#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_SHARED_TEXT_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_SHARED_TEXT_H_

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace data_importer {

// A wide text that is never changed in place, so that copies share one
// buffer. A list entry repeats its library file's path, title, artist and
// hash, and a large library has hundreds of thousands of entries: as
// std::wstring each would hold copies of its own (4 bytes a character on
// Linux). Assigning a new text replaces the shared one; the empty text
// holds nothing.
class SharedText {
 public:
  SharedText() = default;
  SharedText(std::wstring text)  // NOLINT: a text is what it stands for
      : m_text(text.empty() ? nullptr : std::make_shared<const std::wstring>(std::move(text))) {}
  SharedText(const wchar_t* text)  // NOLINT: as above
      : SharedText(std::wstring(text)) {}

  const std::wstring& str() const { return m_text ? *m_text : Empty(); }
  operator const std::wstring&() const { return str(); }  // NOLINT: read as a text
  std::wstring_view view() const { return str(); }
  const wchar_t* c_str() const { return str().c_str(); }
  bool empty() const { return !m_text; }
  size_t size() const { return str().size(); }
  void clear() { m_text.reset(); }

  friend bool operator==(const SharedText& a, const SharedText& b) {
    return a.m_text == b.m_text || a.str() == b.str();
  }
  friend bool operator==(const SharedText& a, const std::wstring& b) { return a.str() == b; }
  friend bool operator==(const SharedText& a, const wchar_t* b) { return a.str() == b; }
  friend std::wostream& operator<<(std::wostream& out, const SharedText& text) {
    return out << text.str();
  }

 private:
  static const std::wstring& Empty() {
    static const std::wstring empty;
    return empty;
  }

  std::shared_ptr<const std::wstring> m_text;  // null for the empty text
};

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_SHARED_TEXT_H_
