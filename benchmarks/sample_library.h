#ifndef BENCHMARKS_SAMPLE_LIBRARY_H_
#define BENCHMARKS_SAMPLE_LIBRARY_H_

#include "tools/data_importer/target_store/import_model.h"

namespace data_importer {

// Fills |model| with a realistic library: |files| files (names of about 60
// characters, many outside ASCII, some with apostrophes; 32-hex hashes; one
// file in 50 an MV, one in 200 with the all-zero hash), |lists| lists
// holding |entries| entries in all (sizes falling off from the first list
// to the last), and |downloads| downloads, a third of them unfinished.
void FillSampleLibrary(ImportModel* model, int files, int lists, int entries, int downloads);

// Peak resident memory of this process so far, in megabytes. The figure is
// the whole process's high-water mark: run one benchmark at a time
// (--benchmark_filter) for a figure of its own.
double PeakMemoryMegabytes();

}  // namespace data_importer

#endif  // BENCHMARKS_SAMPLE_LIBRARY_H_
