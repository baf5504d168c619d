#include "lab/json/WholeJson.h"

#include <algorithm>
#include <cmath>

#include "lab/Text.h"
#include "lab/compare/PlateFacts.h"
#include "lab/json/CalibrationJson.h"
#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"
#include "lab/json/SetupJson.h"
#include "lab/model/DataBlock.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/ValuesFromDocument.h"
#include "lab/model/WellDetails.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

using nlohmann::ordered_json;

template <std::size_t size>
std::string textOf(const char (&characters)[size]) {
  return ToUtf8({characters, size});
}

ordered_json headerJson(const Vex2HeaderData& header) {
  ordered_json usage = ordered_json::array();
  for (std::uint16_t row = 0; row < header.GetMaskCount(); ++row)
    usage.push_back(header.usage[row]);
  return {{"formatA", header.formatA},
          {"formatB", header.formatB},
          {"assay", textOf(header.assayCode)},
          {"run", textOf(header.runCode)},
          {"plateType", textOf(header.plateTypeCode)},
          {"rows", header.rows},
          {"columns", header.columns},
          {"flag", header.flagG},
          {"text", textOf(header.text)},
          {"kind", textOf(header.kindMarker)},
          {"status", textOf(header.acquisitionStatus)},
          {"usage", std::move(usage)}};
}

ordered_json quantityJson(float quantity) {
  if (std::isfinite(quantity)) return static_cast<double>(quantity);
  return std::isnan(quantity) ? "NaN" : quantity > 0 ? "INF" : "-INF";
}

std::string textOf(const char* characters, std::int32_t length) {
  if (characters == nullptr || length <= 0) return {};
  return ToUtf8({characters, static_cast<std::size_t>(length)});
}

// The plate setup as it is stored, with each of its cells.
ordered_json cellsJson(const Vex2FileManager& document) {
  Vex2PlateSetup setup;
  if (document.GetPlateSetupComp() == nullptr || document.GetPlateSetupInfo(&setup) != kSuccess) {
    return nullptr;
  }
  const std::vector<WellDetails> details = WellDetailsOf(document);
  ordered_json cells = ordered_json::array();
  for (unsigned index = 0; index < setup.count; ++index) {
    const Vex2WellSetup& cell = setup.cells[index];
    ordered_json detectors = ordered_json::array();
    for (POSITION at = cell.detectors.GetHeadPosition(); at != nullptr;) {
      const Vex2WellDetector* one = cell.detectors.GetNext(at);
      detectors.push_back({{"name", textOf(one->detectorName, one->detectorNameLength)},
                           {"task", textOf(one->task, one->taskLength)},
                           {"quantity", quantityJson(one->quantity)},
                           {"used", one->used}});
    }
    cells.push_back({{"row", cell.coord1},
                     {"column", cell.coord2},
                     {"flag", cell.flag},
                     {"name", textOf(cell.name, cell.nameLength)},
                     {"description", details[index].description},
                     {"detectors", std::move(detectors)}});
  }
  return cells;
}

ordered_json blockJson(const AcquisitionDataComp& block) {
  ordered_json wells = ordered_json::array();
  for (const std::uint16_t well : block.GetWellNumbers()) wells.push_back(well);
  return {{"tag", block.GetTag()},
          {"version", block.GetVersion()},
          {"start", block.GetStartTime().fields},
          {"end", block.GetEndTime().fields},
          {"wells", std::move(wells)},
          {"frameCount", block.GetFrameCount()}};
}

void writeFrame(std::ostream& out, const AcquisitionDataComp& block, int frame) {
  const Vex2WellRecord* records = block.GetFrame(frame);
  const Vex2WellRecord empty;
  std::string text = "[";
  for (std::size_t i = 0; i < block.GetWellCount(); ++i) {
    const Vex2WellRecord& record = records != nullptr ? records[i] : empty;
    text += i == 0 ? "[" : ",[";
    for (const std::uint16_t value : record.leading) text += std::to_string(value) + ",";
    for (std::size_t value = 0; value < kStoredDataValues; ++value) {
      text += std::to_string(record.data[value]) + ",";
    }
    text.back() = ']';
  }
  out << text << ']';
}

/// Writes one plate after the other.
class Writer {
 public:
  Writer(std::ostream& out, bool asLines, Losses& losses)
      : out_(out), asLines_(asLines), losses_(losses) {}

