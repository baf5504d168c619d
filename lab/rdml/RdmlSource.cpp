#include "lab/rdml/RdmlSource.h"

#include <fmt/core.h>

#include <algorithm>
#include <fstream>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/RawFile.h"
#include "lab/rdml/RdmlReader.h"
#include "lab/rdml/RdmlReaderRuns.h"
#include "lab/rdml/RdmlTerms.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kPieceSize = 1U << 16U;

}  // namespace

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
              fmt::format("is a ZIP archive without RDML: it has no member {}, and none of its {} "
                          "begins as RDML",
                          rdml::kMember, Counted(members.size(), "member")));
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
  const std::string expected = rdml::ChecksumComment(zip_->Members()[xml_].crc);
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
