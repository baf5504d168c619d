#include "lab/model/Saving.h"

#include <fmt/core.h>

#include <filesystem>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/RawFile.h"
#include "vex2/format/DataBlockHead.h"
#include "vex2/run/AcquisitionDataComp.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kMostLossLines = 8;

void upgradeBlocks(const Document& document, const Document::Plate& plate, const SaveRules& rules) {
  int index = 0;
  for (const Document::Record& record : plate.records) {
    if (!record.known) continue;
    auto* block = dynamic_cast<AcquisitionDataComp*>(plate.content->GetComponent(index++));
    if (block == nullptr || block->GetVersion() >= kFirstVersionWithTimes) continue;
    if (!rules.upgradeBlocks) {
      throw Error(
          ErrorCode::kDocument, document.Path(),
          fmt::format(
              "the data block \"{}\" is of version 1, and a saved copy could not be read back; {}",
              record.tag, rules.upgradeHint),
          record.offset);
    }
    block->Upgrade();
  }
}

void reportLosses(const Document& document, const std::vector<Document::Loss>& losses,
                  const std::string& target, const SaveRules& rules) {
  if (losses.empty()) return;
  if (IsSameFile(document.Path(), target) && !rules.dropUnknown) {
    throw Error(ErrorCode::kDocument, document.Path(),
                losses.size() == 1
                    ? fmt::format("saving would lose {}; {}", losses.front().what, rules.dropHint)
                    : fmt::format("saving would lose {}, and data in {}; {}", losses.front().what,
                                  Counted(losses.size() - 1, "other place"), rules.dropHint),
                losses.front().offset);
  }
  for (std::size_t i = 0; i < losses.size() && i < kMostLossLines; ++i) {
    rules.onLoss(fmt::format("{}: at byte {}: left out: {}", Escaped(document.Path()),
                             losses[i].offset, losses[i].what));
  }
  if (losses.size() > kMostLossLines) {
    rules.onLoss(fmt::format("{}: left out: {}", Escaped(document.Path()),
                             Counted(losses.size() - kMostLossLines, "more record")));
  }
}

}  // namespace

void PrepareToSave(Document& document, const std::string& target, const SaveRules& rules) {
  document.RequireWhole("saved");
  upgradeBlocks(document, document.Itself(), rules);
  for (const Document::Plate& plate : document.Plates()) upgradeBlocks(document, plate, rules);
  reportLosses(document, document.Losses(), target, rules);
  if (document.Content().IsAcquisitionProg()) {
    rules.onLoss(RunInProgressText(document.Path(), "the copy"));
  }
}

void PreparePlateToSave(const Document& document, const Document::Plate& plate,
                        const std::string& target, const SaveRules& rules) {
  document.RequireWhole("saved");
  upgradeBlocks(document, plate, rules);
  std::vector<Document::Loss> losses = document.Losses();
  std::erase_if(losses, [&](const Document::Loss& loss) {
    return loss.offset < plate.offset || loss.offset >= plate.end;
  });
  reportLosses(document, losses, target, rules);
}

void SaveDocument(DocumentFile& document, const std::string& target) {
  document.RequireUnchanged();
  if (document.SaveToFile(target.c_str()) == kSuccess) return;
  document.RequireUnchanged();
  throw FileFailure(target, document.GetLastFileError());
}

bool IsSameFile(const std::string& one, const std::string& other) {
  std::error_code ignored;
  return std::filesystem::equivalent(one, other, ignored);
}

}  // namespace vex2::lab
