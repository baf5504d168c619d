#include "lab/recover/RecoverBlock.h"

#include <algorithm>
#include <bitset>
#include <functional>
#include <utility>

#include "lab/model/BigEndian.h"
#include "lab/model/DataBlock.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::uint64_t kOldBlockFixedSize = 4;  // the same size in version 1, which has no times
constexpr std::uint16_t kVersion = 2;
constexpr std::uint16_t kMostWells = 1536;
constexpr std::uint16_t kLeastWellsToTell = 4;
constexpr std::uint16_t kPadding = 0xFFFF;  // fills the unused part of a plate's header

std::string dataTagAt(RecoverSource& source, std::uint64_t offset) {
  const auto bytes = source.View(offset, kTagLength);
  if (bytes.size() < kTagLength) return {};
  std::string tag(bytes.begin(), bytes.begin() + kTagLength);
  return KindOf(tag).layout == BodyLayout::kData ? tag : std::string();
}

void readTimes(RecoverSource& source, std::uint64_t body, RecoverBlock& block) {
  const auto bytes = source.View(body + 4, block.times.size());
  if (bytes.size() >= block.times.size()) {
    std::copy_n(bytes.begin(), block.times.size(), block.times.begin());
  }
}

// Makes a block whose body begins at `body`, with `wells` wells and the whole frames up to `to`.
// Reads only the well numbers and the tag from the file.
RecoverBlock blockWith(RecoverSource& source, std::uint64_t body, std::uint16_t wells,
                       std::uint64_t to, std::uint64_t fixed = kBlockFixedSize) {
  RecoverBlock block;
  block.offset = body - std::min(body, kRecordHeadSize);
  block.wells = wells;
  block.firstFrame = body + fixed + 2 * std::uint64_t{wells};
  block.frames = (to - std::min(to, block.firstFrame)) / block.FrameSize();
  block.numbers = ReadWellNumbers(source, body + fixed, wells);
  if (body >= kRecordHeadSize) block.tag = dataTagAt(source, block.offset);
  return block;
}

bool fits(const RecoverBlock& block, std::uint64_t to) {
  return block.firstFrame <= to && (to - block.firstFrame) % block.FrameSize() == 0;
}

// Looks for a number of wells, followed by as many well numbers and then by whole frames up to the
// end of the search.
std::optional<RecoverBlock> byNumbers(RecoverSource& source, const BlockSearch& search) {
  for (std::uint64_t at = std::max(search.from, kBlockFixedSize); at + 2 <= search.to; ++at) {
    const std::uint16_t wells = source.Short(at).value_or(0);
    if (wells < kLeastWellsToTell || wells > kMostWells) continue;
    // Among ascending well numbers, each number may look like a count of the numbers after it.
    if (source.Short(at - 2) == wells - 1) continue;
    const std::uint64_t first = at + 2 + 2 * std::uint64_t{wells};
    if (first >= search.to || (search.to - first) % (kStoredRecordSize * wells) != 0) continue;
    RecoverBlock block = blockWith(source, at - 16, wells, search.to);
    if (block.numbers.empty()) continue;
    const auto& known = search.wellCounts;
    const bool isKnown = std::find(known.begin(), known.end(), wells) != known.end();
    if (!isKnown && block.numbers.front() == wells + 1) continue;
    block.guesses.emplace_back("times");
    return block;
  }
  return std::nullopt;
}

// Finds the number of wells in a frame from the times: all records of a frame have the same time.
// Counts the records just before `to` up to one with another time. Returns 0 if that does not show
// the number of wells.
std::uint16_t wellsByTimes(RecoverSource& source, std::uint64_t from, std::uint64_t to) {
  constexpr std::uint64_t kTimeAt = 10;
  std::optional<std::uint32_t> time;
  std::uint16_t run = 0;
  for (std::uint64_t at = to; at >= from + kStoredRecordSize; at -= kStoredRecordSize, ++run) {
    const auto other = source.Long(at - kStoredRecordSize + kTimeAt);
    if (run > kMostWells) return 0;
    if (time && other != time) return run >= kLeastWellsToTell && time != 0U ? run : 0;
    time = other;
  }
  return 0;
}

