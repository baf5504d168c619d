#include "lab/record/InterruptedRun.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/exchange/CsvReader.h"
#include "lab/model/FileLayout.h"
#include "lab/model/HeaderFields.h"
#include "lab/model/RawFile.h"
#include "lab/record/PlanComparison.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/storage/FrameLog.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kTagBytes = 4;

void moveTo(CFile& file, std::uint64_t position) {
  file.Seek(static_cast<std::int64_t>(position), CFile::begin);
}

std::string textAt(CFile& file, std::uint64_t position) {
  std::array<char, kTagBytes> text{};
  moveTo(file, position);
  return {text.data(), file.Read(text.data(), text.size())};
}

bool isTag(std::string_view text) {
  return text.size() == kTagBytes && std::all_of(text.begin(), text.end(), [](char letter) {
           return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == ' ';
         });
}

std::uint64_t headBytes(std::size_t wells) {
  return kRecordHeadSize + kBlockFixedSize + 2 * std::uint64_t{wells};
}

std::vector<std::uint8_t> storedBytes(const std::vector<Vex2WellRecord>& records) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(records.size() * kStoredRecordSize);
  const auto add = [&](std::uint16_t value) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U));
    bytes.push_back(static_cast<std::uint8_t>(value & 0xFFU));
  };
  for (const Vex2WellRecord& record : records) {
    std::for_each_n(record.leading, 8, add);
    std::for_each_n(record.data, 32, add);
  }
  return bytes;
}

// The line of `log` that has the key of `line`; empty when there is none.
std::string_view sameKey(std::string_view log, std::string_view line) {
  const std::string_view key = line.substr(0, line.find('='));
  while (!log.empty()) {
    const std::string_view other = log.substr(0, log.find('\n'));
    if (other.substr(0, other.find('=')) == key) return other;
    log.remove_prefix(std::min(log.size(), other.size() + 1));
  }
  return {};
}

// How a run with the log `recorded` was recorded otherwise than one with the log `given`.
std::string logDifference(std::string_view recorded, std::string_view given) {
  for (std::string_view rest = given; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    const std::string_view other = sameKey(recorded, line);
    if (other.empty()) return "was recorded without " + Quoted(line);
    if (other != line) {
      return "was recorded with " + Quoted(other) + ", not with " + Quoted(line);
    }
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
  }
  for (std::string_view rest = recorded; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (sameKey(given, line).empty()) return "was recorded with " + Quoted(line);
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
  }
  return "was recorded with another log";
}

}  // namespace

std::string RecordedLog(const std::string& path) {
  Vex2FileManager document;
  Vex2GlobalComplex settings;
  if (document.ReadFromFile(path.c_str()) != kSuccess ||
      document.GetGlobalComplexInfo(&settings) != kSuccess || settings.logData == nullptr) {
    return {};
  }
  return {reinterpret_cast<const char*>(settings.logData), settings.logLength};
}

std::string RecordedAssay(const std::string& path) {
  CFile file;
  OpenToRead(file, path);
  return ReadHeaderFields(file, 0).assay;
}

bool HoldsFrames(const std::string& path, std::size_t frames) {
  try {
    return InterruptedRun(path).FrameCount() >= frames;
  } catch (const Error&) {
    return false;
  }
}

InterruptedRun::InterruptedRun(const std::string& path) : path_(path) {
  CFile file;
  OpenToRead(file, path);
  if (const auto why = WhyNoDocument(file)) refuseAt(0, "this is not a plate document: " + *why);
  if (file.GetLength() < HeaderLayout::kSize) {
    refuseAt(file.GetLength(), "the header is cut short");
  }
  status_ = textAt(file, HeaderLayout::kStatusAt);
  if (!IsDone() && status_ != RunStatus::kInProgress && status_ != RunStatus::kNotStarted) {
    refuse("has the status " + Quoted(status_) + ", which is no run's in progress");
  }
  moveTo(file, HeaderLayout::kRawDataOffsetAt);
  static_cast<void>(ReadField(file, headerPosition_));
  moveTo(file, HeaderLayout::kRowsAt);
  static_cast<void>(ReadField(file, rows_));
  static_cast<void>(ReadField(file, columns_));
  findBlock(file);
  if (headerPosition_ != 0) readHead(file);
  countFrames(file.GetLength());
  tailTag_ = textAt(file, tailStart_);
}

// Whole records come first. What follows them is the block, or what there is of it.
void InterruptedRun::findBlock(CFile& file) {
  blockStart_ = HeaderLayout::kSize;
  for (;;) {
    const std::string tag = textAt(file, blockStart_);
    std::uint32_t length = 0;
    if (!isTag(tag) || tag == TagOf(Kind::kRawData) || !ReadField(file, length)) return;
    if (length > file.GetRemaining()) return;
    blockStart_ += kRecordHeadSize + length;
  }
}

void InterruptedRun::readHead(CFile& file) {
  std::uint16_t version = 0;
  std::uint16_t timeBytes = 0;
  std::uint16_t wells = 0;
  if (textAt(file, blockStart_) != TagOf(Kind::kRawData) || !ReadField(file, blockLength_) ||
      !ReadField(file, version) || !ReadField(file, timeBytes) || version != 2 ||
      timeBytes != sizeof(TimeStamp) * 2) {
    refuseAt(blockStart_, "no data block of a recorder where it should be");
  }
  file.Seek(timeBytes, CFile::current);
  if (!ReadField(file, wells) || wells == 0 || file.GetRemaining() < 2U * wells) {
    refuseAt(blockStart_, "the data block is cut off before its first frame");
  }
  wells_.resize(wells);
  for (unsigned short& well : wells_) static_cast<void>(ReadField(file, well));
}

