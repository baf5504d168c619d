// Input: a byte that chooses a format, and a file of that format: an RDML archive, RDML as XML
// alone, an RDES table, JSON, or a CSV file of readings. Invariant: input that can be read becomes
// a document that can be read whole and has as many frames as were stored.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/Require.h"
#include "lab/Error.h"
#include "lab/import/CsvRun.h"
#include "lab/import/Import.h"
#include "lab/import/StoredRun.h"
#include "lab/json/WholeJson.h"
#include "lab/model/Document.h"
#include "lab/rdml/Rdes.h"
#include "lab/rdml/RdmlSource.h"

namespace vex2::fuzz {
namespace {

using namespace lab;

constexpr std::size_t kMostCells = 200'000;  // readings of a document: limits the time of an input

const std::string& documentPath() {
  static const std::string path =
      (std::filesystem::temp_directory_path() / ("fuzz-exchange-" + std::to_string(::getpid())))
          .string();
  return path;
}

void storeAll(std::vector<ExchangedRun> runs, Losses& losses) {
  for (ExchangedRun& run : runs) {
    std::size_t cells = 0;
    for (const Curve& curve : run.curves) cells += curve.readings.size();
    if (cells > kMostCells) continue;
    DocumentFile document;
    StoreRun(std::move(run), "input", losses, document);
    Require(document.SaveToFile(documentPath().c_str()) == kSuccess, "the document is saved");
    const Document back(documentPath());
    Require(!back.Fault(), "an imported document reads back whole");
    Require(back.Content().GetDataFrameCount(DataRAWa) == document.GetDataFrameCount(DataRAWa),
            "all frames come back");
  }
}

void readRdml(std::string_view content, Losses& losses) {
  const RdmlSource source(content, "input");
  std::size_t size = 0;
  if (source.HasDocument() != RdmlSource::Embedded::kNone) {
    source.ReadDocument([&](std::string_view piece) { size += piece.size(); });
  }
  storeAll(source.ReadRuns(losses, true, [](const std::string&, const std::string&) {}), losses);
}

void readCsv(std::string_view content, Losses& losses) {
  std::ofstream(documentPath(), std::ios::binary) << content;
  std::vector<ExchangedRun> runs;
  runs.push_back(ReadCsvRun(documentPath(), "input"));
  storeAll(std::move(runs), losses);
}

void readJson(std::string_view content) {
  DocumentFile document;
  ReadWholeJson(content, "input", document);
  // A few bytes can declare a run of many frames of a large plate.
  if (document.GetDataFrameCount(DataRAWa) > 100) return;
  if (document.SaveToFile(documentPath().c_str()) != kSuccess) return;
  Require(Document(documentPath()).Size() > 0, "a document was saved");
}

}  // namespace
}  // namespace vex2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vex2::fuzz;
  if (size == 0) return 0;
  const std::string_view content(reinterpret_cast<const char*>(data) + 1, size - 1);
  vex2::lab::Losses losses;
  try {
    if (data[0] == 't') {
      std::vector<vex2::lab::ExchangedRun> runs;
      runs.push_back(vex2::lab::ReadRdes(content, "input", losses));
      storeAll(std::move(runs), losses);
    } else if (data[0] == 'c') {
      readCsv(content, losses);
    } else if (data[0] == 'j') {
      readJson(content);
    } else {
      readRdml(content, losses);
    }
  } catch (const vex2::lab::Error& error) {
    Require(!std::string(error.what()).empty(), "an error says why");
  }
  return 0;
}
