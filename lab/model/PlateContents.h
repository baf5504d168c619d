#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "lab/model/PlateLayout.h"
#include "lab/model/Run.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::lab {

/// What a well holds for one detector, or that it holds none: a row of the wells file. Texts are
/// Latin-1, as documents keep them.
struct WellRow {
  unsigned short well = 0;  ///< from 1, counted by rows of the plate
  std::string sample;
  std::string target;      ///< the detector's name
  std::string task;        ///< of the detector in this well, e.g. "STND"
  float quantity = -0.0F;  ///< see `HasQuantity`
  std::string reporter;    ///< the detector's reporter dye

  /// Whether a quantity was given. None is kept as minus zero, which is no quantity that anyone
  /// gives and reads as zero where nobody asks.
  bool HasQuantity() const;
  /// Whether there is anything of a detector.
  bool HasDetector() const;

  friend bool operator==(const WellRow&, const WellRow&) = default;
};

/// What the wells of a plate hold, by wells; in a well with several detectors in their order.
struct PlateContents {
  PlateLayout plate;
  std::vector<WellRow> rows;

  /// The wells that have rows, ascending.
  std::vector<unsigned short> Wells() const;
  /// The wells that have the detector with that name, Latin-1.
  std::set<unsigned short> WellsOf(std::string_view target) const;
  /// The names of the detectors in any well.
  std::set<std::string> Targets() const;
};

/// The plate that the document's header describes; a plate type that is neither of 96 nor of 384
/// wells has the header's rows and columns.
PlateLayout LayoutOf(const Vex2FileManager& document);

/// What the document's plate setup and detector list say. Where a cell lies, its coordinates tell
/// when they are those of different wells, and its position otherwise.
PlateContents ContentsOf(const Vex2FileManager& document);

/// The content of the plate as values for programs, with every well of the setup.
Plate PlateOf(const Vex2FileManager& document);

/// Makes the contents the document's plate setup, a cell for every well of the plate, and adds
/// their targets to the detectors and their reporters to the required dyes; those that are there
/// stay. A target that a well had before without a detector gets none unless a reporter is given,
/// and a setup that says the same already stays as it is. Which wells the header counts as used is
/// left alone.
void StoreContents(Vex2FileManager& document, const PlateContents& contents);

/// The detectors of the document, in its order.
std::vector<Vex2Detector> DetectorsOf(const Vex2FileManager& document);
/// The dyes that its run requires.
std::vector<std::string> RequiredDyesOf(const Vex2FileManager& document);

}  // namespace vex2::lab
