#include <algorithm>

#include "tests/model/Manager.h"

namespace vex2::test::model {
namespace {

constexpr std::size_t kHeaderBytes = 1024;
constexpr std::size_t kWellInFile = 80;

Part blockOf(const Text& tag, const std::vector<Frame>* frames, int count) {
  if (frames == nullptr) return BlockPart(tag, {});
  Part block = BlockPart(tag, {});
  const std::uint16_t wells = frames->front().wells;
  for (std::uint16_t well = 1; well <= wells; ++well) block.wells.push_back(well);
  block.length += 2U * wells;
  for (int i = 0; i < count; ++i) AddFrame(block, (*frames)[static_cast<std::size_t>(i)].records);
  return block;
}

std::size_t positionOf(const Part& block, int well) {
  const auto found = std::find(block.wells.begin(), block.wells.end(), well);
  return static_cast<std::size_t>(found - block.wells.begin());
}

/// Whether bytes after the frames of a block are a record, not an uncommitted frame.
bool isRecord(const Text& bytes) {
  if (bytes.size() < 8 || NumberAt(bytes, 4, 4) > bytes.size() - 8) return false;
  return std::all_of(bytes.begin(), bytes.begin() + 4, [](char c) { return c >= 32 && c < 127; });
}

/// The geometry of a block in a file, which is needed to read a single frame.
struct Geometry {
  std::uint32_t wells = 0;
  std::int64_t frames = 0;
  std::size_t firstFrame = 0;
};

Geometry geometryAt(const Text& bytes, std::size_t at) {
  const std::uint32_t length = NumberAt(bytes, at + 4, 4);
  const std::uint32_t times = NumberAt(bytes, at + 10, 2);
  const std::uint32_t wells = NumberAt(bytes, at + 12 + times, 2);
  if (wells == 0) return {};
  const std::int64_t data = std::int64_t{length} - 2 * std::int64_t{wells} - 18;
  return {wells, data / static_cast<std::int64_t>(kWellInFile * wells), at + 26 + 2UL * wells};
}

}  // namespace

int Manager::removeBlock(const Text& tag) {
  remove(tag);
  return 0;
}

std::uint32_t Manager::findInFile(const Text& bytes, const Text& tag) const {
  for (std::size_t at = kHeaderBytes; at + 4 <= bytes.size();) {
    if (bytes.compare(at, 4, tag) == 0) return static_cast<std::uint32_t>(at);
    if (at + 8 > bytes.size()) return 0;
    at += 8 + std::size_t{NumberAt(bytes, at + 4, 4)};
  }
  return 0;
}

bool Manager::leadsToBlock(const char* at, const Text& tag) const {
  const auto found = at != nullptr ? disk_->files.find(at) : disk_->files.end();
  if (found == disk_->files.end() || found->second.size() < 72 || tag != "RAWa") return true;
  const std::size_t place = NumberAt(found->second, 68, 4);
  return place == 0 || (place < found->second.size() && found->second.compare(place, 4, tag) == 0);
}

bool Manager::hasPlainRecords(const char* at) const {
  const auto found = at != nullptr ? disk_->files.find(at) : disk_->files.end();
  if (found == disk_->files.end()) return true;
  const Text& bytes = found->second;
  Stream stream{bytes, kHeaderBytes};
  std::size_t place = kHeaderBytes;
  while (place + 8 <= bytes.size()) {
    Part part;
    std::uint64_t counted = 0;
    stream.at = place;
    if (ReadRecord(stream, part, counted) != 0) return false;
    place += 8 + std::size_t{NumberAt(bytes, place + 4, 4)};
    if (stream.at != place) return false;
  }
  return place == bytes.size() || bytes.size() <= kHeaderBytes;
}

int Manager::replaceBlock(const char* at, const std::vector<Frame>* frames, int count,
                          const Text& tag) {
  remove(tag);
  const Part block = blockOf(tag, frames, count);
  append(block);
  if (at == nullptr || safeOpen(at, 0, 0) == 0) return -100;
  const bool isDocument = isVex2();
  const bool hasOffset = content().size() >= 72;
  close();
  if (!isDocument || (tag == "RAWa" && !hasOffset)) return -100;
  return tag == "RAWa" ? replaceRaw(at, block) : replaceReporting(at, block, tag);
}

int Manager::replaceRaw(const char* at, const Part& block) {
  const std::uint32_t offset = NumberAt(disk_->files[at], 68, 4);
  if (safeOpen(at, 1, 1) == 0) return -200;
  const std::size_t place = offset != 0 ? offset : content().size();
  if (offset != 0) ++disk_->replaced[path];
  overwrite(place, Written(block));
  content().resize(place + SizeOf(block));
  if (offset == 0) {
    header.replace(68, 4, Big(place, 4));
    updateOffset(68, static_cast<std::uint32_t>(place));
  }
  close();
  return 0;
}

int Manager::replaceReporting(const char* at, const Part& block, const Text& tag) {
  const Text before = disk_->files[at];
  std::vector<Part> kept;
  std::size_t start = 0;
  Stream stream{before, kHeaderBytes};
  while (stream.at < before.size()) {
    const std::size_t place = stream.at;
    const Text found = before.substr(place, 4);
    if (!IsBlock(found) || found == "RAWa") {
      stream.at += 8 + std::size_t{NumberAt(before, place + 4, 4)};
      continue;
    }
    if (start == 0) start = place;
    Part part;
    std::uint64_t counted = 0;
    ReadRecord(stream, part, counted);
    kept.push_back(part);
  }
  const auto old =
      std::find_if(kept.begin(), kept.end(), [&](const Part& p) { return p.tag == tag; });
  if (old != kept.end()) kept.erase(old);
  if (safeOpen(at, 1, 1) == 0) return -200;
  if (start == 0) {
    overwrite(content().size(), Written(block));
  } else {
    Text blocks = Written(block);
    ++disk_->replaced[path];
    for (const Part& part : kept) blocks += Written(part);
    content().resize(start);
    overwrite(start, blocks);
    for (const std::size_t field : {24UL, 68UL}) {
      if (NumberAt(before, field, 4) > start) updateOffset(field, 0);
    }
  }
  close();
  return 0;
}

/// Whether the bytes at `start` are the first part of the tag followed by zeros. A first commit
/// writes the tag last, so it can leave only a part of it.
bool Manager::beginsAsBlock(const Part& block, std::size_t start) {
  const Text tag = content().substr(start, 4);
  std::size_t written = 0;
  while (written < tag.size() && tag[written] == block.tag[written]) ++written;
  return tag.find_first_not_of('\0', written) == Text::npos;
}

/// Whether the bytes from `start` on are what an interrupted first commit left: part of a block
/// whose whole frames, if any, are frames of `block`. Such bytes are overwritten.
bool Manager::isLeftover(const Part& block, std::size_t start) {
  const Text rest = content().substr(start);
  if (rest.size() < 8) return true;
  if (std::size_t{8} + NumberAt(rest, 4, 4) < rest.size()) return false;
  if (rest.size() < 26) return true;
  const std::size_t wells = NumberAt(rest, 24, 2);
  if (NumberAt(rest, 8, 2) < 2 || wells != block.wells.size()) return false;
  if (!rest.starts_with(block.tag)) return true;
  const std::size_t first = 26 + 2 * wells;
  const std::size_t frame = kWellInFile * wells;
  std::int64_t index = 0;
  for (std::size_t at = first; frame != 0 && at + frame <= rest.size(); at += frame, ++index) {
    if (index >= block.FrameCount()) return false;
    if (rest.compare(at, frame, block.StoredFrame(index)) != 0) return false;
  }
  return true;
}

std::size_t Manager::placeForBlock(const Part& block) {
  const Text& bytes = content();
  Stream stream{bytes, kHeaderBytes};
  while (stream.at < bytes.size()) {
    const std::size_t start = stream.at;
    if (beginsAsBlock(block, start)) return isLeftover(block, start) ? start : bytes.size();
    Part part;
    std::uint64_t counted = 0;
    if (ReadRecord(stream, part, counted) != 0) break;
  }
  return bytes.size();
}

int Manager::appendBlock(const char* at, const std::vector<Frame>* frames, int count) {
  remove("RAWa");
  const Part block = blockOf("RAWa", frames, count);
  append(block);
  if (at == nullptr || safeOpen(at, 1, 1) == 0) return -200;
  const std::size_t end = content().size();
  const int status = writeBlock(block, end);
  if (status != 0) content().resize(end);
  close();
  return status;
}

int Manager::writeBlock(const Part& block, std::size_t place) {
  header.replace(68, 4, Big(place, 4));
  overwrite(place, Written(block));
  return updateOffset(68, static_cast<std::uint32_t>(place));
}

void Manager::initWells(const std::vector<std::uint16_t>& wells, const Text& tag) {
  Part* block = find(tag);
  if (block == nullptr) {
    append(BlockPart(tag, wells));
    return;
  }
  if (wells.empty()) return;
  if (wells.size() != block->wells.size()) block->frames.clear();
  block->wells = wells;
}

int Manager::appendFrame(const char* at, const Frame& frame, const Text& tag) {
  Part* block = find(tag);
  if (block == nullptr) {
    const std::vector<Frame> frames = {frame};
    append(blockOf(tag, &frames, 1));
    return commit(at, 0, tag);
  }
  const std::int64_t index = block->FrameCount();
  // Wells that are missing in the frame become zeros; wells that are missing in the block are left
  // out.
  Text records = frame.records;
  records.resize(88 * block->wells.size());
  AddFrame(*block, records);
  return commit(at, index, tag);
}

/// The offset of the next frame. It overwrites uncommitted bytes after the counted frames, which
/// are at most one frame and not a record; otherwise it is appended to the file.
std::size_t Manager::placeForFrame(const Part& block, std::uint32_t offset) {
  const Text& bytes = content();
  const std::size_t frame = kWellInFile * block.wells.size();
  if (left_ == left() || offset + 26UL > bytes.size()) return bytes.size();
  const std::size_t length = NumberAt(bytes, offset + 4, 4);
  const std::size_t head = 18 + 2 * block.wells.size();
  const Text fixed = Big(2, 2) + Big(12, 2);
  const bool isOurs = bytes.compare(offset, 4, "RAWa") == 0 &&
                      bytes.compare(offset + 8, 4, fixed) == 0 &&
                      NumberAt(bytes, offset + 24, 2) == block.wells.size() && length >= head &&
                      (length - head) % frame == 0;
  const std::size_t end = offset + 8 + length;
  if (!isOurs || end >= bytes.size() || bytes.size() - end > frame) return bytes.size();
  return isRecord(bytes.substr(end)) ? bytes.size() : end;
}

int Manager::commit(const char* at, std::int64_t index, const Text& tag) {
  const Part* block = find(tag);
  if (block == nullptr) return -300;
  if (tag != "RAWa") return 0;
  if (at == nullptr || safeOpen(at, 0, 0) == 0) return -100;
  const bool isDocument = isVex2() && content().size() >= 72;
  close();
  if (!isDocument) return -100;
  if (safeOpen(at, 1, 1) == 0) return -200;
  int status = 0;
  if (const std::uint32_t offset = NumberAt(content(), 68, 4); offset == 0) {
    const std::size_t place = placeForBlock(*block);
    content().resize(place);
    status = writeBlock(*block, place);
  } else if (index < 0 || index >= block->FrameCount()) {
    status = -260;
  } else {
    const std::size_t place = placeForFrame(*block, offset);
    overwrite(place, block->StoredFrame(index));
    overwrite(offset + 4, Big(block->length, 4));
  }
  if (status == 0) left_ = left();
  close();
  return status;
}

bool Manager::setRecord(const Text& record, int frame, int well, const Text& tag) {
  Part* block = find(tag);
  if (block == nullptr) {
    messages.emplace_back(
        "The function Vex2FileManager::InitAcqDataWellNumberArray() needs to be called first, "
        "before we can call Vex2FileManager::SetAcqDataWellRecord");
    return false;
  }
  const std::size_t position = positionOf(*block, well);
  if (position == block->wells.size() || frame < 0) return false;
  Text records = block->FrameAt(frame);
  records.replace(88 * position, 88, record);
  block->frames[frame] = records;
  int filled = 0;
  for (std::size_t at = 0; at < records.size(); at += 88) {
    if (NumberAt(records, at, 2) != 0) ++filled;
  }
  if (filled == 1) block->length += static_cast<std::uint32_t>(kWellInFile * block->wells.size());
  return true;
}

bool Manager::setTime(const Text& time, bool isEnd, const Text& tag) {
  Part* block = find(tag);
  if (block != nullptr) block->times.replace(isEnd ? 6 : 0, 6, time);
  return block != nullptr;
}

Text Manager::readFrame(std::int64_t index, const Text& tag) const {
  const Part* block = find(tag);
  if (block == nullptr) return "-300";
  if (index < 0 || index >= block->FrameCount()) return "-260";
  return "0 " + block->FrameAt(index);
}

Text Manager::readFrame(const char* at, std::int64_t index, const Text& tag) {
  if (safeOpen(at, 0, 0) == 0) return "-100";
  const bool isDocument = isVex2();
  const Text bytes = content();
  close();
  if (!isDocument) return "-100";
  const std::size_t place = tag == "RAWa" ? NumberAt(bytes, 68, 4) : findInFile(bytes, tag);
  if (place == 0) return "0 ";
  const Geometry block = geometryAt(bytes, place);
  if (block.wells == 0 || index < 0 || index >= block.frames) return "0 ";
  Stream stream{bytes,
                block.firstFrame + kWellInFile * block.wells * static_cast<std::size_t>(index)};
  Text records;
  for (std::uint32_t well = 0; well < block.wells; ++well) {
    Text record;
    if (!stream.Take(kWellInFile, record)) return "-100";
    records += record + Text(8, '\0');
  }
  return "0 " + records;
}

Text Manager::frameCount(const char* at, const Text& tag) {
  if (safeOpen(at, 0, 0) == 0) return "-100 0";
  const bool isDocument = isVex2();
  const Text bytes = content();
  close();
  if (tag == "RAWa" && !isDocument) return "-100 0";
  const std::size_t place = tag == "RAWa" ? NumberAt(bytes, 68, 4) : findInFile(bytes, tag);
  return "0 " + std::to_string(place == 0 ? 0 : geometryAt(bytes, place).frames);
}

}  // namespace vex2::test::model
