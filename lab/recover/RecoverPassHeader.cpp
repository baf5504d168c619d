#include <fmt/core.h>

#include <algorithm>

#include "lab/model/BigEndian.h"
#include "lab/model/HeaderFields.h"
#include "lab/recover/RecoverPass.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

// Completes the header. Called last, because it needs all records, and the offsets at which they
// were written.
void RecoverPass::finishHeader() {
  const bool isWhole = IsHeaderWhole(header_);
  report_.hasHeader = isWhole;
  if (isWhole && report_.lostPlaces == 0 && report_.correctedPlaces == 0) return;
  HeaderFacts facts;
  facts.isStudy = tree_.TagsAtTop().count(std::string(TagOf(Kind::kPlates))) > 0;
  facts.hasFrames = report_.frames > 0;
  if (!numbers_.empty()) facts.wells = numbers_.rbegin()->first;
  std::vector<std::string> guesses;
  auto header = isWhole ? header_ : CorrectedHeader(header_, facts, false, guesses);
  if (!isWhole) {
    ++report_.madeHeads;
    report_.Correct(0, fmt::format("the header was damaged{}", GuessText(guesses)));
  }
  const auto setPosition = [&](std::uint64_t at, std::string_view tag) {
    const auto bytes = LongBytes(rightPosition(LongAt(header, at), tag));
    std::copy(bytes.begin(), bytes.end(), header.begin() + static_cast<std::ptrdiff_t>(at));
  };
  setPosition(HeaderLayout::kProgramOffsetAt, TagOf(Kind::kProgram));
  setPosition(HeaderLayout::kRawDataOffsetAt, TagOf(Kind::kRawData));
  tree_.Patch(0, header);
}

// The offset of a record that the header should store. While a run is recorded, it is the offset of
// the tag; after a save of the whole document, it is the end of the record.
std::uint32_t RecoverPass::rightPosition(std::uint32_t stored, std::string_view tag) {
  const auto found = positions_.find(tag);
  if (found == positions_.end()) return 0;
  const Position& position = found->second;
  if (stored == 0 && IsHeaderWhole(header_)) return 0;
  const bool isTag = stored == position.begin || (stored != position.end && isRunning());
  const std::uint64_t right = isTag ? position.writtenBegin : position.writtenEnd;
  return right > 0xFFFFFFFFU ? 0 : static_cast<std::uint32_t>(right);
}

bool RecoverPass::isRunning() const {
  constexpr std::string_view kRunning = RunStatus::kInProgress;
  return header_.size() >= HeaderLayout::kRawDataOffsetAt &&
         std::equal(kRunning.begin(), kRunning.end(),
                    header_.begin() + static_cast<std::ptrdiff_t>(HeaderLayout::kStatusAt));
}

}  // namespace vex2::lab
