#pragma once

#include <cstdint>
#include <string>

/// The documents that the benchmarks work on.
namespace vex2::bench {

/// Writes a run of `frames` frames of `wells` wells, with values that all differ. Throws
/// `std::runtime_error` if an operation of the library fails.
void MakeRun(const std::string& path, std::uint16_t wells, int frames);

/// Writes a document of `lists` lists of settings, with `SmallRecordsPerList()` small records in
/// each.
void MakeNested(const std::string& path, int lists);

/// Writes a document of `setups` plate setups of 384 wells. Each well has a name and four
/// detectors.
void MakeSetups(const std::string& path, int setups);

/// The number of records in one plate setup, not counting the setup itself.
int RecordsPerSetup();

/// Writes a study of `plates` plates, each a run of `frames` frames of 384 wells.
void MakeStudy(const std::string& path, int plates, int frames);

/// The number of records in one list of settings, not counting the list itself.
int SmallRecordsPerList();

}  // namespace vex2::bench
