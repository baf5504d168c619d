#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A format from which documents are imported.
enum class ImportFormat {
  kRdml,  ///< the Real-time PCR Data Markup Language, as an archive or as XML alone
  kRdes,  ///< the Real-time PCR Data Essential Spreadsheet, a table of one stage
  kJson,  ///< a document as `vex export` writes it, as one object or as lines
  kCsv,   ///< readings as `vex export` and `vex record` use them, one row for each
};

/// The format with this name, in lower case, such as "rdml"; nothing for any other text.
VEX2_API std::optional<ImportFormat> ImportFormatOf(std::string_view name);
/// The name of the format, in lower case.
VEX2_API std::string_view NameOf(ImportFormat format);

/// The format of the file at `path`, found from its content; nothing if it has none of the formats
/// or cannot be read.
VEX2_API std::optional<ImportFormat> FindImportFormat(const std::filesystem::path& path);

}  // namespace vex2::lab
