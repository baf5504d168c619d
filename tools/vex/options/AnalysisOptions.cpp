#include "tools/vex/options/AnalysisOptions.h"

#include "tools/vex/Errors.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

void AnalysisOptions::AddTo(Options& options) {
  options.Add("--detector", detector, "Analyse only this detector; all by default").Show("NAME");
  options.Add("--plate", plate, "Only this plate of a study; all by default").Show("NAME");
  options.Add("--format", format, "table (the default), csv or json")
      .AllowOnly({"table", "csv", "json"})
      .Show("NAME");
}

RunReader AnalysisOptions::Open(const std::string& path) const {
  const RunReader run(path);
  return plate ? run.Plate(*plate) : run;
}

void RequireWhole(const RunReader& run) {
  if (run.IsWhole()) return;
  const FileFault& fault = run.Faults().front();
  throw Error(ErrorCode::kDocument, run.Path().string(), fault.what, fault.offset);
}

Error WithDamage(const RunReader& run, const Error& error) {
  if (run.IsWhole() || error.Code() != ErrorCode::kDocument) return error;
  const FileFault& fault = run.Faults().front();
  return {ErrorCode::kDocument, run.Path().string(),
          error.Message() + "; part of it was not read: " + fault.what, fault.offset};
}

}  // namespace vex2::tool
