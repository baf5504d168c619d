#pragma once

#include <string>

#include "lab/model/RecordValue.h"
#include "lab/text/TextForm.h"

namespace vex2::lab {

/// A short description of the record and its value for users, read from the open `file`, in at most
/// `width` columns.
std::string DescribeRecord(CFile& file, const FileRecord& record, std::size_t width,
                           const TextForm& form);

}  // namespace vex2::lab
