#include "lab/text/FindingsText.h"

#include "lab/Text.h"

namespace vex2::lab {

namespace {

using Style = TextForm::Style;

constexpr std::string_view kIndent = "  ";

Style styleOf(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return Style::kRed;
    case Severity::kWarning:
      return Style::kYellow;
    case Severity::kNote:
      break;
  }
  return Style::kDim;
}

std::string placeOf(const Finding& finding) {
  return (finding.record.empty() ? "" : finding.record + ", ") + "byte " +
         std::to_string(finding.offset);
}

std::string summary(const Findings& findings) {
  std::string text;
  for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
    const std::size_t count = findings.Count(severity);
    if (count == 0) continue;
    text += (text.empty() ? "" : ", ") + Counted(count, NameOf(severity));
  }
  const bool isSound = findings.Count(Severity::kError) == 0;
  if (isSound) return text.empty() ? "sound" : "sound, with " + text;
  return text;
}

std::string paragraph(std::string_view label, const std::string& text, const TextForm& form) {
  const std::string begin = std::string(4, ' ').append(label);
  return begin + form.Wrapped(form.Printable(text), begin.size()) + '\n';
}

std::string textOf(const Finding& finding, const TextForm& form) {
  std::string text =
      std::string(kIndent) + form.Styled(NameOf(finding.severity), styleOf(finding.severity)) +
      "  " + form.Styled(placeOf(finding), Style::kBold) + '\n' +
      paragraph("", finding.problem, form) + paragraph("effect: ", finding.consequence, form);
  return finding.remedy.empty() ? text : text + paragraph("fix: ", finding.remedy, form);
}

}  // namespace

std::string FindingsText(const std::string& file, const Findings& findings, bool withNotes,
                         const TextForm& form) {
  std::string text = form.Printable(file) + ": " + summary(findings) + '\n';
  for (const Finding& finding : findings.list) {
    if (finding.severity != Severity::kNote || withNotes) text += textOf(finding, form);
  }
  if (findings.LeftOut() == 0) return text;
  return text.append(kIndent) + "and " + Counted(findings.LeftOut(), "finding") +
         " more, which are not listed\n";
}

}  // namespace vex2::lab
