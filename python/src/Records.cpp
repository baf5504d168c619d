#include <pybind11/stl.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/model/Document.h"
#include "lab/model/RecordValue.h"
#include "lab/model/RunLog.h"
#include "lab/model/RunReader.h"
#include "lab/model/SelectedRecords.h"
#include "lab/model/Settings.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

using lab::Document;

struct ValueOf {
  py::object operator()(std::monostate /*none*/) const { return py::none(); }
  py::object operator()(const std::string& text) const { return Text(text); }
  py::object operator()(const lab::RecordBytes& value) const { return py::bytes(value.bytes); }
  py::object operator()(float value) const { return py::float_(value); }
  py::object operator()(std::uint32_t value) const { return py::int_(value); }
  py::object operator()(const lab::RecordColour& value) const { return py::tuple(py::cast(value)); }
};

py::dict fieldsOf(const lab::RecordFields& fields) {
  py::dict named;
  if (const auto* cell = std::get_if<lab::CellFields>(&fields)) {
    named["coord1"] = OrNone(cell->coord1);
    named["coord2"] = OrNone(cell->coord2);
    named["flag"] = OrNone(cell->flag);
  } else if (const auto* head = std::get_if<lab::StoredBlock>(&fields)) {
    named["version"] = head->version;
    named["start"] = py::bytes(reinterpret_cast<const char*>(head->start.fields), 6);
    named["end"] = py::bytes(reinterpret_cast<const char*>(head->end.fields), 6);
    named["wells"] = py::tuple(py::cast(head->wells));
    named["frames"] = head->frameCount;
  }
  return named;
}

bool canHoldRecords(const FileRecord& record) {
  const BodyLayout layout = record.kind->layout;
  return layout == BodyLayout::kList || layout == BodyLayout::kCell || layout == BodyLayout::kPlate;
}

/// A record with the records in it.
struct Node {
  std::string tag;
  std::uint64_t offset = 0;
  std::uint32_t length = 0;
  bool isKnown = false;
  lab::RecordValue value;
  lab::RecordFields fields;
  std::vector<Node> children;
};

/// Collects the records without Python objects, because the walk runs without the interpreter's
/// lock.
class Collector final : public RecordVisitor {
 public:
  void Begin(const FileRecord& record, CFile& file) override {
    Node node{.tag = std::string(record.Tag()),
              .offset = record.offset,
              .length = record.length,
              .isKnown = IsKnownTag(record.Tag()),
              .value = lab::ReadRecordValue(file, record),
              .fields = lab::ReadRecordFields(file, record),
              .children = {}};
    if (!canHoldRecords(record)) return add(std::move(node));
    open_.push_back(std::move(node));
  }
  void End(const FileRecord& record) override {
    if (canHoldRecords(record)) close();
  }
  std::vector<Node> Take() {
    // If the end of a record was not reached, its lists are still open.
    while (!open_.empty()) close();
    return std::move(records_);
  }

 private:
  void add(Node node) {
    (open_.empty() ? records_ : open_.back().children).push_back(std::move(node));
  }
  void close() {
    Node node = std::move(open_.back());
    open_.pop_back();
    add(std::move(node));
  }

  std::vector<Node> records_;
  std::vector<Node> open_;  // each record is in the one before it
};

py::object fromNode(const Node& node) {
  return Make("Record", Text(lab::ToUtf8(node.tag)), node.offset, node.length, node.isKnown,
              std::visit(ValueOf(), node.value), fieldsOf(node.fields),
              TupleOf(node.children, fromNode));
}

// `plate` is the index of a plate in a study; without it, the document itself is meant.
Document::Plate plateOf(const Document& document, std::optional<std::size_t> plate) {
  if (!plate) return document.Itself();
  if (*plate < document.Plates().size()) return document.Plates()[*plate];
  throw lab::Error(lab::ErrorCode::kDocument, document.Path(),
                   "another program has changed it since it was read; open it again");
}

py::tuple recordsOf(const std::string& path, std::optional<std::size_t> plate) {
  std::vector<Node> nodes;
  {
    const py::gil_scoped_release unlocked;
    nodes = lab::Guarded(path, [&] {
      const Document document(path, Document::Purpose::kReadHeads);
      const Document::Plate chosen = plateOf(document, plate);
      lab::DocumentFile file;
      file.OpenDocument(path);
      Collector collector;
      const lab::TreeSelection all;
      lab::SelectedRecords records(chosen, all, collector);
      static_cast<void>(lab::WalkRecords(file, records));
      return collector.Take();
    });
  }
  return TupleOf(nodes, fromNode);
}

