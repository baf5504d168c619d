#pragma once

#include <string>

#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/model/DocumentFile.h"

namespace vex2::lab {

/// Makes the run the content of `document`, which must be empty, as a recorder would: frames of all
/// wells, a scale that loses least unless the run states one that holds all its readings. What is
/// rounded is listed. Frees the run's curves before it fills the document, to save memory. Throws
/// an error that names `file` for what no document can hold.
void StoreRun(ExchangedRun run, const std::string& file, Losses& losses, DocumentFile& document);

}  // namespace vex2::lab
