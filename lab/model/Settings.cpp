#include "lab/model/Settings.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

#include "lab/Text.h"
#include "lab/model/AssayTypes.h"
#include "lab/model/RunLog.h"

namespace vex2::lab {

namespace {

// Settings that are stored in one common record. `member` is the field, and `Stored` is the type
// with the range of its values.

template <auto member>
Value getNumber(const Vex2FileManager& document) {
  Vex2GlobalComplex settings;
  if (document.GetGlobalComplexInfo(&settings) != kSuccess) return {};
  return std::int64_t{settings.*member};
}

template <auto member, typename Stored>
bool setNumber(Vex2FileManager& document, std::string_view text) {
  const auto value = NumberIn<Stored>(text);
  if (!value) return false;
  Vex2GlobalComplex settings;
  static_cast<void>(document.GetGlobalComplexInfo(&settings));
  settings.*member = *value;
  return document.ReplaceGlobalComplexComp(&settings) == kSuccess;
}

// std::from_chars reads a single-byte type as a character, so read an int.
template <auto member>
bool setByte(Vex2FileManager& document, std::string_view text) {
  const auto value = NumberIn<int>(text);
  if (!value || *value < std::numeric_limits<std::int8_t>::min() ||
      *value > std::numeric_limits<std::int8_t>::max()) {
    return false;
  }
  return setNumber<member, int>(document, text);
}

Value textOf(const std::uint8_t* data, std::uint32_t length) {
  if (data == nullptr || length == 0) return {};
  return ToUtf8({reinterpret_cast<const char*>(data), length});
}

template <auto data, auto length>
Value getBlock(const Vex2FileManager& document) {
  Vex2GlobalComplex settings;
  static_cast<void>(document.GetGlobalComplexInfo(&settings));
  return textOf(settings.*data, settings.*length);
}

template <auto setter>
bool setBlock(Vex2FileManager& document, std::string_view text) {
  const auto stored = ToLatin1(text);
  if (!stored) return false;
  Vex2GlobalComplex settings;
  static_cast<void>(document.GetGlobalComplexInfo(&settings));
  (settings.*setter)(stored->data(), static_cast<std::uint32_t>(stored->size()));
  return document.ReplaceGlobalComplexComp(&settings) == kSuccess;
}

// Selects one of the setter's two overloads.
constexpr auto kSetPassiveReference =
    static_cast<void (Vex2GlobalComplex::*)(const void*, std::uint32_t)>(
        &Vex2GlobalComplex::SetPassiveReference);

// Keeps the recorder's statement in the log: without it the meaning of the readings would be lost.
bool setLog(Vex2FileManager& document, std::string_view text) {
  return setBlock<&Vex2GlobalComplex::SetLog>(document,
                                              LogKeepingRun(text, ToUtf8(LogText(document))));
}

// Settings in separate components.

template <auto getter>
Value getName(const Vex2FileManager& document) {
  CString name;
  if ((document.*getter)(name) != kSuccess) return {};
  return ToUtf8(name.View());
}

template <auto setter>
bool setName(Vex2FileManager& document, std::string_view text) {
  const auto stored = ToLatin1(text);
  return stored && (document.*setter)(CString(std::string_view(*stored))) == kSuccess;
}

Value getConfidence(const Vex2FileManager& document) {
  float percent = 0;
  if (document.GetConfidencePercent(percent) != kSuccess || !std::isfinite(percent)) return {};
  return percent;
}

bool setConfidence(Vex2FileManager& document, std::string_view text) {
  const auto percent = NumberIn<float>(text);
  if (!percent || !(*percent >= 0 && *percent <= 100)) return false;
  return document.UpdateConfidencePercent(*percent) == kSuccess;
}

Value getAnalysisType(const Vex2FileManager& document) {
  unsigned short type = 0;
  if (document.GetRQAnalysisType(type) != kSuccess) return {};
  return std::int64_t{type};
}

bool setAnalysisType(Vex2FileManager& document, std::string_view text) {
  const auto type = NumberIn<unsigned short>(text);
  return type && document.SetRQAnalysisType(*type) == kSuccess;
}

Value getAssay(const Vex2FileManager& document) {
  const auto& code = document.GetHeaderData().assayCode;
  const std::string text = ToUtf8({code, sizeof code});
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool setAssay(Vex2FileManager& document, std::string_view text) {
  const auto code = PlateAssayCode(text);
  if (!code) return false;
  Vex2HeaderData header = document.GetHeaderData();
  code->copy(header.assayCode, sizeof header.assayCode);
  document.SetHeaderData(header);
  return true;
}

}  // namespace

const std::vector<Setting>& Settings() {
  using S = Vex2GlobalComplex;
  using M = Vex2FileManager;
  static const char* const text = "text";
  static const char* const byte = "-128 to 127";
  static const char* const word = "0 to 65535";
  static const std::vector<Setting> settings = {
      {"comment", text, getBlock<&S::commentData, &S::commentLength>, setBlock<&S::SetComment>},
      {"sample-volume", word, getNumber<&S::sampleVolume>,
       setNumber<&S::sampleVolume, std::uint16_t>},
      {"passive-reference", text, getBlock<&S::passiveReferenceData, &S::passiveReferenceLength>,
       setBlock<kSetPassiveReference>},
      {"pre-flag", byte, getNumber<&S::preFlag>, setByte<&S::preFlag>},
      {"post-flag", byte, getNumber<&S::postFlag>, setByte<&S::postFlag>},
      {"unit-code", word, getNumber<&S::unitCode>, setNumber<&S::unitCode, std::uint16_t>},
      {"ftrd", byte, getNumber<&S::ftrd>, setByte<&S::ftrd>},
      {"drks", byte, getNumber<&S::drks>, setByte<&S::drks>},
      {"version", "0 to 4294967295", getNumber<&S::version>, setNumber<&S::version, std::uint32_t>},
      {"log", text, getBlock<&S::logData, &S::logLength>, setLog},
      {"confidence", "0 to 100 percent", getConfidence, setConfidence, true},
      {"calibrator", text, getName<&M::GetCalibrator>, setName<&M::SetCalibrator>, true},
      {"endogenous-control", text, getName<&M::GetEndoControl>, setName<&M::SetEndoControl>, true},
      {"analysis-type", word, getAnalysisType, setAnalysisType, true},
      {"assay", "AbsQ, RelQ, AllD, +/-, BGND or PDye", getAssay, setAssay, false, true},
  };
  return settings;
}

std::string LogText(const Vex2FileManager& document) {
  Vex2GlobalComplex settings;
  static_cast<void>(document.GetGlobalComplexInfo(&settings));
  if (settings.logData == nullptr) return {};
  return {reinterpret_cast<const char*>(settings.logData), settings.logLength};
}

}  // namespace vex2::lab
