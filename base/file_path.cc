#include "base/file_path.h"

#include "base/utf_string_conversions.h"

namespace base {

bool FilePath::IsSeparator(wchar_t c) {
#if defined(_WIN32)
  return c == L'\\' || c == L'/';
#else
  return c == L'/';
#endif
}

FilePath FilePath::Append(const StringType& component) const {
  if (m_path.empty())
    return FilePath(component);
  if (component.empty())
    return *this;
  StringType joined = m_path;
  size_t start = 0;
  while (start < component.size() && IsSeparator(component[start]))
    ++start;
  if (!IsSeparator(joined.back()))
    joined.push_back(kSeparator);
  joined.append(component, start, StringType::npos);
  return FilePath(std::move(joined));
}

namespace {

// Length of |path| without trailing separators, keeping a lone root.
size_t StrippedLength(const std::wstring& path) {
  size_t end = path.size();
  while (end > 1 && FilePath::IsSeparator(path[end - 1]))
    --end;
  return end;
}

}  // namespace

FilePath FilePath::BaseName() const {
  size_t end = StrippedLength(m_path);
  size_t pos = end;
  while (pos > 0 && !IsSeparator(m_path[pos - 1]))
    --pos;
  if (pos == end && end > 0)  // the root itself
    return FilePath(m_path.substr(0, end));
  return FilePath(m_path.substr(pos, end - pos));
}

FilePath FilePath::DirName() const {
  size_t end = StrippedLength(m_path);
  size_t pos = end;
  while (pos > 0 && !IsSeparator(m_path[pos - 1]))
    --pos;
  if (pos == 0)
    return FilePath(L".");
  // Drop the separators between the folder and the last component.
  size_t dir_end = pos;
  while (dir_end > 1 && IsSeparator(m_path[dir_end - 1]))
    --dir_end;
  return FilePath(m_path.substr(0, dir_end));
}

FilePath::StringType FilePath::Extension() const {
  StringType base = BaseName().value();
  size_t dot = base.rfind(L'.');
  if (dot == StringType::npos || dot == 0 || base == L"..")
    return StringType();
  return base.substr(dot);
}

FilePath FilePath::RemoveExtension() const {
  StringType ext = Extension();
  if (ext.empty())
    return *this;
  size_t end = StrippedLength(m_path);
  return FilePath(m_path.substr(0, end - ext.size()));
}

std::string FilePath::AsUTF8Unsafe() const {
  return WideToUTF8(m_path);
}

FilePath FilePath::FromUTF8Unsafe(const std::string& utf8) {
  return FilePath(UTF8ToWide(utf8));
}

}  // namespace base
