#ifndef TOOLS_DATA_IMPORTER_SOURCE_READERS_V7_DATA_EXPORTER_V7_TIME_TEXT_H_
#define TOOLS_DATA_IMPORTER_SOURCE_READERS_V7_DATA_EXPORTER_V7_TIME_TEXT_H_

#include <cstdint>
#include <string_view>

namespace data_importer {

// Generation 7 wrote some times (its search history, for one) as narrow
// text in one of several shapes. This turns such a text into seconds since
// 1970 with the C library's local-time conversion (mktime with the
// process's time zone), picking the pattern by the text's length and its
// separators:
//
//   length 11..20, with "-":          "%d-%d-%d %d:%d:%d"
//   length 11..20, else with "/":     "%d/%d/%d %d:%d:%d"
//   length exactly 15, no separator:  "%4d%2d%2d %2d%2d%2d"
//   length 1..10, with "-":           "%d-%d-%d"
//   length 1..10, else with "/":      "%d/%d/%d"
//   length 1..10, no separator:       "%4d%2d%2d"
//
// The fields are year, month, day and, in the long forms, hour, minute,
// second (0 in the date-only forms).
//
// Answers 0, and never reads past the text, when there is no time to take:
// an empty text, a text longer than 20 characters, a text of 11 to 20
// characters with neither separator whose length is not 15, and a text in
// which its pattern finds fewer than the three date fields. Missing time
// fields of a long form read as 0. A year beyond a million either way
// answers 0 as well. A time before 1970-01-01 00:00:00 UTC or after
// 3000-12-31 23:59:59 UTC, or one the C library cannot represent, answers
// -1, as the player platform's 64-bit conversion does.
int64_t ParseV7TimeText(std::string_view text);

}  // namespace data_importer

#endif  // TOOLS_DATA_IMPORTER_SOURCE_READERS_V7_DATA_EXPORTER_V7_TIME_TEXT_H_
