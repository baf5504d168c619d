#include "lab/csv/ReadingsWriter.h"

#include "lab/Text.h"
#include "lab/csv/CsvWriter.h"

namespace vex2::lab {

ReadingsWriter::ReadingsWriter(std::ostream& out, Columns columns)
    : out_(out), columns_(columns), moments_(kMoments) {
  out_ << (columns.plate ? "plate," : "") << "well," << (columns.frame ? "frame," : "")
       << (columns.channel ? "channel," : "") << "stage,cycle,time_s,temperature_c,fluorescence\n";
}

void ReadingsWriter::BeginPlate(const std::string& name, const ReadingScale& scale,
                                std::vector<std::string> channels) {
  plate_ = columns_.plate ? CsvField(name) + "," : "";
  measured_ = MeasuredTexts(scale);
  channels_.clear();
  for (const std::string& channel : channels) channels_.push_back(CsvField(ToUtf8(channel)));
  if (channels_.empty()) channels_.emplace_back();
}

const std::string& ReadingsWriter::momentOf(const RunReading& reading, std::uint64_t frame) {
  Moment& moment = moments_[frame % kMoments];
  const bool isSame = moment.isMade && moment.melting == reading.melting &&
                      moment.cycle == reading.cycle && moment.time == reading.time &&
                      moment.temperature == reading.temperature;
  if (isSame) return moment.text;
  moment = {true,          reading.melting,
            reading.cycle, reading.temperature,
            reading.time,  reading.melting ? "melt," : "amplification,"};
  moment.text.append(std::to_string(reading.cycle)).append(",");
  moment.text.append(ShortestQuotient(reading.time, kTimeSteps)).append(",");
  moment.text.append(ShortestQuotient(reading.temperature, kTemperatureSteps)).append(",");
  return moment.text;
}

void ReadingsWriter::Append(std::string& rows, const std::string& well, std::uint64_t frame,
                            const std::optional<RunReading>& reading) {
  for (std::size_t channel = 0; channel < channels_.size(); ++channel) {
    rows.append(plate_).append(well) += ',';
    if (columns_.frame) rows.append(std::to_string(frame)) += ',';
    if (columns_.channel) rows.append(channels_[channel]) += ',';
    if (!reading) {
      rows += ",,,,";
    } else {
      rows += momentOf(*reading, frame);
      if (reading->IsMissing(channel)) {
        rows += "NA";
      } else {
        measured_.AppendTo(rows, reading->values[channel]);
      }
    }
    rows += '\n';
  }
}

void ReadingsWriter::WriteRows(std::string_view rows) {
  out_.write(rows.data(), static_cast<std::streamsize>(rows.size()));
}

}  // namespace vex2::lab
