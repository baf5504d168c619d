#include "lab/record/RunFollower.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "lab/Error.h"
#include "lab/Guarded.h"
#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/FrameFiller.h"
#include "lab/model/RawFile.h"
#include "lab/record/FollowedFile.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPause(100);  // between two checks of the file

/// Identity, size and time of a file. They show whether the file was changed or replaced.
struct Sight {
  FileIdentity identity;
  std::int64_t size = 0;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;

  friend bool operator==(const Sight&, const Sight&) = default;
};

// The state of the file at `path`; nothing if the file is missing or still empty.
std::optional<Sight> sightOf(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    const int error = errno;
    const auto folder = std::filesystem::path(path).parent_path();
    if (error == ENOENT && (folder.empty() || std::filesystem::exists(folder))) return std::nullopt;
    throw SystemError(path, error);
  }
  if (S_ISREG(info.st_mode) && info.st_size == 0) return std::nullopt;
  return Sight{{info.st_dev, info.st_ino}, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec};
}

/// Holds a reader's lock on the file as long as it lives.
class LockedFile final : public CFile {
 public:
  explicit LockedFile(const std::string& path) { OpenToRead(*this, path); }
  using CFile::GetIdentity;
};

}  // namespace

class RunFollower::Impl {
 public:
  Impl(const std::filesystem::path& path, std::uint64_t firstFrame)
      : given_(path), path_(path.string()), next_(firstFrame) {
    if (path_.empty()) throw Error(ErrorCode::kUsage, "the name of the document is empty");
  }

  std::optional<Frame> Next(std::chrono::milliseconds wait) {
    const auto deadline = Clock::now() + wait;
    for (;;) {
      if (next_ >= committed_) look();
      if (next_ < committed_) return takeFrame();
      const auto left = deadline - Clock::now();
      if (State() == FollowState::kDone || left <= Clock::duration::zero()) return std::nullopt;
      std::this_thread::sleep_for(std::min<Clock::duration>(left, kPause));
    }
  }

  FollowState State() const {
    if (!known_.run) return FollowState::kWaiting;
    return isDone_ && next_ >= committed_ ? FollowState::kDone : FollowState::kRunning;
  }

  const std::filesystem::path& Path() const { return given_; }
  std::uint64_t NextFrame() const { return next_; }
  std::uint64_t CommittedFrames() const { return committed_; }
  std::optional<std::uint64_t> PlannedFrames() const {
    return known_.recorded && known_.recorded->Log() ? known_.recorded->Log()->frames
                                                     : std::nullopt;
  }
  std::vector<std::string> Channels() const {
    const auto meaning = known_.recorded ? MeaningOf(known_.recorded->Log()) : std::nullopt;
    return meaning ? meaning->channels : std::vector<std::string>();
  }
  const std::optional<RunReader>& Run() const { return known_.run; }

 private:
  /// The document at the path, as it was when it was last read.
  struct Known {
    std::optional<RunReader> run;
    std::optional<RecordedReadings> recorded;
    const BlockInfo* block = nullptr;  ///< null if there is no block yet
    CommittedBlock stored;
    FollowedFile file;
    Sight sight;  ///< state of the file just before it was read
  };

  // Finds out how many frames are committed, and whether the run is complete.
  void look() {
    const auto sight = sightOf(path_);
    if (!sight) return;
    const bool isNew = !known_.run || sight->identity != known_.sight.identity;
    const bool isChanged = known_.block == nullptr && *sight != known_.sight;
    if (isNew || isChanged || !hasBlockInPlace(known_)) {
      Known met = meet(*sight);
      if (!met.run) return;
      requireSameRun(met);
      known_ = std::move(met);
    }
    // Read the status first: after "DONE" no frame is appended.
    const bool isDone = readStatus(known_.file) == RunStatus::kDone;
    committed_ = countFrames(known_);
    isDone_ = isDone;
  }

  // Reads all but the frames. If the document is replaced during this, the result has no `run`.
  Known meet(const Sight& sight) const {
    Known met;
    met.sight = sight;
    RunReader run(path_);
    const auto [identity, log] = FileOf(run);
    if (run.IsStudy()) {
      throw Error(ErrorCode::kUsage, path_,
                  "it is a study, into which no run is recorded; follow the document of a plate");
    }
    const auto& blocks = run.Blocks();
    const auto found = std::find_if(blocks.begin(), blocks.end(), [](const BlockInfo& block) {
      return block.tag == kRawReadings;
    });
    LockedFile locked(path_);
    met.file = FollowedFile(path_);
    if (locked.GetIdentity() != identity || met.file.Identity() != identity) return met;
    if (found != blocks.end()) {
      met.stored = ReadCommittedBlock(locked, found->offset);
      met.block = met.stored.isWhole ? &*found : nullptr;
    } else if (!run.IsWhole()) {
      const FileFault& fault = run.Faults().front();
      throw Error(ErrorCode::kDocument, path_,
                  "it has no readings that can be followed: " + fault.what, fault.offset);
    }
    met.recorded.emplace(log, kRawReadings);
    met.run = std::move(run);  // moving keeps `block` valid
    return met;
  }

