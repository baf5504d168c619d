#pragma once

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "lab/model/PlateLayout.h"
#include "lab/model/RunLog.h"
#include "lab/model/RunReading.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/VexProcess.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {

/// The fields of a readings file's row but for the well's name, as the numbers that they are.
struct CsvReading {
  bool melting = false;
  int cycle = 0;
  double time = 0;
  double temperature = 0;
  double fluorescence = 0;

  friend auto operator<=>(const CsvReading&, const CsvReading&) = default;
};

/// By well, stage and cycle. Read without the reader under test.
using Readings = std::map<std::tuple<std::string, bool, int>, CsvReading>;

inline Readings ReadReadings(std::istream& in) {
  Readings readings;
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    std::string well;
    std::string stage;
    CsvReading reading;
    char comma = 0;
    std::getline(fields, well, ',');
    std::getline(fields, stage, ',');
    fields >> reading.cycle >> comma >> reading.time >> comma >> reading.temperature >> comma >>
        reading.fluorescence;
    reading.melting = stage == "melt";
    readings[{well, reading.melting, reading.cycle}] = reading;
  }
  return readings;
}

inline Readings ReadReadingsFile(const std::filesystem::path& path) {
  std::ifstream in(path);
  return ReadReadings(in);
}

/// What a document holds, read by the library.
inline Readings RecordedReadings(const std::string& path) {
  Vex2FileManager document;
  Readings readings;
  EXPECT_EQ(document.ReadFromFile(path.c_str()), 0);
  Vex2GlobalComplex settings;
  EXPECT_EQ(document.GetGlobalComplexInfo(&settings), kSuccess);
  const std::string log(reinterpret_cast<const char*>(settings.logData), settings.logLength);
  const auto scale = lab::RunLog::Find(log).value_or(lab::RunLog()).scale;
  const auto columns = static_cast<unsigned>(document.GetHeaderCols());
  const auto wells = static_cast<unsigned>(document.GetHeaderRows()) * columns;
  for (int frame = 0; frame < document.GetDataFrameCount(DataRAWa); ++frame) {
    for (unsigned well = 1; well <= wells; ++well) {
      Vex2WellRecord record;
      if (!document.GetAcqDataWellRecord(&record, frame, static_cast<int>(well), DataRAWa))
        continue;
      const lab::RunReading reading = lab::DecodeReading(record);
      readings[{lab::WellName(well, columns), reading.melting, reading.cycle}] = {
          reading.melting, reading.cycle, reading.time / 1000.0, reading.temperature / 100.0,
          scale.Measured(reading.values[0])};
    }
  }
  return readings;
}

/// 0 also while the recorder has not made the document: tests wait for frames.
inline int RecordedFrames(const std::string& path) {
  Vex2FileManager document;
  if (document.ReadFromFile(path.c_str()) != kSuccess) return 0;
  return document.GetDataFrameCount(DataRAWa);
}

inline std::string RecordedStatus(const std::string& path) {
  Vex2FileManager document;
  EXPECT_EQ(document.ReadFromFile(path.c_str()), kSuccess);
  return document.GetAcquisitionStatus().GetString();
}

/// Tests that record the small run in the source tree: 8 wells of a 96-well plate, 40 cycles and 8
/// melting readings.
class RecordTest : public TempFolderTest {
 protected:
  static constexpr int kFrames = 48;
  static constexpr std::size_t kWells = 8;
  static constexpr std::size_t kFrameBytes = kWells * 80;

  std::string Readings() const { return SourcePath("tests/data/run-readings.csv").string(); }
  std::string Wells() const { return SourcePath("tests/data/run-wells.csv").string(); }
  std::string Run() const { return folder_ / "run.vex"; }

  /// The arguments of a recording with these readings and further arguments.
  VexProcess::Arguments Record(const VexProcess::Arguments& more = {}) const {
    return RecordFrom(Readings(), more);
  }
  VexProcess::Arguments RecordFrom(const std::string& readings,
                                   const VexProcess::Arguments& more = {}) const {
    VexProcess::Arguments arguments = {"record", Run(), "--readings", readings, "--wells", Wells()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  /// A file of the test's own with this content.
  std::string File(const std::string& name, const std::string& content) const {
    WriteBytes(folder_ / name, ToBytes(content));
    return folder_ / name;
  }
  /// The readings file's text with the first `from` turned into `to`.
  std::string ReadingsWith(const std::string& from, const std::string& to) const {
    std::string text = TextOf(Readings());
    const auto place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
  }
  static std::string TextOf(const std::string& path) {
    const Bytes bytes = ReadBytes(path);
    return {bytes.begin(), bytes.end()};
  }

  void ExpectWhole() const {
    EXPECT_EQ(RecordedStatus(Run()), "DONE");
    EXPECT_EQ(RecordedReadings(Run()), ReadReadingsFile(Readings()));
  }

  /// Waits until the document holds a frame more than `frames`; false when that never comes.
  bool WaitForFrames(int frames) const {
    for (int tries = 0; tries < 2000; ++tries) {
      if (RecordedFrames(Run()) > frames) return true;
      ::usleep(5000);
    }
    return false;
  }
};

}  // namespace vex2::test
