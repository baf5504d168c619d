#include "vex2/format/RecordWalker.h"

#include <algorithm>

#include "vex2/format/DataBlockHead.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/ReadLimits.h"

namespace vex2 {

namespace {

constexpr std::uint64_t kCellFields = 5;  // two coordinates and a flag, after the count

using Reason = WalkFault::Reason;

class Walker {
 public:
  Walker(CFile& file, RecordVisitor& visitor) : file_(file), visitor_(visitor) {}

  RecordWalk Walk() {
    seek(HeaderLayout::kRowsAt);
    std::uint16_t rows = 0;
    if (!ReadField(file_, rows)) return {file_.GetLength(), std::nullopt};
    seek(HeaderLayout::RecordsOffset(rows));
    while (file_.GetRemaining() >= kTagLength && !isUncommitted() && WalkRecord(1)) {
    }
    return {std::min(file_.GetPosition(), file_.GetLength()), fault_};
  }

  bool WalkRecord(int depth) {
    FileRecord record;
    if (!ReadRecordHead(file_, record)) return stop(record, Reason::kNoLength);
    record.depth = depth;
    if (depth > kMaxNesting) return stop(record, Reason::kTooDeep);
    visitor_.Begin(record, file_);
    seek(record.BodyOffset());
    if (record.length != 0 && !body(record)) return false;
    record.end = file_.GetPosition();
    visitor_.End(record);
    return true;
  }

 private:
  void seek(std::uint64_t offset) { file_.Seek(static_cast<std::int64_t>(offset), CFile::begin); }

  bool stop(const FileRecord& record, Reason reason, std::uint64_t available = 0,
            std::uint64_t expected = 0) {
    if (!fault_) fault_ = WalkFault{reason, record.offset, record.tagBytes, available, expected};
    return false;
  }

  // Whether the bytes that are left are too few for a record and do not begin a known one.
  bool isUncommitted() {
    if (file_.GetRemaining() >= kRecordHeadSize) return false;
    const std::uint64_t offset = file_.GetPosition();
    FileRecord record;
    static_cast<void>(ReadRecordHead(file_, record));
    seek(offset);
    return !IsKnownTag(record.Tag());
  }

  bool body(const FileRecord& record) {
    switch (record.kind->layout) {
      case BodyLayout::kList:
        return list(record, 0);
      case BodyLayout::kCell:
        return list(record, kCellFields);
      case BodyLayout::kPlate:
        return plate(record);
      case BodyLayout::kData:
        return data(record);
      case BodyLayout::kPureDyes:
      case BodyLayout::kBackground:
        return spectra(record);
      default:
        break;
    }
    const std::uint64_t size = FixedSize(record.kind->layout);
    return step(record, size > 0 ? size : record.length);
  }

  bool step(const FileRecord& record, std::uint64_t size) {
    const std::uint64_t left = file_.GetRemaining();
    if (left < size) return stop(record, Reason::kBytesMissing, left, size);
    seek(file_.GetPosition() + size);
    return true;
  }

  bool list(const FileRecord& record, std::uint64_t fieldsBehindCount) {
    std::uint16_t count = 0;
    if (!ReadField(file_, count)) return stop(record, Reason::kNoCount);
    if (!step(record, fieldsBehindCount)) return false;
    for (unsigned i = 0; i < count; ++i) {
      if (file_.GetRemaining() < kTagLength) {
        return stop(record, Reason::kRecordsMissing, i, count);
      }
      if (!WalkRecord(record.depth + 1)) return false;
    }
    return true;
  }

  // If four bytes are not a known tag, the plate's reader tries the next four.
  bool plate(const FileRecord& record) {
    if (!step(record, sizeof(std::uint16_t))) return false;
    const std::uint64_t header = file_.GetPosition();
    seek(header + HeaderLayout::kRowsAt);
    std::uint16_t rows = 0;
    static_cast<void>(ReadField(file_, rows));
    seek(header);
    if (!step(record, HeaderLayout::RecordsOffset(rows))) return false;
    while (file_.GetRemaining() >= kTagLength) {
      const std::uint64_t offset = file_.GetPosition();
      std::array<char, kTagLength> bytes{};
      static_cast<void>(ReadExactly(file_, bytes.data(), bytes.size()));
      const std::string_view tag(bytes.data(), bytes.size());
      if (tag == TagOf(Kind::kEndOfFile) || tag == kMagic) return true;
      if (!IsKnownTag(tag)) {
        visitor_.Pass(offset);
        continue;
      }
      seek(offset);
      if (!WalkRecord(record.depth + 1)) return false;
      if (tag == TagOf(Kind::kEndOfPlate)) return true;
    }
    return stop(record, Reason::kNoPlateEnd);
  }

