// Input: a byte that chooses one of the command's CSV formats, and the content of such a file; for
// a measured run, the wells and the readings, separated by a form feed. Invariant: content that
// could be read is the same after it is written and read again.

#include <sys/mman.h>
#include <unistd.h>

#include <sstream>

#include "fuzz/Require.h"
#include "lab/csv/CalibrationFile.h"
#include "lab/csv/CsvReader.h"
#include "lab/csv/WellsFile.h"
#include "lab/model/RunLog.h"
#include "lab/record/MeasuredRun.h"
#include "tools/vex/Errors.h"

namespace vex2::fuzz {
namespace {

using namespace lab;

// A file in memory that has a path, because the readers open files by path.
class NamedMemory {
 public:
  NamedMemory() : file_(::memfd_create("fuzz", MFD_CLOEXEC)) {
    Require(file_ >= 0, "the system gives memory");
    path_ = "/proc/self/fd/" + std::to_string(file_);
  }
  ~NamedMemory() { ::close(file_); }
  NamedMemory(const NamedMemory&) = delete;
  NamedMemory& operator=(const NamedMemory&) = delete;

  const std::string& Holding(std::string_view content) const {
    const auto size = static_cast<ssize_t>(content.size());
    Require(
        ::ftruncate(file_, 0) == 0 && ::pwrite(file_, content.data(), content.size(), 0) == size,
        "memory takes the input");
    return path_;
  }

 private:
  int file_;
  std::string path_;
};

const NamedMemory& first() {
  static const NamedMemory memory;
  return memory;
}
const NamedMemory& second() {
  static const NamedMemory memory;
  return memory;
}

void readRows(std::string_view content) {
  ReadCsv(first().Holding(content), {"a", "b"}, [](const CsvRow& row) {
    Require(row.Number() > 1, "the first row is the names'");
    row.Text(0);
    row.Decimal(1, 1e6);
  });
}

void readWells(std::string_view content) {
  FloatReader numbers(false);
  const PlateContents contents = LoadWells(first().Holding(content), numbers);
  std::ostringstream out;
  WriteWells(contents, out);
  const PlateContents again = LoadWells(first().Holding(out.str()), numbers);
  Require(again.rows == contents.rows, "the wells are what they were");
}

bool same(const std::optional<CalibrationPart>& one, const std::optional<CalibrationPart>& other) {
  return one.has_value() == other.has_value() && (!one || one->entries == other->entries);
}

void readCalibration(std::string_view content) {
  FloatReader numbers(false);
  const Calibration calibration = LoadCalibration(first().Holding(content), numbers);
  std::ostringstream out;
  CsvWriter csv(out, false);
  WriteCalibrationColumns(csv);
  WriteCalibration(calibration, csv, "");
  const Calibration again = LoadCalibration(first().Holding(out.str()), numbers);
  Require(same(calibration.pureDyes, again.pureDyes), "the dyes are what they were");
  Require(same(calibration.background, again.background), "the background is what it was");
}

void readRun(std::string_view content) {
  const std::size_t cut = std::min(content.find('\f'), content.size());
  const std::string_view readings = content.substr(std::min(cut + 1, content.size()));
  const RunPlan plan = LoadMeasuredRun({.readings = second().Holding(readings),
                                        .wells = first().Holding(content.substr(0, cut)),
                                        .scale = {},
                                        .offset = {},
                                        .channels = {},
                                        .started = {},
                                        .assay = {}})
                           .plan;
  for (const auto& frame : plan.frames) {
    Require(frame.size() == plan.wells.size(), "every well has a reading");
    for (const RunReading& reading : frame) {
      Require(DecodeReading(EncodeReading(reading, false)) == reading, "a reading can be stored");
    }
  }
}

void readLog(std::string_view content) {
  if (const auto log = RunLog::Find(content)) {
    const std::string text = std::string(kMeasuredSource) + "\n" + log->Text();
    const auto again = RunLog::Find(text);
    Require(again && again->scale == log->scale && again->channels == log->channels &&
                again->frames == log->frames && again->started == log->started,
            "what the recorder states is kept");
  }
  const auto number = WellNumber(content.substr(0, 16), 32, 48);
  if (number) Require(WellName(*number, 48) == content.substr(0, 16), "a well has one name");
}

}  // namespace
}  // namespace vex2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vex2::fuzz;
  if (size == 0) return 0;
  const std::string_view content(reinterpret_cast<const char*>(data) + 1, size - 1);
  constexpr void (*kReaders[])(std::string_view) = {readRows, readWells, readCalibration, readRun,
                                                    readLog};
  try {
    kReaders[data[0] % std::size(kReaders)](content);
  } catch (const vex2::lab::Error& error) {
    Require(error.Class() == vex2::lab::ErrorClass::kDocument, "the file is at fault");
  }
  return 0;
}
