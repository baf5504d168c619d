#include "lab/model/WellSpectrum.h"

#include <fmt/core.h>

#include <iterator>
#include <new>
#include <optional>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/PlateLayout.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/study/KestorSpectrum.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kRateCount = 4;
constexpr std::size_t kFirstRate = 24;  // index of the first rate in a converted spectrum

std::vector<std::uint32_t> ratesOf(const Vex2FileManager& content, std::uint32_t well,
                                   std::int64_t frame) {
  KestorSpectrum converted(static_cast<std::int32_t>(std::size(Vex2WellRecord().data)));
  converted.well = static_cast<std::int32_t>(well);
  converted.frameIndex = static_cast<std::int32_t>(frame);
  if (!content.LoadSpectrum(&converted, nullptr)) throw std::bad_alloc();
  const std::uint32_t* rates = converted.values + kFirstRate;
  return {rates, rates + kRateCount};
}

}  // namespace

std::size_t WellSpectrum::UsedReadings() const {
  std::size_t count = std::size(record.data);
  while (count > 1 && record.data[count - 1] == 0) --count;
  return count;
}

WellSpectrum SpectrumOf(const Document& document, const Document::Plate& plate,
                        const std::string& wellName, std::int64_t frame) {
  const auto refuse = [&](ErrorCode code, const std::string& why) {
    throw Error(code, document.Path(), why);
  };
  const Vex2FileManager& content = *plate.content;
  const std::string tag(TagOf(Kind::kRawData));
  const AcquisitionDataComp* block = FindBlock(plate, tag);
  if (block == nullptr)
    refuse(ErrorCode::kDocument, fmt::format("it has no data block \"{}\"", tag));
  WellSpectrum spectrum{.plate = ToUtf8(plate.name),
                        .isEmbedded = plate.isEmbedded,
                        .frameCount = block->GetFrameCount()};
  const auto well =
      WellNumber(PlainWellName(wellName), static_cast<std::uint32_t>(content.GetHeaderRows()),
                 static_cast<std::uint32_t>(content.GetHeaderCols()));
  if (!well) {
    refuse(ErrorCode::kNoSuchWell,
           fmt::format("there is no well '{}' on its plate of {} x {} wells", wellName,
                       content.GetHeaderRows(), content.GetHeaderCols()));
  }
  spectrum.well = *well;
  if (frame < 0 || frame >= spectrum.frameCount) {
    refuse(ErrorCode::kNoSuchFrame,
           fmt::format("there is no frame {}; it has {}", frame,
                       Counted(static_cast<unsigned>(spectrum.frameCount), "frame")));
  }
  if (!content.GetAcqDataWellRecord(&spectrum.record, static_cast<int>(frame),
                                    static_cast<int>(*well), DataRAWa)) {
    refuse(ErrorCode::kNoSuchWell, fmt::format("the well {} gave no readings", wellName));
  }
  if (content.IsBackground()) spectrum.rates = ratesOf(content, *well, frame);
  return spectrum;
}

std::vector<WellSpectrum> SpectraOf(const Document& document,
                                    const std::vector<Document::Plate>& plates,
                                    const std::string& wellName, std::int64_t frame) {
  std::vector<WellSpectrum> spectra;
  std::optional<Error> refusal;
  for (const Document::Plate& plate : plates) {
    try {
      spectra.push_back(SpectrumOf(document, plate, wellName, frame));
    } catch (const Error& error) {
      refusal = error;
    }
  }
  if (!spectra.empty() || !refusal) return spectra;
  document.RequireWhole("");
  throw *refusal;
}

}  // namespace vex2::lab
