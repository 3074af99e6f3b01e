#include "tools/data_importer/importer_test_util.h"

#include <gtest/gtest.h>

#include "base/file_util.h"
#include "base/profile_string.h"
#include "base/utf_string_conversions.h"
#include "sql/connection.h"
#include "sql/statement.h"

TestProfile::TestProfile() {
  EXPECT_TRUE(base::CreateDirectory(local()));
  EXPECT_TRUE(base::CreateDirectory(roaming()));
  env_.Set("LOCALAPPDATA", local().AsUTF8Unsafe());
  env_.Set("APPDATA", roaming().AsUTF8Unsafe());
  env_.Set("VANTU_REGISTRY_FILE", root().Append(L"user.reg").AsUTF8Unsafe());
  env_.Set("VANTU_LOG_STDERR", std::nullopt);
}

void TestProfile::SetRegistryValue(const std::wstring& key, const std::wstring& name,
                                   const std::wstring& value) {
  std::wstring escaped;
  for (wchar_t c : value) {
    if (c == L'\\' || c == L'"')
      escaped.push_back(L'\\');
    escaped.push_back(c);
  }
  registry_ += L"[HKEY_CURRENT_USER\\" + key + L"]\r\n\"" + name + L"\"=\"" + escaped + L"\"\r\n\r\n";
  EXPECT_TRUE(base::WriteFile(
      root().Append(L"user.reg"),
      "Windows Registry Editor Version 5.00\r\n\r\n" + base::WideToUTF8(registry_)));
}

std::wstring TestProfile::DBCheck(const std::wstring& key) const {
  return base::GetPrivateProfileStringW(L"DBCheck", key, L"#missing#", ini().value());
}

void TestProfile::Touch(const base::FilePath& path) {
  EXPECT_TRUE(base::CreateDirectory(path.DirName()));
  EXPECT_TRUE(base::WriteFile(path, std::string()));
}

std::vector<std::string> QueryRows(sql::Connection* db, const std::string& query) {
  std::vector<std::string> rows;
  sql::Statement statement(db->GetUniqueStatement(query.c_str()));
  while (statement.Step()) {
    std::string row;
    for (int i = 0; i < statement.ColumnCount(); ++i)
      row += (i ? "|" : "") + statement.ColumnString(i);
    rows.push_back(row);
  }
  return rows;
}

std::string StoredSchema(sql::Connection* db, const std::string& table) {
  std::vector<std::string> rows =
      QueryRows(db, "SELECT sql FROM sqlite_master WHERE type='table' AND name='" + table + "'");
  return rows.empty() ? std::string() : rows[0];
}
