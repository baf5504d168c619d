#include "tools/vex/document/RunLog.h"

#include <algorithm>

#include "tools/vex/document/Settings.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

constexpr std::string_view kRecordedBlock = "RAWa";

bool isKey(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
  });
}

// The line at the start of `rest`, which then holds what follows it.
std::string_view takeLine(std::string_view& rest) {
  const std::string_view line = rest.substr(0, rest.find('\n'));
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return line;
}

// What stands behind KEY= in the only line of that key; nothing when there is none, or several.
std::optional<std::string_view> valueOf(std::string_view lines, std::string_view key) {
  std::optional<std::string_view> value;
  while (!lines.empty()) {
    const std::string_view line = takeLine(lines);
    if (line.substr(0, line.find('=')) != key) continue;
    if (value) return std::nullopt;
    value = line.substr(key.size() + 1);
  }
  return value;
}

// What `section`, which begins with a source, states. Nothing unless each line is one of a key.
std::optional<RunLog> read(std::string_view section) {
  for (std::string_view rest = section; !rest.empty();) {
    const std::string_view line = takeLine(rest);
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || !isKey(line.substr(0, equals))) return std::nullopt;
  }
  const auto frames = NumberIn<std::uint64_t>(valueOf(section, "frames").value_or(""));
  const auto scale = NumberIn<std::uint32_t>(valueOf(section, "scale").value_or(""));
  if (!frames || !scale || *scale < 1 || *scale > kLargestScale) return std::nullopt;
  return RunLog{.frames = *frames, .scale = *scale};
}

// Where the last line that names a source begins; the length of the log when there is none.
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
  if (!log_ || frame >= log_->frames) return std::nullopt;
  const RunReading reading = DecodeReading(record);
  if (record == EncodeReading(reading, false)) return reading;
  if (reading.melting && record == EncodeReading(reading, true)) return reading;
  return std::nullopt;
}

}  // namespace vex2::tool