// Whether part of a frame may follow the block's whole frames. That is so if its well numbers are
// valid, and its first frame and its last whole frame begin with the same marker.
bool isTorn(RecoverSource& source, const RecoverBlock& block) {
  if (block.numbers.empty() || block.frames == 0) return false;
  const auto marker = MarkerOf(source, block.firstFrame, block.wells);
  return marker && MarkerOf(source, block.End() - block.FrameSize(), block.wells) == marker;
}

// Scores how well `block`, which begins where the search begins, fits the bytes; 0 if it does not
// fit. `byTimes` is the number of wells that `wellsByTimes` found, or 0.
int fitness(RecoverSource& source, const BlockSearch& search, const RecoverBlock& block,
            std::uint16_t byTimes) {
  if (block.firstFrame > search.to || block.frames == 0) return 0;
  const auto& known = search.wellCounts;
  const bool isKnown = std::find(known.begin(), known.end(), block.wells) != known.end();
  if (!fits(block, search.to)) return isKnown && isTorn(source, block) ? 6 : 0;
  if (byTimes != 0 && byTimes != block.wells) return 0;
  int points = 3;
  if (isKnown) points += 2;
  // A single well number can match by accident.
  if (!block.numbers.empty()) points += block.wells < kLeastWellsToTell ? 2 : 3;
  // The damage to the head may extend to the first frame, so check the last one.
  if (MarkerOf(source, block.End() - block.FrameSize(), block.wells)) points += 3;
  return points;
}

// Finds a block that begins where the search begins. Tries the numbers of wells that other blocks
// have. Also tries each number of wells for which the last whole frame ends exactly at the end of
// the search, or at the declared end.
std::optional<RecoverBlock> byGrid(RecoverSource& source, const BlockSearch& search) {
  constexpr int kConvincing = 5;
  std::vector<std::uint16_t> counts = search.wellCounts;
  const auto addSolutions = [&](std::uint64_t bodyLength, std::uint64_t fixed) {
    if (bodyLength < fixed) return;
    // Each well takes 2 bytes for its number, and 80 bytes in each frame.
    const std::uint64_t half = (bodyLength - fixed) / 2;
    for (std::uint16_t wells = 1; wells <= kMostWells; ++wells) {
      if (half % wells == 0 && (half / wells) % 40 == 1 && half > wells) counts.push_back(wells);
    }
  };
  for (const std::uint64_t fixed : {kBlockFixedSize, kOldBlockFixedSize}) {
    addSolutions(search.to - search.from - std::min(search.to - search.from, kRecordHeadSize),
                 fixed);
    addSolutions(source.Long(search.from + 4).value_or(0), fixed);
  }
  const std::uint16_t byTimes = wellsByTimes(source, search.from, search.to);
  std::optional<RecoverBlock> best;
  int most = kConvincing - 1;
  const auto tryWith = [&](std::uint16_t wells, std::uint64_t fixed) {
    RecoverBlock block = blockWith(source, search.from + kRecordHeadSize, wells, search.to, fixed);
    const int points = fitness(source, search, block, byTimes);
    if (points <= most) return;
    most = points;
    best = block;
  };
  for (const std::uint16_t wells : counts) {
    tryWith(wells, kBlockFixedSize);
    tryWith(wells, kOldBlockFixedSize);
  }
  return best;
}

// Finds a block whose whole frames end where the search ends. If there is none, tries the declared
// end, since part of a frame may follow it.
std::optional<RecoverBlock> byPlace(RecoverSource& source, const BlockSearch& search) {
  if (auto block = byGrid(source, search)) return block;
  BlockSearch declared = search;
  declared.to = search.from + kRecordHeadSize + source.Long(search.from + 4).value_or(0);
  if (declared.to >= search.to) return std::nullopt;
  return byGrid(source, declared);
}

