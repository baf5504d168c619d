#include "lab/text/RecoverText.h"

#include "lab/Text.h"
#include "lab/text/Columns.h"

namespace vex2::lab {

namespace {

using Style = TextForm::Style;

constexpr std::size_t kMostLines = 20;
constexpr std::size_t kColumnWidth = 10;
constexpr std::size_t kTextAt = 2 * kColumnWidth + 2;

std::string counts(std::uint64_t records, std::uint64_t frames, std::uint64_t plates) {
  std::string text = Counted(records, "record") + " and " + Counted(frames, "frame");
  if (plates > 0) text += " in " + Counted(plates, "plate");
  return text;
}

std::string notesText(const std::vector<RecoverNote>& notes, std::uint64_t places,
                      const std::string& title, const TextForm& form, std::string_view all) {
  if (places == 0) return {};
  std::string text =
      '\n' +
      form.Styled(PadLeft("offset", kColumnWidth) + PadLeft("bytes", kColumnWidth) + "  " + title,
                  Style::kDim) +
      '\n';
  for (std::size_t i = 0; i < notes.size() && i < kMostLines; ++i) {
    const RecoverNote& note = notes[i];
    text += PadLeft(std::to_string(note.offset), kColumnWidth) +
            PadLeft(note.bytes > 0 ? std::to_string(note.bytes) : "", kColumnWidth) + "  " +
            form.Wrapped(form.Printable(note.what), kTextAt) + '\n';
  }
  if (places <= kMostLines) return text;
  return text + std::string(kTextAt, ' ') + "and " + Counted(places - kMostLines, "more place") +
         "; " + std::string(all) + " tells of " +
         (places > notes.size() ? std::to_string(notes.size()) : "all") + '\n';
}

std::string lossText(const RecoverReport& report) {
  std::string text =
      Counted(report.lostBytes, "byte") + " in " + Counted(report.lostPlaces, "place");
  if (report.lostRecords > 0) text += ", at least " + Counted(report.lostRecords, "record");
  if (report.lostFrames > 0) text += ", " + Counted(report.lostFrames, "frame");
  return text;
}

}  // namespace

std::string RecoverText(const RecoverReport& report, const std::string& source,
                        const std::string& target, const TextForm& form, std::string_view all) {
  const bool isWhole = report.IsWhole();
  std::string text =
      form.Styled(isWhole ? "whole      " : "recovered  ", isWhole ? Style::kGreen : Style::kBold) +
      counts(report.records, report.frames, report.plates) + '\n';
  if (!isWhole) {
    text += form.Styled("lost       ", Style::kRed) +
            (report.lostPlaces + report.lostRecords + report.lostFrames > 0
                 ? lossText(report)
                 : std::string("nothing except what was filled in, listed below")) +
            '\n';
  }
  text += "from       " + form.Printable(source) + ", " + Counted(report.size, "byte") + '\n' +
          "to         " + form.Printable(target) + ", " + Counted(report.written, "byte") + '\n';
  return text + notesText(report.lost, report.lostPlaces, "lost", form, all) +
         notesText(report.corrected, report.correctedPlaces, "corrected, or filled in as a guess",
                   form, all);
}

}  // namespace vex2::lab
