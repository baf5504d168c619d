// Checks that the library finds in each document what its sidecar file says. A reader that was
// written from docs/format.md alone finds the same. Sidecars with a kind of record that the library
// does not know are skipped.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/Files.h"
#include "tests/support/RunDocument.h"
#include "tests/support/SampleData.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/setup/CBackgroundComp.h"
#include "vex2/setup/CCellComp.h"
#include "vex2/setup/CColorComp.h"
#include "vex2/setup/CPureDyeComp.h"
#include "vex2/study/CRQPlateComp.h"

namespace {

using nlohmann::json;

std::string bytesOf(const CBlockValueComp& block) {
  const auto* data = reinterpret_cast<const char*>(block.GetData());
  return data != nullptr ? std::string(data, block.GetLength()) : std::string();
}

// Each character in a sidecar means one byte.
std::string latin1(const std::string& utf8) {
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      bytes += utf8[i];
    } else {
      bytes += static_cast<char>((lead & 3U) << 6U | (static_cast<unsigned char>(utf8[++i]) & 63U));
    }
  }
  return bytes;
}

std::string hexOf(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) >> 4U];
    text += kDigits[static_cast<unsigned char>(byte) & 15U];
  }
  return text;
}

bool isKnown(const json& record) {
  std::unique_ptr<CComponent> component;
  if (record["kind"] != "unknown" &&
      CreateComponent(record["tag"].get<std::string>(), component) == 0)
    return false;
  for (const json& child : record.value("children", json::array())) {
    if (!isKnown(child)) return false;
  }
  return true;
}

void compareFrames(const AcquisitionDataComp& block, const json& expected) {
  const json& frames = expected["frames"];
  EXPECT_EQ(block.GetVersion(), expected["version"]);
  EXPECT_EQ(block.GetTimeBlockSize(), expected["timeBlockSize"]);
  EXPECT_EQ(json(block.GetStartTime().fields), expected["startTime"]);
  EXPECT_EQ(json(block.GetEndTime().fields), expected["endTime"]);
  const auto numbers = block.GetWellNumbers();
  EXPECT_EQ(json(std::vector<int>(numbers.begin(), numbers.end())), expected["wellNumbers"]);
  ASSERT_EQ(static_cast<std::size_t>(block.GetFrameCount()), frames.size());
  for (int index = 0; index < block.GetFrameCount(); ++index) {
    for (std::size_t well = 0; well < block.GetWellCount(); ++well) {
      const Vex2WellRecord& record = block.GetFrame(index)[well];
      std::vector<int> values(record.leading, record.leading + 8);
      values.insert(values.end(), record.data, record.data + 32);
      ASSERT_EQ(json(values), frames[static_cast<std::size_t>(index)][well])
          << "frame " << index << ", position " << well;
    }
  }
}

template <typename Byte, std::size_t Size>
std::string hexOfArray(const Byte (&bytes)[Size]) {
  return hexOf(std::string(bytes, bytes + Size));
}

void compareEntry(const vex2::Spectrum& entry, const json& expected) {
  EXPECT_EQ(entry.key1, expected["key1"]);
  EXPECT_EQ(entry.key2, expected["key2"]);
  EXPECT_EQ(entry.dyeIndex, expected["dyeIndex"]);
  EXPECT_EQ(std::string(entry.name, entry.nameLength), latin1(expected["name"]));
  const std::string values(reinterpret_cast<const char*>(entry.values), 4U * entry.valueCount);
  EXPECT_EQ(hexOf(values), expected["valueBytes"].get<std::string>());
}

void compareOwn(const Vex2DyeSpectrum& entry, const json& expected) {
  EXPECT_EQ(entry.byte1, expected["byte1"]);
  EXPECT_EQ(entry.byte2, expected["byte2"]);
  EXPECT_EQ(json({entry.param1, entry.param2, entry.param3}), expected["params"]);
}

void compareOwn(const Vex2BackgroundSpectrum& entry, const json& expected) {
  EXPECT_EQ(entry.limit, expected["limit"]);
}

