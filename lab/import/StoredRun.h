#pragma once

#include <string>

#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/model/DocumentFile.h"

namespace vex2::lab {

/// Stores the run in `document`, which must be empty, as a recorder would: frames of all wells,
/// with the scale that loses least. If the run states a scale that keeps all its readings exactly,
/// that scale is used. Lists what is rounded. Frees the run's curves before it fills the document,
/// to save memory. Throws an error that names `file` for values that no document can hold.
void StoreRun(ExchangedRun run, const std::string& file, Losses& losses, DocumentFile& document);

}  // namespace vex2::lab
