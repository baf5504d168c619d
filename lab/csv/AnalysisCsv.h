#pragma once

#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"

/// Converts results of an analysis to rows of a table. Numbers have a decimal point.
namespace vex2::lab {

/// The names of the fields that `CqFields` returns.
std::vector<std::string> CqColumns();
/// The row of one curve: the content of the well, its quantification cycle (empty if there is
/// none), and how the cycle was found. The quantity is that of the document, or was calculated from
/// the standard curve; the note says which.
std::vector<std::string> CqFields(const CqResult& result, CqMethod method);

/// The names of the fields that `MeltFields` returns.
std::vector<std::string> MeltColumns();
/// The rows of one well: one for each peak. Peaks are numbered from 1. If a well has no peaks, it
/// has one row without values for a peak.
std::vector<std::vector<std::string>> MeltFields(const MeltCurve& curve);

}  // namespace vex2::lab
