#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/Losses.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// A format that documents are imported from.
enum class ImportFormat {
  kRdml,  ///< the Real-time PCR Data Markup Language, as an archive or as XML alone
  kRdes,  ///< the Real-time PCR Data Essential Spreadsheet, a table of one stage
  kJson,  ///< a document as `vex export` writes it, as one object or as lines
  kCsv,   ///< readings as `vex export` and `vex record` have them, a row for each
};

/// The format of this name, in lower case, as "rdml"; nothing for any other text.
VEX2_API std::optional<ImportFormat> ImportFormatOf(std::string_view name);
/// The name of the format, in lower case.
VEX2_API std::string_view NameOf(ImportFormat format);

/// How a file is imported.
struct ImportOptions {
  std::optional<ImportFormat> format = {};  ///< nothing: as the file's content tells
  bool replace = false;                     ///< overwrite documents that exist
  /// Follows "already exists; " in the message when `replace` is not set.
  std::string existsHint = "set replace to overwrite it";
  /// Make one document, a study of all runs, instead of one document for each run.
  bool study = false;
  /// Keep runs apart that look like parts of one plate: the same samples, of different dyes or
  /// stages.
  bool separate = false;
  /// What to do with the document that an RDML archive of this library holds.
  enum class Embedded {
    kIfCurrent,  ///< take it unless another program has changed the RDML since
    kAlways,     ///< take it; an error where there is none
    kNever,      ///< read the RDML
  };
  Embedded embedded = Embedded::kIfCurrent;  ///< only of RDML
};

/// A document that an import has made.
struct ImportedDocument {
  std::filesystem::path path;  ///< of the document
  std::string run;             ///< what the file calls the run; may be empty
  std::size_t wells = 0;       ///< with readings in each frame
  std::size_t frames = 0;      ///< of the raw readings
};

/// What an import did.
struct ImportReport {
  ImportFormat format = ImportFormat::kRdml;  ///< of the file
  std::vector<ImportedDocument> documents;    ///< in the order of the file's runs
  Losses losses;                              ///< what the documents do not hold as the file does
  /// Sentences about what the import decided, for people.
  std::vector<std::string> notes;
  bool isEmbedded = false;  ///< the document was in the file, and has the bytes that it had
};

/// Makes documents of the runs in the file at `source`, or on standard input for "-". One run
/// becomes the document `target`; several become `target` with "-1", "-2" and so on before the
/// extension, or one study. Readings take the way of a recording, with the scale that loses least.
///
/// Each document is written as a whole or not at all, and all are made before the first is written.
/// Throws `Error` that names the file, and the line and element where there are any, when the file
/// is none of the formats, is damaged or refused, and when a document exists and `replace` is not
/// set; nothing was written then.
VEX2_API ImportReport Import(const std::filesystem::path& source,
                             const std::filesystem::path& target,
                             const ImportOptions& options = {});

}  // namespace vex2::lab
