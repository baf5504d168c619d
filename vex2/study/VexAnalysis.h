#pragma once

#include "vex2/framework/CObject.h"
#include "vex2/framework/Export.h"
#include "vex2/study/IDAClippedMatrix.h"
#include "vex2/study/IDAMCMatrix.h"
#include "vex2/study/IDAMeltingPoints.h"
#include "vex2/study/ResultTable.h"

/// The results that analysis applications computed for the wells of one plate. Exists only in
/// memory. Owns the results and destroys those that it still holds.
class VEX2_API VexAnalysis : public CObject {
 public:
  /// Makes tables for `wellCount` wells, without results.
  explicit VexAnalysis(int wellCount);
  ~VexAnalysis() override;
  VexAnalysis(const VexAnalysis&) = delete;
  VexAnalysis& operator=(const VexAnalysis&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  vex2::ResultTable<IDAMCMatrix> mcData;                ///< multicomponent results
  vex2::ResultTable<IDAClippedMatrix> reporters;        ///< the first reporter results
  vex2::ResultTable<IDAClippedMatrix> secondReporters;  ///< the second reporter results
  vex2::ResultTable<IDAMeltingPoints> meltingData;      ///< melting points
};
