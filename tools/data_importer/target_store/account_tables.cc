// Tables of the music-library database (VTMusicV3.db) written here:
//   UserLoginHistory, KeywordSearchHistory
// (the user's saved logins and search history).

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_columns.h"
#include "tools/data_importer/target_store/table_writer.h"

namespace data_importer {

namespace {

const TableDef kUserLoginHistory = {
    "UserLoginHistory",
    "CREATE TABLE UserLoginHistory(ID integer PRIMARY KEY NOT NULL,UserID integer NOT NULL "
    "DEFAULT 0,Username nvarchar(260) NOT NULL DEFAULT '',EncodedPassword nvarchar(80) NOT NULL "
    "DEFAULT '',HardwareInfo nvarchar(260) NOT NULL DEFAULT '',RegisterStamp BigInt NOT NULL "
    "DEFAULT 0,Pattern integer NOT NULL DEFAULT 1,AutoLogin Boolean NOT NULL DEFAULT "
    "0,RememberPassword Boolean NOT NULL DEFAULT 0,FunctionBitmap integer NOT NULL DEFAULT "
    "0,Mark integer NOT NULL DEFAULT 0,ListManageVersion integer NOT NULL DEFAULT "
    "0,ListManageCount integer NOT NULL DEFAULT 0,MobileStatus integer NOT NULL DEFAULT "
    "0,LastAccess Boolean NOT NULL DEFAULT 0,ExtraUserID integer NOT NULL DEFAULT "
    "0,ExtraOpenID nvarchar(80) NOT NULL DEFAULT '',ExtraPassword nvarchar(80) NOT NULL DEFAULT "
    "'',ExtraPartner nvarchar(80) NOT NULL DEFAULT '',ExtraPicture nvarchar(260) NOT NULL "
    "DEFAULT '')"};

const TableDef kKeywordSearchHistory = {
    "KeywordSearchHistory",
    "CREATE TABLE KeywordSearchHistory(Keyword nvarchar(260) PRIMARY KEY NOT NULL,TimeTick "
    "BigInt NOT NULL DEFAULT 0,Type integer NOT NULL DEFAULT 0)"};

}  // namespace

void ImportModel::WriteUserLoginHistory() {
  WriteTable(
      m_music_db.get(), kUserLoginHistory, m_login_history, EmptyList::kSkipTable,
      [](const LoginRecord& l, RowBuilder* row) {
        AppendColumns(l, LoginColumns(), row);
        return true;
      },
      report());
}

void ImportModel::WriteKeywordSearchHistory() {
  WriteTable(
      m_music_db.get(), kKeywordSearchHistory, m_search_keywords, EmptyList::kSkipTable,
      [](const SearchKeywordRecord& k, RowBuilder* row) {
        AppendColumns(k, SearchKeywordColumns(), row);
        return true;
      },
      report());
}

const ColumnList<LoginRecord>& LoginColumns() {
  using R = LoginRecord;
  static const ColumnList<R> columns = {
      {"Username", &R::Username},
      {"EncodedPassword", &R::EncodedPassword},
      {"HardwareInfo", &R::HardwareInfo},
      {"UserID", &R::UserID},
      {"RegisterStamp", &R::RegisterStamp},
      {"Pattern", &R::Pattern},
      {"AutoLogin", &R::AutoLogin},
      {"RememberPassword", &R::RememberPassword},
      {"FunctionBitmap", &R::FunctionBitmap},
      {"Mark", &R::Mark},
      {"ListManageVersion", &R::ListManageVersion},
      {"ListManageCount", &R::ListManageCount},
      {"MobileStatus", &R::MobileStatus},
      {"LastAccess", &R::LastAccess},
      {"ExtraUserID", &R::ExtraUserID},
      {"ExtraOpenID", &R::ExtraOpenID},
      {"ExtraPassword", &R::ExtraPassword},
      {"ExtraPartner", &R::ExtraPartner},
      {"ExtraPicture", &R::ExtraPicture},
  };
  return columns;
}

const ColumnList<SearchKeywordRecord>& SearchKeywordColumns() {
  using R = SearchKeywordRecord;
  static const ColumnList<R> columns = {
      {"Keyword", &R::Keyword},
      {"TimeTick", &R::TimeTick},
      {"Type", &R::Type},
  };
  return columns;
}

}  // namespace data_importer
