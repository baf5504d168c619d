#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/vex/Errors.h"
#include "tools/vex/options/Options.h"

namespace vex2::tool {

/// One command of `vex`. It exists until the process ends.
class Command {
 public:
  struct Description {
    std::string name;      ///< as the user types it
    std::string summary;   ///< one sentence
    std::string examples;  ///< command lines, separated by line breaks
  };

  explicit Command(Description description) : description_(std::move(description)) {}
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  const Description& Describe() const { return description_; }

  /// Adds the arguments and options of the command to `options`.
  virtual void AddOptions(Options& options) = 0;
  /// Runs the command after the command line was parsed. Throws `Error`. Returns a code other than
  /// kDone only if the command printed an error itself and continued.
  virtual ExitCode Run() = 0;

 private:
  Description description_;
};

/// A command with subcommands, such as 'vex study'.
class CommandGroup final : public Command {
 public:
  CommandGroup(Description description, std::vector<std::unique_ptr<Command>> actions)
      : Command(std::move(description)), actions_(std::move(actions)) {}

  void AddOptions(Options& options) override;
  ExitCode Run() override;

  const std::vector<std::unique_ptr<Command>>& Actions() const { return actions_; }

 private:
  std::vector<std::unique_ptr<Command>> actions_;
  const CLI::App* app_ = nullptr;
};

/// All commands, in the order of the help.
std::vector<std::unique_ptr<Command>> MakeCommands();

std::unique_ptr<Command> MakeRecordCommand();
std::unique_ptr<Command> MakeSimulateCommand();
std::unique_ptr<Command> MakeFollowCommand();
std::unique_ptr<Command> MakeInfoCommand();
std::unique_ptr<Command> MakeTreeCommand();
std::unique_ptr<Command> MakeWellsCommand();
std::unique_ptr<Command> MakeDetectorsCommand();
std::unique_ptr<Command> MakeDyesCommand();
std::unique_ptr<Command> MakeCalibrationCommand();
std::unique_ptr<Command> MakeFrameCommand();
std::unique_ptr<Command> MakeSpectrumCommand();
std::unique_ptr<Command> MakeCqCommand();
std::unique_ptr<Command> MakeMeltCommand();
std::unique_ptr<Command> MakeExportCommand();
std::unique_ptr<Command> MakeReportCommand();
std::unique_ptr<Command> MakeImportCommand();
std::unique_ptr<Command> MakeDiffCommand();
std::unique_ptr<Command> MakeCopyCommand();
std::unique_ptr<Command> MakeRecoverCommand();
std::unique_ptr<Command> MakeStatusCommand();
std::unique_ptr<Command> MakeSetCommand();
std::unique_ptr<Command> MakeStudyCommand();
std::unique_ptr<Command> MakeStudySetCommand();
std::unique_ptr<Command> MakeCheckCommand();
std::unique_ptr<Command> MakeRepairCommand();
std::unique_ptr<Command> MakeGetCommand();
std::unique_ptr<Command> MakeHelpCommand();
std::unique_ptr<Command> MakeVersionCommand();

}  // namespace vex2::tool
