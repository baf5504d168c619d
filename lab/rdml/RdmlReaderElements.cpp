#include "lab/rdml/RdmlReaderElements.h"

#include <cmath>

#include "lab/Text.h"
#include "lab/rdml/RdmlReader.h"
#include "lab/rdml/RdmlTerms.h"

namespace vex2::lab::rdml {

namespace {

// Documents store the steps of programs as lines of printable ASCII, so replace all other
// characters.
std::string plainText(std::string_view text, Losses& losses) {
  std::string plain;
  bool isSame = true;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if ((code & 0xC0U) == 0x80U) continue;  // further byte of a character
    const bool isPlain = code >= 0x20U && code < 0x7FU;
    isSame = isSame && isPlain;
    plain += isPlain ? c : code < 0x80U ? ' ' : '?';
  }
  if (!isSame) losses.AddChanged("characters in thermal cycling programs", std::string(text));
  return plain;
}

}  // namespace

/// The functions for each element of a file.
struct RdmlElements {
  using Table = std::unordered_map<std::string, RdmlElement>;

  static void nothing(RdmlReader&, std::string_view) {}

  static void takeId(RdmlReader& r, std::string_view) {
    if (r.attribute_.empty()) throw r.xml_.Failure("it has no id");
    r.id_ = r.attribute_;
  }

