#ifndef TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_COLUMNS_H_
#define TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_COLUMNS_H_

#include "tools/data_importer/target_store/import_records.h"
#include "tools/data_importer/target_store/record_columns.h"

namespace data_importer {

// The columns each table writer fills from its record, in the order the
// writer appends them. Readers of databases in the current generation's own
// format read rows back through the same lists. Ids a writer derives rather
// than copies (the row ids of "ShareFileItems" and "ShareFolders", the
// "SongID" of the song tables, the folder path of "LocalFiles", the
// playability of general-list entries, the file ids of downloads) are
// handled by the writer itself and are noted at each list.

// "ShareFileItems": every column but "id".
const ColumnList<ShareFileItem>& ShareFileColumns();
// "ShareFolders": every column but "id".
const ColumnList<ShareFolderItem>& ShareFolderColumns();
// "LocalFiles": "FolderPath" is bound to the record's field but written as
// the path of the record's folder when the library has it.
const ColumnList<LocalFileInfo>& LocalFileColumns();
const ColumnList<AppToolRecord>& AppToolColumns();
const ColumnList<PlayListInfo>& GeneralListColumns();
// The 42 columns of every song table, "TitleName" to
// "LastGenreDownloadTime" ("SongID" is not among them).
const ColumnList<SongItem>& SongColumns();
// "RadioChannelTable": every column but "FMStat", which keeps its default.
const ColumnList<RadioChannelInfo>& RadioChannelColumns();
const ColumnList<DislikeRadioRecord>& DislikeRadioColumns();
const ColumnList<PlayedRadioRecord>& PlayedRadioColumns();
// "DownloadItem": "FileID" and "RelevanceMusicId" are bound to the record's
// fields but written as the new ids of the files they name.
const ColumnList<DownloadRecord>& DownloadItemColumns();
// "DownloadHistoryItem": "RelevanceMusicId" as in "DownloadItem".
const ColumnList<DownloadRecord>& DownloadHistoryColumns();
const ColumnList<LoginRecord>& LoginColumns();
const ColumnList<SearchKeywordRecord>& SearchKeywordColumns();

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_TARGET_STORE_TABLE_COLUMNS_H_
