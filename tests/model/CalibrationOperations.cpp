#include <algorithm>

#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

Spectra drawSpectra(Draw& draw) {
  Spectra value;
  value.code = draw.Bytes(4);
  value.setting = draw.Number();
  value.option = draw.Number() & 0xFFFFU;
  value.value = draw.Number();
  value.extra1 = draw.Bytes(4);
  value.extra2 = draw.Bytes(4);
  value.entries.resize(static_cast<std::size_t>(draw.Below(3)));
  for (Spectrum& entry : value.entries) {
    for (std::uint32_t& key : entry.keys) key = draw.Number() & 0xFFFFU;
    for (std::uint32_t& param : entry.params) param = draw.Number() & 0xFFFFU;
    entry.bytes = draw.Number() & 0xFFFFU;
    entry.name = draw.Letters(4);
    entry.values = draw.Bytes(4 * draw.Below(3));
  }
  return value;
}

void fillEntry(Vex2DyeSpectrum& entry, const Spectrum& from) {
  entry.byte1 = static_cast<std::uint8_t>(from.bytes >> 8U);
  entry.byte2 = static_cast<std::uint8_t>(from.bytes & 0xFFU);
  entry.param1 = static_cast<std::uint16_t>(from.params[0]);
  entry.param2 = static_cast<std::uint16_t>(from.params[1]);
  entry.param3 = static_cast<std::uint16_t>(from.params[2]);
}

void fillEntry(Vex2BackgroundSpectrum& entry, const Spectrum& from) {
  entry.limit = static_cast<std::uint16_t>(from.bytes);
}

template <typename Record>
void fill(Record& record, const Spectra& value) {
  std::copy(value.code.begin(), value.code.end(), record.code);
  record.setting = value.setting;
  record.option = static_cast<std::uint16_t>(value.option);
  record.value = value.value;
  std::copy(value.extra1.begin(), value.extra1.end(), record.extra1);
  std::copy(value.extra2.begin(), value.extra2.end(), record.extra2);
  record.SetEntryCount(static_cast<std::uint16_t>(value.entries.size()));
  for (std::size_t i = 0; i < value.entries.size(); ++i) {
    const Spectrum& from = value.entries[i];
    auto& entry = record.entries[i];
    entry.key1 = static_cast<std::uint16_t>(from.keys[0]);
    entry.key2 = static_cast<std::uint16_t>(from.keys[1]);
    entry.dyeIndex = static_cast<std::uint16_t>(from.keys[2]);
    entry.SetName(from.name.data(), static_cast<std::uint8_t>(from.name.size()));
    entry.SetValues(from.values.data(), static_cast<std::uint8_t>(from.values.size() / 4));
    fillEntry(entry, from);
  }
}

Operation replacePartOperation(Draw& draw) {
  const Spectra value = drawSpectra(draw);
  const bool isNull = draw.OneIn(5);
  const Text how = isNull ? "(null)" : "(" + std::to_string(value.entries.size()) + " entries)";
  if (draw.OneIn(2)) {
    return {"ReplacePureDye" + how,
            [=](OpenedManager& m) {
              Vex2PureDye record;
              fill(record, value);
              return Shown(m.ReplacePureDye(isNull ? nullptr : &record));
            },
            [=](Manager& m) { return Shown(m.replaceSpectra("PDYE", isNull ? nullptr : &value)); }};
  }
  return {"ReplaceBackground" + how,
          [=](OpenedManager& m) {
            Vex2BGC record;
            fill(record, value);
            return Shown(m.ReplaceBackground(isNull ? nullptr : &record));
          },
          [=](Manager& m) { return Shown(m.replaceSpectra("BKGD", isNull ? nullptr : &value)); }};
}

Operation replaceAllOperation(Draw& draw) {
  const Spectra dyes = drawSpectra(draw);
  const Spectra background = drawSpectra(draw);
  const bool hasDyes = !draw.OneIn(4);
  const bool hasBackground = !draw.OneIn(4);
  return {"ReplaceCalibComponent",
          [=](OpenedManager& m) {
            Vex2PureDye first;
            Vex2BGC second;
            fill(first, dyes);
            fill(second, background);
            return Shown(m.ReplaceCalibComponent(hasDyes ? &first : nullptr,
                                                 hasBackground ? &second : nullptr));
          },
          [=](Manager& m) {
            return Shown(m.replaceCalibration(hasDyes ? &dyes : nullptr,
                                              hasBackground ? &background : nullptr));
          }};
}

Operation appendOperation(Draw& draw) {
  const Spectra value = drawSpectra(draw);
  const char* path = draw.Path();
  if (draw.OneIn(2)) {
    return {"AppendPureDye(" + Shown(path) + ")",
            [=](OpenedManager& m) {
              Vex2PureDye record;
              fill(record, value);
              return Shown(m.AppendPureDye(path, &record));
            },
            [=](Manager& m) { return Shown(m.appendSpectra(path, "PDYE", value)); }};
  }
  return {"AppendBackground(" + Shown(path) + ")",
          [=](OpenedManager& m) {
            Vex2BGC record;
            fill(record, value);
            return Shown(m.AppendBackground(path, &record));
          },
          [=](Manager& m) { return Shown(m.appendSpectra(path, "BKGD", value)); }};
}

Operation replaceInFileOperation(Draw& draw) {
  const Spectra value = drawSpectra(draw);
  const char* path = draw.Path();
  return {"ReplaceBackground(" + Shown(path) + ")",
          [=](OpenedManager& m) {
            Vex2BGC record;
            fill(record, value);
            return Shown(m.ReplaceBackground(path, &record));
          },
          [=](Manager& m) { return Shown(m.replaceBackground(path, &value)); }};
}

}  // namespace

Operation DrawCalibrationOperation(Draw& draw) {
  const char* path = draw.Path();
  const bool dyes = draw.OneIn(2);
  const bool background = draw.OneIn(2);
  switch (draw.Below(8)) {
    case 0:
    case 1:
      return appendOperation(draw);
    case 2:
    case 3:
      return replacePartOperation(draw);
    case 4:
      return replaceAllOperation(draw);
    case 5:
      return replaceInFileOperation(draw);
    case 6:
      return {"SaveCalibrationInfo(" + Shown(path) + ")",
              [=](OpenedManager& m) { return Shown(m.SaveCalibrationInfo(path)); },
              [=](Manager& m) { return Shown(m.saveCalibration(path)); }};
    default:
      return {"RemoveCalibComponents(" + Shown(dyes) + ", " + Shown(background) + ")",
              [=](OpenedManager& m) { return Shown(m.RemoveCalibComponents(dyes, background)); },
              [=](Manager& m) { return Shown(m.removeCalibration(dyes, background)); }};
  }
}

}  // namespace vex2::test::model
