#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <set>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/json/JsonNode.h"
#include "lab/json/WholeJson.h"
#include "lab/model/DataBlock.h"
#include "lab/model/DetectorFields.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/Study.h"
#include "lab/model/ValuesToDocument.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

constexpr int kMostDepth = 32;  // the object nests nine levels deep
constexpr std::size_t kRecordValues = 40;
constexpr std::size_t kMostCells = 65535;
// The number of frames that may be missing before a frame. A frame with a large index makes all
// frames before it, and must not fill the memory.
constexpr std::int32_t kMostGap = 16;

void require(int status) {
  if (status != kSuccess) throw std::bad_alloc();
}

void readHeader(const JsonNode& from, Vex2FileManager& document) {
  Vex2HeaderData header;
  header.formatA = from["formatA"].As<std::uint16_t>();
  header.formatB = from["formatB"].As<std::uint16_t>();
  from["assay"].CopyTo(header.assayCode);
  from["run"].CopyTo(header.runCode);
  from["plateType"].CopyTo(header.plateTypeCode);
  header.SetRows(from["rows"].As<std::uint16_t>());
  header.columns = from["columns"].As<std::uint16_t>();
  header.flagG = from["flag"].As<std::uint8_t>();
  from["text"].CopyTo(header.text);
  from["kind"].CopyTo(header.kindMarker);
  from["status"].CopyTo(header.acquisitionStatus);
  from["usage"].NumbersTo(header.usage, header.GetMaskCount());
  document.SetHeaderData(header);
}

void readSettings(const JsonNode& from, Vex2FileManager& document) {
  if (!from.Json().is_object()) from.Refuse("is no object");
  for (const auto& [key, value] : from.Json().items()) {
    const auto& known = Settings();
    const std::string name = key;
    const auto setting = std::find_if(known.begin(), known.end(),
                                      [&](const Setting& one) { return one.key == name; });
    const JsonNode node = from[name.c_str()];
    if (setting == known.end()) node.Refuse("is no setting");
    if (node.IsNull()) continue;
    if (!setting->set(document, JsonText(value))) {
      node.Refuse("it takes " + std::string(setting->takes));
    }
  }
}

void readDetectors(const JsonNode& from, Vex2FileManager& document) {
  from.ForEach([&](const JsonNode& one) {
    Vex2Detector detector;
    for (const DetectorField& field : DetectorFields()) {
      const std::string key(field.key);
      if (!one.Has(key.c_str()) || one[key.c_str()].IsNull()) continue;
      if (!field.set(detector, JsonText(one[key.c_str()].Json()))) {
        one[key.c_str()].Refuse("it takes " + std::string(field.takes));
      }
    }
    require(document.AppendDetectorInfo(&detector));
  });
}

float quantityOf(const JsonNode& from) {
  if (from.Json().is_number()) return from.Json().get<float>();
  const std::string text = from.Text();
  if (text == "NaN") return std::numeric_limits<float>::quiet_NaN();
  if (text != "INF" && text != "-INF") from.Refuse("is no number");
  return text == "INF" ? std::numeric_limits<float>::infinity()
                       : -std::numeric_limits<float>::infinity();
}

std::int32_t lengthOf(const std::string& text) {
  return static_cast<std::int32_t>(text.size());
}

void readCell(const JsonNode& from, Vex2WellSetup& cell) {
  cell.coord1 = from["row"].As<std::uint16_t>();
  cell.coord2 = from["column"].As<std::uint16_t>();
  cell.flag = from["flag"].As<int>() != 0;
  const std::string name = from["name"].Stored();
  cell.SetName(name.data(), lengthOf(name));
  const std::string description = from["description"].Stored();
  cell.SetDescription(description.data(), lengthOf(description));
  from["detectors"].ForEach([&](const JsonNode& one) {
    auto detector = std::make_unique<Vex2WellDetector>();
    const std::string target = one["name"].Stored();
    const std::string task = one["task"].Stored();
    detector->SetDetectorName(target.data(), lengthOf(target));
    detector->SetTask(task.data(), lengthOf(task));
    detector->quantity = quantityOf(one["quantity"]);
    detector->used = one["used"].As<int>() != 0;
    cell.detectors.AddTail(detector.get());
    static_cast<void>(detector.release());
  });
}

void readCells(const JsonNode& from, Vex2FileManager& document) {
  if (from.IsNull()) return;
  if (from.Json().size() > kMostCells) from.Refuse("has more cells than a document can hold");
  Vex2PlateSetup setup;
  setup.Resize(static_cast<std::uint16_t>(from.Json().size()));
  std::size_t index = 0;
  from.ForEach([&](const JsonNode& one) { readCell(one, setup.cells[index++]); });
  require(document.ReplacePlateSetup(&setup));
}

