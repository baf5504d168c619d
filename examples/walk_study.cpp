// Adds plates to a study, stores results, settings and threshold cycles for each plate, and reads
// them back. Only the plates can be saved; all else exists in memory as long as the manager.
//
//     walk_study STUDY.vex PLATE.vex...

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "vex2/manager/Vex2FileManager.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace {

constexpr int kWell = 1;
constexpr const char* kDetector = "FAM";

// Stands in for a result that an analysis computes for a well. The study destroys it.
class Curve : public IDAClippedMatrix {
 public:
  explicit Curve(double theTop) : top(theTop) {}
  double top;
};

bool join(Vex2FileManager& study, const char* path) {
  Vex2FileManager plate;
  if (plate.ReadFromFile(path) != 0 || !plate.IsWhole()) return false;
  // In a study, the name of a plate is the title of its file, which the library finds only in a
  // path with a folder. A name that the study already has is refused.
  plate.SetFilePath(std::filesystem::absolute(path).c_str());
  return study.AddRQPlate(&plate, "today");
}

// The frame with the highest reading of the well; a real analysis would compute a threshold cycle.
void analyse(Vex2FileManager& study, const CString& name) {
  const Vex2FileManagerComponent* plate = study.GetSinglePlatePtrByName(name);
  int top = 0;
  int topFrame = 0;
  for (int frame = 0; frame < plate->GetDataFrameCount(DataRAWa); ++frame) {
    KestorSpectrum spectrum(36);
    spectrum.frameIndex = frame;
    spectrum.well = kWell;
    if (!study.LoadSpectrum(&spectrum, name)) continue;
    const int reading = static_cast<int>(spectrum.values[0]);
    if (reading > top) topFrame = frame;
    top = std::max(top, reading);
  }
  study.SetReporterAt(name, new Curve(top), kWell, false);

  // Each plate has its own map of settings; the study destroys the map and everything in it.
  TAGPROBE probe;
  std::copy_n(kDetector, 3, probe.name);
  study.AddAnalysisSettingsMap(name, new CAnalysisSettingsMap);
  study.AddDetectorToAnalysisSettingsMap(probe, name);
  study.SetCtAt(name, kDetector, static_cast<float>(topFrame) + 0.5F, kWell);
}

void show(const Vex2FileManager& study, const CString& name) {
  IDAClippedMatrix* result = nullptr;
  if (!study.GetReporterAt(name, result, kWell, false)) return;
  std::printf("%s: top %.0f, Ct %.1f\n", name.GetString(), static_cast<Curve*>(result)->top,
              static_cast<double>(study.GetCtAt(name, kDetector, kWell)));
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    std::fputs("usage: walk_study STUDY.vex PLATE.vex...\n", stderr);
    return 2;
  }
  Vex2FileManager study;
  Vex2HeaderData header = study.GetHeaderData();
  std::copy_n("RQSt", 4, header.assayCode);
  study.SetHeaderData(header);
  for (int i = 2; i < count; ++i) {
    if (join(study, arguments[i])) continue;
    std::fprintf(stderr, "%s: cannot join the study\n", arguments[i]);
    return 1;
  }
  CStringList names;
  CStringList dates;
  study.GetMultiPlateList(names, dates);
  for (POSITION at = names.GetHeadPosition(); at != nullptr;) analyse(study, names.GetNext(at));
  for (POSITION at = names.GetHeadPosition(); at != nullptr;) show(study, names.GetNext(at));
  return study.SaveToFile(arguments[1]) == 0 ? 0 : 1;
}
