#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vex/rescue/Salvage.h"
#include "tools/vex/rescue/SalvageBlock.h"
#include "tools/vex/rescue/SalvageHeader.h"
#include "tools/vex/rescue/SalvageTree.h"

namespace vex2::tool {

/// One recovery. It goes through the damaged file from front to back, once, but for looking ahead.
class Salvager {
 public:
  Salvager(CFile& in, CFile& out, const SalvageProgress& progress)
      : source_(in), tree_(source_, out, report_), progress_(progress) {}

  SalvageReport Run();

 private:
  // A record to which the header holds the position.
  struct Position {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::uint64_t writtenBegin = 0;
    std::uint64_t writtenEnd = 0;
  };

  std::uint64_t firstRecord();
  std::uint64_t step(std::uint64_t offset);

  // Records (Salvager.cpp)
  bool isCredible(const SalvageHead& head);
  bool isCredibleList(const SalvageHead& head);
  bool isNoStudy() const;
  bool endsInPlate(std::uint64_t offset);
  void wrap(std::uint64_t offset, std::string_view tag);
  void makeRoom(std::uint64_t offset, std::string_view tag);
  std::uint64_t keep(const SalvageHead& head);
  std::uint64_t keepList(const SalvageHead& head, std::string_view tag);
  std::uint64_t keepPlate(const SalvageHead& head);
  std::uint64_t keepValue(const SalvageHead& head);
  std::uint64_t keepUnknown(const SalvageHead& head);
  bool hidesRecords(const SalvageHead& head);
  std::optional<SalvageHead> listWithoutTag(std::uint64_t offset, std::string& tag);
  std::string_view listAround(std::uint64_t offset, std::uint64_t fields);
  bool isPlateEnd(std::uint64_t offset);
  bool isRestOfPlateEnd(std::uint64_t offset);
  std::uint64_t keepPlateEnd(std::uint64_t offset);

  // Bytes that are no record, and data blocks (SalvagerGaps.cpp)
  std::uint64_t passGap(std::uint64_t offset);
  std::uint64_t keepFound(SalvageBlock block, std::uint64_t from, std::uint64_t to);
  std::uint64_t keepBlock(SalvageBlock block);
  std::uint64_t framesBehind(const SalvageBlock& block);
  void fillCells(std::uint64_t offset, bool isCell);
  std::vector<std::uint16_t> likelyWellCounts(std::uint64_t from);
  std::vector<std::uint16_t> likelyNumbers(std::uint16_t wells) const;
  std::string likelyTag(const SalvageBlock& block, std::uint64_t from);
  void note(const SalvageBlock& block);
  void lose(std::uint64_t from, std::uint64_t to, const std::string& what);

  // The header (SalvagerHeader.cpp)
  void finishHeader();
  std::uint32_t rightPosition(std::uint32_t stored, std::string_view tag);
  bool isRunning() const;

  SalvageReport report_;
  SalvageSource source_;
  SalvageTree tree_;
  const SalvageProgress& progress_;
  std::vector<std::uint8_t> header_;       // of the document, as it stands there
  std::vector<std::uint8_t> plateHeader_;  // of the plate that is open, as written
  std::map<std::string, Position, std::less<>> positions_;
  std::map<std::uint16_t, std::vector<std::uint16_t>> numbers_;  // of wells, by how many
  bool afterLoss_ = false;
};

}  // namespace vex2::tool
