#pragma once

#include <string>
#include <vector>

namespace vex2::test {

/// The public operations of the class that `header`, a file in the source tree, declares, in the
/// order of the header. An operation is given by its name; overloaded operations also have their
/// parameters as written in the header. Examples are "GetPlateSize" and "ReadDataFrame(int
/// frameIndex, Vex2FrameData* frame, Vex2DataType type)".
std::vector<std::string> PublicOperations(const std::string& header);

}  // namespace vex2::test
