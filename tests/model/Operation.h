#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/model/Manager.h"
#include "tests/support/MemoryFiles.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/RunDocument.h"

namespace vex2::test::model {

/// Random choices that are the same on every system for the same seed.
class Draw {
 public:
  explicit Draw(std::uint64_t seed) : numbers_(seed) {}

  /// A random number from 0 to `count` - 1.
  int Below(int count) { return static_cast<int>(numbers_() % static_cast<std::uint64_t>(count)); }
  bool OneIn(int count) { return Below(count) == 0; }
  std::uint32_t Number();
  /// A random text of up to `longest` characters; one in four is empty.
  Text Letters(int longest);
  Text Bytes(int count);
  template <typename Value>
  const Value& Of(const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(Below(static_cast<int>(values.size())))];
  }
  /// A random path, which can be null.
  const char* Path();

 private:
  std::mt19937_64 numbers_;
};

/// Files in memory. Some cannot be written, read or opened, as `Disk` describes.
class Files : public MemoryFiles {
 public:
  int Open(const char* path, int flags, mode_t mode) override;
};

/// Both sides of the comparison: two managers of the library and two of the model, with equal
/// files.
struct Sides {
  Files files;
  RecordingHost host;
  OpenedManager actual[2];
  Disk disk;
  Manager model[2] = {Manager(disk), Manager(disk)};
};

/// One operation on a manager, for both sides. Both must return the same text.
struct Operation {
  Text text;  ///< shown if a sequence fails
  std::function<Text(OpenedManager&)> tested = {};
  std::function<Text(Manager&)> model = {};
  /// Whether the rules define the result of the operation in this state. If not, it is skipped.
  std::function<bool(const Manager&)> isSettled = {};
  /// Used instead of the three functions above for operations on two managers or on files.
  std::function<void(Sides&)> onBoth = {};
  int manager = 0;
};

Operation DrawFileOperation(Draw& draw);
Operation DrawSettingsOperation(Draw& draw);
Operation DrawSetupOperation(Draw& draw);
Operation DrawCalibrationOperation(Draw& draw);
Operation DrawRunOperation(Draw& draw);
Operation DrawStudyOperation(Draw& draw);
/// The bytes of a random file: a document of random records, which may be cut off, or no document.
Text DrawDocument(Draw& draw);

inline Text Shown(const char* path) {
  return path != nullptr ? Text("\"") + path + "\"" : "null";
}
inline Text Shown(bool answer) {
  return answer ? "true" : "false";
}
inline Text Shown(int answer) {
  return std::to_string(answer);
}
inline Text TextOf(const CString& text) {
  return Text(text.View());
}

}  // namespace vex2::test::model
