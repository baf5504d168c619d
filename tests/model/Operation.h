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

/// Random choices, the same on every system for the same seed.
class Draw {
 public:
  explicit Draw(std::uint64_t seed) : numbers_(seed) {}

  /// A number from 0 to `count` - 1.
  int Below(int count) { return static_cast<int>(numbers_() % static_cast<std::uint64_t>(count)); }
  bool OneIn(int count) { return Below(count) == 0; }
  std::uint32_t Number();
  /// Up to `longest` characters; one in four is empty.
  Text Letters(int longest);
  Text Bytes(int count);
  template <typename Value>
  const Value& Of(const std::vector<Value>& values) {
    return values[static_cast<std::size_t>(Below(static_cast<int>(values.size())))];
  }
  /// A path; null is one of them.
  const char* Path();

 private:
  std::mt19937_64 numbers_;
};

/// Files in memory of which some cannot be written, read or opened, as `Disk` has it.
class Files : public MemoryFiles {
 public:
  int Open(const char* path, int flags, mode_t mode) override;
};

/// Both sides of the comparison: two managers of the library and two of the model, which work on
/// the same files.
struct Sides {
  Files files;
  RecordingHost host;
  OpenedManager actual[2];
  Disk disk;
  Manager model[2] = {Manager(disk), Manager(disk)};
};

/// One operation on a manager, on both sides. What they answer must be the same text.
struct Operation {
  Text text;  ///< how a failing sequence is printed
  std::function<Text(OpenedManager&)> tested = {};
  std::function<Text(Manager&)> model = {};
  /// Whether the rules say what the operation does there; it is left out where they do not.
  std::function<bool(const Manager&)> isSettled = {};
  /// For operations between managers and on files, in place of the three above.
  std::function<void(Sides&)> onBoth = {};
  int manager = 0;
};

Operation DrawFileOperation(Draw& draw);
Operation DrawSettingsOperation(Draw& draw);
Operation DrawSetupOperation(Draw& draw);
Operation DrawCalibrationOperation(Draw& draw);
Operation DrawRunOperation(Draw& draw);
Operation DrawStudyOperation(Draw& draw);
/// The bytes of a file: a document of random records, whole, cut short or none at all.
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
