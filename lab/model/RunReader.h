#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/Error.h"
#include "lab/model/Calibration.h"
#include "lab/model/FileFault.h"
#include "lab/model/Readings.h"
#include "lab/model/Run.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The content of a plate document, and its readings on demand.
///
///     vex2::lab::RunReader run("run.vex");
///     if (!run.IsWhole()) std::cerr << run.Faults().front().what << '\n';
///     std::cout << run.Plate().wells[0].sample << ": " << run.FrameCount() << " frames\n";
///     const vex2::lab::Readings readings = run.Readings();
///
/// The constructor reads everything except the frames, so its time does not depend on the length of
/// the run. `Axis`, `Frame` and `Readings` open the file again and read what they need. No
/// operation keeps the file open, so a recorder may continue: this reader returns the frames that
/// were committed when it was made, and a new reader also returns later ones. If the document has
/// been replaced since, operations that read frames throw.
///
/// The texts and values that are returned by reference are valid as long as any copy of the reader.
/// Copies are cheap and share what was read, which never changes: different threads can use the
/// same reader and its copies. A reader that was moved from may only be assigned to or destroyed.
///
/// Every operation that can fail throws `Error` and nothing else. The error has the path, and the
/// offset and the system's error number if there are any. The reader stays unchanged.
class VEX2_API RunReader {
 public:
  /// Reads the document at `path`. Throws if it cannot be opened or read, if another program uses
  /// it for more than two seconds, or if it is not a plate document. A damaged document is read as
  /// far as possible; check `IsWhole`.
  explicit RunReader(const std::filesystem::path& path);

  /// The path as the caller gave it.
  const std::filesystem::path& Path() const;
  /// Whether everything in the file was read. If not, see `Faults`.
  bool IsWhole() const;
  /// What could not be read or was left out, and why, sorted by offset. For a plate in a study,
  /// only the faults in that plate.
  const std::vector<FileFault>& Faults() const;

  /// The state of the run.
  RunState State() const;
  // The header's codes, without trailing blanks.
  const std::string& StatusCode() const;  ///< "ZERO", "PROG" or "DONE"
  const std::string& AssayCode() const;   ///< such as "AbsQ"
  const std::string& KindCode() const;    ///< such as "Kest"

  /// The plate and the contents of its wells.
  const lab::Plate& Plate() const;
  /// The detectors in the order of the document.
  const std::vector<Detector>& Detectors() const;
  /// The names of the dyes that the run requires.
  const std::vector<std::string>& RequiredDyes() const;
  /// The calibration; empty if the document has none.
  const lab::Calibration& Calibration() const;
  /// The run-wide settings that the document has, in the order in which they are shown to users.
  const std::vector<SettingValue>& Settings() const;
  /// The thermal cycling program; nothing if the document has none.
  const std::optional<lab::Program>& Program() const;
  /// The data blocks in the order of the document.
  const std::vector<BlockInfo>& Blocks() const;

  // --- Readings ---
  //
  // The argument `block` is the tag of a data block; by default that of the raw readings. If there
  // are several such blocks, the first is read. If there is none, there are no frames and no wells.

  /// The number of committed frames.
  std::uint64_t FrameCount(std::string_view block = kRawReadings) const;
  /// The well numbers, from 1, in the order of each frame.
  const std::vector<std::uint16_t>& Wells(std::string_view block = kRawReadings) const;
  /// Reads the position of each frame in the run, from one record of each frame. If the log does
  /// not say that this library recorded the run, reads nothing, and all positions are unknown.
  std::vector<FramePosition> Axis(std::string_view block = kRawReadings) const;
  /// Reads the frame with this index, from 0. Throws `kNoSuchFrame` if the index is not below the
  /// frame count.
  lab::Frame Frame(std::uint64_t index, std::string_view block = kRawReadings) const;
  /// Reads all frames in one pass. Each call reads the file again, so keep the result.
  lab::Readings Readings(std::string_view block = kRawReadings) const;

  // --- Studies ---

  /// Whether the document is a study.
  bool IsStudy() const;
  /// The names of the plates in the document, in their order; empty if it holds no plates.
  std::vector<std::string> PlateNames() const;
  /// A reader of the first plate with this name. Throws `kNoSuchPlate` if there is none.
  RunReader Plate(std::string_view name) const;

 private:
  struct Content;

  friend struct ReaderFile FileOf(const RunReader& reader);

  explicit RunReader(std::shared_ptr<const Content> content);
  const BlockInfo* findBlock(std::string_view tag) const;
  template <typename Result, typename Work>
  Result withFrames(std::string_view block, const Work& work) const;

  std::shared_ptr<const Content> content_;
};

}  // namespace vex2::lab