template <std::size_t kSize>
py::str codeOf(const char (&code)[kSize]) {
  return Latin1({code, kSize});
}

py::object fromHeader(const Vex2HeaderData& header) {
  return Make("Header", codeOf(header.magic), header.formatA, header.formatB,
              codeOf(header.assayCode), codeOf(header.runCode), codeOf(header.plateTypeCode),
              header.rows, header.columns, header.thermocycleOffset, header.flagG,
              codeOf(header.text), codeOf(header.kindMarker), codeOf(header.acquisitionStatus),
              header.acquisitionDataOffset, MasksOf(header));
}

// Returns (header, log) of the document or of one of its plates.
py::tuple headOf(const std::string& path, std::optional<std::size_t> plate) {
  Vex2HeaderData header;
  std::string log;
  {
    const py::gil_scoped_release unlocked;
    lab::Guarded(path, [&] {
      const Document document(path, Document::Purpose::kReadHeads);
      const Document::Plate chosen = plateOf(document, plate);
      header = chosen.content->GetHeaderData();
      log = lab::LogText(*chosen.content);
    });
  }
  return py::make_tuple(fromHeader(header), py::bytes(log));
}

Vex2WellRecord recordOf(const lab::WellReading& well) {
  Vex2WellRecord record;
  std::copy(well.leading.begin(), well.leading.end(), record.leading);
  std::copy(well.values.begin(), well.values.end(), record.data);
  return record;
}

/// Stage, cycle, time and temperature of each well in each frame, because they can differ by well.
struct Cells {
  Cells(std::size_t frames, std::size_t wells)
      : stages({frames, wells}),
        cycles({frames, wells}),
        times({frames, wells}),
        temperatures({frames, wells}) {}

  py::array_t<std::uint8_t> stages;
  py::array_t<std::uint16_t> cycles;
  py::array_t<double> times;
  py::array_t<double> temperatures;
};

void fillFrame(const lab::Frame& frame, const lab::RecordedReadings& recorded, std::size_t at,
               std::span<std::uint8_t> stages, std::span<std::uint16_t> cycles,
               std::span<double> times, std::span<double> temperatures) {
  for (std::size_t well = 0; well < frame.wells.size(); ++well, ++at) {
    const auto reading = recorded.Read(recordOf(frame.wells[well]), frame.index);
    stages[at] = 0;
    cycles[at] = 0;
    times[at] = temperatures[at] = std::numeric_limits<double>::quiet_NaN();
    if (!reading) continue;
    stages[at] = reading->melting ? 2 : 1;
    cycles[at] = reading->cycle;
    times[at] = static_cast<double>(reading->time) / lab::kTimeSteps;
    temperatures[at] = static_cast<double>(reading->temperature) / lab::kTemperatureSteps;
  }
}

template <typename Number>
std::span<Number> spanOf(py::array_t<Number>& array) {
  return {array.mutable_data(), static_cast<std::size_t>(array.size())};
}

// Returns (stages, cycles, times, temperatures), each (frames, wells).
py::tuple cellsOf(const lab::RunReader& reader, const std::string& block, const std::string& log) {
  const std::size_t frames = reader.FrameCount(block);
  const std::size_t wells = reader.Wells(block).size();
  Cells cells(frames, wells);
  const auto stages = spanOf(cells.stages);
  const auto cycles = spanOf(cells.cycles);
  const auto times = spanOf(cells.times);
  const auto temperatures = spanOf(cells.temperatures);
  {
    const py::gil_scoped_release unlocked;
    const lab::RecordedReadings recorded(log, block);
    for (std::size_t index = 0; index < frames; ++index) {
      fillFrame(reader.Frame(index, block), recorded, index * wells, stages, cycles, times,
                temperatures);
    }
  }
  return py::make_tuple(cells.stages, cells.cycles, cells.times, cells.temperatures);
}

}  // namespace

void BindRecords(py::module_& module) {
  module.def("records", &recordsOf, py::arg("path"), py::arg("plate"));
  module.def("head", &headOf, py::arg("path"), py::arg("plate"));
  module.def("cells", &cellsOf, py::arg("reader"), py::arg("block"), py::arg("log"));
}

}  // namespace vex2::python
