#include "tools/vex/run/ReadingsWriter.h"

#include "tools/vex/text/CsvWriter.h"

namespace vex2::tool {

namespace {

constexpr std::uint32_t kTemperatureScale = 100;
constexpr std::uint32_t kTimeScale = 1000;

}  // namespace

ReadingsWriter::ReadingsWriter(std::ostream& out, bool ofPlates) : out_(out), ofPlates_(ofPlates) {
  out_ << (ofPlates ? "plate," : "") << "well,stage,cycle,time_s,temperature_c,fluorescence\n";
}

void ReadingsWriter::BeginPlate(const std::string& name, std::uint32_t scale) {
  plate_ = ofPlates_ ? CsvField(name) + "," : "";
  scale_ = scale;
}

void ReadingsWriter::Write(const std::string& well, const RunReading& reading) {
  out_ << plate_ << well << (reading.melting ? ",melt," : ",amplification,") << reading.cycle << ','
       << ShortestQuotient(reading.time, kTimeScale) << ','
       << ShortestQuotient(reading.temperature, kTemperatureScale) << ','
       << ShortestQuotient(reading.value, scale_) << '\n';
}

void ReadingsWriter::Write(const std::string& well, const Vex2WellRecord& record) {
  if (record.leading[0] == 0) {
    out_ << plate_ << well << ",,,,,\n";
  } else {
    Write(well, DecodeReading(record));
  }
}

}  // namespace vex2::tool
