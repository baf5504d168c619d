#include <fmt/core.h>

#include <filesystem>
#include <memory>
#include <system_error>

#include "lab/SystemError.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/DocumentExport.h"
#include "tools/vex/options/FileArguments.h"

namespace vex2::tool {

namespace {

constexpr const char* kExportMeaning =
    "Formats:\n"
    "  csv   a row for each well and frame; with --wide a row for each frame\n"
    "  json  all values of the document as one object\n"
    "  ndjson  all values of the document, with a line for each frame\n"
    "  rdes  a table of one plate: a row for each well and target; the melting is\n"
    "        written to a second file, OUT-melt.tsv\n"
    "  rdml  RDML 1.3: samples, targets, program and readings, for other programs;\n"
    "        the file also contains the document, so that 'vex import' can restore\n"
    "        its bytes\n\n"
    "  Values that the format cannot hold are counted and listed on standard error.";

class ExportCommand final : public Command {
 public:
  ExportCommand()
      : Command({"export", "Write documents in a format for other programs.",
                 "vex export run.vex --format csv\nvex export run.vex -o run.csv\n"
                 "vex export run.vex --format rdml -o run.rdml\n"
                 "vex export -j 4 week/*.vex --format rdml -o tables/\n"
                 "vex export study.vex --plate plate1\nvex export run.vex --raw"}) {}

  void AddOptions(Options& options) override {
    files_.AddTo(options);
    options.Add("--format", form_.format, "csv (the default), json, ndjson, rdes or rdml")
        .AllowOnly({"csv", "json", "ndjson", "rdes", "rdml"})
        .Show("FORMAT");
    AddBlockOption(options, form_.block);
    form_.plate.AddTo(options);
    const Option raw = options.AddFlag("--raw", form_.isRaw,
                                       "csv: the stored values, whichever program wrote them");
    options.AddFlag("--wide", form_.isWide, "csv: a column for each well").Exclude(raw);
    options.Add("--cq", form_.cq, "rdml, rdes: find Cq by threshold or sdm, and write it")
        .AllowOnly({"threshold", "sdm"})
        .Show("METHOD");
    options.AddFlag("--no-embed", form_.hasNoDocument, "rdml: leave the document out of the file");
    options.Add("--stage", form_.stage, "rdes: amplification or melt; default with -o: both")
        .AllowOnly({"amplification", "melt"})
        .Show("STAGE");
    options.Add("-o,--output", target_, "File, or folder for several; default: standard output")
        .Show("OUT");
    form_.losses.AddOptions(options);
    options.AddFlag("--force", form_.isForced, "Overwrite OUT if it exists");
    options.PutLast(kExportMeaning);
  }

  ExitCode Run() override {
    requireFormat();
    const std::vector<std::string> files = files_.List();
    const bool isFolder = wantsFolder(files.size());
    if (isFolder) makeFolder(files);
    // A failure to write to standard output must end the command, which flushes it at the end.
    if (!isFolder) {
      DocumentExport work(form_, files.front(), target_);
      work.Run();
      return work.Show();
    }
    return files_.ForEach(files, [&](const std::string& file) -> FileArguments::Shown {
      const auto work = std::make_shared<DocumentExport>(form_, file, inFolder(file));
      work->Run();
      return [work] { return work->Show(); };
    });
  }

 private:
  void requireFormat() const {
    requireFormat(form_.isRaw, "--raw", "csv");
    requireFormat(form_.isWide, "--wide", "csv");
    requireFormat(form_.hasNoDocument, "--no-embed", "rdml");
    requireFormat(!form_.stage.empty(), "--stage", "rdes");
    if (!form_.cq.empty() && form_.format != "rdml" && form_.format != "rdes") {
      throw Error(ErrorCode::kUsage, "--cq is for rdml and rdes; use 'vex cq' for a table");
    }
    if (form_.plate.IsGiven() && (form_.format == "json" || form_.format == "ndjson")) {
      throw Error(ErrorCode::kUsage,
                  "--plate is not for json; take the plate out of the study "
                  "with 'vex study extract'");
    }
  }

  void requireFormat(bool isGiven, std::string_view option, std::string_view format) const {
    if (!isGiven || form_.format == format) return;
    throw Error(ErrorCode::kUsage, fmt::format("{} has no effect on {}; it is for --format {}",
                                               option, form_.format, format));
  }

  bool wantsFolder(std::size_t documents) const {
    if (documents == 1) return target_.ends_with('/');
    if (!IsStandardStream(target_)) return true;
    throw Error(ErrorCode::kUsage,
                "of several documents each gets a file of its own; name a folder with -o");
  }

  // Makes sure before anything is written that no two documents have the same file and that no file
  // is in the way.
  void makeFolder(const std::vector<std::string>& files) const {
    if (form_.losses.HasReport() && files.size() > 1) {
      throw Error(ErrorCode::kUsage, "--report is for one document; export them one by one");
    }
    std::error_code error;
    const bool isNew = std::filesystem::create_directories(target_, error);
    if (error) throw SystemError(target_, error.value());
    try {
      claimAll(files);
    } catch (const Error&) {
      if (isNew) std::filesystem::remove(target_, error);
      throw;
    }
  }

  void claimAll(const std::vector<std::string>& files) const {
    OutputFiles outputs(form_.isForced);
    for (const std::string& file : files) {
      outputs.Read(file).Write(inFolder(file), OutputFiles::Kind::kTable);
      if (form_.format != "rdes" || !form_.stage.empty()) continue;
      outputs.Write(MeltingPath(inFolder(file)), OutputFiles::Kind::kTable);
    }
    outputs.Claim();
  }

  // The file of a document: its own name with the ending of the format.
  std::string inFolder(const std::string& file) const {
    std::filesystem::path name = std::filesystem::path(file).stem();
    name += "." + (form_.format == "rdes" ? "tsv" : form_.format);
    return (std::filesystem::path(target_) / name).string();
  }

  FileArguments files_;
  std::string target_;
  ExportForm form_;
};

}  // namespace

std::unique_ptr<Command> MakeExportCommand() {
  return std::make_unique<ExportCommand>();
}

}  // namespace vex2::tool
