#include "tools/data_importer/settings/v6_settings_reader.h"

#include <cwctype>
#include <string>
#include <string_view>

#include "tools/data_importer/markup/markup_document.h"
#include "tools/data_importer/markup/markup_values.h"

namespace data_importer {

namespace {

// The text of |key| in |section|: a child element's text, else a non-empty
// attribute; false when neither is there.
bool FindKey(const markup::MarkupHandle& section, std::wstring_view key, std::wstring* value) {
  const markup::MarkupHandle element = markup::Child(section, key);
  if (!element.IsNull()) {
    *value = markup::Text(element);
    return true;
  }
  std::wstring attribute = markup::Attribute(section, key);
  if (attribute.empty())
    return false;
  *value = std::move(attribute);
  return true;
}

// Looks |key| up in each of |sections| in turn; a later hit overwrites an
// earlier one. False when no section holds it.
bool ReadKey(const markup::MarkupHandle& root,
             std::initializer_list<const wchar_t*> sections,
             std::wstring_view key,
             std::wstring* value) {
  bool found = false;
  for (const wchar_t* section : sections)
    found |= FindKey(markup::Child(root, section), key, value);
  return found;
}

bool IsTrueText(std::wstring_view text) {
  while (!text.empty() && std::iswspace(text.front()))
    text.remove_prefix(1);
  std::wstring lower;
  for (wchar_t c : text.substr(0, 4))
    lower += static_cast<wchar_t>(std::towlower(c));
  return lower == L"true" || markup::ParseInteger(text) != 0;
}

}  // namespace

std::optional<ImportedSettings> ReadV6Settings(const base::FilePath& program_folder) {
  const markup::MarkupHandle root = markup::Load(program_folder.Append(L"VanTa.xml"), L"VanTa");
  if (root.IsNull())
    return std::nullopt;
  const auto player = {L"Player", L"PlayBack"};
  ImportedSettings settings;
  std::wstring value;
  if (ReadKey(root, player, L"Volume", &value)) {
    settings.Volume = markup::ParseInteger(value);
    ++settings.m_source_values;
  }
  if (ReadKey(root, player, L"AutoPlay", &value)) {
    settings.AutoPlay = IsTrueText(value);
    ++settings.m_source_values;
  }
  if (ReadKey(root, player, L"SFadeInTime", &value)) {
    settings.MusicFadeIn = markup::ParseInteger(value);
    ++settings.m_source_values;
  }
  if (ReadKey(root, player, L"SFadeOutTime", &value)) {
    settings.MusicFadeOut = markup::ParseInteger(value);
    ++settings.m_source_values;
  }
  settings.MusicUserFade = settings.MusicFadeIn != 0 || settings.MusicFadeOut != 0;
  if (ReadKey(root, {L"Network"}, L"ProxyType", &value)) {
    settings.ProxyType = markup::ParseInteger(value);
    ++settings.m_source_values;
  }
  return settings;
}

}  // namespace data_importer
