#include "python/src/Values.h"

#include <pybind11/stl.h>

#include <bit>
#include <limits>

#include "lab/Error.h"

namespace vex2::python {

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

std::string textIn(const py::handle& owner, const char* name) {
  return Given<std::string>(owner.attr(name), name);
}

template <typename Number>
Number numberIn(const py::handle& owner, const char* name) {
  return Given<Number>(owner.attr(name), name);
}

template <std::size_t kSize>
py::bytes bytesOf(const std::array<std::uint8_t, kSize>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

template <std::size_t kSize>
std::array<std::uint8_t, kSize> bytesIn(const py::handle& owner, const char* name) {
  const auto bytes = textIn(owner, name);
  if (bytes.size() != kSize) {
    throw lab::Error(lab::ErrorCode::kInvalidValue, std::string(name) + " has " +
                                                        std::to_string(bytes.size()) +
                                                        " bytes, not " + std::to_string(kSize));
  }
  std::array<std::uint8_t, kSize> array{};
  std::copy(bytes.begin(), bytes.end(), array.begin());
  return array;
}

py::object fromTarget(const lab::Target& target) {
  return Make("Target", Text(target.detector), Text(target.task), OrNone(target.quantity),
              Text(target.reporter));
}

lab::Target toTarget(const py::handle& target) {
  const py::object quantity = target.attr("quantity");
  return {.detector = textIn(target, "detector"),
          .task = textIn(target, "task"),
          .quantity = quantity.is_none() ? std::nullopt
                                         : std::optional(numberIn<float>(target, "quantity")),
          .reporter = textIn(target, "reporter")};
}

// One number for each filter. The library stores four bytes for each, which are usually a float.
py::array spectrumOf(const std::vector<std::uint32_t>& values) {
  return ArrayOf<std::uint32_t>(values).attr("view")("float32");
}

std::vector<std::uint32_t> valuesIn(const py::handle& spectrum) {
  const py::object numbers = py::module_::import("numpy").attr("ascontiguousarray")(
      spectrum, py::arg("dtype") = "float32");
  const py::array_t<std::uint32_t> bits(numbers.attr("view")("uint32"));
  return {bits.data(), bits.data() + bits.size()};
}

py::object fromEntry(const lab::CalibrationEntry& entry) {
  return Make("Spectrum", Text(entry.name), entry.key1, entry.key2, entry.dyeIndex,
              bytesOf(entry.bytes), py::tuple(py::cast(entry.params)), entry.limit,
              spectrumOf(entry.values));
}

lab::CalibrationEntry toEntry(const py::handle& entry) {
  return {.name = textIn(entry, "name"),
          .key1 = numberIn<std::uint16_t>(entry, "key1"),
          .key2 = numberIn<std::uint16_t>(entry, "key2"),
          .dyeIndex = numberIn<std::uint16_t>(entry, "dye_index"),
          .bytes = bytesIn<2>(entry, "bytes"),
          .params = Given<std::array<std::uint16_t, 3>>(entry.attr("params"), "params"),
          .limit = numberIn<std::uint16_t>(entry, "limit"),
          .values = valuesIn(entry.attr("values"))};
}

py::object fromPart(const std::optional<lab::CalibrationPart>& part) {
  if (!part) return py::none();
  const lab::CalibrationHead& head = part->head;
  return Make("CalibrationPart", bytesOf(head.code), head.setting, head.option, head.value,
              bytesOf(head.extra1), bytesOf(head.extra2), TupleOf(part->entries, fromEntry));
}

std::optional<lab::CalibrationPart> toPart(const py::handle& part) {
  if (part.is_none()) return std::nullopt;
  return lab::CalibrationPart{.head = {.code = bytesIn<4>(part, "code"),
                                       .setting = numberIn<std::uint32_t>(part, "setting"),
                                       .option = numberIn<std::uint16_t>(part, "option"),
                                       .value = numberIn<std::uint32_t>(part, "value"),
                                       .extra1 = bytesIn<4>(part, "extra1"),
                                       .extra2 = bytesIn<4>(part, "extra2")},
                              .entries = VectorOf(part.attr("spectra"), toEntry)};
}

std::uint8_t stageCode(const std::optional<lab::Stage>& stage) {
  if (!stage) return 0;
  return *stage == lab::Stage::kAmplification ? 1 : 2;
}

}  // namespace

void RefuseValue(const py::handle& value, std::string_view name) {
  PyErr_Clear();
  throw lab::Error(
      lab::ErrorCode::kInvalidValue,
      std::string(name) + " is " + py::repr(value).cast<std::string>() + ", which it cannot be");
}

py::str Text(std::string_view utf8) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(utf8.data(), static_cast<py::ssize_t>(utf8.size()), "replace"));
}

py::str PathText(const std::string& path) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeFSDefaultAndSize(path.data(), static_cast<py::ssize_t>(path.size())));
}

py::str Latin1(std::string_view bytes) {
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeLatin1(bytes.data(), static_cast<py::ssize_t>(bytes.size()), nullptr));
}

