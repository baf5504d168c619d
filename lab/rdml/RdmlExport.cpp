#include "lab/rdml/RdmlExport.h"

#include "lab/Guarded.h"
#include "lab/model/DocumentPlates.h"
#include "lab/rdml/RdmlWriterArchive.h"

namespace vex2::lab {

namespace {

std::vector<Document::Plate> platesOf(const Document& document, const RdmlOptions& options) {
  if (options.plate) {
    const Document::Plate* plate = FindPlate(document, *options.plate);
    if (plate == nullptr) RefusePlateName(document, *options.plate);
    return {*plate};
  }
  if (document.IsStudy()) return document.Plates();
  return {document.Itself()};
}

}  // namespace

Losses ExportRdml(const std::filesystem::path& path, std::ostream& out,
                  const RdmlOptions& options) {
  return Guarded(path.string(), [&] {
    const Document document(path.string());
    document.RequireWhole("exported");
    std::optional<CqAnalysis> analysis;
    if (options.cq) analysis = AnalyseCq(RunReader(path), {.method = *options.cq});
    return WriteRdml(out, document, platesOf(document, options),
                     options.embedsDocument && !options.plate, analysis ? &*analysis : nullptr);
  });
}

}  // namespace vex2::lab
