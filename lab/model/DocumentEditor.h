#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lab/Error.h"
#include "lab/model/Calibration.h"
#include "lab/model/Run.h"
#include "lab/model/SaveRules.h"
#include "lab/model/Value.h"
#include "vex2/framework/Export.h"

namespace vex2::lab {

/// The content of one plate, which can be changed. The lists that are returned by reference belong
/// to the editor and are valid as long as the editor. A save checks the changes in the lists and
/// stores them in the document. Texts are UTF-8 and must consist of Latin-1 characters, which is
/// what documents store.
class VEX2_API PlateEditor {
 public:
  PlateEditor(const PlateEditor&) = delete;             ///< Editors are not copied.
  PlateEditor& operator=(const PlateEditor&) = delete;  ///< Editors are not copied.

  /// The wells in the plate setup, with numbers from 1; empty if there is no setup. A well is
  /// identified by its number; its name is not used. A well that the caller removes from the list
  /// becomes empty. A target without a reporter gets the reporter of its detector in `Detectors`.
  std::vector<lab::Well>& Wells();
  /// The well with this name, such as "A1". It is added to `Wells` if it is not there. Valid until
  /// `Wells` changes. Throws `kNoSuchWell` if the plate has no such well.
  lab::Well& Well(std::string_view name);
  /// The detectors in the order of the document; new ones are appended. Detectors are identified by
  /// their names.
  std::vector<Detector>& Detectors();
  /// The names of the dyes that the run requires.
  std::vector<std::string>& RequiredDyes();
  /// The calibration. A part can be replaced, but not removed.
  lab::Calibration& Calibration();

  /// The value of the setting `name`; `vex set --help` lists the names. Returns no value if the
  /// document does not have the setting. Throws `kUnknownSetting`.
  Value Setting(std::string_view name) const;
  /// Changes the setting in memory at once. Setting a text to no value removes it. Throws
  /// `kUnknownSetting`, and `kInvalidValue` for a value that the setting does not take.
  void Set(std::string_view name, const Value& value);
  /// The acquisition status: "ZERO", "PROG", "DONE", or any other four characters.
  std::string Status() const;
  /// Changes the acquisition status in memory at once. Throws an error of class `kUsage` if `code`
  /// is not four printable ASCII characters.
  void SetStatus(std::string_view code);

 protected:
  class Impl;  ///< the plate, with its stored and changed values

  /// Takes over `impl`.
  explicit PlateEditor(std::unique_ptr<Impl> impl);
  ~PlateEditor();  ///< Discards changes that were not saved.

  std::unique_ptr<Impl> impl_;  ///< never null
};

/// Changes a document in place:
///
///     vex2::lab::DocumentEditor editor("run.vex");
///     editor.Well("A1").sample = "control";
///     editor.Set("comment", "second dilution series");
///     editor.Save();
///
/// The document is saved completely or not at all. During the lifetime of the editor, no recorder,
/// other editor or command can change it: keep editors short-lived. Without `Save` nothing is
/// changed. Use an editor from one thread at a time.
///
/// All operations throw `Error` and nothing else.
class VEX2_API DocumentEditor final : public PlateEditor {
 public:
  /// Reads the document at `path`. Throws if it cannot be read, is not a document, is being
  /// recorded or changed, or could not be read completely. Also throws if it holds content that a
  /// save would lose, unless `rules` allow that.
  explicit DocumentEditor(const std::filesystem::path& path, const SaveRules& rules = {});
  ~DocumentEditor();  ///< Discards changes that were not saved, and allows others to change the
                      ///< document.

  /// The path as the caller gave it.
  const std::filesystem::path& Path() const;

  /// The names of the plates in a study, in its order; empty for other documents.
  std::vector<std::string> PlateNames() const;
  /// The editor of the first plate of a study with this name. Its changes are saved with the
  /// document. Valid as long as this editor. Throws `kNoSuchPlate`.
  PlateEditor& Plate(std::string_view name);

  /// Saves the changes; they are on the disk when this returns. Can be called again after further
  /// changes.
  ///
  /// Throws if a value cannot be stored (`kInvalidValue`), if another program has changed the file
  /// since it was read (`kDocument`), or if the system refuses. The file is then unchanged, and the
  /// editor keeps the changes.
  void Save();

 private:
  class Document;

  std::unique_ptr<Document> document_;
};

/// Writes the acquisition status into the header of the document at `path`: "ZERO", "PROG", "DONE",
/// or any other four printable ASCII characters. Changes nothing else. Set "DONE" to end a run
/// whose recorder was killed: `DocumentEditor` refuses a document in progress, and `Repair` does
/// not change the status.
///
/// Throws `Error` of class `kUsage` for another text, `kInUse` while a program records or changes
/// the document, and an error if the document cannot be read or written or is not a document.
VEX2_API void SetRunStatus(const std::filesystem::path& path, std::string_view code);

}  // namespace vex2::lab