  // Throws an error if the document holds another run. A save keeps all frames, so a document
  // without the frame that was returned last is that of another run.
  void requireSameRun(const Known& met) const {
    if (last_.empty()) return;
    std::vector<std::uint8_t> there(last_.size());
    const bool isThere = met.block != nullptr && countFrames(met) >= next_ &&
                         met.stored.Range(0).frameSize == there.size() &&
                         met.file.Read(placeOf(met, next_ - 1), there);
    if (isThere && there == last_) return;
    throw Error(ErrorCode::kDocument, path_,
                "another run has taken the place of the one that was followed, after " +
                    Counted(next_, "frame") + "; follow it anew");
  }

  static std::string readStatus(const FollowedFile& file) {
    std::array<std::uint8_t, kCodeLength> status{};
    if (!file.Read(HeaderLayout::kStatusAt, status)) return {};
    return {status.begin(), status.end()};
  }

  // Whether the block is still at its offset. If a save cannot rename a file over the document, it
  // writes into the document itself, and the block may move.
  static bool hasBlockInPlace(const Known& known) {
    if (known.block == nullptr) return true;
    std::array<std::uint8_t, kTagLength> tag{};
    return known.file.Read(known.stored.record.offset, tag) &&
           std::equal(tag.begin(), tag.end(), known.stored.record.tagBytes.begin());
  }

  // Counts the committed frames. A commit overwrites the length of the block in place, so this
  // reads the length until it gets the same value twice.
  static std::uint64_t countFrames(const Known& known) {
    if (known.block == nullptr) return 0;
    CommittedBlock stored = known.stored;
    std::optional<std::uint32_t> before;
    for (;;) {
      std::array<std::uint8_t, sizeof(std::uint32_t)> bytes{};
      if (!known.file.Read(stored.record.offset + kTagLength, bytes)) return 0;
      stored.record.length = LoadBig<std::uint32_t>(bytes.data());
      if (before == stored.record.length) break;
      before = stored.record.length;
    }
    return FindCommittedFrames(stored.Range(known.file.Length())).count;
  }

  static std::uint64_t placeOf(const Known& known, std::uint64_t frame) {
    const FrameRange range = known.stored.Range(0);
    return range.firstFrame + frame * range.frameSize;
  }

  Frame takeFrame() {
    std::vector<std::uint8_t> bytes(known_.stored.Range(0).frameSize);
    const std::uint64_t place = placeOf(known_, next_);
    if (!known_.file.Read(place, bytes)) {
      throw Error(ErrorCode::kDocument, path_, "the readings are cut short", place);
    }
    FrameFiller filler(*known_.block, *known_.recorded, next_);
    for (std::size_t at = 0; at < bytes.size(); at += kStoredRecordSize) {
      filler.Take(bytes.data() + at);
    }
    Frame frame = filler.Done();
    last_ = std::move(bytes);
    ++next_;
    return frame;
  }

  std::filesystem::path given_;
  std::string path_;
  Known known_;
  std::uint64_t next_ = 0;
  std::uint64_t committed_ = 0;
  bool isDone_ = false;
  std::vector<std::uint8_t> last_;  // stored records of the frame that was returned last
};

RunFollower::RunFollower(const std::filesystem::path& path, std::uint64_t firstFrame) {
  Guarded(path.string(), [&] { impl_ = std::make_unique<Impl>(path, firstFrame); });
}

RunFollower::~RunFollower() = default;
RunFollower::RunFollower(RunFollower&&) noexcept = default;
RunFollower& RunFollower::operator=(RunFollower&&) noexcept = default;

std::optional<Frame> RunFollower::Next(std::chrono::milliseconds wait) {
  return Guarded(impl_->Path().string(), [&] { return impl_->Next(wait); });
}

const std::filesystem::path& RunFollower::Path() const {
  return impl_->Path();
}

FollowState RunFollower::State() const {
  return impl_->State();
}

std::uint64_t RunFollower::NextFrame() const {
  return impl_->NextFrame();
}

std::uint64_t RunFollower::CommittedFrames() const {
  return impl_->CommittedFrames();
}

std::optional<std::uint64_t> RunFollower::PlannedFrames() const {
  return impl_->PlannedFrames();
}

std::vector<std::string> RunFollower::Channels() const {
  return impl_->Channels();
}

const std::optional<RunReader>& RunFollower::Run() const {
  return impl_->Run();
}

}  // namespace vex2::lab