// Finds a block that begins where the search begins. Tries every number of wells, and takes the
// first one for which the bytes are valid well numbers followed by frames as recorders write them.
std::optional<RecoverBlock> byFrames(RecoverSource& source, const BlockSearch& search) {
  constexpr std::uint16_t kFilled = 1;
  const std::uint64_t body = search.from + kRecordHeadSize;
  for (std::uint16_t wells = 1; wells <= kMostWells; ++wells) {
    if (body + kBlockFixedSize + (2 + kStoredRecordSize) * wells > search.to) break;
    if (source.Short(body + kBlockFixedSize + 2 * std::uint64_t{wells}) != kFilled) continue;
    RecoverBlock block = blockWith(source, body, wells, search.to);
    if (isTorn(source, block)) return block;
  }
  return std::nullopt;
}

// Finds the block with the body at `body`, which begins with version and size of times. Uses its
// stored number of wells, unless that is damaged.
std::optional<RecoverBlock> behindVersion(RecoverSource& source, const BlockSearch& search,
                                          std::uint64_t body) {
  const std::uint16_t wells = source.Short(body + 16).value_or(0);
  const bool isCount = wells > 0 && wells <= kMostWells;
  const RecoverBlock block = isCount ? blockWith(source, body, wells, search.to) : RecoverBlock{};
  const bool canBe = isCount && block.firstFrame <= search.to;
  if (canBe && (fits(block, search.to) || isTorn(source, block))) return block;
  BlockSearch here = search;
  here.from = body - std::min(body, kRecordHeadSize);
  if (auto other = byPlace(source, here)) return other;
  if (canBe && !block.numbers.empty()) return block;
  return std::nullopt;
}

// Looks for version and size of times: these two numbers are adjacent only in the head of a block.
std::optional<RecoverBlock> byVersion(RecoverSource& source, const BlockSearch& search) {
  for (std::uint64_t body = search.from; body + kBlockFixedSize <= search.to; ++body) {
    if (source.Long(body) != (std::uint32_t{kVersion} << 16U | kTimeBlockSize)) continue;
    auto block = behindVersion(source, search, body);
    if (!block) continue;
    readTimes(source, body, *block);
    return block;
  }
  return std::nullopt;
}

// Finds a block whose head is completely lost. Goes back from the end of the search by whole
// frames, as long as the bytes look like frames.
std::optional<RecoverBlock> backwards(RecoverSource& source, const BlockSearch& search) {
  std::vector<std::uint16_t> counts = search.wellCounts;
  const std::uint16_t byTimes = wellsByTimes(source, search.from, search.to);
  if (byTimes > 0) counts.insert(counts.begin(), byTimes);
  for (const std::uint16_t wells : counts) {
    RecoverBlock block;
    block.wells = wells;
    const std::uint64_t size = block.FrameSize();
    block.firstFrame = search.to;
    const auto marker =
        search.to < search.from + size ? std::nullopt : MarkerOf(source, search.to - size, wells);
    while (marker && block.firstFrame >= search.from + size &&
           CountPlausibleFrames(source, block.firstFrame - size, wells, 1, marker) == 1) {
      block.firstFrame -= size;
      ++block.frames;
    }
    if (block.frames == 0) continue;
    const std::uint64_t head = kRecordHeadSize + kBlockFixedSize + 2U * wells;
    block.offset = std::max(search.from, block.firstFrame - std::min(block.firstFrame, head));
    block.guesses.emplace_back("the offset of the first frame");
    return block;
  }
  return std::nullopt;
}

std::optional<RecoverBlock> byFramesAlone(RecoverSource& source, const BlockSearch& search) {
  if (search.beginsAtFrom) {
    if (auto block = byPlace(source, search)) return block;
    if (auto block = byFrames(source, search)) return block;
  }
  return backwards(source, search);
}

