#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "vex2/framework/CTime.h"
#include "vex2/framework/Export.h"

class CWnd;

namespace vex2 {

/// What a host's file chooser is asked for.
struct ChooserRequest {
  CWnd* owner = nullptr;         ///< the window that the chooser belongs to, or null
  std::string title;             ///< e.g. "Select Vex File to Open"
  std::string filter;            ///< pairs of description and pattern, each text ended by a zero
                                 ///< byte, the whole by one more
  std::string defaultExtension;  ///< without a dot
  std::string initialName;       ///< may be empty
  std::string initialFolder;     ///< may be empty
};

/// What the user chose.
struct ChooserResult {
  std::string path;   ///< the whole path
  std::string title;  ///< the chosen file's name without its folder
};

/// The key is there, but has no value of the name that was asked for.
struct NoValue {
  friend bool operator==(NoValue, NoValue) = default;
};

/// What the host's settings store answers: nothing (`std::monostate`) when the key cannot be
/// opened, `NoValue` when it can but lacks the value, else the value, a number or a text.
using Setting = std::variant<std::monostate, std::uint32_t, std::string, NoValue>;

/// The one seam between the library and the desktop it runs on. A host application derives from
/// it and installs its own with `SetHost`; the library calls it on the thread that called the
/// library. Every operation has the console host's answer as its default; none may throw.
class VEX2_API Host {
 public:
  virtual ~Host();

  /// Shows `text` to the user with an OK button. The console host writes it to standard error.
  virtual void ShowMessage(const std::string& text);
  /// Lets the user choose a file. False when cancelled or failed; the console host always cancels.
  virtual bool ChooseFile(const ChooserRequest& request, ChooserResult& result);
  /// The value `name` under `key` (parts separated by single backslashes), of the machine or of
  /// the current user. A key that cannot be opened and a value that is missing are two answers, for
  /// the library takes a default only for the second. The console host reads an INI file, see
  /// `ConsoleHost.h`.
  virtual Setting QuerySetting(bool localMachine, const std::string& key, const std::string& name);
  /// A long operation begins and ends; calls nest. The console host shows nothing.
  virtual void BeginWait();
  virtual void EndWait();
  /// A line for the diagnostic trace, its line end included. The console host drops it.
  virtual void Trace(const std::string& text);
  /// The present time, in seconds.
  virtual CTime Now();
};

/// Installs `host` for the whole process and returns the one that was installed before, null when
/// that was the console host. Null brings the console host back. The host stays the caller's and
/// must outlive its installation. Not to be called while another thread is inside the library.
VEX2_API Host* SetHost(Host* host);

/// The installed host; never null.
VEX2_API Host* GetHost();

}  // namespace vex2
