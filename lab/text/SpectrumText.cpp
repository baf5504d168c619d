#include "lab/text/SpectrumText.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include "lab/text/Chart.h"
#include "lab/text/Columns.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kMostPerLine = 12;
constexpr std::size_t kIndexWidth = 4;
constexpr std::size_t kValueWidth = 6;
constexpr int kHeight = 8;

std::string numbersOf(const std::uint16_t* data, std::size_t count, const TextForm& form) {
  const std::size_t perLine =
      std::min(kMostPerLine, (form.TextWidth() - kIndexWidth) / kValueWidth);
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if (i % perLine == 0) {
      text += form.Styled(PadLeft(std::to_string(i), kIndexWidth), TextForm::Style::kDim);
    }
    text += PadLeft(std::to_string(data[i]), kValueWidth);
    if ((i + 1) % perLine == 0 || i + 1 == count) text += '\n';
  }
  return text;
}

}  // namespace

std::string SpectrumText(const WellSpectrum& spectrum, const std::string& path,
                         const std::string& well, std::int64_t frame, const TextForm& form) {
  const std::string source = spectrum.isEmbedded ? fmt::format("{}, plate {}", form.Printable(path),
                                                               form.Printable(spectrum.plate))
                                                 : form.Printable(path);
  std::string text =
      form.Wrapped(fmt::format("{}: well {}, frame {} of {}, well value {}", source, well, frame,
                               spectrum.frameCount, spectrum.record.leading[0]),
                   2) +
      '\n';
  const auto& data = spectrum.record.data;
  const std::vector<double> readings(data, data + spectrum.UsedReadings());
  if (readings.size() > 1) text += DrawBars(readings, kHeight, form, 0);
  text += numbersOf(data, readings.size(), form);
  const std::size_t last = std::size(data) - 1;
  if (readings.size() < last) {
    text += fmt::format("readings {} to {} are 0\n", readings.size(), last);
  } else if (readings.size() == last) {
    text += fmt::format("reading {} is 0\n", last);
  }
  if (spectrum.rates.empty()) return text;
  text += "background rates:";
  for (const std::uint32_t rate : spectrum.rates) text += fmt::format(" {}", rate);
  return text + '\n';
}

}  // namespace vex2::lab
