#pragma once

#include <string>

#include "lab/model/RecordWalk.h"
#include "tools/vex/Lab.h"
#include "tools/vex/text/Json.h"

namespace vex2::tool {

/// What a record holds besides records, read from the open `file`: numbers as numbers, texts as
/// UTF-8 without the one zero byte that may end them, bytes in hexadecimal, a colour as its three
/// bytes; null for a record that holds no value, and for one that is cut short.
nlohmann::ordered_json ReadRecordValue(CFile& file, const FileRecord& record);

/// The fields of a record that has some of its own besides a value: a data block's and a well's.
nlohmann::ordered_json ReadRecordFields(CFile& file, const FileRecord& record);

/// A few words about the record and what it holds, for people.
std::string DescribeRecord(CFile& file, const FileRecord& record, std::size_t width);

}  // namespace vex2::tool
