// The library finds in a document what its sidecar says, and so what a reader finds that was
// written from the format's description alone. Sidecars with a kind of record that the library does
// not know are skipped.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/support/SampleData.h"
#include "vex2/container/CBlockValueComp.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CContainerComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/manager/Vex2FileManager.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace {

using nlohmann::json;

std::string bytesOf(const CBlockValueComp& block) {
  const auto* data = reinterpret_cast<const char*>(block.GetData());
  return data != nullptr ? std::string(data, block.GetLength()) : std::string();
}

// A sidecar's characters stand for one byte each.
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

void compareValue(const CComponent& component, const std::string& kind, const json& expected) {
  const auto holds = [&]<typename Component>(const Component* value) {
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(json(value->GetValue()), expected);
  };
  if (kind == "byte") holds(dynamic_cast<const CByteValueComp*>(&component));
  if (kind == "short") holds(dynamic_cast<const CShortValueComp*>(&component));
  if (kind == "long") holds(dynamic_cast<const CLongValueComp*>(&component));
  if (kind == "float" && !expected.is_null()) {
    holds(dynamic_cast<const CFloatValueComp*>(&component));
  }
  const bool isText = kind == "block";
  if (!isText && kind != "program" && kind != "opaque") return;
  const std::string found = bytesOf(dynamic_cast<const CBlockValueComp&>(component));
  EXPECT_EQ(isText ? found : hexOf(found), isText ? latin1(expected) : expected.get<std::string>());
}

void compare(const CComponent& component, const json& expected) {
  SCOPED_TRACE(expected["tag"].get<std::string>() + " at " + expected["offset"].dump());
  EXPECT_EQ(component.GetTag(), expected["tag"].get<std::string>());
  EXPECT_EQ(component.GetLength(), expected["length"].get<std::uint32_t>());
  const std::string kind = expected["kind"];
  if (expected.contains("value")) compareValue(component, kind, expected["value"]);
  if (kind == "data") compareFrames(dynamic_cast<const AcquisitionDataComp&>(component), expected);
  if (kind != "container") return;
  const auto& list = dynamic_cast<const CContainerComp&>(component);
  const json& children = expected["children"];
  EXPECT_EQ(list.GetCount(), expected["count"].get<int>());
  ASSERT_EQ(static_cast<std::size_t>(list.GetChildCount()), children.size());
  for (int i = 0; i < list.GetChildCount(); ++i) {
    compare(*list.GetChild(i), children[static_cast<std::size_t>(i)]);
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
  const bool whole = expected.contains("whole") ? expected["whole"].get<bool>()
                                                : expected["status"].get<int>() == 0;
  EXPECT_EQ(status == 0, whole);
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
