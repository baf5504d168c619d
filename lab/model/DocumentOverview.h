#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/Run.h"

namespace vex2::lab {

/// What one plate holds: the document itself, or a plate in a study. Texts are UTF-8, and codes
/// have no trailing blanks.
struct PlateOverview {
  bool isEmbedded = false;  ///< it is a plate of a study; otherwise `name` and `modified` are empty
  std::string name;
  std::string modified;      ///< when the plate's own file was last changed, see `PlateDateText`
  std::uint64_t offset = 0;  ///< in bytes from the start of the file
  std::uint64_t size = 0;    ///< in bytes

  std::string kind;
  std::string plateType;
  unsigned rows = 0;
  unsigned columns = 0;
  unsigned wellCount = 0;  ///< number of wells of the plate type; rows times columns if the type is
                           ///< unknown, see `LayoutOf`
  std::size_t wellsInUse = 0;
  std::string assay;
  std::string run;
  std::string text;
  std::string status;
  int frames = 0;                    ///< number of frames of the raw readings
  std::optional<std::string> start;  ///< start of the raw readings, see `BlockInfo`
  std::optional<std::string> end;
  std::vector<BlockInfo> blocks;  ///< in the order of the document
  /// The settings that the document has, without those in the header.
  std::vector<SettingValue> settings;
  std::optional<std::uint32_t> programSize;  ///< size of the thermal cycling program in bytes
  std::optional<std::string> programText;    ///< nothing if the program is not a text
  std::vector<Document::Record> records;  ///< the top-level records; here their tags are UTF-8 too
};

/// What a document holds, or one plate of a study.
struct DocumentOverview {
  std::string path;
  PlateOverview plate;  ///< the document itself, or the chosen plate
  bool isWhole = false;
  std::vector<FileFault> faults;  ///< why the document is not whole, and what a save would lose
  /// The plates of a study, or of any other document that has plates in it.
  std::optional<std::vector<PlateOverview>> plates;
};

/// The overview of `document`, or of its plate `plate`. For a plate in a study, the result has no
/// `plates` and no `faults`.
DocumentOverview OverviewOf(const Document& document, const Document::Plate& plate);
PlateOverview OverviewOf(const Document::Plate& plate);

}  // namespace vex2::lab
