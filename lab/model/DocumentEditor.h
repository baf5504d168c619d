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

/// What a plate document says of its plate, to be changed. The lists that are handed out by
/// reference belong to the editor and live as long as it does; what is done to them reaches the
/// document when it is saved, and is checked then. Texts are UTF-8 and must consist of characters
/// of Latin-1, which is what documents store.
class VEX2_API PlateEditor {
 public:
  PlateEditor(const PlateEditor&) = delete;             ///< Editors are not copied.
  PlateEditor& operator=(const PlateEditor&) = delete;  ///< Editors are not copied.

  /// The wells that the plate setup has; none where there is no setup. A well is found by its
  /// number, from 1; its name is not used. A well that is removed becomes empty. A target without a
  /// reporter gets that of its detector in `Detectors`.
  std::vector<lab::Well>& Wells();
  /// The well of this name, such as "A1"; added to `Wells` when it is not there, and valid until
  /// `Wells` changes. Throws `kNoSuchWell` when the plate has no such well.
  lab::Well& Well(std::string_view name);
  /// Detectors are found by their names. Their order is the document's, new ones at the end.
  std::vector<Detector>& Detectors();
  /// The names of the dyes that the run requires.
  std::vector<std::string>& RequiredDyes();
  /// A part can be replaced, but not taken away.
  lab::Calibration& Calibration();

  /// The setting of this name, one of those that `vex set --help` lists; none where the document
  /// does not say. Throws `kUnknownSetting`.
  Value Setting(std::string_view name) const;
  /// Sets it at once. A text that is set to nothing is removed. Throws `kUnknownSetting`, and
  /// `kInvalidValue` for a value that it does not take.
  void Set(std::string_view name, const Value& value);
  /// How far the run has come: "ZERO", "PROG", "DONE", or any other four characters.
  std::string Status() const;
  /// Sets the status at once. Throws an error of class `kUsage` for a text that is not four plain
  /// characters.
  void SetStatus(std::string_view code);

 protected:
  class Impl;  ///< the plate, and what is wanted of it

  /// Edits what `impl` holds.
  explicit PlateEditor(std::unique_ptr<Impl> impl);
  ~PlateEditor();  ///< Drops what was not saved.

  std::unique_ptr<Impl> impl_;  ///< never null
};

/// Changes a document in place:
///
///     vex2::lab::DocumentEditor editor("run.vex");
///     editor.Well("A1").sample = "control";
///     editor.Set("comment", "second dilution series");
///     editor.Save();
///
/// The document is saved as a whole or not at all. While the editor lives, no recorder, other
/// editor or command can change it: keep editors short-lived. Without `Save` nothing is changed.
/// Use an editor from one thread at a time.
///
/// All operations throw `Error` and nothing else.
class VEX2_API DocumentEditor final : public PlateEditor {
 public:
  /// Reads the document at `path`. Throws when it cannot be read, is none, is being recorded or
  /// changed, was not read whole, or holds what a save would lose unless `rules` allow that.
  explicit DocumentEditor(const std::filesystem::path& path, const SaveRules& rules = {});
  ~DocumentEditor();  ///< Drops what was not saved, and lets others change the document.

  /// As it was given.
  const std::filesystem::path& Path() const;

  /// The names of the plates in a study, in its order; none of another document.
  std::vector<std::string> PlateNames() const;
  /// The first plate of a study with this name, which is saved with the document. Valid as long as
  /// the editor. Throws `kNoSuchPlate`.
  PlateEditor& Plate(std::string_view name);

  /// Saves what was changed; it is on the disk when this returns. Can be called again after further
  /// changes. Throws, and leaves the file as it was, when a value cannot be stored
  /// (`kInvalidValue`), when another program has changed the file since it was read (`kDocument`),
  /// or when the system refuses. The editor keeps the changes.
  void Save();

 private:
  class Document;

  std::unique_ptr<Document> document_;
};

/// Writes the acquisition status into the header of the document at `path`, and nothing else:
/// "ZERO", "PROG", "DONE", or any other four plain characters. It is the way to end a run whose
/// recorder is gone, which `DocumentEditor` and `Repair` do not touch: set "DONE".
///
/// Throws `Error`: of class `kUsage` for another text, `kInUse` while a program records or changes
/// the document, and when the document cannot be read or written, or is none.
VEX2_API void SetRunStatus(const std::filesystem::path& path, std::string_view code);

}  // namespace vex2::lab
