#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "tests/support/RecordModel.h"

/// The values that callers pass to a document, as plain structs. The arguments for the library and
/// for the model are made from them.
namespace vex2::test::model {

struct Settings {
  std::uint32_t version = 512;
  Text comment;
  std::uint32_t volume = 0;
  Text reference;
  std::uint32_t unit = 1;
  std::int32_t bytes[4] = {};  ///< FTRD, DRKS, PRER, POSR
  Text log;
};

struct Detector {
  Text texts[7];  ///< name, reporter, quencher, description, comment, owner, location
  Text color = Text(3, '\0');
  std::int32_t created = 0;
  std::int32_t modified = 0;
  std::uint32_t start = 6;
  std::uint32_t end = 15;
  float threshold = 0.2F;
  std::uint32_t flags = 0;
  std::int32_t autoBaseline = 0;
  std::int32_t autoThreshold = 0;
};

struct Spectrum {
  std::uint32_t keys[3] = {};  ///< key1, key2, dyeIndex
  std::uint32_t bytes = 0;     ///< byte 1 and byte 2 of a dye, or the limit of a background
  Text name;
  std::uint32_t params[3] = {};  ///< only of a dye
  Text values;                   ///< four bytes each
};

struct Spectra {
  Text code = Text(4, '\0');
  std::uint32_t setting = 10;
  std::uint32_t option = 0;
  std::uint32_t value = 0;
  Text extra1 = Text(4, '\0');
  Text extra2 = Text(4, '\0');
  std::vector<Spectrum> entries;
};

struct WellDetector {
  Text name;
  Text task;
  float quantity = 0;
  bool used = true;
};

struct Well {
  std::uint32_t coord1 = 0;
  std::uint32_t coord2 = 0;
  bool flag = true;
  Text name;
  Text description;
  std::vector<WellDetector> detectors;
};

/// A frame: 44 big-endian 16-bit values for each well.
struct Frame {
  std::uint16_t wells = 0;
  Text records;
};

}  // namespace vex2::test::model
