#include "tools/vex/command/CommandLine.h"

#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string_view>
#include <vector>

#include "tools/vex/command/Command.h"
#include "tools/vex/command/Misuse.h"
#include "tools/vex/command/PlotCommand.h"
#include "tools/vex/command/VersionText.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/help/HelpText.h"
#include "tools/vex/options/ScreenOptions.h"
#include "vex2/framework/CFileException.h"

namespace vex2::tool {

std::vector<std::unique_ptr<Command>> MakeCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  for (const auto make :
       {MakeRecordCommand, MakeSimulateCommand,    MakeFollowCommand, MakeInfoCommand,
        MakeTreeCommand,   MakeGetCommand,         MakeWellsCommand,  MakeDetectorsCommand,
        MakeDyesCommand,   MakeCalibrationCommand, MakeFrameCommand,  MakeSpectrumCommand,
        MakeCqCommand,     MakeMeltCommand,        MakeExportCommand, MakeImportCommand,
        MakeDiffCommand,   MakePlotCommand,        MakeReportCommand, MakeCopyCommand,
        MakeStatusCommand, MakeSetCommand,         MakeStudyCommand,  MakeCheckCommand,
        MakeRepairCommand, MakeRecoverCommand,     MakeHelpCommand,   MakeVersionCommand}) {
    commands.push_back(make());
  }
  return commands;
}

