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

/// What a plate document says, and its readings on demand.
///
///     vex2::lab::RunReader run("run.vex");
///     if (!run.IsWhole()) std::cerr << run.Faults().front().what << '\n';
///     std::cout << run.Plate().wells[0].sample << ": " << run.FrameCount() << " frames\n";
///     const vex2::lab::Readings readings = run.Readings();
///
/// The constructor reads all but the frames, so that it costs the same however long the run was.
/// `Axis`, `Frame` and `Readings` open the file again and read what they need. No operation keeps
/// the file open, so a recorder may continue: the reader returns the frames that were committed
/// when it was made, and a new reader sees those that came since. If the document has been replaced
/// since, operations that read frames throw.
///
/// The texts and values that are handed out by reference live as long as any copy of the reader.
/// Copies are cheap and share what was read, which never changes: different threads can use the
/// same reader and its copies. A reader that was moved from may only be assigned to or destroyed.
///
/// Every operation that can fail throws `Error`, with the path, and with the offset and the
/// system's error where there are any, and nothing else; the reader stays as it was.
class VEX2_API RunReader {
 public:
  /// Reads the document at `path`. Throws when it cannot be opened or read, is used by another
  /// program for more than two seconds, or is not a plate document. A document that is damaged is
  /// read as far as possible: ask `IsWhole`.
  explicit RunReader(const std::filesystem::path& path);

  /// As it was given.
  const std::filesystem::path& Path() const;
  /// Whether everything in the file was read, so that `Faults` is empty.
  bool IsWhole() const;
  /// What could not be read or was left out, where and why, by offset. Of a plate in a study what
  /// concerns the plate.
  const std::vector<FileFault>& Faults() const;

  /// How far the run has come.
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
  /// The calibration; empty where the document has none.
  const lab::Calibration& Calibration() const;
  /// The run-wide settings that the document has, in the order in which people are shown them.
  const std::vector<SettingValue>& Settings() const;
  /// Returns nothing if the document has no program.
  const std::optional<lab::Program>& Program() const;
  /// The data blocks in the order of the document.
  const std::vector<BlockInfo>& Blocks() const;

  // --- Readings ---
  //
  // Of the first data block with the tag `block`; by default the raw readings. Without such a block
  // there are no frames and no wells.

  /// The number of committed frames.
  std::uint64_t FrameCount(std::string_view block = kRawReadings) const;
  /// The well numbers, from 1, in the order of each frame.
  const std::vector<std::uint16_t>& Wells(std::string_view block = kRawReadings) const;
  /// The position of each frame in the run. Reads one record of a frame. If the log does not say
  /// that this library recorded the run, reads nothing, and all positions are unknown.
  std::vector<FramePosition> Axis(std::string_view block = kRawReadings) const;
  /// Reads one frame, from 0. Throws `kNoSuchFrame` for an index that is not below the count.
  lab::Frame Frame(std::uint64_t index, std::string_view block = kRawReadings) const;
  /// Reads all frames, in one pass. Each call reads the file: keep the result.
  lab::Readings Readings(std::string_view block = kRawReadings) const;

  // --- Studies ---

  /// Whether the document holds plates to be compared.
  bool IsStudy() const;
  /// The names of the plates in the document, in their order; none of a document without plates.
  std::vector<std::string> PlateNames() const;
  /// A reader of the first plate of this name. Throws `kNoSuchPlate` if there is none.
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
