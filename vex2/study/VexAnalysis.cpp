#include "vex2/study/VexAnalysis.h"

#include "vex2/framework/DescribeClass.h"

VexAnalysis::VexAnalysis(int wellCount)
    : mcData(wellCount), reporters(wellCount), secondReporters(wellCount), meltingData(wellCount) {}

VexAnalysis::~VexAnalysis() = default;

const CRuntimeClass* VexAnalysis::ClassRecord() {
  static const CRuntimeClass record =
      vex2::DescribeClass<VexAnalysis>("VexAnalysis", CObject::ClassRecord());
  return &record;
}

const CRuntimeClass* VexAnalysis::GetRuntimeClass() const {
  return ClassRecord();
}