namespace {

constexpr std::string_view kHelpCommand = "help";  // it needs the options of all commands
constexpr const char* kSummary = "Plate documents of a real-time PCR instrument.";
constexpr const char* kFooter =
    "Exit codes: 0 success, 1 problem in a document, 2 usage error, 3 system error,\n"
    "130 interrupted.";

std::string exampleText(const std::string& examples) {
  std::string text = examples.find('\n') == std::string::npos ? "Example:" : "Examples:";
  std::size_t begin = 0;
  while (begin <= examples.size()) {
    const std::size_t end = std::min(examples.find('\n', begin), examples.size());
    text += "\n  " + examples.substr(begin, end - begin);
    begin = end + 1;
  }
  return text;
}

// Formats the help with a left column of `width`, such that the explanations beside it end within
// 80 columns.
std::shared_ptr<CLI::Formatter> withColumn(std::size_t width) {
  auto formatter = std::make_shared<CLI::Formatter>();
  formatter->column_width(width);
  return formatter;
}

// Whether the command line asks for JSON, so that its own errors are printed as JSON, too.
bool asksForJson(int argumentCount, const char* const* arguments) {
  for (int i = 1; i < argumentCount; ++i) {
    const std::string_view word = arguments[i];
    if (word == "--") break;
    if (word == "--json" || word == "--format=json") return true;
    if (word == "json" && std::string_view(arguments[i - 1]) == "--format") return true;
  }
  return false;
}

void parse(CLI::App& app, int argumentCount, const char* const* arguments) {
  try {
    app.parse(argumentCount, arguments);
  } catch (const CLI::Success&) {
    throw;
  } catch (const CLI::ParseError& error) {
    throw MisuseOf(app, error, {arguments, static_cast<std::size_t>(argumentCount)});
  }
}

// Prints the help or the version if it was asked for instead of a command.
void answer(const CLI::App& app, const CLI::Success& success) {
  const bool isVersion = dynamic_cast<const CLI::CallForVersion*>(&success) != nullptr;
  std::cout << (isVersion ? VersionText() : HelpText(ChosenApp(app), ChosenCommand(app)));
}

ScreenOptions& screenOptions() {
  static ScreenOptions options;
  return options;
}

// Adds a command to the command line of `app`, with its options and help. If the command cannot be
// the one that was typed (`canBeMeant` is false), adds only its name: adding the options of all
// commands takes longer than showing a document.
void addCommand(CLI::App& app, Command& command, bool canBeMeant = true) {
  const auto& [name, summary, examples] = command.Describe();
  CLI::App* part = app.add_subcommand(name, summary);
  if (!canBeMeant) return;
  part->footer(exampleText(examples));
  part->formatter(withColumn(26));
  Options options(*part);
  command.AddOptions(options);
  if (part->get_require_subcommand_min() == 0) screenOptions().AddTo(options);
}

// Runs the command that was typed.
ExitCode runCommand(const CLI::App& app, const std::vector<std::unique_ptr<Command>>& commands) {
  for (const auto& command : commands) {
    if (app.got_subcommand(command->Describe().name)) return command->Run();
  }
  return ExitCode::kUsage;
}

// Refuses calls like "vex ... run.vex >> run.vex": the shell has opened the document for appending,
// and the output of the command would be written after the run.
void requireOutputApart(int argumentCount, const char* const* arguments) {
  struct stat output {};
  if (::fstat(STDOUT_FILENO, &output) != 0 || !S_ISREG(output.st_mode) || output.st_size == 0) {
    return;
  }
  for (int i = 1; i < argumentCount; ++i) {
    const std::string_view path = arguments[i];
    struct stat named {};
    if (path.starts_with("/dev/") || path.starts_with("/proc/")) continue;
    if (::stat(arguments[i], &named) != 0 || named.st_dev != output.st_dev ||
        named.st_ino != output.st_ino) {
      continue;
    }
    throw Error(ErrorCode::kUsage, path,
                "is also where standard output goes; redirect that to another file");
  }
}

ExitCode run(int argumentCount, const char* const* arguments) {
  CLI::App app(kSummary, "vex");
  app.set_version_flag("-V,--version", VEX2_VERSION, "Print version and build, and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.formatter(withColumn(15));
  app.require_subcommand(1);
  app.footer(
      exampleText("vex simulate run.vex\nvex info run.vex\nvex export run.vex --format csv") +
      "\n\n" + kFooter);
  Options options(app);
  screenOptions().AddTo(options);
  const auto commands = MakeCommands();
  const std::vector<std::string_view> words(arguments, arguments + argumentCount);
  const auto isAmong = [&](std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
  };
  for (const auto& command : commands) {
    addCommand(app, *command, isAmong(command->Describe().name) || isAmong(kHelpCommand));
  }
  try {
    parse(app, argumentCount, arguments);
  } catch (const CLI::Success& success) {
    Terminal::Configure(screenOptions().Wishes());
    answer(app, success);
    FinishStream(std::cout, "standard output");
    return ExitCode::kDone;
  }
  Terminal::Configure(screenOptions().Wishes());
  requireOutputApart(argumentCount, arguments);
  const ExitCode code = runCommand(app, commands);
  FinishStream(std::cout, "standard output");
  return code;
}

}  // namespace

void CommandGroup::AddOptions(Options& options) {
  CLI::App& app = options.App();
  app_ = &app;
  app.require_subcommand(1);
  app.formatter(withColumn(13));
  for (const auto& action : actions_) addCommand(app, *action);
}

ExitCode CommandGroup::Run() {
  return runCommand(*app_, actions_);
}

int RunCommandLine(int argumentCount, const char* const* arguments) noexcept {
  const auto fail = [](const Error& error) {
    PrintError(error);
    return static_cast<int>(ExitCodeOf(error));
  };
  try {
    Terminal::Configure({});
    if (asksForJson(argumentCount, arguments)) SetMessageForm(MessageForm::kJson);
    return static_cast<int>(run(argumentCount, arguments));
  } catch (const Error& error) {
    return fail(error);
  } catch (const CFileException& error) {
    PrintError(SystemError(error.GetPath(), error.GetError()));
    return static_cast<int>(ExitCode::kSystem);
  } catch (const std::bad_alloc&) {
    return fail(Error(ErrorCode::kNoMemory, "there is not enough memory"));
  } catch (const std::exception& error) {
    return fail(Error(ErrorCode::kSystem, error.what()));
  }
}

}  // namespace vex2::tool
