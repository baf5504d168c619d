#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/csv/ReadingsExport.h"
#include "lab/exchange/Losses.h"
#include "lab/exchange/PlateSource.h"
#include "lab/model/DocumentPlates.h"
#include "tools/vex/Lab.h"
#include "tools/vex/files/OutputFiles.h"
#include "tools/vex/options/LossOptions.h"
#include "tools/vex/options/PlateOption.h"

namespace vex2::tool {

/// What `vex export` is to make of each document.
struct ExportForm {
  std::string format = "csv";  ///< or "json", "ndjson", "rdes", "rdml"
  std::string block;           ///< the tag of the data block
  std::string stage;           ///< of rdes: "amplification" or "melt"; empty for both
  std::string cq;              ///< "threshold" or "sdm"; empty for no cycles
  bool isForced = false;       ///< existing files are replaced
  bool isRaw = false;
  bool isWide = false;
  bool hasNoDocument = false;
  PlateOption plate;
  LossOptions losses;
};

/// Where the melting of a document goes whose table is at `target`: beside it.
std::string MeltingPath(const std::string& target);

/// The export of one document. Different objects can work side by side.
class DocumentExport {
 public:
  /// Of the document at `file` to `target`, which is empty for standard output.
  DocumentExport(const ExportForm& form, std::string file, std::string target)
      : form_(form), file_(std::move(file)), target_(std::move(target)) {}

  /// Writes the target. Prints nothing else: what there is to say is kept for `Show`, and so is an
  /// error.
  void Run();
  /// Prints what there is to say on standard error, and throws the error that `Run` met.
  ExitCode Show() const;

 private:
  ExitCode write();
  void findCq();
  void tellRun(const Document& document);
  ExitCode tellLosses(const Losses& losses);
  ExitCode writeCsv(const Document& document, const std::vector<ExportedBlock>& blocks);
  ExitCode writeWide(const Document& document);
  ExitCode writeJson(const Document& document);
  ExitCode writeRdml(const Document& document);
  ExitCode writeRdes(const Document& document, OutputFiles& files);
  void writeTable(const PlateSource& source, const std::string& path, bool isMelting,
                  bool listsRest, Losses& losses) const;
  const CqAnalysis* analysis() const { return analysis_ ? &*analysis_ : nullptr; }
  std::vector<ExportedBlock> findBlocks(const Document& document) const;
  void tellUnknown(const ExportCounts& counts, Losses& losses);

  const ExportForm& form_;
  std::string file_;
  std::string target_;
  std::optional<CqAnalysis> analysis_;
  std::vector<std::string> lines_;
  ExitCode code_ = ExitCode::kDone;
  std::optional<Error> error_;
};

}  // namespace vex2::tool
