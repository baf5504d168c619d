#include "lab/record/InterruptedRun.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/BigEndian.h"
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

void moveTo(CFile& file, std::uint64_t position) {
  file.Seek(static_cast<std::int64_t>(position), CFile::begin);
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

// The line of `log` with the same key as `line`; empty if there is none.
std::string_view sameKey(std::string_view log, std::string_view line) {
  const std::string_view key = line.substr(0, line.find('='));
  while (!log.empty()) {
    const std::string_view other = log.substr(0, log.find('\n'));
    if (other.substr(0, other.find('=')) == key) return other;
    log.remove_prefix(std::min(log.size(), other.size() + 1));
  }
  return {};
}

// Describes the first difference between the log `recorded` and the log `given`.
std::string logDifference(std::string_view recorded, std::string_view given) {
  for (std::string_view rest = given; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    const std::string_view other = sameKey(recorded, line);
    if (other.empty()) return fmt::format("was recorded without {}", Quoted(line));
    if (other != line) {
      return fmt::format("was recorded with {}, not with {}", Quoted(other), Quoted(line));
    }
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
  }
  for (std::string_view rest = recorded; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (sameKey(given, line).empty()) return fmt::format("was recorded with {}", Quoted(line));
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
  if (const auto why = WhyNoDocument(file)) {
    throw Error(ErrorCode::kDocument, path_,
                fmt::format("this is not a plate document: {}", why->text), 0, why->remedy);
  }
  if (file.GetLength() < HeaderLayout::kSize) {
    refuseAt(file.GetLength(), "the header is cut short");
  }
  const HeaderFields header = ReadHeaderFields(file, 0);
  status_ = header.status;
  if (!IsDone() && status_ != RunStatus::kInProgress && status_ != RunStatus::kNotStarted) {
    refuse(fmt::format("has the status {}, so its run is not in progress", Quoted(status_)));
  }
  headerPosition_ = header.rawDataPosition;
  rows_ = header.rows;
  columns_ = header.columns;
  blockStart_ = FindBlockOffset(file);
  frames_.end = blockStart_;
  if (headerPosition_ != 0) {
    readBlock(file);
  } else if (IsFirstCommit(file, blockStart_, header.Wells())) {
    frames_.behind = Uncommitted::kCommit;
  } else if (blockStart_ < file.GetLength()) {
    frames_.behind = Uncommitted::kMore;
  }
}

void InterruptedRun::readBlock(CFile& file) {
  block_ = ReadCommittedBlock(file, blockStart_);
  if (block_.record.Tag() != TagOf(Kind::kRawData) || block_.head.version != kBlockVersion ||
      block_.head.timeBlockSize != kTimeBlockSize) {
    refuseAt(blockStart_, "there is no data block of a recorder where it should be");
  }
  if (!block_.isWhole || block_.head.wells == 0 ||
      !ReadWellNumbers(file, block_.head.wells, wells_)) {
    refuseAt(blockStart_, "the data block is cut off before its first frame");
  }
  frames_ = FindCommittedFrames(file, block_.Range(file.GetLength()));
}

void InterruptedRun::Check(const RunPlan& plan) const {
  checkSettings(plan);
  // If there are more bytes than an interrupted commit can leave, they may belong to something
  // else, and must not be cut off. From a complete run nothing is cut off.
  if (!IsDone() && frames_.behind == Uncommitted::kMore) {
    refuseAt(frames_.end, "more bytes follow than an interrupted commit leaves behind");
  }
  if (HasBlock() && wells_ != plan.wells) refuse("was recorded from other wells");
  checkContents(plan);
  if (plan.isLive) return;  // the frames of a live run are compared as they arrive
  if (IsDone() && frames_.count < plan.frames.size()) {
    refuse(fmt::format("is complete with {}, but the run to record has {}",
                       Counted(frames_.count, "frame"), plan.frames.size()));
  }
  if (!HasBlock()) return;
  if (frames_.count > plan.frames.size()) {
    refuse(fmt::format("holds {}, but the run has only {}", Counted(frames_.count, "frame"),
                       plan.frames.size()));
  }
  checkReadings(plan);
}

void InterruptedRun::checkSettings(const RunPlan& plan) const {
  const std::string log = RecordedLog(path_);
  RunPlan complete;
  const bool isToldNow = IsDone() && plan.isLive && !plan.liveFrames;
  if (isToldNow) complete = plan;
  complete.liveFrames = frames_.count;
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
  refuse(fmt::format("cannot resume: the {} is {} in the document, but {} in the run to record",
                     difference->what, shown(difference->recorded), shown(difference->given)));
}

void InterruptedRun::checkReadings(const RunPlan& plan) const {
  CFile file;
  if (!file.Open(path_.c_str(), CFile::modeRead)) refuse("cannot be read");
  moveTo(file, block_.firstFrame);
  const std::uint64_t frameBytes = FrameSize(block_.head.wells);
  std::vector<std::uint8_t> found(frameBytes);
  for (std::size_t frame = 0; frame < frames_.count; ++frame) {
    const std::vector<std::uint8_t> expected = storedBytes(FrameRecords(plan, frame));
    static_cast<void>(file.Read(found.data(), found.size()));
    const auto differs = std::mismatch(found.begin(), found.end(), expected.begin()).first;
    if (differs == found.end()) continue;
    const auto offset = static_cast<std::size_t>(differs - found.begin());
    refuseAt(block_.firstFrame + frame * frameBytes + offset,
             fmt::format("frame {} holds another reading of well {}", frame,
                         plan.plate.NameOf(plan.wells[offset / kStoredRecordSize])));
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
      const std::uint64_t length = frames_.end - blockStart_ - kRecordHeadSize;
      if (block_.record.length != length) setRight(blockStart_ + kTagLength, length);
      if (headerPosition_ != blockStart_) setRight(HeaderLayout::kRawDataOffsetAt, blockStart_);
    }
    file.SetLength(frames_.end);
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
