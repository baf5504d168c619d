// The plate setup, the plate's size, and which wells are in use.

#include <algorithm>
#include <limits>

#include "vex2/format/HeaderLayout.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/setup/CPlateSetupComp.h"

using vex2::kNotFound;
using vex2::kSuccess;

namespace {

constexpr int kMaxColumns = 32;  // bits of a row's mask

}  // namespace

CPlateSetupComp* Vex2FileManager::GetPlateSetupComp() const {
  for (const auto& component : state_->components) {
    if (component->IsPlateSetupComp()) return dynamic_cast<CPlateSetupComp*>(component.get());
  }
  return nullptr;
}

int Vex2FileManager::ReplacePlateSetup(const Vex2PlateSetup* setup) {
  return guarded(vex2::kWriteFailed, [&] {
    replaceComponent(setup != nullptr ? std::make_unique<CPlateSetupComp>(*setup)
                                      : std::make_unique<CPlateSetupComp>());
    return kSuccess;
  });
}

int Vex2FileManager::GetPlateSetupInfo(Vex2PlateSetup* setup) const {
  const CPlateSetupComp* component = GetPlateSetupComp();
  if (component == nullptr) return kNotFound;
  return guarded(vex2::kReadFailed, [&] {
    if (setup != nullptr) component->CopyTo(*setup);
    return kSuccess;
  });
}

int Vex2FileManager::WritePlateSetupComp() {
  const vex2::Operation operation(state_->store);
  if (!IsOpen()) {
    state_->store.Refuse(vex2::FileErrorReason::kNotOpen, vex2::FileOperation::kWrite);
    return vex2::kWriteFailed;
  }
  CPlateSetupComp* setup = GetPlateSetupComp();
  if (setup == nullptr) return kNotFound;
  return attempt(vex2::kWriteFailed, [&] {
    SeekToEnd();
    return setup->Write(this);
  });
}

int Vex2FileManager::SaveSetupInfo(const char* path) {
  const vex2::Operation operation(state_->store);
  if (GetThermocycleProgComp() == nullptr || GetPlateSetupComp() == nullptr) return kNotFound;
  return saveWhole(path, [this] {
    int status = WriteHeaderData(nullptr);
    if (status == kSuccess) status = WriteThermocycleComp();
    if (status == kSuccess) status = WritePlateSetupComp();
    if (status == kSuccess) status = UpdateThermocycleOffset(header_.thermocycleOffset);
    return status == kSuccess ? kSuccess : vex2::kWriteFailed;
  });
}

int Vex2FileManager::GetPlateSize() const {
  return vex2::WellsOfPlateType({header_.plateTypeCode, sizeof header_.plateTypeCode});
}

bool Vex2FileManager::SetUsageArray(const bool* usage, int rows, int columns) {
  return SetUsageArray(usage, rows, columns, header_);
}

bool Vex2FileManager::SetUsageArray(const bool* usage, int rows, int columns,
                                    Vex2HeaderData& header) {
  constexpr int kMaxRows = std::numeric_limits<std::uint16_t>::max();
  if (usage == nullptr || rows < 1 || rows > kMaxRows || columns < 1 || columns > kMaxColumns) {
    return false;
  }
  return guarded(vex2::kWriteFailed, [&] {
           header.SetRows(static_cast<std::uint16_t>(rows));
           for (int row = 0; row < rows; ++row) {
             for (int column = 0; column < columns; ++column) {
               const std::uint32_t bit = std::uint32_t{1} << static_cast<unsigned>(column);
               std::uint32_t& mask = header.usage[row];
               mask = *usage++ ? mask | bit : mask & ~bit;
             }
           }
           return kSuccess;
         }) == kSuccess;
}

bool Vex2FileManager::GetUsageArray(bool*& usage) const {
  const int columns = header_.columns;
  if (header_.usage == nullptr || header_.rows < 1 || columns < 1 || columns > kMaxColumns) {
    return false;
  }
  return guarded(vex2::kReadFailed, [&] {
           const std::uint16_t held = header_.GetMaskCount();
           bool* wells = new bool[static_cast<std::size_t>(header_.rows) * header_.columns];
           delete[] usage;
           usage = wells;
           for (int row = 0; row < header_.rows; ++row) {
             const std::uint32_t mask =
                 row < held ? header_.usage[row] : Vex2HeaderData::kTwelveWells;
             for (int column = 0; column < columns; ++column) {
               *wells++ = (mask >> static_cast<unsigned>(column) & 1U) != 0;
             }
           }
           return kSuccess;
         }) == kSuccess;
}
