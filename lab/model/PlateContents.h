#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/PlateLayout.h"
#include "lab/model/Run.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// A row of the wells file: one detector in a well, or a well without detectors. Texts are Latin-1,
/// as in documents.
struct WellRow {
  unsigned short well = 0;  ///< well number from 1, counted by rows of the plate
  std::string sample;
  std::string target;      ///< name of the detector
  std::string task;        ///< task of the detector in this well, e.g. "STND"
  float quantity = -0.0F;  ///< minus zero if none was given, see `HasQuantity`
  std::string reporter;    ///< reporter dye of the detector

  /// Whether a quantity was given. Minus zero means that no quantity was given: users never give
  /// minus zero, and code that does not call this reads it as zero.
  bool HasQuantity() const;
  /// Whether the row has a target, a task or a quantity.
  bool HasDetector() const;

  friend bool operator==(const WellRow&, const WellRow&) = default;
};

/// The content of the wells of a plate. Rows are sorted by well; several detectors in a well keep
/// their order.
struct PlateContents {
  PlateLayout plate;
  std::vector<WellRow> rows;

  /// The numbers of the wells that have rows, ascending.
  std::vector<unsigned short> Wells() const;
  /// The numbers of the wells that have the detector with this name, in Latin-1.
  std::set<unsigned short> WellsOf(std::string_view target) const;
  /// The names of all detectors in the wells.
  std::set<std::string> Targets() const;
};

/// The plate that the document's header describes. If the plate type is not one of 96 or 384 wells,
/// uses the header's rows and columns.
PlateLayout LayoutOf(const Vex2FileManager& document);

/// The content of the document's plate setup and list of detectors. The coordinates of the cells
/// determine their wells. If these are not the coordinates of different wells, the order of the
/// cells determines them.
PlateContents ContentsOf(const Vex2FileManager& document);

/// The content of the plate in the types of Run.h, with every well of the setup.
Plate PlateOf(const Vex2FileManager& document);

/// Stores the contents as the document's plate setup, with a cell for every well of the plate. Adds
/// missing targets to the detectors and missing reporters to the required dyes. A target that was
/// in a well before without being a detector becomes one only if a reporter is given. If the setup
/// already has the same rows, nothing is changed. Does not change which wells the header marks as
/// used.
void StoreContents(Vex2FileManager& document, const PlateContents& contents);

/// The detectors of the document, in its order.
std::vector<Vex2Detector> DetectorsOf(const Vex2FileManager& document);
/// The dyes that the document's run requires.
std::vector<std::string> RequiredDyesOf(const Vex2FileManager& document);

}  // namespace vex2::lab
