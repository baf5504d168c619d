#include "tools/vex/command/DocumentExport.h"

#include <fmt/core.h>

#include <filesystem>

#include "lab/Text.h"
#include "lab/exchange/WideReadings.h"
#include "lab/json/WholeJson.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlWriterArchive.h"
#include "tools/vex/files/Output.h"

namespace vex2::tool {

std::string MeltingPath(const std::string& target) {
  const std::filesystem::path path(target);
  std::filesystem::path name = path.stem();
  name += "-melt";
  name += path.extension();
  return (path.parent_path() / name).string();
}

void DocumentExport::Run() {
  try {
    code_ = write();
  } catch (const Error& error) {
    error_ = error;
  }
}

ExitCode DocumentExport::Show() const {
  for (const std::string& line : lines_) PrintLine(line);
  if (error_) throw Error(*error_);
  return code_;
}

ExitCode DocumentExport::write() {
  const Document document(file_);
  const bool isCsv = form_.format == "csv";
  const auto blocks = isCsv ? findBlocks(document) : std::vector<ExportedBlock>();
  OutputFiles files(form_.isForced);
  files.Read(file_).Write(target_, OutputFiles::Kind::kTable);
  form_.losses.Claim(files);
  if (!isCsv) document.RequireWhole("exported");
  findCq();
  if (form_.format == "rdes") return writeRdes(document, files);
  files.Claim();
  const ExitCode code = isCsv                    ? writeCsv(document, blocks)
                        : form_.format == "rdml" ? writeRdml(document)
                                                 : writeJson(document);
  tellRun(document);
  code_ = code;
  document.RequireWhole("");
  return code;
}

void DocumentExport::findCq() {
  if (form_.cq.empty()) return;
  const auto method = form_.cq == "sdm" ? CqMethod::kSecondDerivative : CqMethod::kThreshold;
  analysis_ = AnalyseCq(RunReader(file_), {.method = method});
}

void DocumentExport::tellRun(const Document& document) {
  if (document.Content().IsAcquisitionProg())
    lines_.push_back(RunInProgressText(file_, "the table"));
}

ExitCode DocumentExport::tellLosses(const Losses& losses) {
  return form_.losses.Write(losses, file_, file_, target_, lines_);
}

ExitCode DocumentExport::writeCsv(const Document& document,
                                  const std::vector<ExportedBlock>& blocks) {
  if (form_.isWide) return writeWide(document);
  const bool ofPlates = form_.plate.IsAll(document);
  Output output(target_);
  Losses losses;
  if (form_.isRaw) {
    WriteStored(output.Stream(), blocks, ofPlates);
  } else {
    tellUnknown(WriteReadings(output.Stream(), blocks, ofPlates), losses);
  }
  output.Finish();
  return form_.losses.Report(losses, file_, target_);
}

ExitCode DocumentExport::writeWide(const Document& document) {
  const PlateSource source = SourceOf(form_.plate.One(document));
  Output output(target_);
  Losses losses;
  WriteWideReadings(output.Stream(), source, losses);
  output.Finish();
  return tellLosses(losses);
}

ExitCode DocumentExport::writeJson(const Document& document) {
  Output output(target_);
  const Losses losses = WriteWholeJson(output.Stream(), document, form_.format == "ndjson");
  output.Finish();
  return tellLosses(losses);
}

ExitCode DocumentExport::writeRdml(const Document& document) {
  auto plates = form_.plate.IsAll(document) ? document.Plates() : form_.plate.Choose(document);
  const bool embeds = !form_.hasNoDocument && !form_.plate.IsGiven();
  Output output(target_);
  const Losses losses = WriteRdml(output.Stream(), document, plates, embeds, analysis());
  output.Finish();
  return tellLosses(losses);
}

// A table holds one stage of one plate. If there is an amplification and a melting, the melting
// gets a separate file.
ExitCode DocumentExport::writeRdes(const Document& document, OutputFiles& files) {
  const Document::Plate plate = form_.plate.One(document);
  const PlateSource source = SourceOf(plate);
  const bool hasMelting = HasStage(source, true);
  const bool isMelting =
      form_.stage.empty() ? hasMelting && !HasStage(source, false) : form_.stage == "melt";
  const bool isSplit =
      form_.stage.empty() && hasMelting && !isMelting && !IsStandardStream(target_);
  const std::string second = MeltingPath(target_);
  if (isSplit) files.Write(second, OutputFiles::Kind::kTable);
  files.Claim();
  Losses losses;
  ListUntabled(plate, source, losses);
  writeTable(source, target_, isMelting, true, losses);
  if (isSplit) {
    writeTable(source, second, true, false, losses);
    lines_.push_back(Printable(second) + ": holds the melting");
  } else if (HasStage(source, !isMelting)) {
    losses.Add(isMelting ? "amplifications, which the other table holds"
                         : "meltings, which the other table holds",
               isMelting ? "--stage amplification" : "--stage melt");
  }
  tellRun(document);
  return tellLosses(losses);
}

void DocumentExport::writeTable(const PlateSource& source, const std::string& path, bool isMelting,
                                bool listsRest, Losses& losses) const {
  Output output(path);
  WriteRdes(output.Stream(), source, isMelting, listsRest, losses, analysis());
  output.Finish();
}

std::vector<ExportedBlock> DocumentExport::findBlocks(const Document& document) const {
  std::vector<ExportedBlock> blocks;
  for (const Document::Plate& plate : form_.plate.Choose(document)) {
    const AcquisitionDataComp* records = FindBlock(plate, form_.block);
    if (records != nullptr) blocks.push_back({plate, records, {*plate.content, form_.block}});
  }
  if (!blocks.empty()) return blocks;
  document.RequireWhole("");
  throw Error(ErrorCode::kDocument, file_, fmt::format("it has no data block \"{}\"", form_.block));
}

void DocumentExport::tellUnknown(const ExportCounts& counts, Losses& losses) {
  if (counts.unknown == 0) return;
  losses.Add("readings whose meaning is not known", "vex did not record them", counts.unknown);
  lines_.push_back(
      fmt::format("{}: leaves {} of {} empty: vex did not record them and does not know "
                  "their meaning; use --raw for the stored values",
                  Printable(file_), counts.unknown, Counted(counts.all, "reading")));
}

}  // namespace vex2::tool