// Whether the last well record of the block is text, or one byte repeated. Such bytes look like
// frames, because they have the same value wherever a marker is expected, but no readings are so.
bool isFiller(RecoverSource& source, const RecoverBlock& block) {
  const auto bytes = source.View(block.End() - kStoredRecordSize, kStoredRecordSize);
  const auto end = bytes.begin() + std::min(bytes.size(), kStoredRecordSize);
  const auto isPrinted = [](std::uint8_t byte) {
    return (byte >= ' ' && byte <= '~') || (byte >= '\t' && byte <= '\r');
  };
  return std::all_of(bytes.begin(), end, isPrinted) ||
         std::adjacent_find(bytes.begin(), end, std::not_equal_to<>()) == end;
}

}  // namespace

std::optional<RecoverBlock> BlockAt(RecoverSource& source, std::uint64_t offset) {
  const auto length = source.Long(offset + 4);
  if (!length) return std::nullopt;
  FileRecord record;
  record.offset = offset;
  record.length = *length;
  const auto head = ReadStoredBlock(source.File(), record);
  if (!head) return std::nullopt;
  RecoverBlock block;
  block.offset = offset;
  block.tag = dataTagAt(source, offset);
  block.length = *length;
  block.version = head->version;
  block.wells = static_cast<std::uint16_t>(head->wells.size());
  block.firstFrame = head->firstFrame;
  block.frames = head->frameCount;
  if (block.version >= kVersion) readTimes(source, record.BodyOffset(), block);
  block.lengthAgrees = record.DeclaredEnd() == block.End();
  return block;
}

std::vector<std::uint16_t> ReadWellNumbers(RecoverSource& source, std::uint64_t offset,
                                           std::uint16_t wells) {
  if (wells > kMostWells) return {};
  const auto bytes = source.View(offset, 2U * wells);
  if (bytes.size() < 2U * wells) return {};
  std::vector<std::uint16_t> numbers;
  std::bitset<kMostWells + 1> met;
  for (std::size_t i = 0; i < wells; ++i) {
    const auto number = ShortAt(bytes, 2 * i);
    if (number == 0 || number > kMostWells || met.test(number)) return {};
    met.set(number);
    numbers.push_back(number);
  }
  return numbers;
}

std::optional<RecoverBlock> FindLostBlock(RecoverSource& source, const BlockSearch& search) {
  if (search.to < search.from + kStoredRecordSize) return std::nullopt;
  if (auto block = byVersion(source, search)) return block;
  if (auto block = byNumbers(source, search)) return block;
  auto block = byFramesAlone(source, search);
  if (block && block->numbers.empty() && isFiller(source, *block)) return std::nullopt;
  return block;
}

std::optional<std::uint16_t> MarkerOf(RecoverSource& source, std::uint64_t frame,
                                      std::uint16_t wells) {
  std::uint16_t marker = 0;
  for (unsigned well = 0; well < wells; ++well) {
    const auto found = source.Short(frame + kStoredRecordSize * well);
    if (!found || *found == kPadding) return std::nullopt;
    if (*found != 0 && marker != 0 && *found != marker) return std::nullopt;
    marker = std::max(marker, *found);
  }
  if (marker == 0) return std::nullopt;
  return marker;
}

std::uint64_t CountPlausibleFrames(RecoverSource& source, std::uint64_t offset, std::uint16_t wells,
                                   std::uint64_t most, std::optional<std::uint16_t> marker) {
  std::uint64_t count = 0;
  for (; count < most && wells > 0; ++count) {
    unsigned filled = 0;
    for (unsigned well = 0; well < wells; ++well, offset += kStoredRecordSize) {
      const auto found = source.Short(offset);
      if (!found) return count;
      if (marker ? *found == *marker : *found != 0) ++filled;
    }
    if (2 * filled < wells) return count;
  }
  return count;
}

}  // namespace vex2::lab
