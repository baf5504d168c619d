#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "lab/recover/RecoverBlock.h"
#include "lab/recover/RecoverHeader.h"
#include "lab/recover/RecoverReport.h"
#include "lab/recover/RecoverTree.h"

namespace vex2::lab {

/// Called with the number of bytes of the damaged file that are processed.
using RecoverProgress = std::function<void(std::uint64_t done)>;

/// One recovery. Goes through the damaged file once from front to back, and looks ahead where
/// needed.
class RecoverPass {
 public:
  /// `in` is the damaged document, open for reading. `out` must be empty and open for writing.
  /// `in`, `out` and `progress` must outlive the recovery.
  RecoverPass(CFile& in, CFile& out, const RecoverProgress& progress)
      : source_(in), tree_(source_, out, report_), progress_(progress) {}

  /// Writes all that can be read to the new document. Copies records byte for byte as long as each
  /// ends where the next begins. After damage, finds records by their tags, and frames by the
  /// structure of their block. Gives each list the count and length of what is left in it. If the
  /// head of a list, a plate or the document is lost, makes a new one for its records. Takes time
  /// in proportion to the size of the file, and little memory. Passes on what `in`, `out` and
  /// `progress` throw.
  RecoverReport Run();

 private:
  // The offsets of a record, in the damaged file and in the new document. The header stores offsets
  // of some records.
  struct Position {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::uint64_t writtenBegin = 0;
    std::uint64_t writtenEnd = 0;
  };

  std::uint64_t firstRecord();
  std::uint64_t step(std::uint64_t offset);

  // Records (RecoverPass.cpp)
  bool isCredible(const RecoverHead& head);
  bool isCredibleList(const RecoverHead& head);
  bool isNoStudy() const;
  bool endsInPlate(std::uint64_t offset);
  void wrap(std::uint64_t offset, std::string_view tag);
  void makeRoom(std::uint64_t offset, std::string_view tag);
  std::uint64_t keep(const RecoverHead& head);
  std::uint64_t keepList(const RecoverHead& head, std::string_view tag);
  std::uint64_t keepPlate(const RecoverHead& head);
  std::uint64_t keepValue(const RecoverHead& head);
  std::uint64_t keepUnknown(const RecoverHead& head);
  bool hidesRecords(const RecoverHead& head);
  std::optional<RecoverHead> listWithoutTag(std::uint64_t offset, std::string& tag);
  std::string_view listAround(std::uint64_t offset, std::uint64_t fields);
  bool isPlateEnd(std::uint64_t offset);
  bool isRestOfPlateEnd(std::uint64_t offset);
  std::uint64_t keepPlateEnd(std::uint64_t offset);

  // Data blocks, and bytes that are not records (RecoverPassGaps.cpp)
  std::uint64_t passGap(std::uint64_t offset);
  std::uint64_t keepFound(RecoverBlock block, std::uint64_t from, std::uint64_t to);
  std::uint64_t keepBlock(RecoverBlock block);
  std::uint64_t framesBehind(const RecoverBlock& block, const CommittedFrames& committed);
  void fillCells(std::uint64_t offset, bool isCell);
  std::vector<std::uint16_t> likelyWellCounts(std::uint64_t from);
  std::vector<std::uint16_t> likelyNumbers(std::uint16_t wells) const;
  std::string likelyTag(const RecoverBlock& block, std::uint64_t from);
  void note(const RecoverBlock& block);
  void lose(std::uint64_t from, std::uint64_t to, const std::string& what);

  // The header (RecoverPassHeader.cpp)
  void finishHeader();
  std::uint32_t rightPosition(std::uint32_t stored, std::string_view tag);
  bool isRunning() const;

  RecoverReport report_;
  RecoverSource source_;
  RecoverTree tree_;
  const RecoverProgress& progress_;
  std::vector<std::uint8_t> header_;       // header of the document in the damaged file
  std::vector<std::uint8_t> plateHeader_;  // header of the open plate in the new document
  std::map<std::string, Position, std::less<>> positions_;
  // well numbers of blocks; the key is the number of wells
  std::map<std::uint16_t, std::vector<std::uint16_t>> numbers_;
  bool afterLoss_ = false;
};

}  // namespace vex2::lab
