#pragma once

#include <string>

#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/model/DocumentFile.h"

namespace vex2::lab {

/// Makes the run the content of `document`, which must be empty, as a recorder would: frames of all
/// wells, a scale that loses least unless the run states one that holds all its readings. What is
/// rounded is listed. Takes the run's curves apart as it goes, so that they need no memory twice.
/// Throws an error that names `file` for what no document can hold.
void StoreRun(ExchangedRun run, const std::string& file, Losses& losses, DocumentFile& document);

}  // namespace vex2::lab