  static void addEntries(Table& rows) {
    rows["rdml"] = {[](RdmlReader& r, std::string_view) { r.beginRoot(); }, nothing};
    rows["rdml/documentation"] = {takeId, nothing};
    rows["rdml/documentation/text"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                         r.content_.documentation[r.id_] = text;
                                       }};
    rows["rdml/dye"] = {[](RdmlReader& r, std::string_view text) {
                          takeId(r, text);
                          r.content_.dyes.push_back(r.id_);
                        },
                        nothing};
    rows["rdml/dye/description"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                      if (text == kNoDye) {
                                        r.content_.unnamedDyes.insert(r.id_);
                                      } else {
                                        r.listLost("dye/description", text);
                                      }
                                    }};
  }

  static ReadSample& sample(RdmlReader& r) { return r.content_.samples[r.id_]; }

  static void addSamples(Table& rows) {
    const std::string base = "rdml/sample";
    rows[base] = {[](RdmlReader& r, std::string_view text) {
                    takeId(r, text);
                    sample(r);
                  },
                  nothing};
    rows[base + "/type"] = {
        nothing, [](RdmlReader& r, std::string_view text) {
          if (text.empty()) return;
          if (!TaskOf(text)) {
            throw r.xml_.Failure("'" + std::string(text) + "' is no type of a sample");
          }
          sample(r).types[r.attribute_] = text;
        }};
    rows[base + "/annotation"] = {nothing, nothing};
    rows[base + "/annotation/property"] = {
        nothing, [](RdmlReader& r, std::string_view text) { r.property_ = text; }};
    rows[base + "/annotation/value"] = {
        nothing, [](RdmlReader& r, std::string_view text) {
          if (r.property_ == kSampleName) {
            sample(r).name = text;
          } else if (r.property_.starts_with(kTask)) {
            sample(r).tasks[r.property_.substr(kTask.size())] = text;
          } else {
            r.listLost("sample/annotation", r.property_ + ": " + std::string(text));
          }
        }};
    rows[base + "/quantity"] = {[](RdmlReader& r, std::string_view) {
                                  r.quantityTarget_ = r.attribute_;
                                  r.quantity_.clear();
                                },
                                nothing};
    rows[base + "/quantity/value"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                        const auto value = r.number(text);
                                        if (!value) return;
                                        sample(r).quantities[r.quantityTarget_] =
                                            static_cast<float>(*value);
                                      }};
    rows[base + "/quantity/unit"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                       if (text != "other")
                                         r.listLost("sample/quantity/unit", text);
                                     }};
    rows[base + "/calibratorSample"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                          sample(r).isCalibrator = text == "true" || text == "1";
                                        }};
  }

  static ReadTarget& target(RdmlReader& r) { return r.content_.targets[r.id_]; }

  static void addTargets(Table& rows) {
    const std::string base = "rdml/target";
    rows[base] = {[](RdmlReader& r, std::string_view text) {
                    takeId(r, text);
                    r.content_.targetOrder.push_back(r.id_);
                    target(r);
                  },
                  nothing};
    rows[base + "/description"] = {
        nothing, [](RdmlReader& r, std::string_view text) { target(r).description = text; }};
    rows[base + "/type"] = {
        nothing, [](RdmlReader& r, std::string_view text) {
          target(r).isReference = text == "ref";
          if (text.empty() || text == "ref" || text == "toi") return;
          throw r.xml_.Failure("'" + std::string(text) + "' is no type of a target");
        }};
    rows[base + "/dyeId"] = {nothing,
                             [](RdmlReader& r, std::string_view) { target(r).dye = r.attribute_; }};
    rows[base + "/xRef"] = {[](RdmlReader& r, std::string_view) { r.reference_.clear(); }, nothing};
    rows[base + "/xRef/name"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                   r.reference_ = text;
                                   if (text == kNoDetector) target(r).isDetector = false;
                                 }};
    rows[base + "/xRef/id"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                 if (r.reference_ == kDetectorName) {
                                   target(r).name = text;
                                 } else {
                                   r.listLost("target/xRef",
                                              r.reference_ + " " + std::string(text));
                                 }
                               }};
  }

  static SteppedProgram& program(RdmlReader& r) { return r.content_.conditions[r.id_]; }

  // Sets a field of the last step.
  template <char const* name>
  static void takeField(RdmlReader& r, std::string_view text) {
    if (text.empty()) return;
    program(r).steps.back().fields[name] = plainText(text, r.losses_);
  }

  template <char const* name>
  static void takeNumber(RdmlReader& r, std::string_view text) {
    static_cast<void>(r.number(text));
    takeField<name>(r, text);
  }

  static constexpr char kTemperature[] = "temperature";
  static constexpr char kHigh[] = "high";
  static constexpr char kLow[] = "low";
  static constexpr char kSeconds[] = "seconds";
  static constexpr char kChange[] = "temperature-change";
  static constexpr char kSecondsChange[] = "seconds-change";
  static constexpr char kRamp[] = "ramp";
  static constexpr char kGoto[] = "goto";
  static constexpr char kRepeat[] = "repeat";
  static constexpr char kPause[] = "pause";
  static constexpr char kDescription[] = "description";

  static void addConditions(Table& rows) {
    const std::string base = "rdml/thermalCyclingConditions";
    rows[base] = {[](RdmlReader& r, std::string_view text) {
                    takeId(r, text);
                    program(r).name = plainText(r.id_, r.losses_);
                  },
                  nothing};
    rows[base + "/description"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                     program(r).description = plainText(text, r.losses_);
                                   }};
    rows[base + "/lidTemperature"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                        if (r.number(text)) program(r).lid = text;
                                      }};
    const std::string step = base + "/step";
    rows[step] = {[](RdmlReader& r, std::string_view) { program(r).steps.emplace_back(); },
                  nothing};
    rows[step + "/nr"] = {nothing, [](RdmlReader& r, std::string_view text) {
                            if (!r.whole(text)) throw r.xml_.Failure("the step has no number");
                            program(r).steps.back().number = text;
                          }};
    rows[step + "/description"] = {nothing, takeField<kDescription>};
    for (const char* kind : {"/temperature", "/gradient"}) {
      const std::string hold = step + kind;
      rows[hold] = {nothing, nothing};
      rows[hold + "/temperature"] = {nothing, takeNumber<kTemperature>};
      rows[hold + "/highTemperature"] = {nothing, takeNumber<kHigh>};
      rows[hold + "/lowTemperature"] = {nothing, takeNumber<kLow>};
      rows[hold + "/duration"] = {nothing, takeNumber<kSeconds>};
      rows[hold + "/temperatureChange"] = {nothing, takeNumber<kChange>};
      rows[hold + "/durationChange"] = {nothing, takeNumber<kSecondsChange>};
      rows[hold + "/ramp"] = {nothing, takeNumber<kRamp>};
      rows[hold + "/measure"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                   program(r).steps.back().fields["measure"] =
                                       text == "real time" ? "real-time"
                                                           : plainText(text, r.losses_);
                                 }};
    }
    rows[step + "/loop"] = {nothing, nothing};
    rows[step + "/loop/goto"] = {nothing, takeNumber<kGoto>};
    rows[step + "/loop/repeat"] = {nothing, takeNumber<kRepeat>};
    rows[step + "/pause"] = {nothing, nothing};
    rows[step + "/pause/temperature"] = {nothing, takeNumber<kPause>};
    rows[step + "/lidOpen"] = {nothing, [](RdmlReader& r, std::string_view) {
                                 program(r).steps.back().fields["lid"] = "open";
                               }};
  }

  static void addRuns(Table& rows) {
    const std::string base = "rdml/experiment";
    rows[base] = {[](RdmlReader& r, std::string_view) { r.experiment_ = r.attribute_; }, nothing};
    const std::string run = base + "/run";
    rows[run] = {[](RdmlReader& r, std::string_view) {
                   ReadRun& added = r.content_.runs.emplace_back();
                   added.experiment = r.experiment_;
                   added.id = r.attribute_;
                   added.line = r.xml_.Line();
                 },
                 nothing};
    rows[run + "/description"] = {
        nothing, [](RdmlReader& r, std::string_view text) { r.run().description = text; }};
    rows[run + "/documentation"] = {nothing, [](RdmlReader& r, std::string_view) {
                                      r.run().documentation.push_back(r.attribute_);
                                    }};
    rows[run + "/thermalCyclingConditions"] = {
        nothing, [](RdmlReader& r, std::string_view) { r.run().conditions = r.attribute_; }};
    rows[run + "/pcrFormat"] = {nothing, nothing};
    rows[run + "/pcrFormat/rows"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                       r.run().rows = r.whole(text).value_or(0);
                                     }};
    rows[run + "/pcrFormat/columns"] = {nothing, [](RdmlReader& r, std::string_view text) {
                                          r.run().columns = r.whole(text).value_or(0);
                                        }};
    rows[run + "/pcrFormat/rowLabel"] = {nothing, nothing};
    rows[run + "/pcrFormat/columnLabel"] = {nothing, nothing};
    rows[run + "/runDate"] = {nothing,
                              [](RdmlReader& r, std::string_view text) { r.run().date = text; }};
  }

  template <std::optional<double> RdmlReader::*member>
  static void takeValue(RdmlReader& r, std::string_view text) {
    r.*member = r.number(text);
  }

  static void beginPoint(RdmlReader& r, std::string_view) {
    r.cycle_.reset();
    r.temperature_.reset();
    r.fluorescence_.reset();
  }

  static void addReadings(Table& rows) {
    const std::string react = "rdml/experiment/run/react";
    rows[react] = {[](RdmlReader& r, std::string_view) {
                     r.run().reacts.emplace_back();
                     r.react_ = r.attribute_;
                   },
                   [](RdmlReader& r, std::string_view) { r.endReact(); }};
    rows[react + "/sample"] = {
        nothing, [](RdmlReader& r, std::string_view) { r.react().sample = r.attribute_; }};
    const std::string data = react + "/data";
    rows[data] = {[](RdmlReader& r, std::string_view) { r.react().data.emplace_back(); },
                  [](RdmlReader& r, std::string_view) {
                    for (Points* points : {&r.data().amplification, &r.data().melting}) {
                      points->cycles.shrink_to_fit();
                      points->temperatures.shrink_to_fit();
                      points->readings.shrink_to_fit();
                    }
                  }};
    rows[data + "/tar"] = {nothing,
                           [](RdmlReader& r, std::string_view) { r.data().target = r.attribute_; }};
    for (const char* kind : {"/adp", "/mdp"}) {
      const std::string point = data + kind;
      rows[point] = {beginPoint, std::string_view(kind) == "/mdp"
                                     ? [](RdmlReader& r, std::string_view) { r.endPoint(true); }
                                     : [](RdmlReader& r, std::string_view) { r.endPoint(false); }};
      rows[point + "/tmp"] = {nothing, takeValue<&RdmlReader::temperature_>};
      rows[point + "/fluor"] = {nothing, takeValue<&RdmlReader::fluorescence_>};
    }
    rows[data + "/adp/cyc"] = {nothing, takeValue<&RdmlReader::cycle_>};
  }
};

const RdmlElement* FindElement(const std::string& path) {
  static const RdmlElements::Table table = [] {
    RdmlElements::Table rows;
    RdmlElements::addEntries(rows);
    RdmlElements::addSamples(rows);
    RdmlElements::addTargets(rows);
    RdmlElements::addConditions(rows);
    RdmlElements::addRuns(rows);
    RdmlElements::addReadings(rows);
    return rows;
  }();
  const auto found = table.find(path);
  return found != table.end() ? &found->second : nullptr;
}

}  // namespace vex2::lab::rdml
