#pragma once

#include <string>
#include <vector>

namespace vex2::test {

/// The public operations of the class that a header of the source tree declares, in its order: by
/// name, and where several share one, with their parameters as they are written there, e.g.
/// "GetPlateSize" and "ReadDataFrame(int frameIndex, Vex2FrameData* frame, Vex2DataType type)".
std::vector<std::string> PublicOperations(const std::string& header);

}  // namespace vex2::test
