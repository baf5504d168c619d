#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lab/exchange/ExchangedRun.h"
#include "lab/exchange/Losses.h"
#include "lab/rdml/ZipArchive.h"

namespace vex2::lab {

/// An RDML file to read: an archive, or XML alone. `RdmlReader` reads the XML, `MergeParts` joins
/// the parts of a run, and `RunsOf` makes the runs.
class RdmlSource {
 public:
  /// The state of the document in an archive.
  enum class Embedded {
    kNone,
    kCurrent,   ///< the XML was made from the document
    kOutdated,  ///< another program has changed the XML since it was made
  };

  /// Reads the list of the archive in the file at `path`. Errors call the file `name`.
  RdmlSource(std::string path, std::string name);
  /// Reads the list of the archive in `bytes`, which must outlive the object. Errors call the file
  /// `name`.
  RdmlSource(std::string_view bytes, std::string name);

  Embedded HasDocument() const;
  /// Calls `take` with the bytes of the document in the archive, piece by piece.
  void ReadDocument(const std::function<void(std::string_view)>& take) const;

  /// Reads the runs in the XML, and lists what no document can hold. If `merges`, runs that are
  /// parts of one plate are joined, and `onMerged` is called with their names.
  std::vector<ExchangedRun> ReadRuns(
      Losses& losses, bool merges,
      const std::function<void(const std::string&, const std::string&)>& onMerged) const;

 private:
  std::size_t findXml() const;
  bool beginsAsRdml(std::size_t member) const;
  void readXml(const std::function<bool(std::string_view)>& take) const;
  void listMembers(Losses& losses) const;

  std::string path_;  ///< empty if the file is in memory
  std::string_view bytes_;
  std::string name_;
  std::unique_ptr<ZipReader> zip_;  ///< null for XML alone
  std::size_t xml_ = 0;             ///< index of the XML in the archive
};

/// Whether the bytes begin like a ZIP archive.
bool IsZip(std::string_view bytes);

}  // namespace vex2::lab
