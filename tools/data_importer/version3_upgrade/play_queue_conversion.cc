#include "tools/data_importer/version3_upgrade/play_queue_conversion.h"

#include "logging/logging.h"
#include "sql/connection.h"

namespace data_importer {

void ConvertPlayQueue(sql::Connection* music_db) {
  if (!music_db || !music_db->is_open())
    return;
  VLOG_AT(logging::LOG_PROGRESS) << L"[V8数据升级] Play queue: nothing to convert.";
}

}  // namespace data_importer
