#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>

#include "lab/text/Table.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/command/Command.h"
#include "tools/vex/command/Misuse.h"
#include "tools/vex/help/HelpText.h"
#include "tools/vex/help/ManPage.h"
#include "tools/vex/help/Pages.h"

namespace vex2::tool {

namespace {

constexpr std::string_view kErrorsTopic = "errors";

class HelpCommand final : public Command {
 public:
  HelpCommand()
      : Command({"help", "Print the help of a command, or of vex as a whole.",
                 "vex help info\nvex help study new\nvex help errors"}) {}

  void AddOptions(Options& options) override {
    app_ = options.App().get_parent();
    options.Add("COMMAND", words_, "A command, or 'errors' for the error codes").Show("");
    // A hidden option: the build uses it to make the pages and completions that are installed with
    // the command.
    options.Add("--write-pages", pagesFolder_, "").Group("");
  }

  ExitCode Run() override {
    if (words_.size() == 1 && words_.front() == kErrorsTopic) {
      printErrors();
      return ExitCode::kDone;
    }
    if (pagesFolder_) {
      WritePages(DescribeCommand(*app_, app_->get_name()), *pagesFolder_);
      return ExitCode::kDone;
    }
    const CLI::App* part = app_;
    std::string call = part->get_name();
    for (const std::string& word : words_) {
      part = findPart(*part, call, word);
      call += " " + word;
    }
    if (words_.empty() || !openPage()) std::cout << HelpText(*part, call);
    return ExitCode::kDone;
  }

 private:
  // Opens the page of the first word; it includes the subcommands.
  bool openPage() const {
    for (const CommandText& command : DescribeCommand(*app_, app_->get_name()).commands) {
      if (command.name == words_.front()) return OpenManPage(ManPageOf(command));
    }
    return false;
  }

  static const CLI::App* findPart(const CLI::App& app, const std::string& call,
                                  const std::string& word) {
    for (const CLI::App* part : app.get_subcommands(nullptr)) {
      if (part->get_name() == word) return part;
    }
    throw UnknownCommand(app, call, word);
  }

  static void printErrors() {
    std::cout
        << "With --json, each error is a JSON object on a line of standard error:\n\n"
           "  {\"error\":{\"code\":\"no-such-file\",\"file\":\"run.vex\",\"offset\":null,\n"
           "  \"message\":\"No such file or directory\",\"exit_code\":2}}\n\n"
           "Codes are stable, messages may change. \"file\" and \"offset\" are null if there\n"
           "is none. A note is an object {\"note\":{\"message\":...}}.\n\n";
    std::vector<std::vector<std::string>> rows;
    for (const ErrorKind& kind : ErrorKinds()) {
      rows.push_back({std::string(kind.name),
                      std::to_string(static_cast<int>(ExitCodeOf(kind.errorClass))),
                      std::string(kind.meaning)});
    }
    std::cout << DrawTable({"code", "exit", "meaning"}, rows, Terminal::Out());
  }

  const CLI::App* app_ = nullptr;
  std::vector<std::string> words_;
  std::optional<std::string> pagesFolder_;
};

}  // namespace

std::unique_ptr<Command> MakeHelpCommand() {
  return std::make_unique<HelpCommand>();
}

}  // namespace vex2::tool
