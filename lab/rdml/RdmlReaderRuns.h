#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/rdml/RdmlReaderContent.h"

namespace vex2::lab::rdml {

/// Joins runs that are parts of one plate. These are runs of one experiment with the same samples
/// in the same wells, but with different dyes or different stages. Calls `onMerged` with the names
/// of two runs that were joined.
void MergeParts(Content& content,
                const std::function<void(const std::string&, const std::string&)>& onMerged);

/// Converts the runs as far as documents can hold them, and lists what they cannot hold. Throws an
/// error that names `file` for a plate that no document can have.
std::vector<ExchangedRun> RunsOf(const Content& content, const std::string& file, Losses& losses);

}  // namespace vex2::lab::rdml
