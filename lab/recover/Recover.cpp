#include "lab/recover/Recover.h"

#include <fmt/core.h>

#include "lab/Guarded.h"
#include "lab/model/OutputFiles.h"
#include "lab/model/RawFile.h"
#include "lab/recover/RecoverPass.h"

namespace vex2::lab {

namespace {

RecoverReport recover(const std::string& damaged, const std::string& target,
                      const RecoverOptions& options) {
  CFile in;
  OpenToRead(in, damaged);
  OutputFiles files(options.replace, options.existsHint);
  files.Read(damaged).Write(target, OutputFiles::Kind::kDocument).Claim();
  NewFile out(target);
  const std::uint64_t size = in.GetLength();
  const RecoverProgress progress = [&](std::uint64_t done) {
    if (!options.progress || options.progress(done, size)) return;
    throw Error(ErrorCode::kInterrupted, damaged, "interrupted; nothing was saved");
  };
  RecoverReport report = RecoverPass(in, out, progress).Run();
  if (!report.IsAnything()) {
    throw Error(
        ErrorCode::kUsage, damaged,
        fmt::format("there is nothing to recover: no record and no frame of a plate document "
                    "was found in its {} bytes",
                    report.size));
  }
  out.PutInPlace();
  return report;
}

}  // namespace

RecoverReport Recover(const std::filesystem::path& damaged, const std::filesystem::path& target,
                      const RecoverOptions& options) {
  return Guarded(damaged.string(),
                 [&] { return recover(damaged.string(), target.string(), options); });
}

}  // namespace vex2::lab
