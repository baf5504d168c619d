#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tools/vex/Interrupts.h"
#include "tools/vex/document/DocumentLock.h"
#include "tools/vex/run/InterruptedRun.h"
#include "tools/vex/run/RunPlan.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::tool {

/// How a run is brought to its document.
struct RecordOptions {
  std::string path;
  double pace = 0;      ///< seconds from one frame to the next; 0 is as fast as it goes
  bool resume = false;  ///< go on with a document that is there
  bool force = false;   ///< replace one
};

/// How far a recording has come.
struct RecordState {
  std::size_t framesDone = 0;
  std::size_t framesTotal = 0;
  double lastCommit = 0;  ///< seconds that it took
};

/// Brings a planned run to its document as an instrument would: a document with settings and
/// program first, then frame by frame, each on the disk before the next is read, and last the end
/// time and the status of a finished run.
class Recorder {
 public:
  enum class Outcome { kDone, kWasDone, kInterrupted };

  /// `plan` must outlive the recorder. `report` is called before the first frame and after each.
  Recorder(const RunPlan& plan, RecordOptions options,
           std::function<void(const RecordState&)> report);

  /// Locks the document and checks that it can be recorded to. Throws an error if not; nothing
  /// was changed then. `Run` does so itself where it was not called.
  void Claim();
  /// Records until the run or the user ends it. Throws an error, and then the document holds every
  /// frame that was reported and can be gone on with.
  Outcome Run();

 private:
  bool goOn();
  void begin();
  void openBlock();
  void commit(std::size_t frame);
  void finish();
  void check(int status) const;

  const RunPlan& plan_;
  RecordOptions options_;
  std::function<void(const RecordState&)> report_;
  std::filesystem::path document_;  ///< the one path that the given one leads to
  std::unique_ptr<DocumentLock> lock_;
  std::optional<InterruptedRun> interrupted_;  ///< what to go on with; nothing: a new document
  Vex2FileManager manager_;
  RecordState state_;
};

}  // namespace vex2::tool
