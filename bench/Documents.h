#pragma once

#include <cstdint>
#include <string>

/// The documents that the benchmarks work on.
namespace vex2::bench {

/// Writes a run of `frames` frames of `wells` wells with values that all differ. Throws
/// `std::runtime_error` when the library refuses.
void MakeRun(const std::string& path, std::uint16_t wells, int frames);

/// Writes a document of `lists` records of settings with `SmallRecordsPerList()` small records
/// each.
void MakeNested(const std::string& path, int lists);

/// Writes a document of `setups` plate setups of 384 wells with a name and four detectors each.
void MakeSetups(const std::string& path, int setups);

/// How many records stand in one plate setup, itself not counted.
int RecordsPerSetup();

/// Writes a study of `plates` runs of `frames` frames of 384 wells.
void MakeStudy(const std::string& path, int plates, int frames);

/// How many records stand in one list of settings, itself not counted.
int SmallRecordsPerList();

}  // namespace vex2::bench
