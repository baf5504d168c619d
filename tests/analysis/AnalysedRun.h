#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lab/record/RunRecorder.h"
#include "tests/analysis/Curves.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {

/// A folder with runs to be analysed.
class AnalysedRunTest : public TempFolderTest {
 protected:
  /// A plan of so many wells, each of which has this detector with this reporter.
  static lab::RecordingPlan planOf(const std::string& reporter, std::uint16_t wells = 2,
                                   const std::string& detector = "MYC") {
    lab::RecordingPlan plan;
    for (std::uint16_t number = 1; number <= wells; ++number) {
      plan.plate.wells.push_back({.number = number,
                                  .name = {},
                                  .sample = "liver",
                                  .targets = {{detector, "UNKN", {}, reporter}}});
    }
    plan.scale = lab::ReadingScale(1000);
    return plan;
  }

  /// Records a simulated curve in each well; in channel c, from 0, from 10^(c + 2) copies.
  static void record(const lab::RecordingPlan& plan, std::size_t cycles, const std::string& path) {
    lab::RunRecorder recorder(path, plan);
    const std::size_t channels = std::max<std::size_t>(plan.channels.size(), 1);
    for (std::size_t cycle = 1; cycle <= cycles; ++cycle) {
      lab::MeasuredFrame frame{.stage = lab::Stage::kAmplification,
                               .cycle = static_cast<std::uint16_t>(cycle),
                               .wells = {}};
      for (const std::uint16_t well : recorder.Wells()) {
        auto& measured = frame.wells.emplace_back();
        measured.well = well;
        for (std::size_t channel = 0; channel < channels; ++channel) {
          const auto copies = std::pow(10, static_cast<double>(channel) + 2);
          measured.values.push_back(Measured({.copies = copies}, well, cycles).readings[cycle - 1]);
        }
      }
      recorder.Append(frame);
    }
    recorder.Finish();
  }

  /// Where a reading of a melting stage is taken, and its size.
  struct MeltReading {
    double temperature = 0;
    double light = 0;
  };
  /// Records a melting stage; `read(well, step)` gives the readings, by well numbers from 1 and
  /// steps from 0.
  static void recordMelting(
      const lab::RecordingPlan& plan, std::size_t steps, const std::string& path,
      const std::function<MeltReading(std::uint16_t well, std::size_t step)>& read) {
    lab::RunRecorder recorder(path, plan);
    for (std::size_t step = 0; step < steps; ++step) {
      lab::MeasuredFrame frame{.stage = lab::Stage::kMelting,
                               .cycle = static_cast<std::uint16_t>(step + 1),
                               .wells = {}};
      for (const std::uint16_t well : recorder.Wells()) {
        const MeltReading reading = read(well, step);
        frame.wells.push_back({.well = well,
                               .temperature = reading.temperature,
                               .time = 0,
                               .values = {reading.light}});
      }
      recorder.Append(frame);
    }
    recorder.Finish();
  }

  std::string path_ = folder_ / "run.vex";
};

}  // namespace vex2::test
