#ifndef TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_PLAY_QUEUE_CONVERSION_H_
#define TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_PLAY_QUEUE_CONVERSION_H_

namespace sql {
class Connection;
}

namespace data_importer {

// Converts the play queue that earlier releases kept in the music database
// to the form the current release reads. It runs on the upgrader's open,
// keyed connection to "VTMusicV3.db", before the cloud-list move, and leaves
// that connection open.
//
// Neither the old nor the new form of the play queue is known to this
// library yet, so there is nothing to convert: the conversion logs that and
// changes nothing. It never fails the upgrade.
void ConvertPlayQueue(sql::Connection* music_db);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_VERSION3_UPGRADE_PLAY_QUEUE_CONVERSION_H_
