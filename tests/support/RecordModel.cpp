#include "tests/support/RecordModel.h"

#include <algorithm>
#include <utility>

namespace vex2::test::model {
namespace {

constexpr std::size_t kHeader = 1024;
constexpr std::size_t kWellInMemory = 88;
constexpr std::size_t kWellInFile = 80;

enum class Kind { unknown, fixed, text, raw, list, cell, cells, spectra, block, plates, plate };

struct Family {
  Kind kind;
  std::size_t width;  // bytes of a value of fixed size
  const char* tags;   // one after the other
};

constexpr Family kFamilies[] = {
    {Kind::fixed, 1, "PRERPOSRFTRDDRKSSPONSPRVHDATDUSEDAABDAAT"},
    {Kind::fixed, 2, "PCRVUOMCROWNCOLN1CTLSTUMDASBDAEBDAQFRQAT"},
    {Kind::fixed, 3, "COLR"},
    {Kind::fixed, 4, "VERSTSMPRFIDDYCDDATCDATMEOPlEOF STVLQANTDATHConf"},
    {Kind::text, 0, "LOGTCOMMSPNMNAMEDESCDNAMTASKRefNDETNDYERDYEQCOMTOWNRLOCSaDyePathRQPDCALRENDO"},
    {Kind::raw, 0, "TProSPCH"},
    {Kind::list, 0, "GLBLSPECCNTLCPLTCPNMDETTCALIDETLDETXRqDy"},
    {Kind::cell, 0, "CELL"},
    {Kind::cells, 0, "CELS"},
    {Kind::spectra, 0, "PDYEBKGD"},
    {Kind::block, 0, "RAWaREPrREPnREPdREPt"},
    {Kind::plates, 0, "MPLC"},
    {Kind::plate, 0, "RQPl"},
};

Family familyOf(const Text& tag) {
  for (const Family& family : kFamilies) {
    const Text tags = family.tags;
    for (std::size_t at = 0; at < tags.size(); at += 4) {
      if (tags.compare(at, 4, tag) == 0) return family;
    }
  }
  return {Kind::unknown, 0, ""};
}

int take(Stream& stream, std::size_t count, Text& all) {
  Text bytes;
  if (!stream.Take(count, bytes)) return -100;
  all += bytes;
  return 0;
}

int readRecords(Stream& stream, std::uint32_t count, Part& list) {
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t start = stream.at;
    Text tag;
    // In CELS, each record is read as a cell, whatever its tag is, and a missing cell is a failure.
    // In other lists a missing tag is skipped.
    if (!stream.Take(4, tag) && list.tag != "CELS") continue;
    stream.at = start;
    Part child;
    std::uint64_t counted = 0;
    if (const int status = ReadRecord(stream, child, counted); status != 0) return status;
    // A list keeps at most as many bytes of an unknown record as the file holds.
    const std::size_t held = stream.at - std::min(stream.at, start + 8);
    if (child.isUnknown) child.length = std::min(child.length, static_cast<std::uint32_t>(held));
    // A plate that is read increases the length as if it were added.
    if (list.tag == "MPLC") list.length += 10;
    list.children.push_back(child);
  }
  return 0;
}

int readCounted(Stream& stream, Part& part, std::size_t more) {
  Text count;
  if (!stream.Take(2, count)) return -100;
  if (const int status = take(stream, more, part.value); status != 0) return status;
  part.count = NumberAt(count, 0, 2);
  const int status = readRecords(stream, part.count, part);
  // A study writes the number of plates that it holds.
  if (part.tag == "MPLC") part.count = static_cast<std::uint32_t>(part.children.size());
  return status;
}

int readSpectra(Stream& stream, Part& part) {
  const bool isDyes = part.tag == "PDYE";
  Text& all = part.value;
  if (const int status = take(stream, 72, all); status != 0) return status;
  for (std::uint32_t left = NumberAt(all, 8, 2); left > 0; --left) {
    if (const int status = take(stream, 9, all); status != 0) return status;
    const auto nameLength = NumberAt(all, all.size() - 1, 1);
    const std::size_t toCount = nameLength + (isDyes ? 6 : 0) + 1;
    if (const int status = take(stream, toCount, all); status != 0) return status;
    const std::size_t values = 4UL * NumberAt(all, all.size() - 1, 1);
    if (const int status = take(stream, values, all); status != 0) return status;
  }
  return 0;
}

int readBlock(Stream& stream, Part& part) {
  Text head;
  if (!stream.Take(2, head)) return -100;
  part.version = NumberAt(head, 0, 2);
  if (part.version >= 2) {
    if (!stream.Take(14, head)) return -100;
    part.times = head.substr(2);
  }
  if (!stream.Take(2, head)) return -100;
  part.wells.resize(NumberAt(head, 0, 2));
  for (std::uint16_t& well : part.wells) {
    if (!stream.Take(2, head)) return -100;
    well = static_cast<std::uint16_t>(NumberAt(head, 0, 2));
  }
  for (std::int64_t frame = 0; frame < part.FrameCount(); ++frame) {
    Text records;
    for (std::size_t well = 0; well < part.wells.size(); ++well) {
      if (!stream.Take(kWellInFile, head)) return -100;
      records += head + Text(8, '\0');
    }
    part.frames[frame] = records;
  }
  return 0;
}

int readPlate(Stream& stream, Part& part) {
  Text count;
  if (!stream.Take(2, count)) return -100;
  if (!stream.Take(1024, part.header)) return -100;
  part.header.resize(72 + 4UL * NumberAt(part.header, 20, 2));
  int status = 0;
  while (true) {
    const std::size_t start = stream.at;
    Text tag;
    if (!stream.Take(4, tag)) return -100;
    if (tag == "EOF " || tag == "Vex2") return status;
    if (!IsKnown(tag)) continue;
    stream.at = start;
    Part child;
    std::uint64_t counted = 0;
    status = ReadRecord(stream, child, counted);
    if (tag == "EOPl") return status;
    if (status == 0) part.children.push_back(child);
  }
}

int readBody(Stream& stream, Part& part) {
  const Family family = familyOf(part.tag);
  switch (family.kind) {
    case Kind::unknown:
      part.isUnknown = true;
      stream.at = std::min<std::size_t>(stream.bytes.size(), stream.at + part.length);
      return 0;
    case Kind::fixed:
      return take(stream, family.width, part.value);
    case Kind::raw:
      return take(stream, part.length, part.value);
    case Kind::text:
      if (const int status = take(stream, part.length, part.value); status != 0) return status;
      if (part.value.back() == '\0') {
        part.value.pop_back();
        part.length -= 1;
      }
      return 0;
    case Kind::cell:
      return readCounted(stream, part, 5);
    case Kind::list:
    case Kind::cells:
    case Kind::plates:
      return readCounted(stream, part, 0);
    case Kind::spectra:
      return readSpectra(stream, part);
    case Kind::block:
      return readBlock(stream, part);
    case Kind::plate:
      return readPlate(stream, part);
  }
  return 0;
}

Text writtenBlock(const Part& part) {
  Text body = Big(part.version, 2) + Big(12, 2) + part.times + Big(part.wells.size(), 2);
  for (const std::uint16_t well : part.wells) body += Big(well, 2);
  for (std::int64_t i = 0; i < part.FrameCount(); ++i) body += part.StoredFrame(i);
  return body;
}

Text writtenPlate(const Part& part) {
  Text header = part.header;
  header.resize(1024, '\xFF');
  return Big(0, 2) + header;
}

}  // namespace