py::object FromValue(const lab::Value& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return py::int_(*number);
  if (const auto* number = std::get_if<float>(&value)) return py::float_(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return Text(*text);
  return py::none();
}

lab::Value ToValue(const py::handle& value) {
  if (value.is_none()) return {};
  if (py::isinstance<py::str>(value)) return Given<std::string>(value, "the value");
  if (PyIndex_Check(value.ptr()) != 0) return Given<std::int64_t>(value, "the value");
  return Given<float>(value, "the value");
}

py::tuple MasksOf(const Vex2HeaderData& header) {
  // GetMaskCount walks the table, so call it only once.
  const std::span masks(header.usage, header.GetMaskCount());
  return TupleOf(masks, [](std::uint32_t mask) { return py::int_(mask); });
}

py::object FromWell(const lab::Well& well) {
  return Make("Well", well.number, Text(well.name), Text(well.sample),
              TupleOf(well.targets, fromTarget));
}

lab::Well ToWell(const py::handle& well) {
  return {.number = numberIn<std::uint16_t>(well, "number"),
          .name = textIn(well, "name"),
          .sample = textIn(well, "sample"),
          .targets = VectorOf(well.attr("targets"), toTarget)};
}

py::object FromPlate(const lab::Plate& plate) {
  return Make("Plate", plate.rows, plate.columns, TupleOf(plate.wells, FromWell), Text(plate.type));
}

py::object FromDetector(const lab::Detector& detector) {
  return Make("Detector", Text(detector.name), Text(detector.reporterDye),
              Text(detector.quencherDye), Text(detector.description), Text(detector.comment),
              Text(detector.owner), Text(detector.location), py::tuple(py::cast(detector.color)),
              detector.created, detector.modified, detector.baselineStart, detector.baselineEnd,
              detector.threshold, detector.analysisFlags, detector.autoBaseline,
              detector.autoThreshold);
}

lab::Detector ToDetector(const py::handle& detector) {
  return {.name = textIn(detector, "name"),
          .reporterDye = textIn(detector, "reporter_dye"),
          .quencherDye = textIn(detector, "quencher_dye"),
          .description = textIn(detector, "description"),
          .comment = textIn(detector, "comment"),
          .owner = textIn(detector, "owner"),
          .location = textIn(detector, "location"),
          .color = Given<std::array<std::uint8_t, 3>>(detector.attr("color"), "color"),
          .created = numberIn<std::int32_t>(detector, "created"),
          .modified = numberIn<std::int32_t>(detector, "modified"),
          .baselineStart = numberIn<std::uint16_t>(detector, "baseline_start"),
          .baselineEnd = numberIn<std::uint16_t>(detector, "baseline_end"),
          .threshold = numberIn<float>(detector, "threshold"),
          .analysisFlags = numberIn<std::uint16_t>(detector, "analysis_flags"),
          .autoBaseline = numberIn<bool>(detector, "auto_baseline"),
          .autoThreshold = numberIn<bool>(detector, "auto_threshold")};
}

py::object FromCalibration(const lab::Calibration& calibration) {
  return Make("Calibration", fromPart(calibration.pureDyes), fromPart(calibration.background));
}

lab::Calibration ToCalibration(const py::handle& calibration) {
  return {.pureDyes = toPart(calibration.attr("pure_dyes")),
          .background = toPart(calibration.attr("background"))};
}

py::object FromProgram(const std::optional<lab::Program>& program) {
  if (!program) return py::none();
  const py::bytes bytes(reinterpret_cast<const char*>(program->bytes.data()),
                        program->bytes.size());
  return Make("Program", bytes,
              program->text ? py::object(Text(*program->text)) : py::object(py::none()));
}

py::object FromBlock(const lab::BlockInfo& block) {
  return Make("BlockInfo", Text(block.tag), block.offset, block.version,
              py::tuple(py::cast(block.wells)), block.frameCount, block.isRecorded,
              OrNone(block.start), OrNone(block.end), bytesOf(block.storedStart),
              bytesOf(block.storedEnd));
}

py::tuple FromPosition(const lab::FramePosition& position) {
  return py::make_tuple(stageCode(position.stage), OrNone(position.cycle), OrNone(position.time),
                        OrNone(position.temperature));
}

py::tuple FromFrame(const lab::Frame& frame) {
  const std::size_t wells = frame.wells.size();
  const std::size_t channels = wells > 0 ? frame.wells[0].fluorescence.size() : 0;
  py::array_t<std::uint16_t> numbers(static_cast<py::ssize_t>(wells));
  py::array_t<std::uint16_t> leading(
      {wells, std::tuple_size_v<decltype(lab::WellReading::leading)>});
  py::array_t<std::uint16_t> values({wells, lab::kReadingValues});
  py::array_t<double> fluorescence({wells, channels});
  for (std::size_t i = 0; i < wells; ++i) {
    const lab::WellReading& well = frame.wells[i];
    const auto row = static_cast<py::ssize_t>(i);
    numbers.mutable_at(row) = well.well;
    std::copy(well.leading.begin(), well.leading.end(), leading.mutable_data(row, 0));
    std::copy(well.values.begin(), well.values.end(), values.mutable_data(row, 0));
    if (channels == 0) continue;
    std::copy(well.fluorescence.begin(), well.fluorescence.end(),
              fluorescence.mutable_data(row, 0));
  }
  return py::make_tuple(frame.index, FromPosition(frame.position), numbers, leading, values,
                        fluorescence);
}

py::tuple FromAxis(const std::vector<lab::FramePosition>& axis) {
  const auto count = static_cast<py::ssize_t>(axis.size());
  py::array_t<std::uint8_t> stages(count);
  py::array_t<std::uint16_t> cycles(count);
  py::array_t<double> times(count);
  py::array_t<double> temperatures(count);
  for (py::ssize_t i = 0; i < count; ++i) {
    const lab::FramePosition& position = axis[static_cast<std::size_t>(i)];
    stages.mutable_at(i) = stageCode(position.stage);
    cycles.mutable_at(i) = position.cycle.value_or(0);
    times.mutable_at(i) = position.time.value_or(kUnknown);
    temperatures.mutable_at(i) = position.temperature.value_or(kUnknown);
  }
  return py::make_tuple(stages, cycles, times, temperatures);
}

}  // namespace vex2::python