std::optional<CalibrationPart> readPart(const JsonNode& from, bool isDyes) {
  if (from.IsNull()) return std::nullopt;
  CalibrationPart part;
  const auto bytesTo = [&](const char* key, std::array<std::uint8_t, 4>& to) {
    const auto bytes = from[key].Bytes();
    if (bytes.size() != to.size()) from[key].Refuse("does not have 4 bytes");
    std::copy(bytes.begin(), bytes.end(), to.begin());
  };
  bytesTo("code", part.head.code);
  bytesTo("extra1", part.head.extra1);
  bytesTo("extra2", part.head.extra2);
  part.head.setting = from["setting"].As<std::uint32_t>();
  part.head.option = from["option"].As<std::uint16_t>();
  part.head.value = from["value"].As<std::uint32_t>();
  from["spectra"].ForEach([&](const JsonNode& one) {
    CalibrationEntry& entry = part.entries.emplace_back();
    entry.name = one["name"].Text();
    entry.dyeIndex = one["dyeIndex"].As<std::uint16_t>();
    entry.key1 = one["key1"].As<std::uint16_t>();
    entry.key2 = one["key2"].As<std::uint16_t>();
    if (isDyes) {
      one["bytes"].NumbersTo(entry.bytes, entry.bytes.size());
      one["params"].NumbersTo(entry.params, entry.params.size());
    } else {
      entry.limit = one["limit"].As<std::uint16_t>();
    }
    one["values"].ForEach([&](const JsonNode& value) {
      const float number = value.Json().is_number() ? value.Json().get<float>()
                                                    : std::numeric_limits<float>::quiet_NaN();
      entry.values.push_back(std::bit_cast<std::uint32_t>(number));
    });
  });
  return part;
}

/// The data blocks of a plate, to which frames are added as they are read.
class Blocks {
 public:
  Blocks(const JsonNode& from, Vex2FileManager& document) : document_(document) {
    from.ForEach([&](const JsonNode& one) { add(one); });
  }

  void Fill(std::size_t index, int frame, const JsonNode& wells) {
    if (index >= tags_.size()) wells.Refuse("there is no such block");
    const auto& numbers = wells_[index];
    if (!wells.Json().is_array() || wells.Json().size() != numbers.size()) {
      wells.Refuse("is no array of " + Counted(numbers.size(), "well"));
    }
    std::size_t place = 0;
    wells.ForEach([&](const JsonNode& values) {
      std::array<std::uint16_t, kRecordValues> stored{};
      values.NumbersTo(stored, stored.size());
      Vex2WellRecord record;
      std::copy_n(stored.begin(), std::size(record.leading), record.leading);
      std::copy(stored.begin() + std::size(record.leading), stored.end(), record.data);
      if (!document_.SetAcqDataWellRecord(&record, frame, numbers[place++],
                                          BlockType(tags_[index]))) {
        values.Refuse("cannot be stored in frame " + std::to_string(frame));
      }
    });
  }

 private:
  void add(const JsonNode& one) {
    const std::string tag = one["tag"].Text();
    if (std::find(kDataBlockTags.begin(), kDataBlockTags.end(), tag) == kDataBlockTags.end() ||
        std::find(tags_.begin(), tags_.end(), tag) != tags_.end()) {
      one["tag"].Refuse("is not the tag of a data block, or is there twice");
    }
    std::vector<std::uint16_t> wells(one["wells"].Json().is_array() ? one["wells"].Json().size()
                                                                    : 0);
    one["wells"].NumbersTo(wells, wells.size());
    if (std::set(wells.begin(), wells.end()).size() != wells.size()) {
      one["wells"].Refuse("has a well twice");
    }
    document_.InitAcqDataWellNumberArray(wells.data(), static_cast<unsigned short>(wells.size()),
                                         BlockType(tag));
    TimeStamp start;
    TimeStamp end;
    one["start"].NumbersTo(start.fields, std::size(start.fields));
    one["end"].NumbersTo(end.fields, std::size(end.fields));
    document_.SetAcqDataStartTime(start, BlockType(tag));
    document_.SetAcqDataEndTime(end, BlockType(tag));
    tags_.push_back(tag);
    wells_.push_back(std::move(wells));
    if (!one.Has("frames")) return;
    int frame = 0;
    one["frames"].ForEach(
        [&](const JsonNode& wellsOfFrame) { Fill(tags_.size() - 1, frame++, wellsOfFrame); });
  }