  void Write(const Document& document) {
    out_ << "{\"version\":" << kJsonVersion << ",\"document\":\"vex\"";
    writePlate(document.Itself());
    if (document.IsStudy() || !document.Plates().empty()) {
      out_ << ",\"plates\":[";
      const char* before = "";
      for (const Document::Plate& plate : document.Plates()) {
        out_ << before << "{\"name\":" << dumped(ToUtf8(plate.name))
             << ",\"modified\":" << dumped(ToUtf8(plate.date));
        writePlate(plate);
        out_ << '}';
        before = ",";
      }
      out_ << ']';
    }
    out_ << "}\n";
    if (!asLines_) return;
    writeLines(document.Itself(), -1);
    int index = 0;
    for (const Document::Plate& plate : document.Plates()) writeLines(plate, index++);
  }

 private:
  static std::string dumped(const ordered_json& value) {
    return value.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
  }

  void member(const char* name, const ordered_json& value) {
    out_ << ",\"" << name << "\":" << dumped(value);
  }

  template <typename Take>
  static void forEachBlock(const Document::Plate& plate, const Take& take) {
    for (int i = 0; i < plate.content->GetAllComponentCount(); ++i) {
      const auto* block = dynamic_cast<const AcquisitionDataComp*>(plate.content->GetComponent(i));
      if (block != nullptr) take(*block);
    }
  }

  void writePlate(const Document::Plate& plate) {
    const Vex2FileManager& content = *plate.content;
    member("header", headerJson(content.GetHeaderData()));
    ordered_json settings = ordered_json::object();
    for (const SettingValue& one : SettingValuesOf(content)) settings[one.name] = ToJson(one.value);
    member("settings", settings);
    if (const auto program = ProgramOf(content)) {
      member("program",
             ToHex({reinterpret_cast<const char*>(program->bytes.data()), program->bytes.size()}));
    }
    member("plate", DescribeWells(content));
    member("cells", cellsJson(content));
    member("detectors", DescribeDetectors(content));
    member("requiredDyes", DescribeDyes(content));
    member("calibration", ToJson(CalibrationOf(content)));
    writeBlocks(plate);
    listOthers(plate);
  }

  void writeBlocks(const Document::Plate& plate) {
    out_ << ",\"blocks\":[";
    const char* before = "";
    forEachBlock(plate, [&](const AcquisitionDataComp& block) {
      std::string head = dumped(blockJson(block));
      head.pop_back();
      out_ << before << head;
      before = ",";
      if (!asLines_) {
        out_ << ",\"frames\":[";
        for (int frame = 0; frame < block.GetFrameCount(); ++frame) {
          if (frame > 0) out_ << ',';
          writeFrame(out_, block, frame);
        }
        out_ << ']';
      }
      out_ << '}';
    });
    out_ << ']';
  }

  void writeLines(const Document::Plate& plate, int index) {
    int number = 0;
    forEachBlock(plate, [&](const AcquisitionDataComp& block) {
      for (int frame = 0; frame < block.GetFrameCount(); ++frame) {
        out_ << "{\"plate\":" << (index < 0 ? "null" : std::to_string(index))
             << ",\"block\":" << number << ",\"frame\":" << frame << ",\"values\":";
        writeFrame(out_, block, frame);
        out_ << "}\n";
      }
      ++number;
    });
  }

  void listOthers(const Document::Plate& plate) {
    for (const Document::Record& record : plate.records) {
      const bool isBlock = std::find(kDataBlockTags.begin(), kDataBlockTags.end(), record.tag) !=
                           kDataBlockTags.end();
      const bool isKept =
          isBlock || !SectionOf(record.tag).empty() || record.tag == TagOf(Kind::kPlates) ||
          record.tag == TagOf(Kind::kPlateName) || record.tag == TagOf(Kind::kPlateDate) ||
          record.tag == TagOf(Kind::kEndOfPlate);
      if (isKept) continue;
      losses_.Add("records of other kinds",
                  "'" + record.tag + "' at byte " + std::to_string(record.offset));
    }
  }

  std::ostream& out_;
  bool asLines_;
  Losses& losses_;
};

}  // namespace

Losses WriteWholeJson(std::ostream& out, const Document& document, bool asLines) {
  Losses losses;
  Writer(out, asLines, losses).Write(document);
  return losses;
}

}  // namespace vex2::lab
