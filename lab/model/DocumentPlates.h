#pragma once

#include <string_view>

#include "lab/model/Document.h"

class AcquisitionDataComp;

namespace vex2::lab {

/// Whether a person who says `name`, in UTF-8, means the plate that a document calls `stored`.
bool IsPlateCalled(std::string_view stored, std::string_view name);

/// The first plate of a document that a person calls by this name; null when there is none.
const Document::Plate* FindPlate(const Document& document, std::string_view name);

/// Throws an error that names the plates that there are: none is called `name`.
[[noreturn]] void RefusePlateName(const Document& document, std::string_view name);

/// The first data block of a plate with this tag; null when there is none.
const AcquisitionDataComp* FindBlock(const Document::Plate& plate, std::string_view tag);

}  // namespace vex2::lab
