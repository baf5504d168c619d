#include "tools/vex/show/RecoverOutput.h"

#include "tools/vex/Errors.h"
#include "tools/vex/text/Paragraph.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

constexpr std::size_t kMostLines = 20;
constexpr std::size_t kNumberWidth = 10;
constexpr std::size_t kTextAt = 2 * kNumberWidth + 2;

std::string counts(std::uint64_t records, std::uint64_t frames, std::uint64_t plates) {
  std::string text = Counted(records, "record") + " and " + Counted(frames, "frame");
  if (plates > 0) text += " in " + Counted(plates, "plate");
  return text;
}

void printNotes(std::ostream& out, const std::vector<RecoverNote>& notes, std::uint64_t places,
                const std::string& title) {
  if (places == 0) return;
  const Terminal& terminal = Terminal::Out();
  out << '\n'
      << terminal.Styled(
             PadLeft("position", kNumberWidth) + PadLeft("bytes", kNumberWidth) + "  " + title,
             Style::kDim)
      << '\n';
  for (std::size_t i = 0; i < notes.size() && i < kMostLines; ++i) {
    const RecoverNote& note = notes[i];
    out << PadLeft(std::to_string(note.offset), kNumberWidth)
        << PadLeft(note.bytes > 0 ? std::to_string(note.bytes) : "", kNumberWidth) << "  "
        << Wrapped(Printable(note.what), kTextAt) << '\n';
  }
  if (places > kMostLines) {
    out << std::string(kTextAt, ' ') << "and " << Counted(places - kMostLines, "more place")
        << "; --json tells of " << (places > notes.size() ? std::to_string(notes.size()) : "all")
        << '\n';
  }
}

std::string lossText(const RecoverReport& report) {
  std::string text =
      Counted(report.lostBytes, "byte") + " in " + Counted(report.lostPlaces, "place");
  if (report.lostRecords > 0) text += ", at least " + Counted(report.lostRecords, "record");
  if (report.lostFrames > 0) text += ", " + Counted(report.lostFrames, "frame");
  return text;
}

}  // namespace

void PrintRecoverText(std::ostream& out, const RecoverReport& report, const std::string& source,
                      const std::string& target) {
  const Terminal& terminal = Terminal::Out();
  const bool isWhole = report.IsWhole();
  out << terminal.Styled(isWhole ? "whole    " : "rescued  ",
                         isWhole ? Style::kGreen : Style::kBold)
      << counts(report.records, report.frames, report.plates) << '\n';
  if (!isWhole) {
    out << terminal.Styled("lost     ", Style::kRed)
        << (report.lostPlaces + report.lostRecords + report.lostFrames > 0
                ? lossText(report)
                : std::string("nothing but what was put in anew below"))
        << '\n';
  }
  out << "from     " << Printable(source) << ", " << Counted(report.size, "byte") << '\n'
      << "to       " << Printable(target) << ", " << Counted(report.written, "byte") << '\n';
  printNotes(out, report.lost, report.lostPlaces, "lost");
  printNotes(out, report.corrected, report.correctedPlaces, "put right, or put in as a guess");
}

}  // namespace vex2::tool
