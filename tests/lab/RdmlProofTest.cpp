#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>

#include "lab/compare/Diff.h"
#include "tests/lab/RdmlFiles.h"

namespace {

using namespace vex2::lab;
using namespace vex2::test;

// The kinds of losses that explain a difference. The key is the section of the difference, or its
// section and field.
const std::map<std::string, std::vector<std::string>>& explanations() {
  static const std::map<std::string, std::vector<std::string>> known = {
      {"header/assay", {"fields of headers"}},
      {"header/columns", {"fields of headers", "plate formats"}},
      {"header/flag", {"fields of headers"}},
      {"header/format", {"fields of headers"}},
      {"header/kind", {"fields of headers"}},
      {"header/plate type", {"fields of headers", "plate formats"}},
      {"header/rows", {"fields of headers", "plate formats"}},
      {"header/run", {"fields of headers"}},
      {"header/status", {"statuses of runs"}},
      {"header/text", {"fields of headers"}},
      {"wells in use", {"marks of wells in use", "plate formats"}},
      {"settings/*", {"settings of studies", "settings of several lines"}},
      {"settings/log", {"control characters in vex run log", "settings of studies"}},
      {"settings/comment", {"control characters in comments", "settings of studies"}},
      {"program",
       {"thermal cycling programs without content",
        "bytes of thermal cycling programs that are no text"}},
      {"wells",
       {"plate setups of other wells than the plate has", "detectors that a well has twice",
        "plate formats"}},
      {"wells/description", {"descriptions of wells"}},
      {"wells/flag", {"flags of wells"}},
      {"wells/flags of detectors", {"flags of detectors in wells"}},
      {"calibration",
       {"spectra of pure dyes", "spectra of the background",
        "heads of calibrations without spectra"}},
      {"detectors",
       {"settings of detectors", "targets that the list of detectors lacks, added to it",
        "detectors without a name", "detectors whose name another one has"}},
      {"detectors/*", {"settings of detectors"}},
      {"detectors/reporter", {}},
      {"detectors/description", {}},
      {"readings/RAWa",
       {"records of readings whose meaning is not known", "records without a reading",
        "data blocks without frames"}},
      {"readings/RAWa start", {"starts and ends of data blocks without a time zone"}},
      {"readings/RAWa end",
       {"starts and ends of data blocks without a time zone", "times of readings"}},
      {"readings/RAWa version", {"versions of data blocks"}},
      {"readings/RAWa times", {"times of readings"}},
      {"readings/REPn", {"records of further data blocks", "data blocks without frames"}},
      {"readings/REPr", {"records of further data blocks", "data blocks without frames"}},
      {"readings/REPd", {"records of further data blocks", "data blocks without frames"}},
      {"readings/REPt", {"records of further data blocks", "data blocks without frames"}},
      {"records", {"records of other kinds", "further records of a kind"}},
      {"plates/*", {"plates in a document that is not a study"}},
      {"dyes", {"dyes that the list of required dyes lacks, added to it"}},
      {"records/uncommitted bytes", {"uncommitted bytes"}},
  };
  return known;
}

// Differences that no loss of another kind may explain.
constexpr std::array kNeverExcused = {
    "wells/sample",  "wells/task",           "wells/quantity",       "detectors/reporter",
    "program/bytes", "readings/RAWa values", "readings/RAWa frames", "readings/RAWa wells"};

std::string nameOf(const Difference& difference) {
  return difference.section + (difference.what.empty() ? "" : "/" + difference.what);
}

// Whether `listed` contains a kind of loss that explains the difference.
bool isListed(const Difference& difference, const std::set<std::string>& listed) {
  for (const std::string& name : {nameOf(difference), difference.section + "/*"}) {
    const auto found = explanations().find(name);
    if (found == explanations().end()) continue;
    return std::any_of(found->second.begin(), found->second.end(),
                       [&](const std::string& kind) { return listed.contains(kind); });
  }
  return false;
}

class RdmlProof : public TempFolderTest {
 protected:
  // Exports a document without embedding it and imports the file. Returns the differences that
  // neither of them listed.
  std::string unlistedOf(const std::string& path) {
    Losses losses;
    const std::string archive =
        ExportTo(path, folder_ / "out.rdml", {.plate = {}, .embedsDocument = false}, &losses);
    const RunReader original(path);
    if (original.IsStudy() && original.PlateNames().empty()) return {};
    const std::string back = folder_ / "back.vex";
    const ImportReport report =
        Import(archive, back, {.replace = true, .study = original.IsStudy()});
    std::set<std::string> listed;
    for (const Loss& loss : losses.List()) listed.insert(loss.what);
    for (const Loss& loss : report.losses.List()) listed.insert(loss.what);
    std::string text;
    for (const Difference& difference : Diff(path, back)) {
      // These differ only in form: settings that a document leaves out have the default values, and
      // an end record has no value.
      if (difference.what.starts_with("bytes of GLBL")) continue;
      if (difference.what.starts_with("bytes of EOF ")) continue;
      if (!isListed(difference, listed)) text += vex2::lab::TextOf(difference) + "\n";
    }
    return text;
  }
};

TEST_F(RdmlProof, NothingExcusesAChangedReadingOrSample) {
  std::set<std::string> all;
  for (const auto& [name, kinds] : explanations()) all.insert(kinds.begin(), kinds.end());
  for (const std::string name : kNeverExcused) {
    Difference difference;
    difference.section = name.substr(0, name.find('/'));
    difference.what = name.substr(name.find('/') + 1);
    EXPECT_FALSE(isListed(difference, all)) << name;
  }
}

TEST_F(RdmlProof, EveryDifferenceOfASampleIsListed) {
  for (const std::string& path : WholeDocuments()) EXPECT_EQ(unlistedOf(path), "") << path;
}

TEST_F(RdmlProof, EveryDifferenceOfARealRunIsListed) {
  if (SampleFolder().empty()) GTEST_SKIP() << "there are no samples";
  for (const char* plate : {"96", "384"}) {
    const std::string path = folder_ / "real.vex";
    RecordReal(plate, path);
    EXPECT_EQ(unlistedOf(path), "") << plate;
  }
}

}  // namespace
