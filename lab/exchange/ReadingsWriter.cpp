#include "lab/exchange/ReadingsWriter.h"

#include "lab/Text.h"
#include "lab/exchange/CsvWriter.h"

namespace vex2::lab {

ReadingsWriter::ReadingsWriter(std::ostream& out, Columns columns) : out_(out), columns_(columns) {
  out_ << (columns.plate ? "plate," : "") << "well," << (columns.frame ? "frame," : "")
       << (columns.channel ? "channel," : "") << "stage,cycle,time_s,temperature_c,fluorescence\n";
}

void ReadingsWriter::BeginPlate(const std::string& name, const ReadingScale& scale,
                                std::vector<std::string> channels) {
  plate_ = columns_.plate ? CsvField(name) + "," : "";
  scale_ = scale;
  channels_.clear();
  for (const std::string& channel : channels) channels_.push_back(CsvField(ToUtf8(channel)));
  if (channels_.empty()) channels_.emplace_back();
}

void ReadingsWriter::Write(const std::string& well, std::uint64_t frame,
                           const std::optional<RunReading>& reading) {
  for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
    out_ << plate_ << well << ',';
    if (columns_.frame) out_ << frame << ',';
    if (columns_.channel) out_ << channels_[channel] << ',';
    if (!reading) {
      out_ << ",,,,\n";
      continue;
    }
    out_ << (reading->melting ? "melt," : "amplification,") << reading->cycle << ','
         << ShortestQuotient(reading->time, kTimeSteps) << ','
         << ShortestQuotient(reading->temperature, kTemperatureSteps) << ','
         << (reading->IsMissing(channel) ? "NA" : scale_.MeasuredText(reading->values[channel]))
         << '\n';
  }
}

}  // namespace vex2::lab