Text Big(std::uint64_t value, int width) {
  Text bytes(static_cast<std::size_t>(width), '\0');
  for (auto at = bytes.rbegin(); at != bytes.rend(); ++at, value >>= 8U) {
    *at = static_cast<char>(value & 0xFFU);
  }
  return bytes;
}

std::uint32_t NumberAt(const Text& bytes, std::size_t at, int width) {
  std::uint32_t value = 0;
  for (const char byte : bytes.substr(at, static_cast<std::size_t>(width))) {
    value = value << 8U | static_cast<unsigned char>(byte);
  }
  return value;
}

std::int64_t Part::FrameCount() const {
  if (wells.empty() || length < 18) return 0;
  return (length - 18) / (kWellInFile * wells.size());
}

Text Part::FrameAt(std::int64_t index) const {
  const auto found = frames.find(index);
  return found != frames.end() ? found->second : Text(kWellInMemory * wells.size(), '\0');
}

Text Part::StoredFrame(std::int64_t index) const {
  const Text frame = FrameAt(index);
  Text stored;
  for (std::size_t at = 0; at < frame.size(); at += kWellInMemory) {
    stored += frame.substr(at, kWellInFile);
  }
  return stored;
}

bool Stream::Take(std::size_t count, Text& out) {
  const bool isWhole = count <= bytes.size() - std::min(at, bytes.size());
  if (isWhole) out = bytes.substr(at, count);
  at = isWhole ? at + count : bytes.size();
  return isWhole;
}

