#include <fmt/core.h>

#include <filesystem>

#include "lab/Text.h"
#include "lab/csv/ReadingsExport.h"
#include "lab/exchange/PlateSource.h"
#include "lab/exchange/WideReadings.h"
#include "lab/json/WholeJson.h"
#include "lab/model/DocumentPlates.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlWriterArchive.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/LossOptions.h"
#include "tools/vex/options/PlateOption.h"

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
      : Command({"export", "Write a document in a format for other programs.",
                 "vex export run.vex --format csv\nvex export run.vex -o run.csv\n"
                 "vex export run.vex --format rdml -o run.rdml\n"
                 "vex export study.vex --plate plate1\nvex export run.vex --raw"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", file_, "The document").Require().Show("");
    options.Add("--format", format_, "csv (the default), json, ndjson, rdes or rdml")
        .AllowOnly({"csv", "json", "ndjson", "rdes", "rdml"})
        .Show("FORMAT");
    AddBlockOption(options, block_);
    plate_.AddTo(options);
    const Option raw =
        options.AddFlag("--raw", raw_, "csv: the stored values, whichever program wrote them");
    options.AddFlag("--wide", isWide_, "csv: a column for each well").Exclude(raw);
    options.Add("--cq", cq_, "rdml, rdes: find Cq by threshold or sdm, and write it")
        .AllowOnly({"threshold", "sdm"})
        .Show("METHOD");
    options.AddFlag("--no-embed", hasNoDocument_, "rdml: leave the document out of the file");
    options.Add("--stage", stage_, "rdes: amplification or melt; default with -o: both")
        .AllowOnly({"amplification", "melt"})
        .Show("STAGE");
    options.Add("-o,--output", target_, "File to write; standard output by default").Show("OUT");
    losses_.AddOptions(options);
    options.AddFlag("--force", force_, "Overwrite OUT if it exists");
    options.PutLast(kExportMeaning);
  }

  ExitCode Run() override {
    requireFormat(raw_, "--raw", "csv");
    requireFormat(isWide_, "--wide", "csv");
    requireFormat(hasNoDocument_, "--no-embed", "rdml");
    requireFormat(!stage_.empty(), "--stage", "rdes");
    const Document document(file_);
    const auto blocks = format_ == "csv" ? findBlocks(document) : std::vector<ExportedBlock>();
    OutputFiles files(force_);
    files.Read(file_).Write(target_, OutputFiles::Kind::kTable);
    losses_.Claim(files);
    if (format_ != "csv") document.RequireWhole("exported");
    findCq();
    if (format_ == "rdes") return writeRdes(document, files);
    files.Claim();
    const ExitCode code = format_ == "csv"    ? writeCsv(document, blocks)
                          : format_ == "rdml" ? writeRdml(document)
                                              : writeJson(document);
    tellRun(document);
    document.RequireWhole("");
    return code;
  }

 private:
  void requireFormat(bool isGiven, std::string_view option, std::string_view format) const {
    if (!isGiven || format_ == format) return;
    throw Error(ErrorCode::kUsage, fmt::format("{} has no effect on {}; it is for --format {}",
                                               option, format_, format));
  }

  void findCq() {
    if (cq_.empty()) return;
    if (format_ != "rdml" && format_ != "rdes") {
      throw Error(ErrorCode::kUsage, "--cq is for rdml and rdes; use 'vex cq' for a table");
    }
    const auto method = cq_ == "sdm" ? CqMethod::kSecondDerivative : CqMethod::kThreshold;
    analysis_ = AnalyseCq(RunReader(file_), {.method = method});
  }

  void tellRun(const Document& document) const {
    if (document.Content().IsAcquisitionProg()) PrintLine(RunInProgressText(file_, "the table"));
  }

  ExitCode writeCsv(const Document& document, const std::vector<ExportedBlock>& blocks) const {
    if (isWide_) return writeWide(document);
    const bool ofPlates = plate_.IsAll(document);
    Output output(target_);
    Losses losses;
    if (raw_) {
      WriteStored(output.Stream(), blocks, ofPlates);
    } else {
      tellUnknown(WriteReadings(output.Stream(), blocks, ofPlates), losses);
    }
    output.Finish();
    return losses_.Report(losses, file_, target_);
  }

  ExitCode writeWide(const Document& document) const {
    const PlateSource source = SourceOf(plate_.One(document));
    Output output(target_);
    Losses losses;
    WriteWideReadings(output.Stream(), source, losses);
    output.Finish();
    return losses_.Tell(losses, file_, file_, target_);
  }

  ExitCode writeJson(const Document& document) const {
    if (plate_.IsGiven()) {
      throw Error(ErrorCode::kUsage,
                  "--plate is not for json; take the plate out of the study "
                  "with 'vex study extract'");
    }
    Output output(target_);
    const Losses losses = WriteWholeJson(output.Stream(), document, format_ == "ndjson");
    output.Finish();
    return losses_.Tell(losses, file_, file_, target_);
  }

  ExitCode writeRdml(const Document& document) const {
    auto plates = plate_.IsAll(document) ? document.Plates() : plate_.Choose(document);
    const bool embeds = !hasNoDocument_ && !plate_.IsGiven();
    Output output(target_);
    const Losses losses = WriteRdml(output.Stream(), document, plates, embeds, analysis());
    output.Finish();
    return losses_.Tell(losses, file_, file_, target_);
  }

  // A table holds one stage of one plate. If there is an amplification and a melting, the melting
  // gets a separate file.
  ExitCode writeRdes(const Document& document, OutputFiles& files) const {
    const Document::Plate plate = plate_.One(document);
    const PlateSource source = SourceOf(plate);
    const bool hasMelting = HasStage(source, true);
    const bool isMelting =
        stage_.empty() ? hasMelting && !HasStage(source, false) : stage_ == "melt";
    const bool isSplit = stage_.empty() && hasMelting && !isMelting && !IsStandardStream(target_);
    const std::string second = meltingPath();
    if (isSplit) files.Write(second, OutputFiles::Kind::kTable);
    files.Claim();
    Losses losses;
    ListUntabled(plate, source, losses);
    writeTable(source, target_, isMelting, true, losses);
    if (isSplit) {
      writeTable(source, second, true, false, losses);
      PrintLine(Printable(second) + ": holds the melting");
    } else if (HasStage(source, !isMelting)) {
      losses.Add(isMelting ? "amplifications, which the other table holds"
                           : "meltings, which the other table holds",
                 isMelting ? "--stage amplification" : "--stage melt");
    }
    tellRun(document);
    return losses_.Tell(losses, file_, file_, target_);
  }

  void writeTable(const PlateSource& source, const std::string& path, bool isMelting,
                  bool listsRest, Losses& losses) const {
    Output output(path);
    WriteRdes(output.Stream(), source, isMelting, listsRest, losses, analysis());
    output.Finish();
  }

  const CqAnalysis* analysis() const { return analysis_ ? &*analysis_ : nullptr; }

  std::string meltingPath() const {
    const std::filesystem::path path(target_);
    std::filesystem::path name = path.stem();
    name += "-melt";
    name += path.extension();
    return (path.parent_path() / name).string();
  }

  std::vector<ExportedBlock> findBlocks(const Document& document) const {
    std::vector<ExportedBlock> blocks;
    for (const Document::Plate& plate : plate_.Choose(document)) {
      const AcquisitionDataComp* records = FindBlock(plate, block_);
      if (records != nullptr) blocks.push_back({plate, records, {*plate.content, block_}});
    }
    if (!blocks.empty()) return blocks;
    document.RequireWhole("");
    throw Error(ErrorCode::kDocument, file_, fmt::format("it has no data block \"{}\"", block_));
  }

  void tellUnknown(const ExportCounts& counts, Losses& losses) const {
    if (counts.unknown == 0) return;
    losses.Add("readings whose meaning is not known", "vex did not record them", counts.unknown);
    PrintLine(
        fmt::format("{}: leaves {} of {} empty: vex did not record them and does not know "
                    "their meaning; use --raw for the stored values",
                    Printable(file_), counts.unknown, Counted(counts.all, "reading")));
  }

  std::string file_;
  std::string format_ = "csv";
  std::string block_;
  std::string target_;
  bool force_ = false;
  PlateOption plate_;
  bool raw_ = false;
  bool hasNoDocument_ = false;
  std::string stage_;
  std::string cq_;
  std::optional<CqAnalysis> analysis_;
  bool isWide_ = false;
  LossOptions losses_;
};

}  // namespace

std::unique_ptr<Command> MakeExportCommand() {
  return std::make_unique<ExportCommand>();
}

}  // namespace vex2::tool
