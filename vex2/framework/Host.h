#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "vex2/framework/CTime.h"
#include "vex2/framework/Export.h"

class CWnd;

namespace vex2 {

/// A request to the host's file chooser.
struct ChooserRequest {
  CWnd* owner = nullptr;         ///< the window that the chooser belongs to, or null
  std::string title;             ///< e.g. "Select Vex File to Open"
  std::string filter;            ///< pairs of description and pattern; a zero byte ends each
                                 ///< text, and one more ends the list
  std::string defaultExtension;  ///< without a dot
  std::string initialName;       ///< may be empty
  std::string initialFolder;     ///< may be empty
};

/// The user's choice.
struct ChooserResult {
  std::string path;   ///< the whole path
  std::string title;  ///< the chosen file's name without its folder
};

/// Means that the key exists but has no value with the requested name.
struct NoValue {
  /// All objects are equal.
  friend bool operator==(NoValue, NoValue) = default;
};

/// A result of the host's settings store: nothing (`std::monostate`) if the key cannot be opened,
/// `NoValue` if the key exists but the value does not, otherwise the value, a number or a text.
using Setting = std::variant<std::monostate, std::uint32_t, std::string, NoValue>;

/// The only interface between the library and the desktop. A host application derives from it and
/// installs its own object with `SetHost`; the library calls it on the thread that called the
/// library. By default every operation behaves as in the console host. No operation may throw.
class VEX2_API Host {
 public:
  virtual ~Host();

  /// Shows `text` to the user with an OK button. The console host writes it to standard error.
  virtual void ShowMessage(const std::string& text);
  /// Lets the user choose a file and fills `result`. Returns false if the user cancelled or the
  /// chooser failed. The console host always returns false.
  virtual bool ChooseFile(const ChooserRequest& request, ChooserResult& result);
  /// Returns the value `name` under `key`, whose parts are separated by single backslashes, from
  /// the settings of the machine or of the current user. The result distinguishes a key that cannot
  /// be opened from a missing value, because the library uses a default only for a missing value.
  /// The console host reads an INI file, see `ConsoleHost.h`.
  virtual Setting QuerySetting(bool localMachine, const std::string& key, const std::string& name);
  /// Marks the beginning of a long operation; calls may be nested. The console host shows nothing.
  virtual void BeginWait();
  /// Marks the end of the long operation that began last. The console host shows nothing.
  virtual void EndWait();
  /// Writes `text`, one line including its line end, to the diagnostic trace. The console host
  /// drops it.
  virtual void Trace(const std::string& text);
  /// The current time, in seconds.
  virtual CTime Now();
};

/// Installs `host` for the whole process; null installs the console host. Returns the host that was
/// installed before, or null if that was the console host. The caller keeps ownership of `host`,
/// which must live as long as it is installed. Do not call this while another thread uses the
/// library.
VEX2_API Host* SetHost(Host* host);

/// The installed host; never null.
VEX2_API Host* GetHost();

}  // namespace vex2
