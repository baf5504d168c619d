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
/// `NoValue` if the key exists without the value, otherwise the value, a number or a text.
using Setting = std::variant<std::monostate, std::uint32_t, std::string, NoValue>;

/// The only interface between the library and the desktop. A host application derives from it and
/// installs its own object with `SetHost`; the library calls it on the thread that called the
/// library. By default every operation behaves as in the console host. No operation may throw.
class VEX2_API Host {
 public:
  virtual ~Host();

  /// Shows `text` to the user with an OK button. The console host writes it to standard error.
  virtual void ShowMessage(const std::string& text);
  /// Lets the user choose a file. Returns false if the user cancelled or the chooser failed; the
  /// console host always cancels.
  virtual bool ChooseFile(const ChooserRequest& request, ChooserResult& result);
  /// The value `name` under `key` (parts separated by single backslashes), of the machine or of the
  /// current user. A key that cannot be opened and a missing value are different results, because
  /// the library uses a default only for a missing value. The console host reads an INI file, see
  /// `ConsoleHost.h`.
  virtual Setting QuerySetting(bool localMachine, const std::string& key, const std::string& name);
  /// Marks the begin of a long operation; calls may be nested. The console host shows nothing.
  virtual void BeginWait();
  /// Marks the end of the long operation that began last. The console host shows nothing.
  virtual void EndWait();
  /// Writes a line, which includes its line end, to the diagnostic trace. The console host drops
  /// it.
  virtual void Trace(const std::string& text);
  /// The current time, in seconds.
  virtual CTime Now();
};

/// Installs `host` for the whole process; null installs the console host. Returns the host that was
/// installed before, null if that was the console host. The caller keeps ownership, and the host
/// must outlive its installation. Do not call this while another thread uses the library.
VEX2_API Host* SetHost(Host* host);

/// The installed host; never null.
VEX2_API Host* GetHost();

}  // namespace vex2
