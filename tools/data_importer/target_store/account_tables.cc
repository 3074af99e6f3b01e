// Tables of the music-library database (VTMusicV3.db) written here:
//   UserLoginHistory, KeywordSearchHistory
// (the user's saved logins and search history).

#include "tools/data_importer/target_store/import_model.h"
#include "tools/data_importer/target_store/table_writer.h"

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
  WriteTable(m_music_db.get(), kUserLoginHistory, m_login_history, EmptyList::kSkipTable,
             [](const LoginRecord& l, RowBuilder* row) {
               row->Text("Username", l.Username);
               row->Text("EncodedPassword", l.EncodedPassword);
               row->Text("HardwareInfo", l.HardwareInfo);
               row->Int("UserID", l.UserID);
               row->Int("RegisterStamp", l.RegisterStamp);
               row->Int("Pattern", l.Pattern);
               row->Bool("AutoLogin", l.AutoLogin);
               row->Bool("RememberPassword", l.RememberPassword);
               row->Int("FunctionBitmap", l.FunctionBitmap);
               row->Int("Mark", l.Mark);
               row->Int("ListManageVersion", l.ListManageVersion);
               row->Int("ListManageCount", l.ListManageCount);
               row->Int("MobileStatus", l.MobileStatus);
               row->Bool("LastAccess", l.LastAccess);
               row->Int("ExtraUserID", l.ExtraUserID);
               row->Text("ExtraOpenID", l.ExtraOpenID);
               row->Text("ExtraPassword", l.ExtraPassword);
               row->Text("ExtraPartner", l.ExtraPartner);
               row->Text("ExtraPicture", l.ExtraPicture);
               return true;
             }, report());
}

void ImportModel::WriteKeywordSearchHistory() {
  WriteTable(m_music_db.get(), kKeywordSearchHistory, m_search_keywords, EmptyList::kSkipTable,
             [](const SearchKeywordRecord& k, RowBuilder* row) {
               row->Text("Keyword", k.Keyword);
               row->Int("TimeTick", k.TimeTick);
               row->Int("Type", k.Type);
               return true;
             }, report());
}
