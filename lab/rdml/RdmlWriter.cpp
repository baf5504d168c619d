#include "lab/rdml/RdmlWriter.h"

#include <cmath>

#include "lab/Text.h"
#include "lab/rdml/ProgramSteps.h"
#include "lab/rdml/RdmlTerms.h"
#include "lab/rdml/XmlWriter.h"

namespace vex2::lab::rdml {

namespace {

std::string idAttribute(std::string_view id) {
  return XmlWriter::Attribute("id", id);
}

std::string floatText(float value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "INF" : "-INF";
  return ValueText(Value(value));
}

void leafIfAny(XmlWriter& xml, std::string_view name, std::string_view text) {
  if (!text.empty()) xml.Leaf(name, text);
}

void writeSample(XmlWriter& xml, const Sample& sample, const std::vector<TargetEntry>& targets) {
  xml.Open("sample", idAttribute(sample.id));
  const auto annotate = [&](const std::string& property, const std::string& value) {
    xml.Open("annotation");
    xml.Leaf("property", property);
    xml.Leaf("value", value);
    xml.Close("annotation");
  };
  if (sample.name) annotate(std::string(kSampleName), *sample.name);
  for (const auto& [target, use] : sample.uses) {
    const auto type = TypeOf(use.task);
    if (type && TaskOf(*type) == use.task) continue;
    annotate(std::string(kTask) + targets[target].id, XmlText(use.task));
  }
  for (const auto& [target, use] : sample.uses) {
    xml.Leaf("type", TypeOf(use.task).value_or("unkn"),
             XmlWriter::Attribute("targetId", targets[target].id));
  }
  for (const auto& [target, use] : sample.uses) {
    if (!use.quantity) continue;
    xml.Open("quantity", XmlWriter::Attribute("targetId", targets[target].id));
    xml.Leaf("value", floatText(*use.quantity));
    xml.Leaf("unit", "other");
    xml.Close("quantity");
  }
  if (sample.isCalibrator) xml.Leaf("calibratorSample", "true");
  xml.Close("sample");
}

void writeReference(XmlWriter& xml, std::string_view name, const std::string& id) {
  xml.Open("xRef");
  xml.Leaf("name", name);
  leafIfAny(xml, "id", id);
  xml.Close("xRef");
}

void writeTarget(XmlWriter& xml, const TargetEntry& target) {
  xml.Open("target", idAttribute(target.id));
  leafIfAny(xml, "description", target.description);
  if (!target.detector.empty()) writeReference(xml, kDetectorName, target.detector);
  if (!target.isDetector) writeReference(xml, kNoDetector, "");
  xml.Leaf("type", target.isReference ? "ref" : "toi");
  xml.Empty("dyeId", idAttribute(target.dye));
  xml.Close("target");
}

void writeHold(XmlWriter& xml, const ProgramStep& step) {
  const bool isGradient = step.fields.contains("high");
  const char* const name = isGradient ? "gradient" : "temperature";
  xml.Open(name);
  if (isGradient) {
    xml.Leaf("highTemperature", step.Field("high"));
    xml.Leaf("lowTemperature", step.Field("low"));
  } else {
    xml.Leaf("temperature", step.Field("temperature"));
  }
  xml.Leaf("duration", step.Field("seconds"));
  leafIfAny(xml, "temperatureChange", step.Field("temperature-change"));
  leafIfAny(xml, "durationChange", step.Field("seconds-change"));
  const std::string measure = step.Field("measure");
  leafIfAny(xml, "measure", measure == "real-time" ? "real time" : measure);
  leafIfAny(xml, "ramp", step.Field("ramp"));
  xml.Close(name);
}

void writeStep(XmlWriter& xml, const ProgramStep& step) {
  xml.Open("step");
  xml.Leaf("nr", step.number);
  leafIfAny(xml, "description", step.Field("description"));
  if (step.fields.contains("goto")) {
    xml.Open("loop");
    xml.Leaf("goto", step.Field("goto"));
    xml.Leaf("repeat", step.Field("repeat"));
    xml.Close("loop");
  } else if (step.fields.contains("pause")) {
    xml.Open("pause");
    xml.Leaf("temperature", step.Field("pause"));
    xml.Close("pause");
  } else if (step.fields.contains("lid")) {
    xml.Empty("lidOpen");
  } else {
    writeHold(xml, step);
  }
  xml.Close("step");
}

void writeConditions(XmlWriter& xml, const std::string& text) {
  const auto program = ParseProgram(text);
  if (!program) return;
  xml.Open("thermalCyclingConditions", idAttribute(program->name));
  leafIfAny(xml, "description", program->description);
  leafIfAny(xml, "lidTemperature", program->lid);
  for (const ProgramStep& step : program->steps) writeStep(xml, step);
  xml.Close("thermalCyclingConditions");
}

void writeCq(XmlWriter& xml, const CqResult& result) {
  xml.Leaf("cq", result.cq ? floatText(static_cast<float>(*result.cq)) : std::string(kNoCq));
  leafIfAny(xml, "note", XmlText(result.note));
}

// Writes the line that was fitted as the baseline, and the threshold above it.
void writeBaseline(XmlWriter& xml, const CqResult& result) {
  if (result.baseline) {
    xml.Leaf("bgFluor", floatText(static_cast<float>(result.baselineIntercept)));
    xml.Leaf("bgFluorSlp", floatText(static_cast<float>(result.baselineSlope)));
  }
  if (result.threshold) xml.Leaf("quantFluor", floatText(static_cast<float>(*result.threshold)));
}

void appendPoint(std::string& piece, const RunReading& reading, const std::string& fluorescence) {
  piece += reading.melting ? "     <mdp>" : "     <adp>";
  if (!reading.melting) {
    piece.append("<cyc>").append(std::to_string(reading.cycle)).append("</cyc>");
  }
  // A document stores 0 if no temperature was given.
  if (reading.melting || reading.temperature != 0) {
    piece.append("<tmp>")
        .append(ShortestQuotient(reading.temperature, kTemperatureSteps))
        .append("</tmp>");
  }
  piece.append("<fluor>").append(fluorescence).append("</fluor>");
  piece += reading.melting ? "</mdp>\n" : "</adp>\n";
}

}  // namespace

void CurveFilter::Begin() {
  cycles_.assign(1U << 16U, false);
  temperatures_.assign(1U << 16U, false);
}

bool CurveFilter::Takes(const RunReading& reading) {
  auto&& seen = reading.melting ? temperatures_[reading.temperature] : cycles_[reading.cycle];
  const bool isFirst = !seen;
  seen = true;
  return isFirst;
}

bool RdmlWriter::Next(std::string& piece) {
  piece.clear();
  if (isDone_) return false;
  if (!hasBegun_) {
    writeHead(piece);
    hasBegun_ = true;
  } else if (run_ == plan_.runs.size()) {
    piece = " </experiment>\n</rdml>\n";
    isDone_ = true;
  } else if (!isInRun_) {
    beginRun(piece);
    isInRun_ = true;
    react_ = 0;
  } else if (const Run& run = plan_.runs[run_]; react_ < run.reacts.size()) {
    writeReact(piece, run, run.reacts[react_++]);
  } else {
    piece = "  </run>\n";
    isInRun_ = false;
    ++run_;
  }
  return true;
}

void RdmlWriter::writeHead(std::string& piece) const {
  piece = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  XmlWriter xml(piece);
  xml.Open("rdml",
           XmlWriter::Attribute("version", "1.3") + XmlWriter::Attribute("xmlns", kNamespace));
  for (const Documentation& one : plan_.documentation) {
    xml.Open("documentation", idAttribute(one.id));
    xml.Leaf("text", one.text);
    xml.Close("documentation");
  }
  for (const Dye& dye : plan_.dyes) {
    xml.Open("dye", idAttribute(dye.id));
    leafIfAny(xml, "description", dye.description);
    xml.Close("dye");
  }
  for (const Sample& sample : plan_.samples) writeSample(xml, sample, plan_.targets);
  for (const TargetEntry& target : plan_.targets) writeTarget(xml, target);
  for (const std::string& text : plan_.conditions) writeConditions(xml, text);
  xml.Open("experiment", idAttribute("experiment"));
}

void RdmlWriter::beginRun(std::string& piece) const {
  const Run& run = plan_.runs[run_];
  XmlWriter xml(piece, 2);
  xml.Open("run", idAttribute(run.id));
  leafIfAny(xml, "description", XmlText(run.source->comment));
  for (const std::string& id : run.documentation) xml.Empty("documentation", idAttribute(id));
  leafIfAny(xml, "cqDetectionMethod", run.cqMethod);
  if (run.conditions) {
    const auto program = ParseProgram(plan_.conditions[*run.conditions]);
    xml.Empty("thermalCyclingConditions", idAttribute(program->name));
  }
  xml.Open("pcrFormat");
  xml.Leaf("rows", std::to_string(run.source->plate.rows));
  xml.Leaf("columns", std::to_string(run.source->plate.columns));
  xml.Leaf("rowLabel", "ABC");
  xml.Leaf("columnLabel", "123");
  xml.Close("pcrFormat");
  if (run.source->start) xml.Leaf("runDate", *run.source->start);
}

void RdmlWriter::writeReact(std::string& piece, const Run& run, const React& react) {
  XmlWriter xml(piece, 3);
  xml.Open("react", idAttribute(std::to_string(react.well)));
  xml.Empty("sample", idAttribute(plan_.samples[react.sample].id));
  for (const Data& data : react.data) writeData(piece, run, react, data);
  xml.Close("react");
}

void RdmlWriter::writeData(std::string& piece, const Run& run, const React& react,
                           const Data& data) {
  XmlWriter xml(piece, 4);
  xml.Open("data");
  xml.Empty("tar", idAttribute(plan_.targets[data.target].id));
  if (data.cq != nullptr) writeCq(xml, *data.cq);
  if (data.channel) {
    filter_.Begin();
    std::string melting;
    ForEachReading(*run.source, *react.position, [&](const SourceReading& one) {
      if (one.reading.IsMissing(*data.channel) || !filter_.Takes(one.reading)) return;
      appendPoint(one.reading.melting ? melting : piece, one.reading,
                  run.source->Log()->scale.MeasuredText(one.reading.values[*data.channel]));
    });
    piece += melting;
  }
  if (data.cq != nullptr) writeBaseline(xml, *data.cq);
  xml.Close("data");
}

}  // namespace vex2::lab::rdml
