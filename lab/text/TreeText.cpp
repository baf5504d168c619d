#include "lab/text/TreeText.h"

#include <algorithm>

#include "lab/Text.h"
#include "lab/text/Columns.h"
#include "lab/text/RecordText.h"

namespace vex2::lab {

namespace {

using Style = TextForm::Style;

constexpr std::size_t kNumberWidth = 10;

std::string number(std::uint64_t value) {
  return PadLeft(std::to_string(value), kNumberWidth);
}

}  // namespace

void TreeText::Begin(const FileRecord& record, CFile& file) {
  if (record.offset >= end_) return;
  writeHead();
  const std::size_t indent = 2 * static_cast<std::size_t>(record.depth - 1);
  const std::string tag = form_.Printable(ToUtf8(record.Tag()));
  out_ << form_.Styled(number(record.offset), Style::kDim) << number(record.length)
       << std::string(indent + 2, ' ')
       << form_.Styled(tag, IsKnownTag(record.Tag()) ? Style::kBold : Style::kYellow)
       << described(record, file, 2 * kNumberWidth + 2 + indent + tag.size() + 2) << '\n';
}

void TreeText::Finish(std::uint64_t size) {
  writeHead();
  if (end_ >= size) return;
  out_ << form_.Styled(number(end_), Style::kDim) << number(size - end_) << "  "
       << form_.Styled("bytes that are no record", Style::kYellow) << '\n';
}

// Writes the heading with the first record, so that there is no heading if an error occurs before
// it.
void TreeText::writeHead() {
  if (hasHead_) return;
  hasHead_ = true;
  out_ << form_.Styled(
              PadLeft("offset", kNumberWidth) + PadLeft("length", kNumberWidth) + "  record",
              Style::kDim)
       << '\n';
}

// The description of the record, beside it or, if there is no room, below it.
std::string TreeText::described(const FileRecord& record, CFile& file, std::size_t taken) const {
  constexpr std::size_t kLeastRoom = 24;
  constexpr std::size_t kBelow = 4;
  // The longest description. A longer one would fill the screen, and `--json` prints it.
  constexpr std::size_t kMost = 2000;
  const std::size_t width = form_.TextWidth();
  const std::string words = DescribeRecord(file, record, std::max(width, kMost), form_);
  if (words.empty()) return "";
  if (Columns(words) + taken <= width || width >= taken + kLeastRoom) {
    return "  " + form_.Wrapped(words, taken);
  }
  return "\n" + std::string(kBelow, ' ') + form_.Wrapped(words, kBelow);
}

}  // namespace vex2::lab
