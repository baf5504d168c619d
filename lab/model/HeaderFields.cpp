#include "lab/model/HeaderFields.h"

#include <algorithm>
#include <array>

#include "lab/model/DocumentWalk.h"

namespace vex2::lab {

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

HeaderFields ReadHeaderFields(CFile& file, std::uint64_t offset) {
  HeaderReader reader(file, offset);
  HeaderFields header;
  header.assay = reader.Code(HeaderLayout::kAssayCodeAt);
  header.plateType = reader.Code(HeaderLayout::kPlateTypeCodeAt);
  header.rows = reader.Short(HeaderLayout::kRowsAt);
  header.columns = reader.Short(HeaderLayout::kColumnsAt);
  header.programPosition = reader.Long(HeaderLayout::kProgramOffsetAt);
  header.status = reader.Code(HeaderLayout::kStatusAt);
  header.rawDataPosition = reader.Long(HeaderLayout::kRawDataOffsetAt);
  for (std::uint64_t row = 0; row < std::min(header.rows, HeaderLayout::kMaxRows); ++row) {
    header.usage.push_back(reader.Long(HeaderLayout::kUsageAt + 4 * row));
  }
  return header;
}

}  // namespace vex2::lab
