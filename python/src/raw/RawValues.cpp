#include "python/src/raw/RawValues.h"

#include <algorithm>
#include <cstring>

#include "python/src/Bindings.h"
#include "python/src/Values.h"
#include "vex2/study/CNamedObject.h"

namespace vex2::python {

namespace {

using Words = py::array_t<std::uint16_t, py::array::c_style | py::array::forcecast>;

constexpr std::size_t kLeading = std::size(decltype(Vex2WellRecord::leading){});
constexpr std::size_t kData = std::size(decltype(Vex2WellRecord::data){});
constexpr std::size_t kRecord = kLeading + kData;

template <std::size_t kSize>
py::str codeOf(const char (&code)[kSize]) {
  return FromText(CString(std::string_view(code, kSize)));
}

template <std::size_t kSize>
void toCode(const py::handle& owner, const char* name, char (&code)[kSize]) {
  const CString text = ToText(owner.attr(name));
  if (text.View().size() > kSize) {
    throw py::value_error(std::string(name) + " has at most " + std::to_string(kSize) +
                          " characters");
  }
  std::fill(std::begin(code), std::end(code), ' ');
  std::copy(text.View().begin(), text.View().end(), code);
}

template <std::size_t kSize>
void toBytes(const py::handle& owner, const char* name, std::uint8_t (&bytes)[kSize]) {
  const auto given = py::cast<std::string>(owner.attr(name));
  if (given.size() != kSize) {
    throw py::value_error(std::string(name) + " has " + std::to_string(kSize) + " bytes");
  }
  std::copy(given.begin(), given.end(), bytes);
}

template <typename Number>
void toNumber(const py::handle& owner, const char* name, Number& number) {
  number = py::cast<Number>(owner.attr(name));
}

// Accepts only 16-bit whole numbers, because NumPy would cut off larger ones without an error.
Words wordsOf(const py::handle& array) {
  const py::module_ numpy = py::module_::import("numpy");
  const py::object given = numpy.attr("asarray")(array);
  const Words words(given.attr("astype")("uint16"));
  if (!numpy.attr("array_equal")(given, words).cast<bool>()) {
    throw py::value_error("a record holds whole numbers from 0 to 65535");
  }
  return words;
}

void fillRecord(const std::uint16_t* from, std::size_t count, Vex2WellRecord& record) {
  const std::size_t leading = std::min(count, kLeading);
  std::copy_n(from, leading, record.leading);
  std::copy_n(from + leading, count - leading, record.data);
}

void copyRecord(const Vex2WellRecord& record, std::uint16_t* to) {
  std::copy_n(record.leading, kLeading, to);
  std::copy_n(record.data, kData, to + kLeading);
}

}  // namespace

py::str FromText(const CString& text) {
  const std::string_view view = text.View();
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeLatin1(view.data(), static_cast<py::ssize_t>(view.size()), nullptr));
}

CString ToText(const py::handle& text) {
  if (py::isinstance<py::bytes>(text)) return CString(text.cast<std::string>());
  const auto bytes = py::reinterpret_steal<py::bytes>(PyUnicode_AsLatin1String(text.ptr()));
  if (!bytes) throw py::error_already_set();
  return CString(std::string_view(std::string(bytes)));
}

py::bytes FromBytes(const void* data, std::size_t size) {
  return {static_cast<const char*>(data), data != nullptr ? size : 0};
}

py::object FromHeader(const Vex2HeaderData& header) {
  return MakeRaw("Vex2HeaderData", codeOf(header.magic), header.formatA, header.formatB,
                 codeOf(header.assayCode), codeOf(header.runCode), codeOf(header.plateTypeCode),
                 header.rows, header.columns, header.thermocycleOffset, header.flagG,
                 codeOf(header.text), codeOf(header.kindMarker), codeOf(header.acquisitionStatus),
                 header.acquisitionDataOffset, py::list(MasksOf(header)));
}

void ToHeader(const py::handle& from, Vex2HeaderData& header) {
  toCode(from, "magic", header.magic);
  toNumber(from, "formatA", header.formatA);
  toNumber(from, "formatB", header.formatB);
  toCode(from, "assayCode", header.assayCode);
  toCode(from, "runCode", header.runCode);
  toCode(from, "plateTypeCode", header.plateTypeCode);
  toNumber(from, "columns", header.columns);
  toNumber(from, "thermocycleOffset", header.thermocycleOffset);
  toNumber(from, "flagG", header.flagG);
  toCode(from, "text", header.text);
  toCode(from, "kindMarker", header.kindMarker);
  toCode(from, "acquisitionStatus", header.acquisitionStatus);
  toNumber(from, "acquisitionDataOffset", header.acquisitionDataOffset);
  const auto usage = py::cast<std::vector<std::uint32_t>>(from.attr("usage"));
  const auto rows = py::cast<std::uint16_t>(from.attr("rows"));
  header.SetRows(rows);
  std::copy_n(usage.begin(), std::min<std::size_t>(usage.size(), rows), header.usage);
}

TimeStamp ToTime(const py::bytes& bytes) {
  TimeStamp time;
  const std::string given(bytes);
  if (given.size() != std::size(time.fields)) throw py::value_error("a time has six bytes");
  std::copy(given.begin(), given.end(), time.fields);
  return time;
}

py::array_t<std::uint16_t> FromFrame(const Vex2FrameData& frame) {
  py::array_t<std::uint16_t> array({std::size_t{frame.wellCount}, kRecord});
  for (std::size_t well = 0; well < frame.wellCount; ++well) {
    copyRecord(frame.records[well], array.mutable_data(static_cast<py::ssize_t>(well), 0));
  }
  return array;
}

