#include "lab/rdml/RdmlWriterArchive.h"

#include <memory>
#include <string>

#include "lab/exchange/PlateSource.h"
#include "lab/model/RawFile.h"
#include "lab/rdml/RdmlTerms.h"
#include "lab/rdml/RdmlWriter.h"
#include "lab/rdml/RdmlWriterPlan.h"
#include "lab/rdml/ZipArchive.h"

namespace vex2::lab {

namespace {

std::uint32_t checksumOf(const rdml::Plan& plan) {
  rdml::RdmlWriter text(plan);
  std::uint32_t checksum = 0;
  for (std::string piece; text.Next(piece);) checksum = ZipChecksum(checksum, piece);
  return checksum;
}

ZipWriter::NextPiece contentOf(const std::string& path) {
  constexpr std::size_t kPieceSize = 1U << 16U;
  auto file = std::make_shared<CFile>();
  OpenToRead(*file, path);
  return [file](std::string& piece) {
    piece.resize(kPieceSize);
    piece.resize(file->Read(piece.data(), static_cast<unsigned>(kPieceSize)));
    return !piece.empty();
  };
}

}  // namespace

Losses WriteRdml(std::ostream& out, const Document& document,
                 const std::vector<Document::Plate>& plates, bool embeds,
                 const CqAnalysis* analysis) {
  Losses losses;
  std::vector<PlateSource> sources;
  for (const Document::Plate& plate : plates) {
    sources.push_back(SourceOf(plate));
    ListUntabled(plate, sources.back(), losses);
  }
  ListBesidePlates(document, losses);
  std::vector<const PlateSource*> places;
  for (const PlateSource& source : sources) places.push_back(&source);
  const rdml::Plan plan = rdml::PlanOf(places, losses, analysis);
  ZipWriter zip;
  rdml::RdmlWriter text(plan);
  zip.Add(std::string(rdml::kMember), [&](std::string& piece) { return text.Next(piece); });
  losses.hasDocument = embeds;
  if (embeds) {
    zip.Add(std::string(rdml::kEmbedded), contentOf(document.Path()),
            rdml::ChecksumComment(checksumOf(plan)));
  }
  zip.Write(out, document.Path());
  return losses;
}

}  // namespace vex2::lab
