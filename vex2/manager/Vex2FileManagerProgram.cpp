// The thermal cycling program.

#include "vex2/format/RecordKinds.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/run/ThermocycleProgramComp.h"

using vex2::Kind;
using vex2::kNotFound;
using vex2::kSuccess;
using vex2::TagOf;

int Vex2FileManager::GetThermocycleProgramInfo(ThermocycleProgram* program) const {
  const ThermocycleProgramComp* component = GetThermocycleProgComp();
  if (component == nullptr) return kNotFound;
  return guarded(vex2::kReadFailed, [&] {
    if (program != nullptr) component->CopyTo(*program);
    return kSuccess;
  });
}

int Vex2FileManager::ReplaceThermocycleProgram(const ThermocycleProgram* program) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(program != nullptr ? std::make_unique<ThermocycleProgramComp>(*program)
                                        : std::make_unique<ThermocycleProgramComp>());
    return kSuccess;
  });
}

ThermocycleProgramComp* Vex2FileManager::GetThermocycleProgComp() const {
  return find<ThermocycleProgramComp>(TagOf(Kind::kProgram));
}

int Vex2FileManager::WriteThermocycleComp() {
  const vex2::Operation operation(state_->store);
  if (!IsOpen()) {
    state_->store.Refuse(vex2::FileErrorReason::kNotOpen, vex2::FileOperation::kWrite);
    return vex2::kWriteFailed;
  }
  for (const auto& component : state_->components) {
    if (!component->IsThermocycleComp()) continue;
    return attempt(vex2::kWriteFailed, [&] {
      header_.thermocycleOffset = vex2::DocumentOffset(*this, SeekToEnd());
      return component->Write(this);
    });
  }
  return kNotFound;
}
