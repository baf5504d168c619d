#include "tools/vex/document/HeaderFields.h"

#include <algorithm>
#include <array>

#include "tools/vex/document/RecordWalker.h"

namespace vex2::tool {

namespace {

class HeaderReader {
 public:
  HeaderReader(CFile& file, std::uint64_t offset) : file_(file), offset_(offset) {}

  std::string Code(std::uint64_t at) {
    std::array<char, 4> code{};
    seek(at);
    return {code.data(), file_.Read(code.data(), code.size())};
  }
  std::uint16_t Short(std::uint64_t at) {
    seek(at);
    return ReadShort(file_).value_or(0);
  }
  std::uint32_t Long(std::uint64_t at) {
    seek(at);
    return ReadLong(file_).value_or(0);
  }

 private:
  void seek(std::uint64_t at) { file_.Seek(static_cast<std::int64_t>(offset_ + at), CFile::begin); }

  CFile& file_;
  std::uint64_t offset_;
};

}  // namespace

std::optional<std::uint32_t> WellsOfType(const std::string& plateType) {
  constexpr std::array<std::string_view, 3> kSmall = {"c9C ", "p9b ", "p9C "};
  constexpr std::array<std::string_view, 3> kLarge = {"c3C ", "p3b ", "p3C "};
  if (std::find(kSmall.begin(), kSmall.end(), plateType) != kSmall.end()) return 96;
  if (std::find(kLarge.begin(), kLarge.end(), plateType) != kLarge.end()) return 384;
  return std::nullopt;
}

HeaderFields ReadHeaderFields(CFile& file, std::uint64_t offset) {
  HeaderReader reader(file, offset);
  HeaderFields header;
  header.assay = reader.Code(HeaderFields::kAssayAt);
  header.plateType = reader.Code(HeaderFields::kTypeAt);
  header.rows = reader.Short(HeaderFields::kRowsAt);
  header.columns = reader.Short(HeaderFields::kColumnsAt);
  header.programPosition = reader.Long(HeaderFields::kProgramAt);
  header.status = reader.Code(HeaderFields::kStatusAt);
  header.rawDataPosition = reader.Long(HeaderFields::kRawDataAt);
  for (std::uint64_t row = 0; row < std::min(header.rows, HeaderFields::kMostRows); ++row) {
    header.usage.push_back(reader.Long(HeaderFields::kUsageAt + 4 * row));
  }
  return header;
}

}  // namespace vex2::tool
