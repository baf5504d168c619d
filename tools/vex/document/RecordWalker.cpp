#include "tools/vex/document/RecordWalker.h"

#include <algorithm>

#include "tools/vex/document/DataBlock.h"
#include "tools/vex/document/FileLayout.h"
#include "tools/vex/document/HeaderFields.h"
#include "tools/vex/text/Text.h"
#include "vex2/format/ReadLimits.h"

namespace vex2::tool {

namespace {

template <std::size_t size>
std::optional<std::array<unsigned char, size>> readBytes(CFile& file) {
  std::array<unsigned char, size> bytes{};
  if (file.Read(bytes.data(), size) != size) return std::nullopt;
  return bytes;
}

class Walker {
 public:
  Walker(CFile& file, RecordVisitor& visitor) : file_(file), visitor_(visitor) {}

  WalkEnd Walk() {
    seek(HeaderLayout::kRowsAt);
    const auto rows = ReadShort(file_);
    if (!rows) return {file_.GetLength(), std::nullopt};
    seek(HeaderLayout::RecordsOffset(*rows));
    while (file_.GetRemaining() >= kTagLength && !isStray() && record(1)) {
    }
    return {std::min(file_.GetPosition(), file_.GetLength()), fault_};
  }

 private:
  void seek(std::uint64_t offset) { file_.Seek(static_cast<std::int64_t>(offset), CFile::begin); }

  bool stop(std::uint64_t offset, std::string what) {
    if (!fault_) fault_ = FileFault{offset, std::move(what)};
    return false;
  }

  // Too few bytes for a record, and not the beginning of one either.
  bool isStray() {
    if (file_.GetRemaining() >= kRecordHeadSize) return false;
    const std::uint64_t offset = file_.GetPosition();
    const FileRecord record = readTag();
    seek(offset);
    return !IsKnownTag(record.Tag());
  }

  FileRecord readTag() {
    FileRecord record;
    record.offset = file_.GetPosition();
    file_.Read(record.tagBytes.data(), record.tagBytes.size());
    record.kind = &KindOf(record.Tag());
    return record;
  }

  bool record(int depth) {
    FileRecord record = readTag();
    const auto length = ReadLong(file_);
    if (!length) return stop(record.offset, named(record) + " ends before its length");
    record.length = *length;
    record.depth = depth;
    if (depth > kMaxNesting) return stop(record.offset, "records are nested too deep");
    visitor_.Begin(record, file_);
    seek(record.BodyOffset());
    if (record.length != 0 && !body(record)) return false;
    record.end = file_.GetPosition();
    visitor_.End(record);
    return true;
  }

  bool body(const FileRecord& record) {
    switch (record.kind->layout) {
      case BodyLayout::kList:
        return list(record, 0);
      case BodyLayout::kCell:
        return list(record, 5);
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
    if (left < size) {
      return stop(record.offset, named(record) + " is cut short: " + std::to_string(left) + " of " +
                                     Counted(size, "byte") + " are there");
    }
    seek(file_.GetPosition() + size);
    return true;
  }

  bool list(const FileRecord& record, std::uint64_t fieldsBehindCount) {
    const auto count = ReadShort(file_);
    if (!count) return stop(record.offset, named(record) + " ends before its count");
    if (!step(record, fieldsBehindCount)) return false;
    for (unsigned i = 0; i < *count; ++i) {
      if (file_.GetRemaining() < kTagLength) {
        return stop(record.offset, named(record) + " is cut short: " + std::to_string(i) + " of " +
                                       Counted(*count, "record") + " are there");
      }
      if (!this->record(record.depth + 1)) return false;
    }
    return true;
  }

  // The plate's own reader goes on from four bytes to the next until it meets a tag it knows.
  bool plate(const FileRecord& record) {
    if (!step(record, 2)) return false;
    const std::uint64_t header = file_.GetPosition();
    seek(header + HeaderLayout::kRowsAt);
    const auto rows = ReadShort(file_);
    seek(header);
    if (!step(record, HeaderLayout::RecordsOffset(rows.value_or(0)))) return false;
    while (file_.GetRemaining() >= kTagLength) {
      const std::uint64_t offset = file_.GetPosition();
      const FileRecord next = readTag();
      if (next.Tag() == TagOf(Kind::kEndOfFile) || next.Tag() == kMagic) return true;
      if (next.kind->layout == BodyLayout::kUnknown) {
        visitor_.Pass(offset);
        continue;
      }
      seek(offset);
      if (!this->record(record.depth + 1)) return false;
      if (next.Tag() == TagOf(Kind::kEndOfPlate)) return true;
    }
    return stop(record.offset, named(record) + " has no end");
  }

  bool data(const FileRecord& record) {
    const auto block = ReadDataBlockHead(file_, record);
    if (!block) return stop(record.offset, named(record) + " ends before its frames");
    const std::uint64_t whole = block->frameSize == 0 ? 0 : file_.GetRemaining() / block->frameSize;
    if (whole < block->frameCount) {
      return stop(record.offset, named(record) + " is cut short: " + std::to_string(whole) +
                                     " of " + Counted(block->frameCount, "frame") + " are there");
    }
    seek(block->firstFrame + block->frameCount * block->frameSize);
    return true;
  }

  // The entries tell how long they are, and the body ends with the last.
  bool spectra(const FileRecord& record) {
    const std::uint64_t end = SpectraEnd(file_, record.kind->layout, record.BodyOffset());
    seek(record.BodyOffset());
    return step(record, end - record.BodyOffset());
  }

  static std::string named(const FileRecord& record) {
    return "the record \"" + ToUtf8(record.Tag()) + "\"";
  }

  CFile& file_;
  RecordVisitor& visitor_;
  std::optional<FileFault> fault_;
};

}  // namespace

WalkEnd WalkRecords(CFile& file, RecordVisitor& visitor) {
  return Walker(file, visitor).Walk();
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
    file.Read(&byte, 1);
    return std::uint64_t{byte};
  };
  file.Seek(static_cast<std::int64_t>(body + kCountAt), CFile::begin);
  const unsigned count = ReadShort(file).value_or(0);
  std::uint64_t end = body + kFields;
  for (unsigned i = 0; i < count; ++i) {
    if (end >= file.GetLength()) return file.GetLength() + 1;
    end += kBeforeName;
    end += 1 + byteAt(end) + behindName;
    end += 1 + kValueSize * byteAt(end);
  }
  return end;
}

std::optional<std::uint16_t> ReadShort(CFile& file) {
  const auto bytes = readBytes<2>(file);
  if (!bytes) return std::nullopt;
  return ShortAt(*bytes);
}

std::optional<std::uint32_t> ReadLong(CFile& file) {
  const auto bytes = readBytes<4>(file);
  if (!bytes) return std::nullopt;
  return LongAt(*bytes);
}

}  // namespace vex2::tool
