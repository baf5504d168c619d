#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "lab/exchange/Losses.h"
#include "lab/formats/ImportFormat.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// How a file is imported.
struct ImportOptions {
  std::optional<ImportFormat> format = {};  ///< nothing: found from the content of the file
  bool replace = false;                     ///< overwrite existing documents
  /// The advice that the error gives after "already exists; " if `replace` is not set.
  std::string existsHint = "set replace to overwrite it";
  /// Make one document, a study of all runs, instead of one document for each run.
  bool study = false;
  /// Do not join runs that look like parts of one plate: the same samples with different dyes or
  /// stages.
  bool separate = false;
  /// What to do with the document that an RDML archive of this library contains.
  enum class Embedded {
    kIfCurrent,  ///< take it, unless another program has changed the RDML since it was written
    kAlways,     ///< always take it; an error if there is none
    kNever,      ///< ignore it, and read the RDML
  };
  Embedded embedded = Embedded::kIfCurrent;  ///< only for RDML
};

/// A document that an import made.
struct ImportedDocument {
  std::filesystem::path path;  ///< of the document
  std::string run;             ///< the name of the run in the file; may be empty
  std::size_t wells = 0;       ///< number of wells with readings
  std::size_t frames = 0;      ///< number of frames of the raw readings
};

/// What an import did.
struct ImportReport {
  ImportFormat format = ImportFormat::kRdml;  ///< the format of the file
  std::vector<ImportedDocument> documents;    ///< in the order of the runs in the file
  Losses losses;  ///< what the documents lack, or hold in another form than the file
  /// Sentences for the user about what the import decided.
  std::vector<std::string> notes;
  bool isEmbedded = false;  ///< the document was in the archive, and was copied byte for byte
};

/// Makes documents from the runs in the file at `source`, or on standard input for "-". A single
/// run becomes the document `target`. Several runs become one study, or documents with "-1", "-2"
/// and so on before the extension of `target`. Readings are stored as a recording stores them, with
/// the scale that loses least.
///
/// All documents are made before the first is written, and each is written completely or not at
/// all. Throws `Error` if the file has none of the formats, is damaged or is refused, or if a
/// document exists and `replace` is not set. The error names the file, and the line and the element
/// if there are any. In all these cases nothing has been written. If a document cannot be written,
/// new documents of this import are removed again; those that replaced others stay.
VEX2_API ImportReport Import(const std::filesystem::path& source,
                             const std::filesystem::path& target,
                             const ImportOptions& options = {});

}  // namespace vex2::lab
