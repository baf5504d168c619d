#include <algorithm>
#include <iostream>
#include <new>
#include <optional>
#include <utility>

#include "lab/exchange/ReadingFields.h"
#include "lab/exchange/StoredValues.h"
#include "lab/model/DataBlock.h"
#include "lab/model/FileLayout.h"
#include "lab/model/PlateLayout.h"
#include "lab/model/RunLog.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/PlateOption.h"
#include "tools/vex/show/RecordValue.h"
#include "tools/vex/text/JsonOutput.h"
#include "tools/vex/text/Table.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::tool {

namespace {

using nlohmann::ordered_json;

/// One frame with what is needed to show it.
struct FrameView {
  std::string plate;        ///< of a study
  bool isEmbedded = false;  ///< in a study
  std::uint32_t rows = 0;   ///< of the plate
  std::uint32_t columns = 0;
  std::vector<std::uint16_t> wells;
  std::uint64_t frameCount = 0;
  Vex2FrameData frame;
  RecordedReadings recorded;
  std::uint64_t index = 0;  ///< of the frame

  std::string Name(std::size_t position) const { return WellName(wells[position], columns); }
  /// What the well at `position` gave, as far as it is known.
  std::optional<RunReading> Reading(std::size_t position) const {
    return recorded.Read(frame.records[position], index);
  }
  /// Whether nothing stands in the frame but what is known.
  bool IsKnown() const {
    if (!recorded.Log()) return false;
    for (std::size_t i = 0; i < wells.size(); ++i) {
      if (frame.records[i] != Vex2WellRecord() && !Reading(i)) return false;
    }
    return true;
  }
};

/// Finds the log among the run-wide settings, for blocks that are read without their document.
struct LogFinder final : RecordVisitor {
  void Begin(const FileRecord& record, CFile& file) override {
    if (record.depth == 1) isSettings = record.Tag() == "GLBL" && !std::exchange(isFound, true);
    if (!isSettings || record.depth != 2 || record.Tag() != "LOGT") return;
    const auto value = ReadRecordValue(file, record);
    if (value.is_string()) log = value.get<std::string>();
  }
  bool isFound = false;
  bool isSettings = false;
  std::string log;  ///< UTF-8
};

std::string logOf(DocumentFile& file) {
  LogFinder finder;
  static_cast<void>(WalkRecords(file, finder));
  return finder.log;
}

/// The first record of the document itself with a tag.
struct Finder final : RecordVisitor {
  explicit Finder(std::string_view wanted) : tag(wanted) {}
  void Begin(const FileRecord& record, CFile& /*file*/) override {
    if (!found && record.depth == 1 && record.Tag() == tag) found = record;
  }
  std::string_view tag;
  std::optional<FileRecord> found;
};

// The header says where the raw data are, but a document that was saved whole says it wrongly.
std::optional<FileRecord> recordAt(CFile& file, std::uint64_t offset, std::string_view tag) {
  if (offset == 0) return std::nullopt;
  FileRecord record;
  record.offset = offset;
  file.Seek(static_cast<std::int64_t>(offset), CFile::begin);
  file.Read(record.tagBytes.data(), record.tagBytes.size());
  const auto length = ReadLong(file);
  if (!length || record.Tag() != tag) return std::nullopt;
  record.length = *length;
  record.kind = &KindOf(tag);
  return record;
}

std::optional<FileRecord> findBlock(DocumentFile& file, std::string_view tag) {
  if (tag == "RAWa") {
    const auto record = recordAt(file, file.GetHeaderData().acquisitionDataOffset, tag);
    if (record) return record;
  }
  Finder finder(tag);
  static_cast<void>(WalkRecords(file, finder));
  return finder.found;
}

// How many data values there are up to the last that is not 0 in all wells, at least 1.
std::size_t dataColumns(const FrameView& view) {
  std::size_t count = 1;
  for (std::size_t well = 0; well < view.wells.size(); ++well) {
    for (std::size_t i = count; i < kStoredData; ++i) {
      if (view.frame.records[well].data[i] != 0) count = i + 1;
    }
  }
  return count;
}

using Rows = std::vector<std::vector<std::string>>;

std::string drawReadings(const FrameView& view) {
  std::vector<std::string> names = {"well"};
  const auto fieldNames = ReadingNames(view.recorded.Log().value_or(RunLog()));
  names.insert(names.end(), fieldNames.begin(), fieldNames.end());
  Rows rows;
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    std::vector<std::string> row = {view.Name(i)};
    if (const auto reading = view.Reading(i)) {
      const auto fields = ReadingFields(*reading, *view.recorded.Log());
      row.insert(row.end(), fields.begin(), fields.end());
    }
    row.resize(names.size());
    rows.push_back(std::move(row));
  }
  return DrawTable(names, rows, Terminal::Out());
}

