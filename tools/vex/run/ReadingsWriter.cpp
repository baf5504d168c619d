#include "tools/vex/run/ReadingsWriter.h"

#include "tools/vex/text/CsvWriter.h"

namespace vex2::tool {

namespace {

constexpr std::uint32_t kTemperatureScale = 100;
constexpr std::uint32_t kTimeScale = 1000;

}  // namespace

ReadingsWriter::ReadingsWriter(std::ostream& out, Columns columns) : out_(out), columns_(columns) {
  out_ << (columns.plate ? "plate," : "") << "well," << (columns.frame ? "frame," : "")
       << "stage,cycle,time_s,temperature_c,fluorescence\n";
}

void ReadingsWriter::BeginPlate(const std::string& name, std::uint32_t scale) {
  plate_ = columns_.plate ? CsvField(name) + "," : "";
  scale_ = scale;
}

void ReadingsWriter::Write(const std::string& well, std::uint64_t frame,
                           const std::optional<RunReading>& reading) {
  out_ << plate_ << well << ',';
  if (columns_.frame) out_ << frame << ',';
  if (!reading) {
    out_ << ",,,,\n";
    return;
  }
  out_ << (reading->melting ? "melt," : "amplification,") << reading->cycle << ','
       << ShortestQuotient(reading->time, kTimeScale) << ','
       << ShortestQuotient(reading->temperature, kTemperatureScale) << ','
       << ShortestQuotient(reading->value, scale_) << '\n';
}

}  // namespace vex2::tool
