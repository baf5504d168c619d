#include <chrono>
#include <optional>
#include <string>

#include "lab/model/RunReader.h"
#include "lab/record/RunFollower.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

using lab::FollowState;
using lab::RunFollower;

// The next frame, or None if no frame arrives within `wait` seconds.
py::object next(RunFollower& follower, double wait, bool mustExist) {
  std::optional<lab::Frame> frame;
  {
    const py::gil_scoped_release unlocked;
    const std::chrono::duration<double> seconds(wait);
    frame = follower.Next(std::chrono::duration_cast<std::chrono::milliseconds>(seconds));
    // The document does not exist; the reader throws the error that says why.
    if (mustExist && follower.State() == FollowState::kWaiting) {
      static_cast<void>(lab::RunReader(follower.Path()));
    }
  }
  return frame ? py::object(FromFrame(*frame)) : py::object(py::none());
}

py::object runOf(const RunFollower& follower) {
  return follower.Run() ? py::cast(lab::RunReader(*follower.Run())) : py::object(py::none());
}

}  // namespace

void BindFollower(py::module_& module) {
  py::class_<RunFollower>(module, "Follower", "Follows a run while it is recorded.")
      .def(py::init([](const std::string& path) { return RunFollower(path); }), py::arg("path"))
      .def("next", &next, py::arg("wait"), py::arg("must_exist"))
      .def("is_done", [](const RunFollower& self) { return self.State() == FollowState::kDone; })
      .def("next_frame", &RunFollower::NextFrame)
      .def("frame_count", &RunFollower::CommittedFrames)
      .def("planned_frames", [](const RunFollower& self) { return OrNone(self.PlannedFrames()); })
      .def("run", &runOf);
}

}  // namespace vex2::python
