#include "lab/formats/ImportFormats.h"

#include <array>
#include <utility>

#include "lab/Error.h"
#include "lab/model/RawFile.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlSource.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kHeadSize = 4096;  // bytes from which a format is recognised

constexpr std::array<std::pair<std::string_view, ImportFormat>, 4> kFormats = {
    {{"rdml", ImportFormat::kRdml},
     {"rdes", ImportFormat::kRdes},
     {"json", ImportFormat::kJson},
     {"csv", ImportFormat::kCsv}}};

bool hasRdml(std::string_view text) {
  return text.find("<rdml") != std::string_view::npos ||
         text.find(":rdml") != std::string_view::npos;
}

// Whether the text begins as `WriteWholeJson` writes it.
bool isWholeJson(std::string_view text) {
  return text.starts_with("{\"version\":") && text.find("\"document\":\"vex\"") < 40;
}

}  // namespace

std::optional<ImportFormat> ImportFormatOf(std::string_view name) {
  for (const auto& [known, format] : kFormats) {
    if (known == name) return format;
  }
  return std::nullopt;
}

std::string_view NameOf(ImportFormat format) {
  for (const auto& [name, known] : kFormats) {
    if (known == format) return name;
  }
  return {};
}

std::string HeadOf(const std::string& path) {
  CFile file;
  OpenToRead(file, path);
  std::string head(kHeadSize, '\0');
  head.resize(file.Read(head.data(), head.size()));
  return head;
}

std::optional<ImportFormat> FormatOfHead(std::string head) {
  if (IsZip(head)) return ImportFormat::kRdml;
  std::erase(head, '\0');  // zero bytes of UTF-16
  if (head.find("<?xml") != std::string::npos || hasRdml(head)) return ImportFormat::kRdml;
  if (head.starts_with("\xEF\xBB\xBF")) head.erase(0, 3);
  head.erase(0, head.find_first_not_of("\r\n"));
  if (IsRdes(head)) return ImportFormat::kRdes;
  if (isWholeJson(head)) return ImportFormat::kJson;
  const std::string names = head.substr(0, head.find('\n'));
  if (names.find("fluorescence") != std::string::npos) return ImportFormat::kCsv;
  return std::nullopt;
}

std::optional<ImportFormat> FindImportFormat(const std::filesystem::path& path) {
  try {
    std::string head = HeadOf(path.string());
    const auto format = FormatOfHead(head);
    if (format != ImportFormat::kRdml) return format;
    if (IsZip(head)) {
      const RdmlSource archive(path.string(), path.string());  // throws if it holds no RDML
      return format;
    }
    std::erase(head, '\0');
    return hasRdml(head) ? format : std::nullopt;
  } catch (const Error&) {
    return std::nullopt;
  }
}

}  // namespace vex2::lab
