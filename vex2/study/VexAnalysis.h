#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/study/IDAClippedMatrix.h"
#include "vex2/study/IDAMCMatrix.h"
#include "vex2/study/IDAMeltingPoints.h"
#include "vex2/study/ResultTable.h"

/// What analysis applications computed for the wells of one plate, in memory only. Owns it: every
/// result that is still there is destroyed with this.
class VEX2_API VexAnalysis : public CObject {
 public:
  /// Tables of `wellCount` places without results.
  explicit VexAnalysis(int wellCount);
  ~VexAnalysis() override;
  VexAnalysis(const VexAnalysis&) = delete;
  VexAnalysis& operator=(const VexAnalysis&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  vex2::ResultTable<IDAMCMatrix> mcData;
  vex2::ResultTable<IDAClippedMatrix> reporters;
  vex2::ResultTable<IDAClippedMatrix> secondReporters;
  vex2::ResultTable<IDAMeltingPoints> meltingData;
};
