// Queries of the kind of run.

#include <array>

#include "vex2/manager/Vex2FileManager.h"

namespace {

struct AssayType {
  std::string_view code;
  int number;
};

constexpr int kRelativePlate = 1001;
constexpr int kRelativeStudy = 1002;

constexpr std::array<AssayType, 7> kAssayTypes = {{{"BGND", 950},
                                                   {"PDye", 951},
                                                   {"AbsQ", 1000},
                                                   {"RelQ", kRelativePlate},
                                                   {"RQSt", kRelativeStudy},
                                                   {"AllD", 1003},
                                                   {"+/- ", 1004}}};

}  // namespace

bool Vex2FileManager::IsAssayType(int type) const {
  const std::string_view code(header_.assayCode, sizeof header_.assayCode);
  for (const auto& row : kAssayTypes) {
    if (row.code == code) return row.number == type;
  }
  return type == 0;
}

bool Vex2FileManager::IsRQP() const {
  return IsAssayType(kRelativePlate);
}

bool Vex2FileManager::IsRQS() const {
  return IsAssayType(kRelativeStudy);
}
