#include "vex2/manager/Vex2FileManager.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/DescribeClass.h"
#include "vex2/framework/PathNames.h"
#include "vex2/manager/Module.h"
#include "vex2/manager/OrNothing.h"
#include "vex2/storage/FailedSyncs.h"

namespace {

const vex2::ModuleEntry moduleEntry;

}  // namespace

Vex2FileManager::Vex2FileManager() : failedSyncs_(std::make_unique<vex2::FailedSyncs>()) {}

Vex2FileManager::Vex2FileManager(const Vex2FileManager& other) : Vex2FileManager() {
  deepCopy(other);
}

Vex2FileManager& Vex2FileManager::operator=(const Vex2FileManager& other) {
  // Deliberately without a test for self-assignment: hosts rely on an empty document.
  Reset();
  ownAnalysis_.reset();
  copyOrStayEmpty(other);
  return *this;
}

Vex2FileManager::~Vex2FileManager() {
  resetSettings();
}

const CRuntimeClass* Vex2FileManager::ClassRecord() {
  static const CRuntimeClass record =
      vex2::DescribeClass<Vex2FileManager>("Vex2FileManager", CFile::ClassRecord());
  return &record;
}

const CRuntimeClass* Vex2FileManager::GetRuntimeClass() const {
  return ClassRecord();
}

CString Vex2FileManager::GetFileName() const {
  return vex2::OrNothing([this] { return CString(vex2::FileNameOf(filePath_.View())); });
}

CString Vex2FileManager::GetFileTitle() const {
  return vex2::OrNothing([this] { return CString(vex2::FileTitleOf(filePath_.View())); });
}

CString Vex2FileManager::GetFilePath() const {
  return vex2::OrNothing([this] { return filePath_; });
}

void Vex2FileManager::SetFilePath(const char* path) {
  vex2::OrNothing([&] { filePath_ = path; });
}

void Vex2FileManager::SetHeaderData(const Vex2HeaderData& header) {
  vex2::OrNothing([&] { header_ = header; });
}

int Vex2FileManager::Reset() {
  header_.Reset();
  components_.clear();
  partlyRead_ = {};
  ResetAnalysisMap();
  resetSettings();
  return vex2::kSuccess;
}

void Vex2FileManager::deepCopy(const Vex2FileManager& source) {
  header_ = source.header_;
  filePath_ = source.filePath_;
  partlyRead_ = source.partlyRead_;
  for (const auto& component : source.components_) {
    std::unique_ptr<CComponent> clone;
    if (CloneComponent(*component, clone) == 1) appendComponent(std::move(clone));
  }
}

void Vex2FileManager::copyOrStayEmpty(const Vex2FileManager& source) {
  try {
    deepCopy(source);
  } catch (const std::bad_alloc&) {
    // A part of the source would pass for all of it.
    Reset();
  }
}

int Vex2FileManager::GetAllComponentCount() const {
  return static_cast<int>(components_.size());
}

bool Vex2FileManager::GetComponentTagList(CStringList& tags) const {
  tags.RemoveAll();
  const bool done = vex2::OrNothing([&] {
    for (const auto& component : components_) tags.AddTail(CString(component->GetTag()));
    return true;
  });
  if (!done) tags.RemoveAll();
  return done;
}

CComponent* Vex2FileManager::GetComponent(int index) const {
  return index >= 0 && index < GetAllComponentCount()
             ? components_[static_cast<std::size_t>(index)].get()
             : nullptr;
}

void Vex2FileManager::initTestData() {
  vex2::OrNothing([this] {
    std::vector<std::unique_ptr<CComponent>> added;
    std::uint32_t length = 100;
    for (const auto tag : vex2::kTagTable) {
      added.push_back(std::make_unique<CSkippedComp>(tag, length--));
    }
    components_.reserve(components_.size() + added.size());
    header_ = Vex2HeaderData();
    std::move(added.begin(), added.end(), std::back_inserter(components_));
  });
}

bool Vex2FileManager::IsAcquisitionDataAvailable() const {
  return !IsAcquisitionZero() && header_.acquisitionDataOffset != 0;
}

CComponent* Vex2FileManager::includesComponent(std::string_view tag) const {
  for (const auto& component : components_) {
    if (component->GetTag() == tag) return component.get();
  }
  return nullptr;
}

void Vex2FileManager::RemoveComponent(CComponent* position) {
  if (position == nullptr) return;
  const auto found =
      std::find_if(components_.begin(), components_.end(),
                   [position](const auto& component) { return component.get() == position; });
  if (found != components_.end()) components_.erase(found);
}

void Vex2FileManager::appendComponent(std::unique_ptr<CComponent> component) {
  components_.push_back(std::move(component));
}

void Vex2FileManager::replaceComponent(std::unique_ptr<CComponent> component) {
  // Removed last, so that nothing is lost where there is no memory for the new one's place.
  CComponent* before = includesComponent(component->GetTag());
  appendComponent(std::move(component));
  RemoveComponent(before);
}