  Vex2FileManager& document_;
  std::vector<std::string> tags_;
  std::vector<std::vector<std::uint16_t>> wells_;
};

ordered_json parsed(std::string_view text, const std::string& file, std::size_t line) {
  const auto limit = [&](int depth, ordered_json::parse_event_t, ordered_json&) {
    if (depth <= kMostDepth) return true;
    throw Error(ErrorCode::kDocument, file,
                "nests more than " + std::to_string(kMostDepth) + " deep");
  };
  try {
    return ordered_json::parse(text.begin(), text.end(), limit);
  } catch (const ordered_json::parse_error& error) {
    const std::string what = error.what();
    throw Error(ErrorCode::kDocument, file,
                "line " + std::to_string(line) + ", byte " + std::to_string(error.byte) +
                    ": is no JSON" + what.substr(std::min(what.rfind(": "), what.size())));
  } catch (const ordered_json::out_of_range&) {
    throw Error(ErrorCode::kDocument, file,
                "line " + std::to_string(line) + ": a number is too large to be read");
  }
}

/// Reads a document plate by plate.
class DocumentFiller {
 public:
  DocumentFiller(const std::string& file, DocumentFile& document)
      : file_(file), document_(document) {}

  void Read(std::string_view text) {
    const std::size_t end = text.find('\n');
    const bool isLines =
        end != std::string_view::npos &&
        text.substr(end + 1).find_first_not_of(" \t\r\n") != std::string_view::npos &&
        text.substr(end + 1).starts_with("{\"plate\":");
    object_ = parsed(isLines ? text.substr(0, end) : text, file_, 1);
    const JsonNode root(object_, "", file_);
    if (root["version"].As<int>() != 1) root["version"].Refuse("is not 1");
    readPlate(root, document_);
    std::vector<std::string> names;
    if (root.Has("plates")) {
      root["plates"].ForEach([&](const JsonNode& plate) {
        plates_.push_back(std::make_unique<DocumentFile>());
        readPlate(plate, *plates_.back());
      });
    }
    if (isLines) readLines(text.substr(end + 1));
    std::size_t index = 0;
    if (!root.Has("plates")) return;
    root["plates"].ForEach([&](const JsonNode& plate) {
      AddMadePlate(document_, *plates_[index++], plate["name"].Text(), plate["modified"].Stored());
    });
  }

 private:
  void readPlate(const JsonNode& from, DocumentFile& document) {
    readHeader(from["header"], document);
    readSettings(from["settings"], document);
    if (from.Has("program")) StoreProgram(document, from["program"].Bytes());
    readDetectors(from["detectors"], document);
    from["requiredDyes"].ForEach([&](const JsonNode& dye) {
      document.AppendRequiredDyenfo(CString(std::string_view(dye.Stored())));
    });
    readCells(from["cells"], document);
    const JsonNode calibration = from["calibration"];
    StoreCalibration(document, {.pureDyes = readPart(calibration["pureDyes"], true),
                                .background = readPart(calibration["background"], false)});
    blocks_.push_back(std::make_unique<Blocks>(from["blocks"], document));
  }

  void readLines(std::string_view text) {
    for (std::size_t number = 2; !text.empty(); ++number) {
      const std::string_view line = text.substr(0, text.find('\n'));
      text.remove_prefix(std::min(line.size() + 1, text.size()));
      if (line.empty()) continue;
      const ordered_json object = parsed(line, file_, number);
      const std::string name = file_ + ", line " + std::to_string(number);
      const JsonNode node(object, "", name);
      const std::size_t plate =
          node["plate"].IsNull() ? 0 : std::size_t{node["plate"].As<std::uint32_t>()} + 1;
      if (plate >= blocks_.size()) node["plate"].Refuse("there is no such plate");
      const auto frame = node["frame"].As<std::int32_t>();
      if (frame < 0 || frame > lastFrame_ + kMostGap) {
        node["frame"].Refuse("is not the index of a next frame");
      }
      lastFrame_ = std::max(lastFrame_, frame);
      blocks_[plate]->Fill(node["block"].As<std::uint32_t>(), frame, node["values"]);
    }
  }

  const std::string& file_;
  DocumentFile& document_;
  ordered_json object_;
  std::int32_t lastFrame_ = 0;
  std::vector<std::unique_ptr<DocumentFile>> plates_;
  std::vector<std::unique_ptr<Blocks>> blocks_;
};

}  // namespace

void ReadWholeJson(std::string_view text, const std::string& file, DocumentFile& document) {
  DocumentFiller(file, document).Read(text);
}

}  // namespace vex2::lab
