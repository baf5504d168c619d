#pragma once

#include <string>
#include <string_view>

#include "lab/SystemError.h"
#include "lab/check/Check.h"
#include "tools/vex/Lab.h"

namespace vex2::tool {

/// The exit code of the command.
enum class ExitCode : int {
  kDone = 0,
  kDocument = 1,       ///< a problem in a document or in another file that was read
  kUsage = 2,          ///< a usage error: wrong arguments, or a path that does not exist
  kSystem = 3,         ///< a system error: disk, memory, locks
  kInterrupted = 130,  ///< the user interrupted it; shells use this code for Ctrl-C
};

/// The exit code after an error of this class.
ExitCode ExitCodeOf(ErrorClass errorClass);
inline ExitCode ExitCodeOf(const Error& error) {
  return ExitCodeOf(error.Class());
}

/// The form in which errors and notes are written.
enum class MessageForm { kText, kJson };
/// Sets the form of all further messages. The form is text until this is called.
void SetMessageForm(MessageForm form);

/// Writes the error to standard error: as the line "vex: WHAT", or as an object
/// {"error":{"code":...,"file":...,"offset":...,"message":...,"exit_code":...}}.
void PrintError(const Error& error);

/// Writes the note "vex: TEXT" to standard error, or as JSON the object {"note":{"message":...}}.
void PrintLine(std::string_view text);
/// Writes the note "vex: TEXT" as `PrintLine` does, but nothing if the text is empty.
void PrintIfAny(std::string_view text);

/// The names of the commands that findings advise, as the user types them.
OperationNames NamesOfCommands();

/// Returns `Escaped(text)` for a terminal. If the terminal shows only ASCII, other characters
/// become \uNNNN.
std::string Printable(std::string_view text);

}  // namespace vex2::tool
