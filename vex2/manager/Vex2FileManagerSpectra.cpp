// Spectra: the readings of one well in one frame.

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

#include "vex2/manager/OrNothing.h"
#include "vex2/manager/RegistryFlag.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/study/BackgroundConversion.h"

namespace {

constexpr double kScale = 16;
constexpr double kArrayScale = 1024;

// Drops the fraction. A number that does not fit in 32 bits becomes the largest one that does.
std::uint32_t truncated(float value) {
  constexpr float kTooLarge = 4294967296.0F;
  if (value >= kTooLarge) return std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(value);
}

void convertBackground(std::span<std::uint32_t> values) {
  if (values.size() < vex2::kBackgroundValues) return;
  const bool hasArray = vex2::OrNothing(
      [] { return ReadRegistryFlag(true, "Blue LED Array Illumination", 0, nullptr); });
  // All values except the rates are readings of 16 bits, which a float holds exactly.
  std::array<float, vex2::kBackgroundValues> numbers{};
  std::transform(values.begin(), values.begin() + numbers.size(), numbers.begin(),
                 [](std::uint32_t value) { return static_cast<float>(value); });
  vex2::ConvertBackground(numbers, hasArray ? kArrayScale : kScale);
  std::transform(numbers.begin(), numbers.end(), values.begin(), truncated);
}

const Vex2FileManager* plateOrDocument(const Vex2FileManager& document, const char* plateName) {
  if (plateName == nullptr) return &document;
  const Vex2FileManager* plate = document.GetSinglePlatePtrByName(plateName);
  return plate != nullptr ? plate : &document;
}

}  // namespace

bool Vex2FileManager::LoadSpectrum(KestorSpectrum* spectrum, const char* plateName) const {
  if (spectrum == nullptr) return false;
  const auto* document = vex2::OrNothing([&] { return plateOrDocument(*this, plateName); });
  Vex2WellRecord record;
  if (document == nullptr ||
      !document->GetAcqDataWellRecord(&record, spectrum->frameIndex, spectrum->well, DataRAWa)) {
    spectrum->failed = 1;
    return false;
  }
  spectrum->wellValue = record.leading[0];
  if (spectrum->values == nullptr || spectrum->valueCount <= 0) return true;
  const std::span values(spectrum->values, static_cast<std::size_t>(spectrum->valueCount));
  std::fill(values.begin(), values.end(), 0);
  std::copy_n(record.data, std::min(values.size(), std::size(record.data)), values.begin());
  // The kind of the study decides whether to convert, even for one of its plates.
  if (IsBackground()) convertBackground(values);
  return true;
}
