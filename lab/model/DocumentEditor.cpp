#include "lab/model/DocumentEditor.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/model/AcquisitionStatus.h"
#include "lab/model/DocumentChange.h"
#include "lab/model/DocumentFile.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/ValuesFromDocument.h"
#include "lab/model/ValuesToDocument.h"

namespace vex2::lab {

namespace {

// The values to which an editor returns references.
struct PlateValues {
  lab::Plate plate;
  std::vector<Detector> detectors;
  std::vector<std::string> dyes;
  Calibration calibration;

  static PlateValues Of(const Vex2FileManager& document) {
    return {PlateOf(document), DetectorValuesOf(document), RequiredDyeNamesOf(document),
            CalibrationOf(document)};
  }
  friend bool operator==(const PlateValues&, const PlateValues&) = default;
};

// Replaces NaN by a number, since NaN is not equal to itself and would look like a change.
Detector comparable(Detector detector) {
  if (std::isnan(detector.threshold)) detector.threshold = std::numeric_limits<float>::lowest();
  return detector;
}

PlateValues comparable(PlateValues values) {
  for (Detector& detector : values.detectors) detector = comparable(detector);
  for (Well& well : values.plate.wells) {
    for (Target& target : well.targets) {
      if (target.quantity && std::isnan(*target.quantity)) target.quantity.reset();
    }
  }
  return values;
}

[[noreturn]] void refuseEdit(const std::string& why) {
  throw Error(ErrorCode::kInvalidValue, why);
}

CString storedName(const std::string& name, const std::string& what) {
  if (name.empty()) refuseEdit(fmt::format("a {} needs a name", what));
  return CString(std::string_view(StoredText(name, what)));
}

void requireStored(bool isStored, const std::string& what) {
  if (!isStored)
    throw Error(ErrorCode::kSystem, fmt::format("the document cannot hold more {}", what));
}

void storeDetectors(Vex2FileManager& document, const std::vector<Detector>& before,
                    const std::vector<Detector>& after) {
  std::set<std::string_view> kept;
  for (const Detector& detector : after) {
    storedName(detector.name, "detector");
    if (!kept.insert(detector.name).second) {
      refuseEdit(fmt::format("the detector '{}' is given twice", detector.name));
    }
  }
  for (const Detector& detector : before) {
    if (kept.contains(detector.name)) continue;
    document.RemoveDetectorInfo(CString(std::string_view(StoredText(detector.name, "detector"))));
  }
  for (const Detector& detector : after) {
    const bool isThere = std::any_of(before.begin(), before.end(), [&](const Detector& one) {
      return comparable(one) == comparable(detector);
    });
    if (isThere) continue;
    const Vex2Detector stored = StoredDetector(detector);
    requireStored(document.AppendDetectorInfo(&stored) == kSuccess, "detectors");
  }
}

void storeDyes(Vex2FileManager& document, const std::vector<std::string>& before,
               const std::vector<std::string>& after) {
  if (after == before) return;
  std::set<std::string_view> kept;
  for (const std::string& dye : after) {
    storedName(dye, "dye");
    if (!kept.insert(dye).second) refuseEdit(fmt::format("the dye '{}' is given twice", dye));
  }
  for (const std::string& dye : before) {
    if (!kept.contains(dye)) {
      document.RemoveRequiredDyeInfo(CString(std::string_view(StoredText(dye, "dye"))));
    }
  }
  // Appending a dye that the document has already does nothing.
  for (const std::string& dye : after) document.AppendRequiredDyenfo(storedName(dye, "dye"));
}

void storeCalibration(Vex2FileManager& document, const Calibration& before,
                      const Calibration& after) {
  Calibration changed;
  const auto compare = [](const auto& old, const auto& now, auto& change) {
    if (now == old) return;
    if (!now) refuseEdit("a part of the calibration can be replaced, but not removed");
    change = now;
  };
  compare(before.pureDyes, after.pureDyes, changed.pureDyes);
  compare(before.background, after.background, changed.background);
  if (!changed.IsEmpty()) StoreCalibration(document, changed);
}

const Setting& settingCalled(std::string_view name) {
  const auto& settings = Settings();
  const auto found = std::find_if(settings.begin(), settings.end(),
                                  [&](const Setting& one) { return one.key == name; });
  if (found != settings.end()) return *found;
  throw Error(ErrorCode::kUnknownSetting, fmt::format("unknown setting '{}'", name));
}

}  // namespace

class PlateEditor::Impl {
 public:
  Impl(std::string path, DocumentChange& change, Vex2FileManager& content)
      : path_(std::move(path)), change_(change), content_(content) {
    TakeStored();
  }

  const std::string& Path() const { return path_; }
  PlateValues& Values() { return values_; }
  const Vex2FileManager& Content() const { return content_; }

  template <typename Work>
  void Change(const Work& work) {
    Guarded(path_, [&] { change_.Change([&](Document&) { work(content_); }); });
  }

  void RequireSettable(const lab::Setting& setting) const {
    if (!content_.IsRQS() || setting.isOfStudies) return;
    refuseEdit(fmt::format("a study keeps no {} of its own; set it in a plate", setting.key));
  }

  // Store the wells first: this adds detectors and dyes, which the lists of detectors and dyes may
  // remove again.
  void Store() {
    const PlateValues before = comparable(before_);
    const PlateValues values = comparable(values_);
    if (values == before) return;
    if (content_.IsRQS()) refuseEdit("it is a study: change its plates instead");
    if (values.plate.wells != before.plate.wells) {
      StoreContents(content_, StoredContents(values_.plate, values_.detectors));
    }
    if (values.detectors != before.detectors) {
      storeDetectors(content_, before_.detectors, values_.detectors);
    }
    storeDyes(content_, before_.dyes, values_.dyes);
    storeCalibration(content_, before_.calibration, values_.calibration);
  }

