#include "lab/exchange/RdmlFile.h"

#include <algorithm>
#include <fstream>

#include "lab/Error.h"
#include "lab/exchange/RdmlPlan.h"
#include "lab/exchange/RdmlReader.h"
#include "lab/exchange/RdmlRuns.h"
#include "lab/exchange/RdmlTerms.h"
#include "lab/exchange/RdmlText.h"
#include "lab/model/RawFile.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kPieceSize = 1U << 16U;

// The comment of the embedded document in the archive. It contains the checksum of the XML, so that
// an import finds out whether another program has changed the XML since.
std::string checksumComment(std::uint32_t checksum) {
  return std::string(rdml::kMember) + " " + std::to_string(checksum);
}

std::uint32_t checksumOf(const rdml::Plan& plan) {
  rdml::RdmlText text(plan);
  std::uint32_t checksum = 0;
  for (std::string piece; text.Next(piece);) checksum = ZipChecksum(checksum, piece);
  return checksum;
}

ZipWriter::NextPiece contentOf(const std::string& path) {
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
  rdml::RdmlText text(plan);
  zip.Add(std::string(rdml::kMember), [&](std::string& piece) { return text.Next(piece); });
  if (embeds) {
    zip.Add(std::string(rdml::kEmbedded), contentOf(document.Path()),
            checksumComment(checksumOf(plan)));
  }
  zip.Write(out, document.Path());
  return losses;
}

RdmlSource::RdmlSource(std::string path, std::string name)
    : path_(std::move(path)), name_(std::move(name)) {
  std::array<char, 4> head{};
  std::ifstream(path_, std::ios::binary).read(head.data(), head.size());
  if (!IsZip({head.data(), head.size()})) return;
  zip_ = std::make_unique<ZipReader>(path_, name_);
  xml_ = findXml();
}

RdmlSource::RdmlSource(std::string_view bytes, std::string name)
    : bytes_(bytes), name_(std::move(name)) {
  if (!IsZip(bytes)) return;
  zip_ = std::make_unique<ZipReader>(bytes, name_);
  xml_ = findXml();
}

// Finds the XML. Some programs give it another name; then it is the first member that begins like
// RDML.
std::size_t RdmlSource::findXml() const {
  if (const auto found = zip_->Find(rdml::kMember)) return *found;
  const auto& members = zip_->Members();
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (members[i].name != rdml::kEmbedded && beginsAsRdml(i)) return i;
  }
  throw Error(ErrorCode::kDocument, name_,
              "is a ZIP archive without RDML: it has no member " + std::string(rdml::kMember) +
                  ", and none of its " + std::to_string(members.size()) +
                  " members begins as RDML");
}

bool RdmlSource::beginsAsRdml(std::size_t member) const {
  constexpr std::size_t kHead = 4096;
  std::string head;
  try {
    zip_->Read(member, [&](std::string_view piece) {
      head += piece.substr(0, kHead - head.size());
      return head.size() < kHead;
    });
  } catch (const Error&) {
    return false;
  }
  // In UTF-16 every other byte is 0.
  std::erase(head, '\0');
  return head.find("<rdml") != std::string::npos || head.find(":rdml") != std::string::npos;
}

RdmlSource::Embedded RdmlSource::HasDocument() const {
  const auto member = zip_ ? zip_->Find(rdml::kEmbedded) : std::nullopt;
  if (!member) return Embedded::kNone;
  const std::string expected = checksumComment(zip_->Members()[xml_].crc);
  return zip_->Members()[*member].comment == expected ? Embedded::kCurrent : Embedded::kOutdated;
}

void RdmlSource::ReadDocument(const std::function<void(std::string_view)>& take) const {
  zip_->Read(zip_->Find(rdml::kEmbedded).value(), [&](std::string_view piece) {
    take(piece);
    return true;
  });
}

void RdmlSource::readXml(const std::function<bool(std::string_view)>& take) const {
  if (zip_) return zip_->Read(xml_, take);
  if (path_.empty()) {
    for (std::string_view rest = bytes_; !rest.empty();) {
      const std::string_view piece = rest.substr(0, kPieceSize);
      if (!take(piece)) return;
      rest.remove_prefix(piece.size());
    }
    return;
  }
  CFile file;
  OpenToRead(file, path_);
  std::string piece(kPieceSize, '\0');
  while (const auto size = file.Read(piece.data(), static_cast<unsigned>(kPieceSize))) {
    if (!take(std::string_view(piece).substr(0, size))) return;
  }
}

void RdmlSource::listMembers(Losses& losses) const {
  if (!zip_) return;
  const auto& members = zip_->Members();
  for (std::size_t i = 0; i < members.size(); ++i) {
    if (i != xml_ && members[i].name != rdml::kEmbedded) {
      losses.Add("further members of the archive", "'" + members[i].name + "'");
    }
  }
}

std::vector<ExchangedRun> RdmlSource::ReadRuns(
    Losses& losses, bool merges,
    const std::function<void(const std::string&, const std::string&)>& onMerged) const {
  const std::string member = zip_ ? ": " + zip_->Members()[xml_].name : std::string();
  rdml::Content content;
  {
    rdml::RdmlReader reader(name_ + member, losses);
    readXml([&](std::string_view piece) {
      reader.Feed(piece);
      return true;
    });
    content = reader.Finish();
  }
  listMembers(losses);
  if (merges) rdml::MergeParts(content, onMerged);
  return rdml::RunsOf(content, name_ + member, losses);
}

bool IsZip(std::string_view bytes) {
  return bytes.starts_with(std::string_view("PK\3\4")) ||
         bytes.starts_with(std::string_view("PK\5\6"));
}

}  // namespace vex2::lab
