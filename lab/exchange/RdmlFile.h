#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "lab/analysis/Cq.h"
#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/exchange/ZipArchive.h"
#include "lab/model/Document.h"

namespace vex2::lab {

/// Writes the plates of a document as an RDML archive of version 1.3 and lists what RDML cannot
/// hold. With `embeds` the document is in the archive, too, as it is in its file. `analysis`, of
/// the whole document, may be null.
Losses WriteRdml(std::ostream& out, const Document& document,
                 const std::vector<Document::Plate>& plates, bool embeds,
                 const CqAnalysis* analysis = nullptr);

/// An RDML file: the archive, or the XML alone.
class RdmlSource {
 public:
  /// What is known of the document in an archive.
  enum class Embedded {
    kNone,
    kCurrent,   ///< the XML is the one that was made of it
    kOutdated,  ///< another program has changed the XML since
  };

  /// Reads the list of the archive in the file at `path`. `name` is what errors call it.
  RdmlSource(std::string path, std::string name);
  /// Reads the list of the archive in `bytes`, which must outlive the object. `name` is what errors
  /// call it.
  RdmlSource(std::string_view bytes, std::string name);

  Embedded HasDocument() const;
  /// Hands `take` the bytes of the document in the archive.
  void ReadDocument(const std::function<void(std::string_view)>& take) const;

  /// The runs in the XML. Lists what no document can hold; with `merges`, runs that are parts of
  /// one plate become one, and `onMerged` is told their names.
  std::vector<ExchangedRun> ReadRuns(
      Losses& losses, bool merges,
      const std::function<void(const std::string&, const std::string&)>& onMerged) const;

 private:
  std::size_t findXml() const;
  bool beginsAsRdml(std::size_t member) const;
  void readXml(const std::function<bool(std::string_view)>& take) const;
  void listMembers(Losses& losses) const;

  std::string path_;  ///< of XML alone
  std::string_view bytes_;
  std::string name_;
  std::unique_ptr<ZipReader> zip_;  ///< null for XML alone
  std::size_t xml_ = 0;             ///< place of the member
};

/// Whether the bytes begin as an archive.
bool IsZip(std::string_view bytes);

}  // namespace vex2::lab
