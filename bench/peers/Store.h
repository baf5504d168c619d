#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The same work done by this library, by system calls alone and by other stores of numbers, each
/// with the best settings that we know for it, so that `scripts/bench --peers` can compare them.
namespace vex2::bench {

constexpr int kPeerWells = 384;
constexpr int kPeerValues = 40;  ///< 16-bit values of one well in one frame
constexpr int kFrameValues = kPeerWells * kPeerValues;

/// Frames of 384 wells with 40 values each, one after the other.
using FrameValues = std::vector<std::uint16_t>;

/// One way to store a run in a file. Every operation throws `std::runtime_error` on failure.
class Store {
 public:
  virtual ~Store() = default;

  /// The heading of its column in the table, with the version.
  virtual std::string Name() const = 0;
  /// Its settings, for the line below the table.
  virtual std::string Settings() const = 0;

  /// Opens the file, brings all frames into memory and closes it.
  virtual void ReadAll(const std::string& path) = 0;
  /// Opens the file, brings the frame with this index, from 0, into memory and closes it.
  virtual void ReadFrame(const std::string& path, int index) = 0;

  /// Keeps the frames in memory for `Save`; may use the file at `path` for that. Returns false if
  /// the store has no such operation.
  virtual bool Hold(const FrameValues& frames, const std::string& path) = 0;
  /// Writes the frames of `Hold` to a new file that replaces the file at `path`. The frames are on
  /// the disk when this returns.
  virtual void Save(const std::string& path) = 0;

  /// Begins a run at `path`, which has no frames yet.
  virtual void BeginRun(const std::string& path) = 0;
  /// Prepares the next frame. This is not part of the commit's time.
  virtual void Prepare(const FrameValues& /*frame*/) {}
  /// Appends a frame to the run; it is on the disk when this returns.
  virtual void Commit(const FrameValues& frame) = 0;
  /// Closes the file of the run.
  virtual void EndRun() {}
};

/// Only the system calls that the work needs.
std::unique_ptr<Store> MakeFloor();
/// `Vex2FileManager`.
std::unique_ptr<Store> MakeManager();
/// `lab::RunRecorder` and `lab::RunReader`.
std::unique_ptr<Store> MakeLab();
std::unique_ptr<Store> MakeHdf5();
std::unique_ptr<Store> MakeSqlite();

/// Throws `std::runtime_error` with the text `what` unless `isFine`.
void Require(bool isFine, const char* what);

}  // namespace vex2::bench