template <typename Component>
void compareSpectra(const CComponent& component, const json& expected) {
  const auto* calibration = dynamic_cast<const Component*>(&component);
  ASSERT_NE(calibration, nullptr);
  const auto& record = calibration->GetRecord();
  EXPECT_EQ(hexOfArray(record.code), expected["code"].get<std::string>());
  EXPECT_EQ(record.setting, expected["setting"]);
  EXPECT_EQ(record.option, expected["option"]);
  EXPECT_EQ(record.value, expected["value"]);
  EXPECT_EQ(hexOfArray(record.extra1), expected["extra1"].get<std::string>());
  EXPECT_EQ(hexOfArray(record.extra2), expected["extra2"].get<std::string>());
  const auto& reserved = calibration->GetReserved();
  const std::string words = expected.value("reserved1", "") + expected.value("reserved2", "") +
                            expected.value("reserved", "");
  EXPECT_EQ(hexOf(std::string(reserved.begin(), reserved.end())), words);
  ASSERT_EQ(record.entryCount, expected["entries"].size());
  for (std::size_t index = 0; index < record.entryCount; ++index) {
    compareEntry(record.entries[index], expected["entries"][index]);
    compareOwn(record.entries[index], expected["entries"][index]);
  }
}

void compareCell(const CComponent& component, const json& expected) {
  const auto* cell = dynamic_cast<const CCellComp*>(&component);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->GetCoord1(), expected["coord1"]);
  EXPECT_EQ(cell->GetCoord2(), expected["coord2"]);
  EXPECT_EQ(cell->GetFlag(), expected["flag"]);
}

template <std::size_t Size>
std::string textOf(const char (&characters)[Size]) {
  return std::string(characters, Size);
}

void compareHeader(const Vex2HeaderData& header, const json& expected) {
  SCOPED_TRACE("header");
  EXPECT_EQ(textOf(header.magic), latin1(expected["magic"]));
  EXPECT_EQ(header.formatA, expected["formatA"]);
  EXPECT_EQ(header.formatB, expected["formatB"]);
  EXPECT_EQ(textOf(header.assayCode), latin1(expected["assayCode"]));
  EXPECT_EQ(textOf(header.runCode), latin1(expected["runCode"]));
  EXPECT_EQ(textOf(header.plateTypeCode), latin1(expected["plateTypeCode"]));
  EXPECT_EQ(header.columns, expected["columns"]);
  EXPECT_EQ(header.thermocycleOffset, expected["thermocycleOffset"]);
  EXPECT_EQ(header.flagG, expected["flagG"]);
  EXPECT_EQ(textOf(header.text), latin1(expected["text"]));
  EXPECT_EQ(textOf(header.kindMarker), latin1(expected["kindMarker"]));
  EXPECT_EQ(textOf(header.acquisitionStatus), latin1(expected["acquisitionStatus"]));
  EXPECT_EQ(header.acquisitionDataOffset, expected["acquisitionDataOffset"]);
  ASSERT_EQ(header.rows, expected["rows"]);
  EXPECT_EQ(json(std::vector<std::uint32_t>(header.usage, header.usage + header.rows)),
            expected["usage"]);
}

void compareValue(const CComponent& component, const std::string& kind, const json& expected) {
  const auto holds = [&]<typename Component>(const Component* value) {
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(json(value->GetValue()), expected);
  };
  if (kind == "byte") holds(dynamic_cast<const CByteValueComp*>(&component));
  if (kind == "short") holds(dynamic_cast<const CShortValueComp*>(&component));
  if (kind == "long") holds(dynamic_cast<const CLongValueComp*>(&component));
  if (kind == "colour") holds(dynamic_cast<const CColorComp*>(&component));
  if (kind == "float" && !expected.is_null()) {
    holds(dynamic_cast<const CFloatValueComp*>(&component));
  }
  const bool isText = kind == "block";
  if (!isText && kind != "program" && kind != "opaque") return;
  const std::string found = bytesOf(dynamic_cast<const CBlockValueComp&>(component));
  EXPECT_EQ(isText ? found : hexOf(found), isText ? latin1(expected) : expected.get<std::string>());
}

// Compares bytes, because values that are not numbers (NaN) can also differ.
void compareStoredFloat(const CComponent& component, const std::string& bytes) {
  const auto* number = dynamic_cast<const CFloatValueComp*>(&component);
  ASSERT_NE(number, nullptr);
  const auto value = std::bit_cast<std::array<char, sizeof(float)>>(number->GetValue());
  EXPECT_EQ(hexOf(std::string(value.begin(), value.end())), bytes);
}

void compare(const CComponent& component, const json& expected);

void comparePlate(const CComponent& component, const json& expected) {
  const auto* plate = dynamic_cast<const CRQPlateComp*>(&component);
  ASSERT_NE(plate, nullptr);
  EXPECT_EQ(std::string(plate->GetPlateName().View()), latin1(expected.value("name", "")));
  EXPECT_EQ(std::string(plate->GetLastModifiedDate().View()), latin1(expected.value("date", "")));
  const Vex2FileManagerComponent* document = plate->GetPlate();
  ASSERT_NE(document, nullptr);
  if (expected.contains("count")) {
    EXPECT_EQ(plate->GetCount(), expected["count"]);
  }
  if (expected.contains("header")) compareHeader(document->GetHeaderData(), expected["header"]);
  const json& children = expected["children"];
  ASSERT_EQ(static_cast<std::size_t>(document->GetAllComponentCount()), children.size());
  for (int i = 0; i < document->GetAllComponentCount(); ++i) {
    compare(*document->GetComponent(i), children[static_cast<std::size_t>(i)]);
  }
}