void InterruptedRun::countFrames(std::uint64_t fileLength) {
  tailStart_ = blockStart_;
  if (HasBlock()) {
    const CommittedFrames frames = FindCommittedFrames(
        {framesStart(), frameBytes(), blockStart_ + kRecordHeadSize + blockLength_, fileLength});
    frameCount_ = frames.count;
    tailStart_ = frames.end;
    hasMoreBehind_ = frames.behind == Uncommitted::kMore;
  }
  tailBytes_ = fileLength - std::min(fileLength, tailStart_);
}

std::uint64_t InterruptedRun::framesStart() const {
  return blockStart_ + headBytes(wells_.size());
}

std::uint64_t InterruptedRun::frameBytes() const {
  return kStoredRecordSize * wells_.size();
}

void InterruptedRun::Check(const RunPlan& plan) const {
  checkSettings(plan);
  if (!IsDone()) checkTail(plan);  // nothing is cut off a run that is complete
  if (HasBlock() && wells_ != plan.wells) refuse("was recorded from other wells");
  checkContents(plan);
  if (plan.isLive) return;  // its frames are compared when they come
  if (IsDone() && frameCount_ < plan.frames.size()) {
    refuse("is complete with " + Counted(frameCount_, "frame") +
           ", but the run that is given has " + std::to_string(plan.frames.size()));
  }
  if (!HasBlock()) return;
  if (frameCount_ > plan.frames.size()) {
    refuse("holds " + Counted(frameCount_, "frame") + ", but the run has only " +
           std::to_string(plan.frames.size()));
  }
  checkReadings(plan);
}

void InterruptedRun::checkSettings(const RunPlan& plan) const {
  const std::string log = RecordedLog(path_);
  RunPlan complete;
  const bool isToldNow = IsDone() && plan.isLive && !plan.liveFrames;
  if (isToldNow) complete = plan;
  complete.liveFrames = frameCount_;
  const std::string expected = LogText(isToldNow ? complete : plan);
  if (log != expected) {
    refuse(logDifference(log, expected));
  }
  if (rows_ != plan.plate.rows || columns_ != plan.plate.columns) {
    refuse("was recorded from a plate of another size");
  }
}

void InterruptedRun::checkContents(const RunPlan& plan) const {
  Vex2FileManager document;
  static_cast<void>(document.ReadFromFile(path_.c_str()));
  const auto difference = FindDifference(document, plan);
  if (!difference) return;
  const auto shown = [](const std::string& text) { return text.empty() ? "none" : Quoted(text); };
  refuse("cannot resume: the " + difference->what + " is " + shown(difference->recorded) +
         " in the document, but " + shown(difference->given) + " in what is given");
}

// A commit leaves at most its own bytes behind, and a frame does not begin as a record does. What
// else stands there is somebody's, and not to be cut off.
void InterruptedRun::checkTail(const RunPlan& plan) const {
  const bool isMore = HasBlock() ? hasMoreBehind_ || isTag(tailTag_)
                                 : tailBytes_ > FirstCommitSize(plan.wells.size());
  if (isMore) {
    refuseAt(tailStart_, "more follows than a recorder can have left");
  }
}

void InterruptedRun::checkReadings(const RunPlan& plan) const {
  CFile file;
  if (!file.Open(path_.c_str(), CFile::modeRead)) refuse("cannot be read");
  moveTo(file, framesStart());
  std::vector<std::uint8_t> found(frameBytes());
  for (std::size_t frame = 0; frame < frameCount_; ++frame) {
    const std::vector<std::uint8_t> expected = storedBytes(FrameRecords(plan, frame));
    static_cast<void>(file.Read(found.data(), found.size()));
    const auto differs = std::mismatch(found.begin(), found.end(), expected.begin()).first;
    if (differs == found.end()) continue;
    const auto offset = static_cast<std::size_t>(differs - found.begin());
    refuseAt(framesStart() + frame * frameBytes() + offset,
             "frame " + std::to_string(frame) + " holds another reading of well " +
                 plan.plate.NameOf(plan.wells[offset / kStoredRecordSize]));
  }
}

void InterruptedRun::Repair() const {
  try {
    CFile file;
    if (!file.Open(path_.c_str(), CFile::modeReadWrite)) refuse("cannot be written");
    const auto setRight = [&](std::uint64_t at, std::uint64_t word) {
      moveTo(file, at);
      WriteField(file, static_cast<std::uint32_t>(word));
      file.SyncData();
    };
    if (HasBlock()) {
      const std::uint64_t length = tailStart_ - blockStart_ - kRecordHeadSize;
      if (blockLength_ != length) setRight(blockStart_ + kTagBytes, length);
      if (headerPosition_ != blockStart_) setRight(HeaderLayout::kRawDataOffsetAt, blockStart_);
    }
    file.SetLength(tailStart_);
    file.SyncData();
    file.Close();
  } catch (const CFileException& error) {
    throw SystemError(path_, error.GetError());
  }
}

void InterruptedRun::refuse(const std::string& why) const {
  throw Error(ErrorCode::kDocument, path_, why);
}

void InterruptedRun::refuseAt(std::uint64_t offset, const std::string& why) const {
  throw Error(ErrorCode::kDocument, path_, why, offset);
}

}  // namespace vex2::lab
