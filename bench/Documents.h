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

/// How many records stand in one list of settings, itself not counted.
int SmallRecordsPerList();

}  // namespace vex2::bench
