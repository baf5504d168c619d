#pragma once

#include "vex2/manager/Vex2FileManager.h"

/// One plate inside a study: a plate document that is written and read at the position where the
/// study's file stands, and ends with an "EOPl" record.
class VEX2_API Vex2FileManagerComponent final : public Vex2FileManager {
 public:
  /// Makes an empty plate, with a closed file.
  Vex2FileManagerComponent();
  /// Copies the header, the path and the components of `other`, with a closed file.
  Vex2FileManagerComponent(const Vex2FileManagerComponent& other);
  /// Cuts a plate out of a document of its own.
  // Implicit because hosts write `Vex2FileManagerComponent plate = document;`.
  // NOLINTNEXTLINE(google-explicit-constructor)
  Vex2FileManagerComponent(const Vex2FileManager& other);
  /// Resets and copies. Assigning a plate to itself leaves it empty, and so does memory that runs
  /// out.
  Vex2FileManagerComponent& operator=(const Vex2FileManagerComponent& other);
  /// Resets the plate and copies the document `other` into it. The plate is empty afterwards if
  /// memory runs out.
  Vex2FileManagerComponent& operator=(const Vex2FileManager& other);
  ~Vex2FileManagerComponent() override;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The record of this class.
  static const CRuntimeClass* ClassRecord();

  // A null file is the plate's own.

  /// Writes the header, filled up with 0xFF, all components and an "EOPl" record.
  [[nodiscard]] int WriteComponentFile(CFile* file) override;
  /// Reads up to the first "EOPl", "EOF " or "Vex2" tag; -100 when the file ends before one.
  /// Otherwise the status of the last record that was read.
  [[nodiscard]] int ReadComponentFile(CFile* file) override;
  /// Reads the header at the file position of `file` into this plate. Null means the plate's own
  /// file. Returns 0, or -100 if it cannot be read.
  [[nodiscard]] int ReadHeaderData(CFile* file) override;
  [[nodiscard]] int ReadHeaderData(Vex2HeaderData& header, CFile* file) override;
  [[nodiscard]] int WriteHeaderData(CFile* file) override;

 protected:
  /// Does nothing: positions in an embedded plate lead nowhere.
  void UpdateHeaderOffsets(const CComponent& component) override;

 private:
  // The record around a plate lets refusals of the system pass: the reading or the save that they
  // end is the study's, and so is the last file error.
  friend class CRQPlateComp;

  int readPlate(CFile& file);
  int writeHeader(CFile& file);
  int writePlate(CFile& file);
};
