#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace vex2::lab {

struct Frame;
struct FrameView;
class RunFollower;

/// A frame of the document at `path`: the stored values of each well. If vex recorded the run, also
/// the readings.
nlohmann::ordered_json DescribeFrame(const FrameView& view, const std::string& path,
                                     const std::string& block);

/// A whole frame that `follower` returned: its readings. If their meaning is not known, the stored
/// values instead.
nlohmann::ordered_json DescribeFollowed(const Frame& frame, const RunFollower& follower);

}  // namespace vex2::lab
