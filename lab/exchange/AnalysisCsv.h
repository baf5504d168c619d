#pragma once

#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/analysis/Melt.h"

/// Results of an analysis as rows of a table. Numbers have a decimal point.
namespace vex2::lab {

/// The names of the fields that `CqFields` gives.
std::vector<std::string> CqColumns();
/// One curve: what the well holds, its quantification cycle, empty where there is none, and how it
/// was found. The quantity is the document's, or else the one read off the standard curve; the note
/// says so.
std::vector<std::string> CqFields(const CqResult& result, CqMethod method);

/// The names of the fields that `MeltFields` gives.
std::vector<std::string> MeltColumns();
/// One row for each peak, counted from 1. A well without peaks has one row in which they are empty.
std::vector<std::vector<std::string>> MeltFields(const MeltCurve& curve);

}  // namespace vex2::lab
