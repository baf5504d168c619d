#pragma once

#include <string_view>

#include "lab/model/Document.h"

class AcquisitionDataComp;

namespace vex2::lab {

/// Whether a user who types `name`, in UTF-8, means the plate that a document calls `stored`.
bool IsPlateCalled(std::string_view stored, std::string_view name);

/// The first plate of a document with this name, in UTF-8; null if there is none.
const Document::Plate* FindPlate(const Document& document, std::string_view name);

/// Throws an error: the document has no plate `name`. The message lists the plates that it has.
[[noreturn]] void RefusePlateName(const Document& document, std::string_view name);

/// The first data block of a plate with this tag; null if there is none.
const AcquisitionDataComp* FindBlock(const Document::Plate& plate, std::string_view tag);

}  // namespace vex2::lab
