// Spectra: the readings of one well in one frame.

#include <algorithm>
#include <iterator>
#include <limits>

#include "vex2/manager/RegistryFlag.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/BackgroundConversion.h"

namespace {

constexpr int kBackgroundAssay = 950;
constexpr double kScale = 16;
constexpr double kArrayScale = 1024;

// Cuts off what stands behind the point. What 32 bits cannot hold becomes the most that they can.
std::uint32_t truncated(float value) {
  constexpr float kTooLarge = 4294967296.0F;
  if (value >= kTooLarge) return std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(value);
}

void convertBackground(std::span<std::uint32_t> values) {
  if (values.size() < vex2::kBackgroundValues) return;
  const bool hasArray = ReadRegistryFlag(true, "Blue LED Array Illumination", 0, nullptr);
  std::vector<float> numbers(values.size());
  std::transform(values.begin(), values.end(), numbers.begin(),
                 [](std::uint32_t value) { return static_cast<float>(value); });
  vex2::ConvertBackground(numbers, hasArray ? kArrayScale : kScale);
  std::transform(numbers.begin(), numbers.end(), values.begin(), truncated);
}

}  // namespace

bool Vex2FileManager::LoadSpectrum(KestorSpectrum* spectrum, const char* plateName) const {
  if (spectrum == nullptr) return false;
  const Vex2FileManager* document = this;
  if (plateName != nullptr) {
    if (const auto* plate = GetSinglePlatePtrByName(plateName); plate != nullptr) document = plate;
  }
  Vex2WellRecord record;
  if (!document->GetAcqDataWellRecord(&record, spectrum->frameIndex, spectrum->well, DataRAWa)) {
    spectrum->failed = 1;
    return false;
  }
  spectrum->wellValue = record.leading[0];
  if (spectrum->values == nullptr || spectrum->valueCount <= 0) return true;
  const std::span values(spectrum->values, static_cast<std::size_t>(spectrum->valueCount));
  std::fill(values.begin(), values.end(), 0);
  std::copy_n(record.data, std::min(values.size(), std::size(record.data)), values.begin());
  // The study's kind decides, also for a plate of it.
  if (!IsAssayType(kBackgroundAssay)) return true;
  return guarded(0, [&] {
           convertBackground(values);
           return 1;
         }) == 1;
}