// What leading values 0 and 4 are is known of any document.
std::string drawStored(const FrameView& view) {
  const std::size_t count = dataColumns(view);
  std::vector<std::string> names = {"well", "set", "l1", "l2", "l3", "first", "l5", "l6", "l7"};
  for (std::size_t i = 0; i < count; ++i) names.push_back("d" + std::to_string(i));
  Rows rows;
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    const Vex2WellRecord& record = view.frame.records[i];
    std::vector<std::string> row = {view.Name(i)};
    for (const std::uint16_t value : record.leading) row.push_back(std::to_string(value));
    for (std::size_t d = 0; d < count; ++d) row.push_back(std::to_string(record.data[d]));
    rows.push_back(std::move(row));
  }
  return DrawTable(names, rows, Terminal::Out());
}

// The fluorescence of each well, in its first channel, where it lies on the plate.
std::string drawGrid(const FrameView& view) {
  constexpr const char* kNothing = "-";
  const std::uint32_t columns = std::max(view.columns, 1U);
  std::vector<std::string> names = {""};
  for (std::uint32_t column = 1; column <= columns; ++column) {
    names.push_back(std::to_string(column));
  }
  Rows rows;
  for (std::uint32_t row = 0; row < view.rows; ++row) {
    rows.emplace_back(names.size(), kNothing);
    rows.back().front() = WellName(row * columns + 1, columns);
    rows.back().front().pop_back();  // the column, which is 1
  }
  for (std::size_t i = 0; i < view.wells.size(); ++i) {
    const std::uint32_t place = view.wells[i] - 1U;
    const auto reading = view.Reading(i);
    if (!reading || place / columns >= rows.size()) continue;
    rows[place / columns][place % columns + 1] =
        ReadingFields(*reading, *view.recorded.Log())[kFirstFluorescence];
  }
  return DrawTable(names, rows, Terminal::Out());
}

constexpr const char* kMeaning =
    "The columns:\n"
    "  A frame that vex recorded has the columns of 'vex export'. Of any other only\n"
    "  the stored values are known: set (not 0 where the well was read), l1 to l3,\n"
    "  first (the first reading), l5 to l7, and the data values d0, d1 and so on up\n"
    "  to the last that is not 0.";

