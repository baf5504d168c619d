#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "lab/exchange/RdmlPlan.h"

namespace vex2::lab::rdml {

/// Which readings of a curve an RDML file can hold: each cycle of the amplification once, each
/// temperature of the melting once.
class CurveFilter {
 public:
  /// Before the readings of the next curve.
  void Begin();
  /// Whether the reading, the next one of the curve, can be written.
  bool Takes(const RunReading& reading);

 private:
  std::vector<bool> cycles_;
  std::vector<bool> temperatures_;
};

/// The XML of an RDML file of version 1.3, in pieces: one for what stands before the runs, one for
/// each well, so that a file of any size takes little memory.
class RdmlText {
 public:
  /// `plan` must outlive it.
  explicit RdmlText(const Plan& plan) : plan_(plan) {}

  /// Makes `piece` the next piece; false when there is none left.
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
