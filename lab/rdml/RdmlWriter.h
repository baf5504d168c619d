#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "lab/rdml/RdmlWriterPlan.h"

namespace vex2::lab::rdml {

/// Selects the readings of a curve that an RDML file can hold: one for each cycle of the
/// amplification, and one for each temperature of the melting.
class CurveFilter {
 public:
  /// Begins the next curve.
  void Begin();
  /// Whether the next reading of the curve can be written.
  bool Takes(const RunReading& reading);

 private:
  std::vector<bool> cycles_;
  std::vector<bool> temperatures_;
};

/// The XML of an RDML file of version 1.3 in pieces: one piece for everything before the runs, and
/// one for each well. So a file of any size takes little memory.
class RdmlWriter {
 public:
  /// `plan` must outlive the object.
  explicit RdmlWriter(const Plan& plan) : plan_(plan) {}

  /// Sets `piece` to the next piece. Returns false if there is none left.
  bool Next(std::string& piece);

 private:
  void writeHead(std::string& piece) const;
  void beginRun(std::string& piece) const;
  void writeReact(std::string& piece, const Run& run, const React& react);
  void writeData(std::string& piece, const Run& run, const React& react, const Data& data);

  const Plan& plan_;
  CurveFilter filter_;
  bool hasBegun_ = false;
  bool isDone_ = false;
  bool isInRun_ = false;
  std::size_t run_ = 0;
  std::size_t react_ = 0;
};

}  // namespace vex2::lab::rdml
