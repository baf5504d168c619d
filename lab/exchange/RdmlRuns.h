#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/exchange/RdmlContent.h"

namespace vex2::lab::rdml {

/// Brings runs together that are parts of one plate: those of one experiment with the same samples
/// in the same wells that are of different dyes, or of different stages. `onMerged` is told the
/// names of two runs that became one.
void MergeParts(Content& content,
                const std::function<void(const std::string&, const std::string&)>& onMerged);

/// The runs as documents can hold them. What they cannot is listed. Throws an error that names
/// `file` for a plate that no document can have.
std::vector<ExchangedRun> RunsOf(const Content& content, const std::string& file, Losses& losses);

}  // namespace vex2::lab::rdml