  bool data(const FileRecord& record) {
    DataBlockHead head;
    if (!ReadDataBlockHead(file_, TimeBlock::kAsWritten, head) ||
        !HasBytesLeft(file_, sizeof(std::uint16_t) * std::uint64_t{head.wells})) {
      return stop(record, Reason::kNoFrames);
    }
    seek(file_.GetPosition() + sizeof(std::uint16_t) * head.wells);
    const std::uint64_t frames = FrameCount(record.length, head.wells);
    const std::uint64_t size = FrameSize(head.wells);
    const std::uint64_t whole = size == 0 ? 0 : file_.GetRemaining() / size;
    if (whole < frames) return stop(record, Reason::kFramesMissing, whole, frames);
    seek(file_.GetPosition() + frames * size);
    return true;
  }

  // The entries state their own lengths, and the body ends after the last entry.
  bool spectra(const FileRecord& record) {
    const std::uint64_t end = SpectraEnd(file_, record.kind->layout, record.BodyOffset());
    seek(record.BodyOffset());
    return step(record, end - record.BodyOffset());
  }

  CFile& file_;
  RecordVisitor& visitor_;
  std::optional<WalkFault> fault_;
};

class NoVisitor final : public RecordVisitor {
 public:
  void Begin(const FileRecord& /*record*/, CFile& /*file*/) override {}
};

}  // namespace

bool ReadRecordHead(CFile& file, FileRecord& record) {
  record.offset = file.GetPosition();
  const bool hasTag = ReadExactly(file, record.tagBytes.data(), record.tagBytes.size());
  record.kind = &KindOf(record.Tag());
  return hasTag && ReadField(file, record.length);
}

bool IsPrintableTag(std::string_view tag) {
  return tag.size() == kTagLength && std::all_of(tag.begin(), tag.end(), [](char letter) {
           return letter >= ' ' && letter <= '~';
         });
}

RecordWalk WalkRecordsOf(CFile& file, RecordVisitor& visitor) {
  return Walker(file, visitor).Walk();
}

std::optional<std::uint64_t> EndOfRecordAt(CFile& file, std::uint64_t offset) {
  NoVisitor visitor;
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  if (!Walker(file, visitor).WalkRecord(1)) return std::nullopt;
  return file.GetPosition();
}

std::uint64_t SpectraEnd(CFile& file, BodyLayout layout, std::uint64_t body) {
  constexpr std::uint64_t kCountAt = 8;
  constexpr std::uint64_t kFields = 72;
  constexpr std::uint64_t kBeforeName = 8;
  constexpr std::uint64_t kValueSize = 4;
  const std::uint64_t behindName = layout == BodyLayout::kPureDyes ? 6 : 0;
  const auto byteAt = [&](std::uint64_t offset) {
    std::uint8_t byte = 0;
    file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
    static_cast<void>(ReadField(file, byte));
    return std::uint64_t{byte};
  };
  file.Seek(static_cast<std::int64_t>(body + kCountAt), CFile::begin);
  std::uint16_t count = 0;
  static_cast<void>(ReadField(file, count));
  std::uint64_t end = body + kFields;
  for (unsigned i = 0; i < count; ++i) {
    if (end >= file.GetLength()) return file.GetLength() + 1;
    end += kBeforeName;
    end += 1 + byteAt(end) + behindName;
    end += 1 + kValueSize * byteAt(end);
  }
  return end;
}

bool DeclaredRecords::Next() {
  endsInHead_ = false;
  if (next_ >= file_.GetLength()) return false;
  file_.Seek(static_cast<std::int64_t>(next_), CFile::begin);
  record_ = {};
  endsInHead_ = !ReadRecordHead(file_, record_);
  if (endsInHead_) return false;
  next_ = record_.DeclaredEnd();
  return true;
}

}  // namespace vex2