  // Reads the values from the document again. After a save they are those that the caller set.
  void TakeStored() {
    before_ = PlateValues::Of(content_);
    values_ = before_;
  }

 private:
  std::string path_;
  DocumentChange& change_;
  Vex2FileManager& content_;
  PlateValues before_;  // the values in the document
  PlateValues values_;  // the values that the caller wants
};

PlateEditor::PlateEditor(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
PlateEditor::~PlateEditor() = default;

std::vector<Well>& PlateEditor::Wells() {
  return impl_->Values().plate.wells;
}

Well& PlateEditor::Well(std::string_view name) {
  const lab::Plate& plate = impl_->Values().plate;
  const auto number = PlateLayout{plate.rows, plate.columns}.FindAsWritten(name);
  if (!number) {
    throw Error(ErrorCode::kNoSuchWell, impl_->Path(),
                fmt::format("its plate has no well '{}'", name));
  }
  std::vector<lab::Well>& wells = Wells();
  auto place = std::find_if(wells.begin(), wells.end(),
                            [&](const lab::Well& well) { return well.number == *number; });
  if (place != wells.end()) return *place;
  place = std::find_if(wells.begin(), wells.end(),
                       [&](const lab::Well& well) { return well.number > *number; });
  return *wells.insert(
      place,
      {.number = *number, .name = WellName(*number, plate.columns), .sample = {}, .targets = {}});
}

std::vector<Detector>& PlateEditor::Detectors() {
  return impl_->Values().detectors;
}

std::vector<std::string>& PlateEditor::RequiredDyes() {
  return impl_->Values().dyes;
}

Calibration& PlateEditor::Calibration() {
  return impl_->Values().calibration;
}

Value PlateEditor::Setting(std::string_view name) const {
  return Guarded(impl_->Path(), [&] { return settingCalled(name).get(impl_->Content()); });
}

void PlateEditor::Set(std::string_view name, const Value& value) {
  impl_->Change([&](Vex2FileManager& content) {
    impl_->RequireSettable(settingCalled(name));
    StoreSetting(content, {std::string(name), value});
  });
}

std::string PlateEditor::Status() const {
  return ToUtf8(impl_->Content().GetAcquisitionStatus().View());
}

void PlateEditor::SetStatus(std::string_view code) {
  impl_->Change([&](Vex2FileManager& content) {
    RequireStatusCode(code, impl_->Path());
    StoreStatus(content, code);
  });
}

/// The document, and the editors of the plates that the caller asked for.
class DocumentEditor::Document {
 public:
  struct PlateOfStudy final : PlateEditor {
    explicit PlateOfStudy(std::unique_ptr<Impl> impl) : PlateEditor(std::move(impl)) {}
    using PlateEditor::impl_;
  };

  Document(std::filesystem::path given, const SaveRules& rules)
      : path(std::move(given)), change(path.string(), rules) {}

  std::filesystem::path path;
  DocumentChange change;
  std::map<const Vex2FileManager*, std::unique_ptr<PlateOfStudy>> plates;
};

DocumentEditor::DocumentEditor(const std::filesystem::path& path, const SaveRules& rules)
    : PlateEditor(nullptr) {
  Guarded(path.string(), [&] {
    document_ = std::make_unique<Document>(path, rules);
    Vex2FileManager& content = *document_->change.Read().Itself().content;
    impl_ = std::make_unique<Impl>(path.string(), document_->change, content);
  });
}

DocumentEditor::~DocumentEditor() = default;

const std::filesystem::path& DocumentEditor::Path() const {
  return document_->path;
}

std::vector<std::string> DocumentEditor::PlateNames() const {
  std::vector<std::string> names;
  for (const auto& plate : document_->change.Read().Plates()) names.push_back(ToUtf8(plate.name));
  return names;
}

PlateEditor& DocumentEditor::Plate(std::string_view name) {
  return Guarded(impl_->Path(), [&]() -> PlateEditor& {
    const lab::Document& read = document_->change.Read();
    const lab::Document::Plate* plate = FindPlate(read, name);
    if (plate == nullptr) RefusePlateName(read, name);
    auto& editor = document_->plates[plate->content];
    if (editor == nullptr) {
      editor = std::make_unique<Document::PlateOfStudy>(
          std::make_unique<Impl>(impl_->Path(), document_->change, *plate->content));
    }
    return *editor;
  });
}

void DocumentEditor::Save() {
  const auto forEach = [&](const auto& work) {
    work(*impl_);
    for (const auto& [content, plate] : document_->plates) work(*plate->impl_);
  };
  Guarded(impl_->Path(), [&] {
    document_->change.Change([&](lab::Document&) { forEach([](Impl& plate) { plate.Store(); }); });
    document_->change.Save();
    forEach([](Impl& plate) { plate.TakeStored(); });
  });
}

void SetRunStatus(const std::filesystem::path& path, std::string_view code) {
  const std::string name = path.string();
  Guarded(name, [&] {
    RequireStatusCode(code, name);
    const DocumentLock lock(name, DocumentLock::Holder::kCommand);
    DocumentFile().OpenDocument(name);
    WriteStatus(name, std::string(code));
  });
}

}  // namespace vex2::lab
