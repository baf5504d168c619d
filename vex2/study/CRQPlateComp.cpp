#include "vex2/study/CRQPlateComp.h"

#include <new>
#include <utility>

#include "vex2/container/Status.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

using vex2::Kind;
using vex2::TagOf;

namespace {

constexpr std::uint32_t kEmptyListLength = 2;  // the count

}  // namespace

CRQPlateComp::CRQPlateComp() : CContainerComp(TagOf(Kind::kPlate)) {}

CRQPlateComp::~CRQPlateComp() = default;

void CRQPlateComp::SetPlate(const CString& name, const Vex2FileManager& plate,
                            const CString& date) {
  auto copy = std::make_unique<Vex2FileManagerComponent>(plate);
  const bool isNamed = copy->AppendPlateName(name) == vex2::kSuccess &&
                       copy->AppendLastModifiedDate(date) == vex2::kSuccess;
  if (!isNamed) throw std::bad_alloc();
  CString keptName = name;
  CString keptDate = date;
  name_ = std::move(keptName);
  date_ = std::move(keptDate);
  plate_ = std::move(copy);
}

CComponent& CRQPlateComp::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const CRQPlateComp*>(&source);
  if (same == nullptr || same == this) return *this;
  CContainerComp::Assign(source);
  name_ = same->name_;
  date_ = same->date_;
  plate_ =
      same->plate_ != nullptr ? std::make_unique<Vex2FileManagerComponent>(*same->plate_) : nullptr;
  return *this;
}

int CRQPlateComp::WriteChildren(CFile* file) {
  if (file == nullptr) return vex2::kWriteFailed;
  // Without a plate, the record and the study around it could not be read, so write an empty one.
  if (plate_ == nullptr) plate_ = std::make_unique<Vex2FileManagerComponent>();
  return plate_->writePlate(*file);
}

int CRQPlateComp::ReadChildren(CFile* file) {
  if (file == nullptr) return vex2::kReadFailed;
  if (plate_ == nullptr) plate_ = std::make_unique<Vex2FileManagerComponent>();
  // The list is always empty, so length and count from the file are ignored.
  setCount(0);
  setLength(kEmptyListLength);
  const int status = plate_->readPlate(*file);
  name_.Empty();
  date_.Empty();
  const int named = plate_->GetPlateName(name_);
  const int dated = plate_->GetLastModifiedDate(date_);
  if (status != vex2::kSuccess) return status;
  return named != vex2::kSuccess ? named : dated;
}
