#pragma once

#include <string>
#include <string_view>

#include "lab/SystemError.h"
#include "lab/check/Check.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// What the command answers to the shell.
enum class ExitCode : int {
  kDone = 0,
  kDocument = 1,       ///< a document, or another file that was read, is at fault
  kUsage = 2,          ///< the call is at fault: arguments, or paths that lead nowhere
  kSystem = 3,         ///< the system is at fault: disk, memory, locks
  kInterrupted = 130,  ///< the user ended it; what shells know as the answer to Ctrl-C
};

/// What the command answers after such an error.
ExitCode ExitCodeOf(ErrorClass errorClass);
inline ExitCode ExitCodeOf(const Error& error) {
  return ExitCodeOf(error.Class());
}

/// In which form errors and notes are written.
enum class MessageForm { kText, kJson };
/// Chooses the form of all further messages; text until then.
void SetMessageForm(MessageForm form);

/// Writes the error to standard error: as the line "vex: WHAT", or as an object
/// {"error":{"code":...,"file":...,"offset":...,"message":...,"exit_code":...}}.
void PrintError(const Error& error);

/// Writes "vex: TEXT" to standard error, for what a user should know besides; as JSON it is an
/// object {"note":{"message":...}}.
void PrintLine(std::string_view text);
/// The same, and nothing for an empty text.
void PrintIfAny(std::string_view text);

/// What the user types for the operations that findings advise.
OperationNames NamesOfCommands();

/// `Escaped` for a screen: where that is an ASCII one, other characters are shown as \uNNNN.
std::string Printable(std::string_view text);

}  // namespace vex2::tool
