#include <cstring>
#include <utility>

#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

using Setter = std::pair<const char*, int (Vex2FileManager::*)(const CString&)>;

Settings drawSettings(Draw& draw) {
  Settings value;
  value.version = draw.Number();
  value.comment = draw.Letters(40);
  value.volume = draw.Number() & 0xFFFFU;
  value.reference = draw.Letters(8);
  value.unit = draw.Number() & 0xFFFFU;
  for (std::int32_t& byte : value.bytes) byte = static_cast<std::int32_t>(draw.Number());
  value.log = draw.Bytes(draw.Below(20));
  return value;
}

void fill(Vex2GlobalComplex& record, const Settings& value) {
  const auto length = [](const Text& text) { return static_cast<std::uint32_t>(text.size()); };
  record.version = value.version;
  record.SetComment(value.comment.data(), length(value.comment));
  record.sampleVolume = static_cast<std::uint16_t>(value.volume);
  record.SetPassiveReference(value.reference.data(), length(value.reference));
  record.unitCode = static_cast<std::uint16_t>(value.unit);
  record.ftrd = value.bytes[0];
  record.drks = value.bytes[1];
  record.preFlag = value.bytes[2];
  record.postFlag = value.bytes[3];
  record.SetLog(value.log.data(), length(value.log));
}

Operation wholeOperation(Draw& draw) {
  const Settings value = drawSettings(draw);
  const bool isNull = draw.OneIn(6);
  const char* path = draw.Path();
  if (draw.OneIn(2)) {
    return {"ReplaceGlobalComplexComp",
            [=](OpenedManager& m) {
              Vex2GlobalComplex record;
              fill(record, value);
              return Shown(m.ReplaceGlobalComplexComp(isNull ? nullptr : &record));
            },
            [=](Manager& m) { return Shown(m.replaceSettings(isNull ? nullptr : &value)); }};
  }
  return {"AppendGlobalComplexComp(" + Shown(path) + ")",
          [=](OpenedManager& m) {
            Vex2GlobalComplex record;
            fill(record, value);
            return Shown(m.AppendGlobalComplexComp(path, isNull ? nullptr : &record));
          },
          [=](Manager& m) { return Shown(m.appendSettings(path, isNull ? nullptr : &value)); }};
}

/// An operation on one field that is stored in the settings.
Operation fieldOperation(Draw& draw) {
  const std::uint32_t number = draw.Number();
  const Text name = draw.Letters(6);
  switch (draw.Below(3)) {
    case 0:
      return {"SetSampleVolume",
              [=](OpenedManager& m) {
                m.SetSampleVolume(static_cast<unsigned short>(number));
                return Shown(m.GetSampleVolume());
              },
              [=](Manager& m) {
                Settings value = m.settings();
                value.volume = number & 0xFFFFU;
                m.replaceSettings(&value);
                return std::to_string(m.settings().volume);
              }};
    case 1:
      return {"SetPassiveReference(\"" + name + "\")",
              [=](OpenedManager& m) {
                m.SetPassiveReference(name.c_str());
                return Text();
              },
              [=](Manager& m) {
                Settings value = m.settings();
                value.reference = name;
                m.replaceSettings(&value);
                return Text();
              }};
    default:
      return {"SetPrePostFlags",
              [=](OpenedManager& m) {
                m.SetPrePostFlags(static_cast<int>(number), -1);
                int flags[2] = {};
                m.GetPrePostFlags(flags[0], flags[1]);
                return Shown(flags[0]) + " " + Shown(flags[1]);
              },
              [=](Manager& m) {
                Settings value = m.settings();
                value.bytes[2] = static_cast<std::int32_t>(number);
                value.bytes[3] = -1;
                m.replaceSettings(&value);
                value = m.settings();
                return Shown(value.bytes[2]) + " " + Shown(value.bytes[3]);
              }};
  }
}

Operation valueOperation(Draw& draw) {
  const std::uint32_t number = draw.Number();
  if (draw.OneIn(2)) {
    return {"SetRQAnalysisType",
            [=](OpenedManager& m) {
              return Shown(m.SetRQAnalysisType(static_cast<unsigned short>(number)));
            },
            [=](Manager& m) { return Shown(m.setValue("RQAT", Big(number, 2))); }};
  }
  return {"UpdateConfidencePercent(1.0)",
          [](OpenedManager& m) { return Shown(m.UpdateConfidencePercent(1.0F)); },
          [](Manager& m) { return Shown(m.setValue("Conf", Text("\0\0\x80\x3F", 4))); }};
}

Operation textOperation(Draw& draw) {
  const Text text = draw.Letters(20);
  if (draw.OneIn(2)) {
    return {"SetCalibrator(\"" + text + "\")",
            [=](OpenedManager& m) { return Shown(m.SetCalibrator(text.c_str())); },
            [=](Manager& m) { return Shown(m.setText("CALR", text)); }};
  }
  return {"SetEndoControl(\"" + text + "\")",
          [=](OpenedManager& m) { return Shown(m.SetEndoControl(text.c_str())); },
          [=](Manager& m) { return Shown(m.setText("ENDO", text)); }};
}

Operation programOperation(Draw& draw) {
  const Text program = draw.Bytes(draw.Below(30));
  if (draw.OneIn(4)) {
    return {"WriteThermocycleComp()",
            [](OpenedManager& m) { return Shown(m.WriteThermocycleComp()); },
            [](Manager& m) { return Shown(m.writeProgram()); },
            [](const Manager& m) { return m.canTryToWrite(); }};
  }
  return {"ReplaceThermocycleProgram of " + std::to_string(program.size()) + " bytes",
          [=](OpenedManager& m) {
            ThermocycleProgram record;
            record.length = static_cast<std::uint32_t>(program.size());
            record.Allocate();
            if (!program.empty()) std::memcpy(record.data, program.data(), program.size());
            return Shown(m.ReplaceThermocycleProgram(&record));
          },
          [=](Manager& m) { return Shown(m.replaceProgram(program)); }};
}

}  // namespace

Operation DrawSettingsOperation(Draw& draw) {
  switch (draw.Below(5)) {
    case 0:
      return wholeOperation(draw);
    case 1:
      return fieldOperation(draw);
    case 2:
      return valueOperation(draw);
    case 3:
      return textOperation(draw);
    default:
      return programOperation(draw);
  }
}

}  // namespace vex2::test::model
