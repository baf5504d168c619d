#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "lab/import/Import.h"
#include "lab/model/Document.h"
#include "lab/model/RunReader.h"
#include "lab/rdml/RdmlExport.h"
#include "lab/rdml/ZipArchive.h"
#include "lab/record/MeasuredRun.h"
#include "lab/record/PlanDocument.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

/// RDML files for tests: written by hand as other programs write them, and checked with the schema.
namespace vex2::test {

/// RDML as another program might write it: a plate of three wells. Each member changes one detail.
struct ForeignRdml {
  std::string version = "1.2";
  std::string prefix;  // of the namespace
  std::string dyes = "<dye id=\"FAM\"/><dye id=\"VIC\"/>";
  std::string samples =
      "<sample id=\"S1\"><type>std</type><quantity><value>100</value><unit>cop</unit></quantity>"
      "</sample><sample id=\"S2\"><type>unkn</type></sample>"
      "<sample id=\"no\"><type>ntc</type></sample>";
  std::string targets =
      "<target id=\"MYC\"><type>toi</type><dyeId id=\"FAM\"/></target>"
      "<target id=\"ACT\"><type>ref</type><dyeId id=\"VIC\"/></target>";
  std::string conditions;
  std::string format =
      "<pcrFormat><rows>8</rows><columns>12</columns><rowLabel>ABC</rowLabel>"
      "<columnLabel>123</columnLabel></pcrFormat>";
  std::string runs;

  static std::string Data(const std::string& target, double first, const std::string& more = {}) {
    std::string text = "<data><tar id=\"" + target + "\"/>";
    for (int cycle = 1; cycle <= 3; ++cycle) {
      text += "<adp><cyc>" + std::to_string(cycle) + "</cyc><tmp>60.5</tmp><fluor>" +
              std::to_string(first + cycle) + "</fluor></adp>";
    }
    return text + more + "</data>";
  }

  static std::string React(int well, const std::string& sample, const std::string& data) {
    return "<react id=\"" + std::to_string(well) + "\"><sample id=\"" + sample + "\"/>" + data +
           "</react>";
  }

  std::string Run(const std::string& id, const std::string& reacts) const {
    return "<run id=\"" + id + "\">" + format + reacts + "</run>";
  }

  std::string Text() const {
    std::string own = runs;
    if (own.empty()) {
      own = Run("r1", React(1, "S1", Data("MYC", 10)) + React(2, "S2", Data("MYC", 20)) +
                          React(14, "no", Data("MYC", 0)));
    }
    std::string text = "<rdml version=\"" + version + "\" xmlns=\"http://www.rdml.org\">" + dyes +
                       samples + targets + conditions + "<experiment id=\"e\">" + own +
                       "</experiment></rdml>";
    return prefix.empty() ? text : Prefixed(text);
  }

  // Puts the prefix of the namespace before the name of every element.
  std::string Prefixed(const std::string& text) const {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
      result += text[i];
      const bool isEnd = text[i] == '/' && i > 0 && text[i - 1] == '<';
      const bool isBegin = text[i] == '<' && text[i + 1] != '/';
      if (isEnd || isBegin) result += prefix + ":";
    }
    const std::size_t at = result.find("xmlns=");
    return result.replace(at, 6, "xmlns:" + prefix + "=");
  }
};

/// Writes an archive with these members, given by name and content.
inline void WriteZip(const std::string& path,
                     const std::vector<std::pair<std::string, std::string>>& members) {
  lab::ZipWriter zip;
  for (const auto& [name, content] : members) {
    zip.Add(name, [content = content, isDone = false](std::string& piece) mutable {
      piece = content;
      return !std::exchange(isDone, true);
    });
  }
  std::ofstream out(path, std::ios::binary);
  zip.Write(out, path);
}

/// Returns the content of a member of the archive.
inline std::string ReadMember(const std::string& path, const std::string& name) {
  const lab::ZipReader zip(path, path);
  std::string text;
  zip.Read(zip.Find(name).value(), [&](std::string_view piece) {
    text += piece;
    return true;
  });
  return text;
}

inline void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string TextOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

/// Whether the program that checks XML with a schema is installed.
inline bool HasSchemaCheck() {
  return std::system("xmllint --version >/dev/null 2>&1") == 0;  // NOLINT: a fixed command
}

/// Returns the faults that the schema of this version finds in the XML; empty if it is valid.
inline std::string SchemaFaults(const std::string& xml, const std::string& version = "1_3") {
  const std::string schema = SourcePath("tests/data/rdml/RDML_v" + version + "_REC.xsd").string();
  const std::string command =
      "xmllint --noout --schema '" + schema + "' '" + xml + "' >'" + xml + ".faults' 2>&1";
  return std::system(command.c_str()) == 0 ? "" : TextOf(xml + ".faults");  // NOLINT: test paths
}

/// Exports the document and returns the path of the archive.
inline std::string ExportTo(const std::string& document, const std::string& path,
                            const lab::RdmlOptions& options = {}, lab::Losses* losses = nullptr) {
  std::ofstream out(path, std::ios::binary);
  const lab::Losses found = lab::ExportRdml(document, out, options);
  if (losses != nullptr) *losses = found;
  return path;
}

/// The paths of all documents of the tests and all sample documents that can be read completely.
inline std::vector<std::string> WholeDocuments() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("tests/data"))) {
    if (entry.path().extension() == ".vex") paths.push_back(entry.path());
  }
  for (const auto& sample : SampleFiles("golden", ".vex")) paths.push_back(sample);
  std::erase_if(paths, [](const std::string& path) {
    try {
      return lab::Document(path).Fault().has_value();
    } catch (const lab::Error&) {
      return true;
    }
  });
  return paths;
}

/// Records the measured run from the sample data for a plate of "96" or "384" wells.
inline void RecordReal(const std::string& plate, const std::string& path) {
  lab::MeasuredRunFiles files;
  files.readings = SampleFolder() / "real" / ("calibration-" + plate + "-readings.csv");
  files.wells = SampleFolder() / "real" / ("calibration-" + plate + "-wells.csv");
  files.started = lab::RunStart::Parse("2019-03-04T10:20:30+01:00");
  lab::RunPlan plan = lab::LoadMeasuredRun(files).plan;
  Vex2FileManager document;
  lab::StoreWholeRun(document, plan);
  ASSERT_EQ(document.SaveToFile(path.c_str()), 0);
}

/// The count of the loss `what`; 0 if it is not listed.
inline std::uint64_t CountOf(const lab::Losses& losses, std::string_view what) {
  for (const lab::Loss& loss : losses.List()) {
    if (loss.what == what) return loss.count;
  }
  return 0;
}

inline std::string TextOf(const lab::Losses& losses) {
  std::string text;
  for (const lab::Loss& loss : losses.List()) text += lab::TextOf(loss) + "\n";
  return text;
}

}  // namespace vex2::test
