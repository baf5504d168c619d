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

/// The numbers in one row of a readings file, without the name of the well.
struct CsvReading {
  bool melting = false;
  int cycle = 0;
  double time = 0;
  double temperature = 0;
  double fluorescence = 0;

  friend auto operator<=>(const CsvReading&, const CsvReading&) = default;
};

/// Readings by well, stage and cycle. They are read without the reader under test.
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

/// The readings in a document, read with the library.
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

/// The number of frames in the document; 0 while the document does not exist, because tests wait
/// for frames.
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

/// Base of tests that record the small run in the source tree: 8 wells of a 96-well plate, 40
/// cycles and 8 melting readings.
class RecordTest : public TempFolderTest {
 protected:
  static constexpr int kFrames = 48;
  static constexpr std::size_t kWells = 8;
  static constexpr std::size_t kFrameBytes = kWells * 80;

  std::string Readings() const { return SourcePath("tests/data/run-readings.csv").string(); }
  std::string Wells() const { return SourcePath("tests/data/run-wells.csv").string(); }
  std::string Run() const { return folder_ / "run.vex"; }

  /// The arguments of a recording of the small run, followed by `more`.
  VexProcess::Arguments Record(const VexProcess::Arguments& more = {}) const {
    return RecordFrom(Readings(), more);
  }
  VexProcess::Arguments RecordFrom(const std::string& readings,
                                   const VexProcess::Arguments& more = {}) const {
    VexProcess::Arguments arguments = {"record", Run(), "--readings", readings, "--wells", Wells()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  /// Writes a file with this content. Returns its path.
  std::string File(const std::string& name, const std::string& content) const {
    WriteBytes(folder_ / name, ToBytes(content));
    return folder_ / name;
  }
  /// The text of the readings file with the first `from` replaced by `to`.
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

  /// Waits until the document holds more than `frames` frames. Returns false after a time limit.
  bool WaitForFrames(int frames) const {
    for (int tries = 0; tries < 2000; ++tries) {
      if (RecordedFrames(Run()) > frames) return true;
      ::usleep(5000);
    }
    return false;
  }
};

}  // namespace vex2::test