bool IsKnown(const Text& tag) {
  return familyOf(tag).kind != Kind::unknown;
}
bool IsBlock(const Text& tag) {
  return familyOf(tag).kind == Kind::block;
}

int ReadRecord(Stream& stream, Part& part, std::uint64_t& counted) {
  Text length;
  if (!stream.Take(4, part.tag)) return -300;
  part.isUnknown = !IsKnown(part.tag);
  if (!stream.Take(4, length)) return -300;
  part.length = NumberAt(length, 0, 4);
  const int status = part.length != 0 ? readBody(stream, part) : 0;
  counted += std::uint64_t{part.length} + 8;
  return status;
}

Text Written(const Part& part) {
  Text bytes = part.tag + Big(part.length, 4);
  if (part.length == 0) return bytes;
  const Kind kind = familyOf(part.tag).kind;
  if (kind == Kind::unknown) return bytes + Text(part.length, '\0');
  if (kind == Kind::block) return bytes + writtenBlock(part);
  if (kind == Kind::plate) {
    bytes += writtenPlate(part);
  } else if (kind == Kind::fixed || kind == Kind::text || kind == Kind::raw ||
             kind == Kind::spectra) {
    bytes += part.value;
  } else {
    bytes += Big(part.count, 2) + part.value;
  }
  for (const Part& child : part.children) bytes += Written(child);
  if (kind == Kind::plate) bytes += "EOPl" + Big(4, 4) + Big(0, 4);
  return bytes;
}

std::uint32_t SizeOf(const Part& part) {
  return part.length + 8;
}

Document ReadDocument(const Text& bytes) {
  Document document;
  if (bytes.compare(0, 4, "Vex2") != 0) return {-100, {}, {}};
  document.header = bytes.substr(0, 72);
  if (bytes.size() >= 72) document.header = bytes.substr(0, 72 + 4UL * NumberAt(bytes, 20, 2));
  Stream stream{bytes, std::max(kHeader, document.header.size())};
  std::uint64_t remaining = bytes.size() > kHeader ? bytes.size() - kHeader : 0;
  while (remaining > 0) {
    const std::size_t start = stream.at;
    Text tag;
    if (!stream.Take(4, tag)) break;
    stream.at = start;
    Part part;
    std::uint64_t size = 0;
    const int status = ReadRecord(stream, part, size);
    if (!part.isUnknown) {
      document.status = status;
      if (status != 0) break;
      document.parts.push_back(part);
    }
    // Plates declare too little or, after many saves, too much.
    if (part.tag == "MPLC") size = std::min<std::uint64_t>(size, stream.at - start);
    remaining = remaining < size ? 0 : remaining - size;
  }
  return document;
}

Part Copied(const Part& part) {
  Part copy = part;
  copy.children.clear();
  for (const Part& child : part.children) {
    if (!child.isUnknown) copy.children.push_back(Copied(child));
  }
  copy.count = static_cast<std::uint32_t>(copy.children.size());
  return copy;
}

Part ValuePart(const Text& tag, const Text& value) {
  Part part;
  part.tag = tag;
  part.value = value;
  part.length = static_cast<std::uint32_t>(value.size());
  return part;
}

Part ListPart(const Text& tag, const std::vector<Part>& children) {
  Part part;
  part.tag = tag;
  part.length = 2;
  for (const Part& child : children) Add(part, child);
  return part;
}

void Add(Part& list, Part child) {
  list.length += SizeOf(child);
  list.children.push_back(std::move(child));
  list.count = static_cast<std::uint32_t>(list.children.size());
}

void Remove(Part& list, std::size_t index) {
  const auto child = list.children.begin() + static_cast<std::ptrdiff_t>(index);
  list.length -= SizeOf(*child);
  list.children.erase(child);
  list.count = static_cast<std::uint32_t>(list.children.size());
}

Part BlockPart(const Text& tag, const std::vector<std::uint16_t>& wells) {
  Part part;
  part.tag = tag;
  part.length = static_cast<std::uint32_t>(18 + 2 * wells.size());
  part.wells = wells;
  return part;
}

void AddFrame(Part& block, const Text& frame) {
  if (block.wells.empty()) return;
  block.frames[block.FrameCount()] = frame;
  block.length += static_cast<std::uint32_t>(kWellInFile * block.wells.size());
}

}  // namespace vex2::test::model
