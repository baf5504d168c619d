#pragma once

#include "vex2/manager/Vex2FileManager.h"

/// One plate inside a study: a plate document that is written and read at the file position of the
/// study's file, and that ends with an "EOPl" record.
class VEX2_API Vex2FileManagerComponent final : public Vex2FileManager {
 public:
  /// Makes an empty plate. No file is open.
  Vex2FileManagerComponent();
  /// Copies the header, the path and the components of `other`. No file is open.
  Vex2FileManagerComponent(const Vex2FileManagerComponent& other);
  /// Makes a plate from a whole document: copies its header, its path and its components.
  // Implicit because hosts write `Vex2FileManagerComponent plate = document;`.
  // NOLINTNEXTLINE(google-explicit-constructor)
  Vex2FileManagerComponent(const Vex2FileManager& other);
  /// Resets the plate and copies `other` into it. The plate is empty afterwards if `other` is this
  /// plate or memory runs out.
  Vex2FileManagerComponent& operator=(const Vex2FileManagerComponent& other);
  /// Resets the plate and copies the document `other` into it. The plate is empty afterwards if
  /// memory runs out.
  Vex2FileManagerComponent& operator=(const Vex2FileManager& other);
  ~Vex2FileManagerComponent() override;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  // In the next operations, a null file means the plate's own file.

  /// Writes the header, padded with 0xFF to 1024 bytes, all components and an "EOPl" record.
  [[nodiscard]] int WriteComponentFile(CFile* file) override;
  /// Reads records up to the first "EOPl", "EOF " or "Vex2" tag. Returns -100 if the file ends
  /// before one of these, otherwise the status of the last record that was read.
  [[nodiscard]] int ReadComponentFile(CFile* file) override;
  /// Reads the header at the file position of `file` into this plate. Null means the plate's own
  /// file. Returns 0, or -100 if it cannot be read.
  [[nodiscard]] int ReadHeaderData(CFile* file) override;
  [[nodiscard]] int ReadHeaderData(Vex2HeaderData& header, CFile* file) override;
  [[nodiscard]] int WriteHeaderData(CFile* file) override;

 protected:
  /// Does nothing: the header's offsets have no meaning in an embedded plate.
  void UpdateHeaderOffsets(const CComponent& component) override;

 private:
  // `CRQPlateComp` calls the following operations, which let exceptions pass: the study's manager
  // catches them, because its operation fails and its last file error is set.
  friend class CRQPlateComp;

  int readPlate(CFile& file);
  int writeHeader(CFile& file);
  int writePlate(CFile& file);
};