void compare(const CComponent& component, const json& expected) {
  SCOPED_TRACE(expected["tag"].get<std::string>() + " at " + expected["offset"].dump());
  EXPECT_EQ(component.GetTag(), expected["tag"].get<std::string>());
  EXPECT_EQ(component.GetLength(), expected["length"].get<std::uint32_t>());
  const std::string kind = expected["kind"];
  if (expected.contains("value")) compareValue(component, kind, expected["value"]);
  if (expected.contains("bytes")) compareStoredFloat(component, expected["bytes"]);
  if (kind == "data") compareFrames(dynamic_cast<const AcquisitionDataComp&>(component), expected);
  if (kind == "pureDye") compareSpectra<CPureDyeComp>(component, expected);
  if (kind == "background") compareSpectra<CBackgroundComp>(component, expected);
  if (kind == "cell") compareCell(component, expected);
  if (kind == "plate") comparePlate(component, expected);
  if (kind != "container" && kind != "cells" && kind != "cell" && kind != "plates") return;
  const auto& list = dynamic_cast<const CContainerComp&>(component);
  const json& children = expected["children"];
  EXPECT_EQ(list.GetCount(), expected["count"].get<int>());
  ASSERT_EQ(static_cast<std::size_t>(list.GetChildCount()), children.size());
  for (int i = 0; i < list.GetChildCount(); ++i) {
    compare(*list.GetChild(i), children[static_cast<std::size_t>(i)]);
  }
}

// Checks the records that the library drops: their tags are unknown, and they are at the offsets in
// the sidecar.
void compareDropped(const vex2::test::Bytes& document, const json& expected) {
  for (const json& record : expected.value("dropped", json::array())) {
    const auto offset = record["offset"].get<std::size_t>();
    const std::string tag = latin1(record["tag"]);
    std::unique_ptr<CComponent> component;
    EXPECT_EQ(CreateComponent(tag, component), 0) << tag;
    ASSERT_LE(offset + 8, document.size());
    EXPECT_EQ(std::string(document.begin() + static_cast<std::ptrdiff_t>(offset),
                          document.begin() + static_cast<std::ptrdiff_t>(offset) + 4),
              tag);
    EXPECT_EQ(vex2::test::LongAt(document, offset + 4), record["declared"]);
  }
}

class Sidecar : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Sidecar, SaysWhatTheLibraryFinds) {
  const json expected = json::parse(std::ifstream(GetParam()));
  for (const json& record : expected["components"]) {
    if (!isKnown(record)) GTEST_SKIP() << record["tag"] << " or a record in it is of no known kind";
  }
  std::filesystem::path document = GetParam();
  Vex2FileManager manager;
  ASSERT_EQ(manager.SafeOpen(document.replace_extension("vex").c_str(), 0, 0), 1);
  const int status = manager.ReadComponentFile(nullptr);
  if (expected.contains("status")) {
    EXPECT_EQ(status, expected["status"]);
  } else {
    EXPECT_EQ(status == 0, expected["whole"].get<bool>());
  }
  EXPECT_EQ(std::filesystem::file_size(document), expected["size"].get<std::uintmax_t>());
  compareDropped(vex2::test::ReadBytes(document), expected);
  if (expected.contains("header")) compareHeader(manager.GetHeaderData(), expected["header"]);
  const json& components = expected["components"];
  ASSERT_EQ(static_cast<std::size_t>(manager.GetAllComponentCount()), components.size());
  for (int i = 0; i < manager.GetAllComponentCount(); ++i) {
    compare(*manager.GetComponent(i), components[static_cast<std::size_t>(i)]);
  }
}

std::vector<std::filesystem::path> sidecars() {
  auto found = vex2::test::SampleFiles("golden", ".json");
  for (const auto& entry :
       std::filesystem::directory_iterator(vex2::test::SourcePath("tests/data"))) {
    if (entry.path().extension() == ".json") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string nameOf(const testing::TestParamInfo<std::filesystem::path>& info) {
  std::string name = info.param.stem();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Documents, Sidecar, testing::ValuesIn(sidecars()), nameOf);

}  // namespace