Vex2FrameData ToFrame(const py::handle& array) {
  const Words words = wordsOf(array);
  if (words.ndim() != 2 || words.shape(0) > 65535 ||
      words.shape(1) > static_cast<py::ssize_t>(kRecord)) {
    throw py::value_error("a frame has the shape (wells, up to 44)");
  }
  Vex2FrameData frame(static_cast<std::uint16_t>(words.shape(0)));
  const auto count = static_cast<std::size_t>(words.shape(1));
  for (std::size_t well = 0; well < frame.wellCount && count > 0; ++well) {
    fillRecord(words.data(static_cast<py::ssize_t>(well), 0), count, frame.records[well]);
  }
  return frame;
}

py::array_t<std::uint16_t> FromRecord(const Vex2WellRecord& record) {
  py::array_t<std::uint16_t> array(static_cast<py::ssize_t>(kRecord));
  copyRecord(record, array.mutable_data());
  return array;
}

Vex2WellRecord ToRecord(const py::handle& array) {
  const Words words = wordsOf(array);
  if (words.ndim() != 1 || words.size() > static_cast<py::ssize_t>(kRecord)) {
    throw py::value_error("a record has the shape (up to 44,)");
  }
  Vex2WellRecord record;
  fillRecord(words.data(), static_cast<std::size_t>(words.size()), record);
  return record;
}

py::object FromGlobal(const Vex2GlobalComplex& info) {
  return MakeRaw("Vex2GlobalComplex", info.version, FromBytes(info.commentData, info.commentLength),
                 info.sampleVolume,
                 FromBytes(info.passiveReferenceData, info.passiveReferenceLength), info.unitCode,
                 info.ftrd, info.drks, info.preFlag, info.postFlag,
                 FromBytes(info.logData, info.logLength));
}

std::unique_ptr<Vex2GlobalComplex> ToGlobal(const py::handle& from) {
  if (from.is_none()) return nullptr;
  auto info = std::make_unique<Vex2GlobalComplex>();
  toNumber(from, "version", info->version);
  const auto comment = py::cast<std::string>(from.attr("comment"));
  info->SetComment(comment.data(), static_cast<std::uint32_t>(comment.size()));
  toNumber(from, "sampleVolume", info->sampleVolume);
  const auto reference = py::cast<std::string>(from.attr("passiveReference"));
  info->SetPassiveReference(reference.data(), static_cast<std::uint32_t>(reference.size()));
  toNumber(from, "unitCode", info->unitCode);
  toNumber(from, "ftrd", info->ftrd);
  toNumber(from, "drks", info->drks);
  toNumber(from, "preFlag", info->preFlag);
  toNumber(from, "postFlag", info->postFlag);
  const auto log = py::cast<std::string>(from.attr("log"));
  info->SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  return info;
}

py::object FromSettings(const CAnalysisSettings& settings) {
  const CAnalysisParameters& p = settings.parameters;
  py::list cts;
  for (POSITION at = settings.ctList.GetHeadPosition(); at != nullptr;) {
    const CCtEntry* entry = settings.ctList.GetNext(at);
    cts.append(py::make_tuple(entry->well, entry->ct));
  }
  const py::object parameters = MakeRaw("CAnalysisParameters", p.parameter1, p.parameter2,
                                        p.parameter3, p.parameter4, p.parameter5, p.parameter6);
  return MakeRaw("CAnalysisSettings", settings.settingsWord, parameters, cts, settings.queryFlag);
}

namespace {

CAnalysisParameters toParameters(const py::handle& from) {
  CAnalysisParameters parameters;
  toNumber(from, "parameter1", parameters.parameter1);
  toNumber(from, "parameter2", parameters.parameter2);
  toNumber(from, "parameter3", parameters.parameter3);
  toNumber(from, "parameter4", parameters.parameter4);
  toNumber(from, "parameter5", parameters.parameter5);
  toNumber(from, "parameter6", parameters.parameter6);
  return parameters;
}

}  // namespace

std::unique_ptr<CAnalysisSettings> ToSettings(const py::handle& from) {
  auto settings = std::make_unique<CAnalysisSettings>();
  toNumber(from, "settingsWord", settings->settingsWord);
  settings->parameters = toParameters(from.attr("parameters"));
  for (const auto& entry : py::cast<std::vector<std::pair<int, float>>>(from.attr("ctList"))) {
    settings->SetCt(entry.first, entry.second);
  }
  toNumber(from, "queryFlag", settings->queryFlag);
  return settings;
}

TAGPROBE ToProbe(const py::handle& from) {
  TAGPROBE probe;
  const CString name = ToText(from.attr("name"));
  if (name.View().size() > sizeof probe.name) {
    throw py::value_error("name has at most " + std::to_string(sizeof probe.name) + " characters");
  }
  std::copy(name.View().begin(), name.View().end(), probe.name);
  probe.parameters = toParameters(from.attr("parameters"));
  return probe;
}

py::object FromComponent(CComponent* component) {
  if (component == nullptr) return py::none();
  const CString tag(component->GetTag());
  return MakeRaw("Component", FromText(tag), component->GetLength(), component->GetSize(),
                 FromText(component->GetValueString()), component->IsPlateSetupComp(),
                 component->IsThermocycleComp(), component->GetRuntimeClass()->name);
}

py::list FromTexts(const CStringList& list) {
  py::list texts;
  for (POSITION at = list.GetHeadPosition(); at != nullptr;) {
    texts.append(FromText(list.GetNext(at)));
  }
  return texts;
}

}  // namespace vex2::python
