#include "lab/Error.h"
#include "lab/check/Check.h"
#include "lab/check/Repair.h"
#include "lab/model/DocumentEditor.h"
#include "lab/recover/Recover.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"

namespace vex2::python {

namespace {

py::object fromFinding(const lab::Finding& finding) {
  return Make("Finding", Text(lab::NameOf(finding.severity)), Text(finding.record), finding.offset,
              Text(finding.problem), Text(finding.consequence), Text(finding.remedy));
}

lab::OperationNames namesOfPython() {
  return {.repair = "vex2.repair",
          .recover = "vex2.recover",
          .resume = "vex2.record",
          .upgrade = "vex2.edit with upgrade_blocks=True",
          .read = "vex2.open",
          .setWells = "vex2.edit",
          .setStatus = "vex2.set_run_status"};
}

py::object check(const std::string& path) {
  lab::Findings findings;
  {
    const py::gil_scoped_release unlocked;
    findings = lab::Check(path, namesOfPython());
  }
  return Make("Findings", TupleOf(findings.list, fromFinding),
              findings.Count(lab::Severity::kError), findings.Count(lab::Severity::kWarning),
              findings.Count(lab::Severity::kNote));
}

py::object repair(const std::string& path, bool dryRun) {
  lab::RepairReport report;
  {
    const py::gil_scoped_release unlocked;
    report = lab::Repair(path, {.dryRun = dryRun});
  }
  const auto fromPatch = [](const lab::RepairPlan::Patch& patch) {
    return Make("Patch", patch.offset, patch.before, patch.after, Text(patch.what));
  };
  const std::string backup = report.backup.string();
  return Make("RepairReport", TupleOf(report.plan.patches, fromPatch), report.plan.size,
              OrNone(report.plan.newSize), Text(report.plan.cut), report.isRepaired,
              backup.empty() ? py::object(py::none()) : py::object(PathText(backup)));
}

// Calls the progress function of the caller. An exception in that function cancels the work and is
// raised again.
class Progress {
 public:
  explicit Progress(py::object call) : call_(std::move(call)) {}

  bool operator()(std::uint64_t done, std::uint64_t size) {
    const py::gil_scoped_acquire locked;
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    if (call_.is_none()) return true;
    const py::object answer = call_(done, size);
    return answer.is_none() || py::cast<bool>(answer);
  }

 private:
  py::object call_;
};

py::tuple fromNotes(const std::vector<lab::RecoverNote>& notes) {
  return TupleOf(notes, [](const lab::RecoverNote& note) {
    return Make("RecoverNote", note.offset, note.bytes, Text(note.what));
  });
}

py::object fromReport(const lab::RecoverReport& report) {
  return Make("RecoverReport", report.size, report.written, report.records, report.frames,
              report.plates, report.hasHeader, report.lostBytes, report.lostRecords,
              report.lostFrames, report.madeHeads, fromNotes(report.lost),
              fromNotes(report.corrected));
}

py::object recover(const std::string& path, const std::string& target, bool replace,
                   const py::object& call) {
  Progress progress(call);
  std::exception_ptr raised;
  const lab::RecoverOptions options{.replace = replace,
                                    .existsHint = "use replace=True to overwrite it",
                                    .progress = [&](std::uint64_t done, std::uint64_t size) {
                                      try {
                                        return progress(done, size);
                                      } catch (...) {
                                        raised = std::current_exception();
                                        return false;
                                      }
                                    }};
  lab::RecoverReport report;
  try {
    const py::gil_scoped_release unlocked;
    report = lab::Recover(path, target, options);
  } catch (const lab::Error&) {
    if (raised) std::rethrow_exception(raised);
    throw;
  }
  return fromReport(report);
}

}  // namespace

void BindChecks(py::module_& module) {
  module.def("check", &check, py::arg("path"));
  module.def(
      "set_run_status",
      [](const std::string& path, const std::string& code) {
        const py::gil_scoped_release unlocked;
        lab::SetRunStatus(path, code);
      },
      py::arg("path"), py::arg("code"));
  module.def("repair", &repair, py::arg("path"), py::arg("dry_run"));
  module.def("recover", &recover, py::arg("path"), py::arg("target"), py::arg("replace"),
             py::arg("progress"));
}

}  // namespace vex2::python
