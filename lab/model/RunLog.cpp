#include "lab/model/RunLog.h"

#include <algorithm>
#include <set>

#include "lab/Text.h"
#include "lab/model/Settings.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kRecordedBlock = TagOf(Kind::kRawData);
constexpr std::string_view kFrames = "frames";
constexpr std::string_view kStarted = "started";
constexpr std::string_view kChannels = "channels";
constexpr std::string_view kScale = "scale";
constexpr std::string_view kOffset = "offset";
constexpr std::string_view kUnknown = "unknown";
constexpr DecimalNumber kNoOffset{};

bool isKey(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
  });
}

// Returns the first line of `rest` and removes it from `rest`.
std::string_view takeLine(std::string_view& rest) {
  const std::string_view line = rest.substr(0, rest.find('\n'));
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return line;
}

// The value in the first line KEY=VALUE with this key; nothing if there is no such line.
std::optional<std::string_view> valueOf(std::string_view lines, std::string_view key) {
  while (!lines.empty()) {
    const std::string_view line = takeLine(lines);
    if (line.substr(0, line.find('=')) == key) return line.substr(key.size() + 1);
  }
  return std::nullopt;
}

// The names between the commas. Returns nothing if a name is empty, or if there are more names than
// a record has channels.
std::optional<std::vector<std::string>> channelsIn(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::string_view name = text.substr(0, text.find(','));
    if (name.empty() || name.size() + 1 == text.size() || names.size() == kMostChannels) return {};
    names.emplace_back(name);
    text.remove_prefix(std::min(name.size() + 1, text.size()));
  }
  return names;
}

// Parses `section`, which begins with the line that names the source. Returns nothing if a line is
// not KEY=VALUE, or if two lines have the same key.
std::optional<RunLog> read(std::string_view section) {
  std::set<std::string_view> keys;
  for (std::string_view rest = section; !rest.empty();) {
    const std::string_view line = takeLine(rest);
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || !isKey(line.substr(0, equals))) return std::nullopt;
    if (!keys.insert(line.substr(0, equals)).second) return std::nullopt;
  }
  const auto value = [&](std::string_view key) { return valueOf(section, key); };
  const auto offset = ReadingScale::ParseOffset(value(kOffset).value_or("0"));
  const auto scale = ReadingScale::Parse(value(kScale).value_or(""), offset.value_or(kNoOffset));
  const auto frames = NumberIn<std::uint64_t>(value(kFrames).value_or(""));
  const auto channels = channelsIn(value(kChannels).value_or(""));
  if (!offset || !scale || !channels) return std::nullopt;
  if (!frames && value(kFrames) != kUnknown) return std::nullopt;
  RunLog log{.frames = frames, .scale = *scale, .channels = *channels, .started = std::nullopt};
  if (const auto started = value(kStarted)) {
    log.started = RunStart::Parse(*started);
    if (!log.started) return std::nullopt;
  }
  return log;
}

// The offset of the last line that names a source; the length of the log if there is none.
std::size_t sectionStart(std::string_view log) {
  std::size_t start = log.size();
  for (std::string_view rest = log; !rest.empty();) {
    const std::size_t at = log.size() - rest.size();
    const std::string_view line = takeLine(rest);
    if (line == kMeasuredSource || line == kSimulatedSource) start = at;
  }
  return start;
}

}  // namespace

std::optional<RunLog> RunLog::Find(std::string_view log) {
  return read(log.substr(sectionStart(log)));
}

std::string RunLog::Text() const {
  std::string text;
  const auto add = [&](std::string_view key, std::string_view value) {
    text.append(key).append("=").append(value).append("\n");
  };
  add(kFrames, frames ? std::to_string(*frames) : std::string(kUnknown));
  if (started) add(kStarted, started->Text());
  if (!channels.empty()) {
    std::string names;
    for (const std::string& name : channels) names.append(names.empty() ? "" : ",").append(name);
    add(kChannels, names);
  }
  add(kScale, scale.ScaleText());
  if (scale.HasOffset()) add(kOffset, scale.OffsetText());
  return text;
}

std::string LogKeepingRun(std::string_view text, std::string_view log) {
  std::string result(text);
  if (RunLog::Find(text) || !RunLog::Find(log)) return result;
  if (!result.empty() && result.back() != '\n') result += '\n';
  return result.append(log.substr(sectionStart(log)));
}

RecordedReadings::RecordedReadings(const Vex2FileManager& plate, std::string_view blockTag)
    : RecordedReadings(LogText(plate), blockTag) {}

RecordedReadings::RecordedReadings(std::string_view log, std::string_view blockTag) {
  if (blockTag == kRecordedBlock) log_ = RunLog::Find(log);
}

std::optional<RunReading> RecordedReadings::Read(const Vex2WellRecord& record,
                                                 std::uint64_t frame) const {
  if (!log_ || (log_->frames && frame >= *log_->frames)) return std::nullopt;
  const RunReading reading = DecodeReading(record);
  const std::size_t channels = std::max<std::size_t>(log_->channels.size(), 1);
  if (reading.missing >> channels != 0) return std::nullopt;
  unsigned unused = 0;  // the values of channels without a reading, which must all be 0
  for (std::size_t channel = channels; channel < kMostChannels; ++channel) {
    unused |= reading.values[channel];
  }
  for (std::size_t channel = 0; channel < channels && reading.missing != 0; ++channel) {
    if (reading.IsMissing(channel)) unused |= reading.values[channel];
  }
  if (unused != 0) return std::nullopt;
  if (record == EncodeReading(reading, false)) return reading;
  if (reading.melting && record == EncodeReading(reading, true)) return reading;
  return std::nullopt;
}

std::optional<RunReading> RecordedReadings::ReadKnown(const Vex2WellRecord& record) {
  if (record == Vex2WellRecord()) return std::nullopt;
  return DecodeReading(record);
}

}  // namespace vex2::lab
