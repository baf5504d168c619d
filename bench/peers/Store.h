#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The same work done by this library, by system calls alone and by other stores of numbers, each
/// with its best known settings, so that `scripts/bench --peers` can compare them.
namespace vex2::bench {

constexpr int kPeerWells = 384;
constexpr int kPeerValues = 40;  ///< of a well in a frame, 16 bits each
constexpr int kFrameValues = kPeerWells * kPeerValues;

/// Frames of 384 wells with 40 values each, one after the other.
using FrameValues = std::vector<std::uint16_t>;

/// One way to keep a run in a file. Every operation throws `std::runtime_error` when it fails.
class Store {
 public:
  virtual ~Store() = default;

  /// As the table heads its column, with the version.
  virtual std::string Name() const = 0;
  /// How it is set up, for the line below the table.
  virtual std::string Settings() const = 0;

  /// Opens the file, brings all frames into memory and closes it.
  virtual void ReadAll(const std::string& path) = 0;
  /// Opens the file, brings the frame with this index, from 0, into memory and closes it.
  virtual void ReadFrame(const std::string& path, int index) = 0;

  /// Keeps the frames in memory for `Save`; may use the file at `path` for that. Returns false if
  /// the store has no such operation.
  virtual bool Hold(const FrameValues& frames, const std::string& path) = 0;
  /// Writes the frames of `Hold` as a whole file in place of the one that is there; they are on
  /// the disk when it returns.
  virtual void Save(const std::string& path) = 0;

  /// Begins a run at `path`, which has no frames yet.
  virtual void BeginRun(const std::string& path) = 0;
  /// Makes ready the next frame, which is not part of the commit's time.
  virtual void Prepare(const FrameValues& /*frame*/) {}
  /// Appends a frame to the run; it is on the disk when this returns.
  virtual void Commit(const FrameValues& frame) = 0;
  /// Closes the file of the run.
  virtual void EndRun() {}
};

/// The system calls that the work cannot do without.
std::unique_ptr<Store> MakeFloor();
/// `Vex2FileManager`.
std::unique_ptr<Store> MakeManager();
/// `lab::RunRecorder` and `lab::RunReader`.
std::unique_ptr<Store> MakeLab();
std::unique_ptr<Store> MakeHdf5();
std::unique_ptr<Store> MakeSqlite();

/// Throws `std::runtime_error` with this text unless `isFine`.
void Require(bool isFine, const char* what);

}  // namespace vex2::bench
