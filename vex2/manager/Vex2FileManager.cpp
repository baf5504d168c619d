#include "vex2/manager/Vex2FileManager.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/DescribeClass.h"
#include "vex2/framework/PathNames.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/Module.h"
#include "vex2/manager/OrNothing.h"

namespace {

const vex2::ModuleEntry moduleEntry;

}  // namespace

Vex2FileManager::Vex2FileManager() : state_(std::make_unique<State>(*this)) {}

Vex2FileManager::Vex2FileManager(const Vex2FileManager& other) : Vex2FileManager() {
  deepCopy(other);
}

Vex2FileManager& Vex2FileManager::operator=(const Vex2FileManager& other) {
  // Deliberately no test for self-assignment: hosts rely on `document = document` to empty the
  // document.
  Reset();
  ownAnalysis_.reset();
  copyOrStayEmpty(other);
  return *this;
}

Vex2FileManager::~Vex2FileManager() = default;

const CRuntimeClass* Vex2FileManager::ClassRecord() {
  static const CRuntimeClass record =
      vex2::DescribeClass<Vex2FileManager>("Vex2FileManager", CFile::ClassRecord());
  return &record;
}

const CRuntimeClass* Vex2FileManager::GetRuntimeClass() const {
  return ClassRecord();
}

CString Vex2FileManager::GetFileName() const {
  return vex2::OrNothing([this] { return CString(vex2::FileNameOf(state_->store.Path().View())); });
}

CString Vex2FileManager::GetFileTitle() const {
  return vex2::OrNothing(
      [this] { return CString(vex2::FileTitleOf(state_->store.Path().View())); });
}

CString Vex2FileManager::GetFilePath() const {
  return vex2::OrNothing([this] { return state_->store.Path(); });
}

void Vex2FileManager::SetFilePath(const char* path) {
  vex2::OrNothing([&] { state_->store.SetPath(path); });
}

void Vex2FileManager::SetHeaderData(const Vex2HeaderData& header) {
  vex2::OrNothing([&] { header_ = header; });
}

int Vex2FileManager::Reset() {
  header_.Reset();
  state_->components.Clear();
  state_->partlyRead = {};
  ResetAnalysisMap();
  state_->settings.Reset();
  return vex2::kSuccess;
}

void Vex2FileManager::deepCopy(const Vex2FileManager& source) {
  header_ = source.header_;
  state_->store.SetPath(source.state_->store.Path());
  state_->partlyRead = source.state_->partlyRead;
  for (const auto& component : source.state_->components) {
    std::unique_ptr<CComponent> clone;
    if (CloneComponent(*component, clone) == 1) appendComponent(std::move(clone));
  }
}

void Vex2FileManager::copyOrStayEmpty(const Vex2FileManager& source) {
  try {
    deepCopy(source);
  } catch (const std::bad_alloc&) {
    // An incomplete copy would look like the whole document.
    Reset();
  }
}

int Vex2FileManager::GetAllComponentCount() const {
  return static_cast<int>(state_->components.All().size());
}

bool Vex2FileManager::GetComponentTagList(CStringList& tags) const {
  tags.RemoveAll();
  const bool done = vex2::OrNothing([&] {
    for (const auto& component : state_->components) tags.AddTail(CString(component->GetTag()));
    return true;
  });
  if (!done) tags.RemoveAll();
  return done;
}

CComponent* Vex2FileManager::GetComponent(int index) const {
  return index >= 0 && index < GetAllComponentCount()
             ? state_->components.All()[static_cast<std::size_t>(index)].get()
             : nullptr;
}

void Vex2FileManager::initTestData() {
  vex2::OrNothing([this] {
    std::vector<std::unique_ptr<CComponent>> added;
    std::uint32_t length = 100;
    for (const auto tag : vex2::kTagTable) {
      added.push_back(std::make_unique<CSkippedComp>(tag, length--));
    }
    state_->components.Append(std::move(added));
    header_ = Vex2HeaderData();
  });
}

bool Vex2FileManager::IsAcquisitionDataAvailable() const {
  return !IsAcquisitionZero() && header_.acquisitionDataOffset != 0;
}

CComponent* Vex2FileManager::includesComponent(std::string_view tag) const {
  return state_->components.Find(tag);
}

void Vex2FileManager::RemoveComponent(CComponent* position) {
  state_->components.Remove(position);
}

void Vex2FileManager::appendComponent(std::unique_ptr<CComponent> component) {
  state_->components.Append(std::move(component));
}

void Vex2FileManager::replaceComponent(std::unique_ptr<CComponent> component) {
  state_->components.Replace(std::move(component));
}

const vex2::FileError& Vex2FileManager::GetLastFileError() const {
  return state_->store.Errors().Get();
}

namespace vex2 {

CComponent* ComponentList::Find(std::string_view tag) const {
  for (const auto& component : components_) {
    if (component->GetTag() == tag) return component.get();
  }
  return nullptr;
}

void ComponentList::Append(std::unique_ptr<CComponent> component) {
  components_.push_back(std::move(component));
}

void ComponentList::Append(std::vector<std::unique_ptr<CComponent>> components) {
  components_.reserve(components_.size() + components.size());
  std::move(components.begin(), components.end(), std::back_inserter(components_));
}

void ComponentList::replace(std::unique_ptr<CComponent> component) {
  // Remove the old component last, so that it is not lost if memory for the new one runs out.
  const CComponent* before = Find(component->GetTag());
  Append(std::move(component));
  Remove(before);
}

void ComponentList::Remove(const CComponent* component) {
  if (component == nullptr) return;
  const auto found =
      std::find_if(components_.begin(), components_.end(),
                   [component](const auto& held) { return held.get() == component; });
  if (found != components_.end()) components_.erase(found);
}

}  // namespace vex2
