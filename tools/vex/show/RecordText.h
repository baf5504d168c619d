#pragma once

#include <string>

#include "lab/model/RecordValue.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// A few words about the record and what it holds, for people, read from the open `file`.
std::string DescribeRecord(CFile& file, const FileRecord& record, std::size_t width);

}  // namespace vex2::tool
