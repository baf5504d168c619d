#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "lab/model/Document.h"
#include "lab/model/Run.h"

namespace vex2::lab {

/// What one plate's worth of a document holds: the document itself, or a plate of a study. Texts
/// are UTF-8, and codes are without trailing blanks.
struct PlateOverview {
  bool isEmbedded = false;  ///< in a study; `name` and `modified` are empty elsewhere
  std::string name;
  std::string modified;      ///< see `PlateDateText`
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::uint64_t size = 0;    ///< bytes

  std::string kind;
  std::string plateType;
  unsigned rows = 0;
  unsigned columns = 0;
  unsigned wellCount = 0;  ///< of the plate type, else rows times columns; see `LayoutOf`
  std::size_t wellsInUse = 0;
  std::string assay;
  std::string run;
  std::string text;
  std::string status;
  int frames = 0;                    ///< of the raw readings
  std::optional<std::string> start;  ///< of the raw readings, see `BlockInfo`
  std::optional<std::string> end;
  std::vector<BlockInfo> blocks;  ///< in the order of the document
  /// The settings that the document has, but for those of the header.
  std::vector<SettingValue> settings;
  std::optional<std::uint32_t> programSize;  ///< bytes of the thermal cycling program
  std::optional<std::string> programText;    ///< nothing if the program is no text
  std::vector<Document::Record> records;     ///< their tags are UTF-8, too
};

/// What a document holds, or one plate of a study.
struct DocumentOverview {
  std::string path;
  PlateOverview plate;  ///< the document itself, unless a plate of it was chosen
  bool isWhole = false;
  std::vector<FileFault> faults;  ///< why it is not whole, and what a save would drop
  /// Of a study, and of any other document that has plates in it.
  std::optional<std::vector<PlateOverview>> plates;
};

/// What the document holds, or that plate of it. Its plates and faults are told of the document
/// itself alone.
DocumentOverview OverviewOf(const Document& document, const Document::Plate& plate);
PlateOverview OverviewOf(const Document::Plate& plate);

}  // namespace vex2::lab
