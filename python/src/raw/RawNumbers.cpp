#include <initializer_list>
#include <utility>

#include "python/src/raw/RawManager.h"
#include "vex2/framework/FileError.h"
#include "vex2/run/Vex2DataType.h"

namespace vex2::python {

namespace {

template <typename Enumeration>
py::dict numbersOf(std::initializer_list<std::pair<const char*, Enumeration>> names) {
  py::dict numbers;
  for (const auto& [name, value] : names) numbers[name] = static_cast<int>(value);
  return numbers;
}

// The numbers of the data types, the operations and the reasons, by name.
py::tuple rawNumbers() {
  return py::make_tuple(
      numbersOf<Vex2DataType>({{"DataRAWa", DataRAWa},
                               {"DataREPr", DataREPr},
                               {"DataREPn", DataREPn},
                               {"DataREPd", DataREPd},
                               {"DataREPt", DataREPt}}),
      numbersOf<FileOperation>({{"kNone", FileOperation::kNone},
                                {"kOpen", FileOperation::kOpen},
                                {"kLock", FileOperation::kLock},
                                {"kCreate", FileOperation::kCreate},
                                {"kRead", FileOperation::kRead},
                                {"kSeek", FileOperation::kSeek},
                                {"kWrite", FileOperation::kWrite},
                                {"kResize", FileOperation::kResize},
                                {"kSync", FileOperation::kSync},
                                {"kRename", FileOperation::kRename}}),
      numbersOf<FileErrorReason>({{"kNone", FileErrorReason::kNone},
                                  {"kSystem", FileErrorReason::kSystem},
                                  {"kLocked", FileErrorReason::kLocked},
                                  {"kNotADocument", FileErrorReason::kNotADocument},
                                  {"kNotOpen", FileErrorReason::kNotOpen},
                                  {"kNoPath", FileErrorReason::kNoPath},
                                  {"kNoMemory", FileErrorReason::kNoMemory},
                                  {"kFailedSyncBefore", FileErrorReason::kFailedSyncBefore}}));
}

}  // namespace

void BindNumbers(py::module_& module) {
  module.def("raw_numbers", &rawNumbers, "The numbers of the enumerations of vex2.raw, by name.");
}

}  // namespace vex2::python
