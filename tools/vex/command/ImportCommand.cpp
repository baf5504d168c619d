#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "lab/Text.h"
#include "lab/import/Import.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/LossOptions.h"

namespace vex2::tool {

namespace {

constexpr const char* kImportMeaning =
    "What it does:\n"
    "  A file with several runs becomes OUT-1.vex, OUT-2.vex and so on, or with\n"
    "  --study one study. From an RDML file of 'vex export', the original document is\n"
    "  restored.\n\n"
    "  Values that the documents cannot hold unchanged are counted and listed on\n"
    "  standard error. Readings are stored in 16 bits, with the scale that loses\n"
    "  least.\n\n"
    "  If a reading has no temperature or no time, 0 is stored.";

// A temporary folder for a document that is then copied to standard output.
class PassingFolder {
 public:
  PassingFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vex-import-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw SystemError(name, errno);
    path_ = name;
  }
  ~PassingFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  PassingFolder(const PassingFolder&) = delete;
  PassingFolder& operator=(const PassingFolder&) = delete;

  std::filesystem::path DocumentPath() const { return path_ / "document.vex"; }

 private:
  std::filesystem::path path_;
};

class ImportCommand final : public Command {
 public:
  ImportCommand()
      : Command({"import", "Make documents from the runs in a file of another program.",
                 "vex import run.rdml -o run.vex\n"
                 "vex import plates.rdml -o study.vex --study\n"
                 "curl https://example.org/run.rdml | vex import - -o run.vex --strict"}) {}

  void AddOptions(Options& options) override {
    options.Add("IN", source_, "The file to read; - is standard input").Require().Show("");
    options.Add("-o,--output", target_, "The document to write; - is standard output")
        .Require()
        .Show("OUT");
    options.Add("--from", format_, "rdml, rdes, json or csv; default: from the content")
        .AllowOnly({"rdml", "rdes", "json", "csv"})
        .Show("FORMAT");
    options.AddFlag("--study", import_.study, "Make one study of all runs");
    options.AddFlag("--separate", import_.separate, "Do not join runs that are parts of one plate");
    const Option embedded =
        options.AddFlag("--embedded", isEmbedded_, "Use the document in the RDML file in any case");
    options.AddFlag("--no-embedded", isNotEmbedded_, "Ignore the document in the RDML file")
        .Exclude(embedded);
    losses_.AddOptions(options);
    options.AddFlag("--force", import_.replace, "Overwrite OUT if it exists");
    options.PutLast(kImportMeaning);
  }

  ExitCode Run() override {
    if (!format_.empty()) import_.format = ImportFormatOf(format_);
    if (isEmbedded_) import_.embedded = ImportOptions::Embedded::kAlways;
    if (isNotEmbedded_) import_.embedded = ImportOptions::Embedded::kNever;
    import_.existsHint = "use --force to overwrite it";
    OutputFiles files(import_.replace);
    files.Read(source_);
    losses_.Claim(files);
    files.Claim();
    if (target_ == "-") return passOn();
    const std::string replaced = ReplacedText(target_, import_.replace);
    const ImportReport report = Import(source_, target_, import_);
    PrintIfAny(replaced);
    for (const std::string& note : report.notes) PrintLine(Printable(about()) + ": " + note);
    for (const ImportedDocument& made : report.documents) tell(made);
    return losses_.Tell(report.losses, about(), source_, target_);
  }

 private:
  std::string about() const { return source_ == "-" ? "standard input" : source_; }

  ExitCode passOn() const {
    const PassingFolder folder;
    const ImportReport report = Import(source_, folder.DocumentPath(), import_);
    const std::size_t count = report.documents.size();
    if (count > 1 && !import_.study) {
      throw Error(ErrorCode::kUsage,
                  about() + ": holds " + std::to_string(count) +
                      " runs, and standard output takes one document; make one of them with "
                      "--study, or name a file with -o");
    }
    for (const std::string& note : report.notes) PrintLine(Printable(about()) + ": " + note);
    Output output("-");
    output.Stream() << std::ifstream(folder.DocumentPath(), std::ios::binary).rdbuf();
    output.Finish();
    return losses_.Tell(report.losses, about(), source_, target_);
  }

  void tell(const ImportedDocument& made) const {
    std::cout << Printable(made.path.string());
    if (!made.run.empty()) std::cout << ": run '" << Printable(made.run) << "'";
    std::cout << (made.run.empty() ? ": " : ", ") << Counted(made.wells, "well") << ", "
              << Counted(made.frames, "frame") << '\n';
  }

  std::string source_;
  std::string target_;
  std::string format_;
  bool isEmbedded_ = false;
  bool isNotEmbedded_ = false;
  ImportOptions import_;
  LossOptions losses_;
};

}  // namespace

std::unique_ptr<Command> MakeImportCommand() {
  return std::make_unique<ImportCommand>();
}

}  // namespace vex2::tool
