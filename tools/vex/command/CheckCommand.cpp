#include <algorithm>
#include <iostream>

#include "lab/check/Check.h"
#include "lab/exchange/Json.h"
#include "lab/exchange/JsonOutput.h"
#include "lab/exchange/ReportJson.h"
#include "tools/vex/Lab.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/text/Paragraph.h"
#include "tools/vex/text/Terminal.h"
#include "tools/vex/text/Text.h"

namespace vex2::tool {

namespace {

using Style = Terminal::Style;

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

/// What was found in a document, for people: a line for the document, and a paragraph a finding.
class Report {
 public:
  Report(const std::string& file, const Findings& findings, bool withNotes)
      : file_(file), findings_(findings), withNotes_(withNotes) {}

  void Print() const {
    std::cout << Printable(file_) << ": " << summary() << '\n';
    for (const Finding& finding : findings_.list) {
      if (finding.severity == Severity::kNote && !withNotes_) continue;
      print(finding);
    }
    if (findings_.LeftOut() > 0) {
      std::cout << kIndent << "and " << Counted(findings_.LeftOut(), "finding")
                << " more, which are not listed\n";
    }
  }

 private:
  static constexpr std::string_view kIndent = "  ";

  std::string summary() const {
    std::string text;
    for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
      const std::size_t count = findings_.Count(severity);
      if (count == 0) continue;
      text += (text.empty() ? "" : ", ") + Counted(count, NameOf(severity));
    }
    const bool isSound = findings_.Count(Severity::kError) == 0;
    if (isSound) return text.empty() ? "sound" : "sound, with " + text;
    return text;
  }

  void print(const Finding& finding) const {
    const Style style = styleOf(finding.severity);
    std::cout << kIndent << terminal_.Styled(NameOf(finding.severity), style) << "  "
              << terminal_.Styled(placeOf(finding), Style::kBold) << '\n';
    paragraph("", finding.problem);
    paragraph("so: ", finding.consequence);
    if (!finding.remedy.empty()) paragraph("do: ", finding.remedy);
  }

  static void paragraph(std::string_view label, const std::string& text) {
    const std::string begin = std::string(4, ' ').append(label);
    std::cout << begin << Wrapped(Printable(text), begin.size()) << '\n';
  }

  const std::string& file_;
  const Findings& findings_;
  bool withNotes_;
  const Terminal& terminal_ = Terminal::Out();
};

constexpr const char* kMeaning =
    "What it means:\n"
    "  error    content is not read, or the next write would do harm\n"
    "  warning  out of the ordinary, but all of the content is read\n"
    "  note     as it should be, and good to know; never a finding\n\n"
    "  Errors come first, then warnings, then notes, each from the file's begin on;\n"
    "  so they do with --json.\n\n"
    "  The exit code is 1 when there are errors, with --strict also when there are\n"
    "  warnings, and else 0. 'vex repair' corrects in place what is safe;\n"
    "  'vex recover' takes what is whole into a new document.";

class CheckCommand final : public Command {
 public:
  CheckCommand()
      : Command({"check", "Look for everything that can be wrong with documents.",
                 "vex check *.vex\nvex check --strict run.vex && echo spotless\n"
                 "vex check --json run.vex | jq '.findings[] | select(.severity == \"error\")'"}) {}

  void AddOptions(Options& options) override {
    options.Add("FILE", files_, "The documents").Require().Show("");
    options.AddFlag("--strict", strict_, "Warnings are findings, too: exit code 1");
    options.AddFlag("--notes", notes_, "Show notes, too");
    options.AddFlag("--json", json_, "For programs: an object a document, one a line");
    options.PutLast(kMeaning);
  }

  ExitCode Run() override {
    ExitCode worst = ExitCode::kDone;
    for (const std::string& file : files_) {
      try {
        worst = std::max(worst, check(file));
      } catch (const Error& error) {
        PrintError(error);
        worst = std::max(worst, ExitCodeOf(error));
      }
    }
    return worst;
  }

 private:
  ExitCode check(const std::string& file) const {
    const Findings findings = Check(file);
    if (json_) {
      PrintJson(std::cout, FindingsJson(file, findings));
    } else {
      Report(file, findings, notes_).Print();
    }
    const bool isSound = findings.Count(Severity::kError) == 0 &&
                         (!strict_ || findings.Count(Severity::kWarning) == 0);
    return isSound ? ExitCode::kDone : ExitCode::kDocument;
  }

  std::vector<std::string> files_;
  bool strict_ = false;
  bool notes_ = false;
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeCheckCommand() {
  return std::make_unique<CheckCommand>();
}

}  // namespace vex2::tool