class FrameCommand final : public Command {
 public:
  FrameCommand()
      : Command({"frame", "Show one frame of a data block, read straight from the file.",
                 "vex frame run.vex 0\nvex frame run.vex 0 --grid\n"
                 "vex frame run.vex 39 --block REPr --json"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("N", index_, "The frame, from 0").Require().Show("");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    const Option grid =
        options.AddFlag("--grid", grid_, "The fluorescence of each well, drawn as the plate");
    const Option raw =
        options.AddFlag("--raw", raw_, "The stored values, whoever wrote them").Exclude(grid);
    options.AddFlag("--json", json_, "For programs: an object; one a line for each plate")
        .Exclude(grid)
        .Exclude(raw);
    options.PutLast(kMeaning);
  }

  ExitCode Run() override {
    DocumentFile file;
    file.OpenDocument(file_);
    static_cast<void>(file.ReadHeaderData(nullptr));
    if (file.IsRQS() || plate_.IsGiven()) {
      file.Close();
      const Document document(file_);
      for (const Document::Plate& plate : platesWithFrame(document)) show(readPlate(plate));
      document.RequireWhole("");
    } else {
      show(read(file));
    }
    return ExitCode::kDone;
  }

 private:
  void show(const FrameView& view) {
    if (json_) return printJson(view);
    if (grid_) requireKnown(view);
    if (shown_++ > 0) std::cout << '\n';
    std::cout << Printable(file_) << (view.isEmbedded ? ", plate " + Printable(view.plate) : "")
              << ": " << block_ << ", frame " << index_ << " of " << view.frameCount << ", "
              << Counted(view.wells.size(), "well") << (grid_ ? ", fluorescence" : "") << '\n';
    std::cout << (grid_                     ? drawGrid(view)
                  : view.IsKnown() && !raw_ ? drawReadings(view)
                                            : drawStored(view));
  }

  void requireKnown(const FrameView& view) const {
    constexpr std::uint64_t kMostWells = 65535;  // they are numbered in 16 bits
    if (std::uint64_t{view.rows} * view.columns > kMostWells) {
      throw Error(ErrorCode::kDocument, file_,
                  "its plate of " + std::to_string(view.rows) + " rows and " +
                      std::to_string(view.columns) +
                      " columns has more wells than can be numbered");
    }
    if (view.IsKnown()) return;
    throw Error(ErrorCode::kDocument, file_,
                "frame " + std::to_string(index_) + " of the data block \"" + block_ +
                    "\" cannot be shown as a plate: vex did not record it and does not know the "
                    "meaning of its values; leave out --grid for the stored values");
  }

  std::vector<Document::Plate> platesWithFrame(const Document& document) const {
    auto plates = plate_.Choose(document);
    std::erase_if(plates, [&](const auto& plate) { return FindBlock(plate, block_) == nullptr; });
    if (plates.empty()) {
      document.RequireWhole("");
      throw Error(ErrorCode::kDocument, file_, "it has no data block \"" + block_ + "\"");
    }
    std::uint64_t most = 0;
    std::erase_if(plates, [&](const auto& plate) {
      const auto count = static_cast<std::uint64_t>(FindBlock(plate, block_)->GetFrameCount());
      most = std::max(most, count);
      return index_ < 0 || static_cast<std::uint64_t>(index_) >= count;
    });
    if (plates.empty()) requireIndex(most);
    return plates;
  }

  FrameView readPlate(const Document::Plate& plate) const {
    const AcquisitionDataComp& block = *FindBlock(plate, block_);
    FrameView view{.plate = ToUtf8(plate.name),
                   .isEmbedded = plate.isEmbedded,
                   .rows = static_cast<std::uint32_t>(plate.content->GetHeaderRows()),
                   .columns = static_cast<std::uint32_t>(plate.content->GetHeaderCols()),
                   .wells = {block.GetWellNumbers().begin(), block.GetWellNumbers().end()},
                   .frameCount = static_cast<std::uint64_t>(block.GetFrameCount()),
                   .frame = {},
                   .recorded = {*plate.content, block_},
                   .index = static_cast<std::uint64_t>(index_)};
    const auto index = static_cast<int>(index_);
    if (plate.content->ReadDataFrame(index, &view.frame, BlockType(block_)) != kSuccess) {
      throw std::bad_alloc();
    }
    return view;
  }

  FrameView read(DocumentFile& file) const {
    const auto record = findBlock(file, block_);
    if (!record)
      throw Error(ErrorCode::kDocument, file_, "it has no data block \"" + block_ + "\"");
    auto head = ReadStoredBlock(file, *record);
    if (!head) {
      throw Error(ErrorCode::kDocument, file_, "the data block \"" + block_ + "\" is cut short",
                  record->offset);
    }
    requireIndex(head->frameCount);
    FrameView view{.plate = {},
                   .isEmbedded = false,
                   .rows = static_cast<std::uint32_t>(file.GetHeaderRows()),
                   .columns = static_cast<std::uint32_t>(file.GetHeaderCols()),
                   .wells = std::move(head->wells),
                   .frameCount = head->frameCount,
                   .frame = {},
                   .recorded = {logOf(file), block_},
                   .index = static_cast<std::uint64_t>(index_)};
    readFrame(file, *record, *head, view);
    return view;
  }

  void requireIndex(std::uint64_t count) const {
    if (index_ >= 0 && static_cast<std::uint64_t>(index_) < count) return;
    throw Error(ErrorCode::kNoSuchFrame, file_,
                "there is no frame " + std::to_string(index_) + "; the data block \"" + block_ +
                    "\" has " + Counted(count, "frame") +
                    (count > 0 ? ", 0 to " + std::to_string(count - 1) : ""));
  }

  void readFrame(DocumentFile& file, const FileRecord& record, const StoredBlock& head,
                 FrameView& view) const {
    // A block that is laid out differently is for the document's reader alone.
    const int index = static_cast<int>(index_);
    const bool isUsual = head.version >= 2 && head.timeBlockSize == kTimeBlockSize;
    int status = kSuccess;
    if (isUsual) {
      status = file.ReadFrameAt(index, view.frame, record.offset);
    } else {
      static_cast<void>(file.ReadComponentFile(nullptr));
      status = file.ReadDataFrame(index, &view.frame, BlockType(block_));
    }
    if (status == kSuccess && view.frame.wellCount == view.wells.size()) return;
    const auto number = static_cast<std::uint64_t>(index_);
    throw Error(
        ErrorCode::kDocument, file_,
        "frame " + std::to_string(number) + " of the data block \"" + block_ + "\" is cut short",
        head.firstFrame + number * head.frameSize);
  }

  // All fields but the stage are numbers, or missing.
  static ordered_json readingInfo(const FrameView& view, std::size_t position) {
    const auto reading = view.Reading(position);
    if (!reading) return nullptr;
    const auto fields = ReadingFields(*reading, *view.recorded.Log());
    const auto names = ReadingNames(*view.recorded.Log());
    ordered_json info = {{names[0], fields[0]}};
    for (std::size_t i = 1; i < fields.size(); ++i) {
      info[names[i]] = fields[i] == "NA" ? ordered_json(nullptr) : ordered_json::parse(fields[i]);
    }
    return info;
  }

  void printJson(const FrameView& view) const {
    ordered_json wells = ordered_json::array();
    for (std::size_t i = 0; i < view.wells.size(); ++i) {
      const Vex2WellRecord& record = view.frame.records[i];
      wells.push_back({{"well", view.Name(i)},
                       {"number", view.wells[i]},
                       {"leading", record.leading},
                       {"data", std::vector<std::uint16_t>(record.data, record.data + kStoredData)},
                       {"reading", readingInfo(view, i)}});
    }
    ordered_json frame = {{"file", file_}};
    if (view.isEmbedded) frame["plate"] = view.plate;
    frame["block"] = block_;
    frame["frame"] = index_;
    frame["frames"] = view.frameCount;
    frame["recorded"] = view.recorded.Log().has_value();
    frame["wells"] = std::move(wells);
    PrintJson(std::cout, frame);
  }

  std::string file_;
  std::string block_;
  std::int64_t index_ = 0;
  PlateOption plate_;
  bool grid_ = false;
  bool raw_ = false;
  bool json_ = false;
  int shown_ = 0;
};

}  // namespace

std::unique_ptr<Command> MakeFrameCommand() {
  return std::make_unique<FrameCommand>();
}

}  // namespace vex2::tool
