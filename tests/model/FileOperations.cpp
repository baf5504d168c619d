#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

constexpr const char* kPaths[] = {"/runs/a.vex", "/runs/a.vex",   "/runs/a.vex",   "/runs/b.vex",
                                  "/drop/d.vex", "/sealed/s.vex", "/nowhere/n.vex"};
constexpr const char* kStatuses[] = {"ZERO", "PROG", "DONE", "DONE ", "", "prog", nullptr};

Vex2HeaderData headerOf(const Text& bytes) {
  Vex2HeaderData header;
  const auto text = [&](char* field, std::size_t at, std::size_t count) {
    std::memcpy(field, bytes.data() + at, count);
  };
  const auto number = [&](std::size_t at) {
    return static_cast<std::uint16_t>(NumberAt(bytes, at, 2));
  };
  text(header.magic, 0, 4);
  header.formatA = number(4);
  header.formatB = number(6);
  text(header.assayCode, 8, 4);
  text(header.runCode, 12, 4);
  text(header.plateTypeCode, 16, 4);
  header.SetRows(number(20));
  header.columns = number(22);
  header.thermocycleOffset = NumberAt(bytes, 24, 4);
  header.flagG = static_cast<std::uint8_t>(NumberAt(bytes, 28, 1));
  text(header.text, 29, 31);
  text(header.kindMarker, 60, 4);
  text(header.acquisitionStatus, 64, 4);
  header.acquisitionDataOffset = NumberAt(bytes, 68, 4);
  for (std::size_t row = 0; row < header.rows; ++row) {
    header.usage[row] = NumberAt(bytes, 72 + 4 * row, 4);
  }
  return header;
}

Text drawHeader(Draw& draw) {
  Text header = Manager::NewHeader();
  header.replace(8, 4, draw.Of<Text>({"AbsQ", "RQSt", "RelQ", "BGND"}));
  header.replace(64, 4, draw.Of<Text>({"ZERO", "PROG", "DONE", "prog"}));
  header.replace(28, 1, draw.Bytes(1));
  if (!draw.OneIn(3)) return header;
  const int rows = draw.Below(18);
  header.replace(20, 2, Big(static_cast<std::uint64_t>(rows), 2));
  header.resize(72);
  return header + draw.Bytes(4 * rows);
}

Operation openOperation(Draw& draw) {
  const char* path = draw.Path();
  const int write = draw.Below(2);
  const int append = write != 0 && !draw.OneIn(4) ? 1 : 0;
  if (path == nullptr) path = kPaths[0];
  return {"SafeOpen(" + Shown(path) + ", " + Shown(write) + ", " + Shown(append) + ")",
          [=](OpenedManager& m) { return Shown(m.SafeOpen(path, write, append)); },
          [=](Manager& m) { return Shown(m.safeOpen(path, write, append)); }};
}

Operation openFileOperation(Draw& draw) {
  const Text bytes = draw.Bytes(1 + draw.Below(9));
  switch (draw.Below(7)) {
    case 0:
    case 1:
      return {"Close()",
              [](OpenedManager& m) {
                m.Close();
                return Text();
              },
              [](Manager& m) {
                m.close();
                return Text();
              }};
    case 2:
      return {"Write " + std::to_string(bytes.size()) + " bytes",
              [=](OpenedManager& m) {
                m.Write(bytes.data(), bytes.size());
                return Text();
              },
              [=](Manager& m) {
                m.write(bytes);
                return Text();
              },
              [](const Manager& m) { return m.isWriting(); }};
    case 3:
      return {"WriteComponentFile(null)",
              [](OpenedManager& m) { return Shown(m.WriteComponentFile(nullptr)); },
              [](Manager& m) { return Shown(m.writeComponentFile()); },
              [](const Manager& m) { return m.canTryToWrite(); }};
    case 4:
      return {"ReadComponentFile(null)",
              [](OpenedManager& m) { return Shown(m.ReadComponentFile(nullptr)); },
              [](Manager& m) { return Shown(m.readComponentFile()); },
              [](const Manager& m) { return m.isSettled(m.path.c_str()); }};
    case 5:
      return {"UpdateAcqDataOffset(0)",
              [](OpenedManager& m) { return Shown(m.UpdateAcqDataOffset(0)); },
              [](Manager& m) { return Shown(m.updateOffset(68, 0)); },
              [](const Manager& m) { return m.canTryToWrite(); }};
    default:
      return {"UpdateThermocycleOffset(4711)",
              [](OpenedManager& m) { return Shown(m.UpdateThermocycleOffset(4711)); },
              [](Manager& m) { return Shown(m.updateOffset(24, 4711)); },
              [](const Manager& m) { return m.canTryToWrite(); }};
  }
}

Operation statusOperation(Draw& draw) {
  const char* path = draw.Path();
  const char* status = kStatuses[draw.Below(7)];
  if (draw.OneIn(3)) {
    return {"SetAcquisitionStatus(" + Shown(status) + ")",
            [=](OpenedManager& m) { return Shown(m.SetAcquisitionStatus(status)); },
            [=](Manager& m) { return Shown(m.setStatus(status)); }};
  }
  return {"SetAcquisitionStatus(" + Shown(path) + ", " + Shown(status) + ")",
          [=](OpenedManager& m) { return Shown(m.SetAcquisitionStatus(path, status)); },
          [=](Manager& m) { return Shown(m.setStatus(path, status)); }};
}

Operation usageOperation(Draw& draw) {
  const int rows = 1 + draw.Below(16);
  const int columns = 1 + draw.Below(32);
  std::vector<bool> usage;
  for (int well = 0; well < rows * columns; ++well) usage.push_back(draw.OneIn(2));
  return {"SetUsageArray of " + Shown(rows) + " x " + Shown(columns),
          [=](OpenedManager& m) {
            const auto flat = std::make_unique<bool[]>(usage.size());
            std::copy(usage.begin(), usage.end(), flat.get());
            m.SetUsageArray(flat.get(), rows, columns);
            return Text();
          },
          [=](Manager& m) {
            m.setUsage(usage, rows, columns);
            return Text();
          }};
}

Operation putOperation(Draw& draw) {
  const Text path = kPaths[draw.Below(5)];
  const Text bytes = DrawDocument(draw);
  Operation operation;
  operation.text = "a file of " + std::to_string(bytes.size()) + " bytes appears at " + path;
  operation.onBoth = [=](Sides& sides) {
    if (sides.disk.readers[path] != 0 || sides.disk.writers[path] != 0) return;
    sides.files.Remove(path.c_str());
    sides.files.Put(path, ToBytes(bytes));
    sides.disk.files[path] = bytes;
    ++sides.disk.replaced[path];
  };
  return operation;
}

Operation assignOperation(Draw& draw) {
  const int to = draw.Below(2);
  Operation operation;
  operation.text = to == 0 ? "first = second" : "second = first";
  operation.onBoth = [=](Sides& sides) {
    sides.actual[to] = sides.actual[1 - to];
    sides.model[to].assign(sides.model[1 - to]);
  };
  return operation;
}

Operation saveHeaderOperation(Draw& draw) {
  const char* path = draw.Path();
  const Text header = drawHeader(draw);
  return {"SaveHeader(" + Shown(path) + ")",
          [=](OpenedManager& m) { return Shown(m.SaveHeader(path, headerOf(header))); },
          [=](Manager& m) { return Shown(m.saveHeader(path, header)); }};
}

Operation setHeaderOperation(Draw& draw) {
  const Text header = drawHeader(draw);
  return {"SetHeaderData of " + header.substr(8, 4),
          [=](OpenedManager& m) {
            m.SetHeaderData(headerOf(header));
            return Text();
          },
          [=](Manager& m) {
            m.header = header;
            return Text();
          }};
}

}  // namespace

std::uint32_t Draw::Number() {
  const std::uint32_t kinds[] = {0, 1, 25, 200, 40000, 0x01020304, 0x7FFFFFFF, 0xFFFFFFFF};
  return OneIn(2) ? kinds[Below(8)] : static_cast<std::uint32_t>(numbers_());
}

Text Draw::Letters(int longest) {
  if (OneIn(4)) return {};
  Text text(static_cast<std::size_t>(1 + Below(longest)), ' ');
  for (char& c : text) c = "ABCab -01"[Below(9)];
  return text;
}

Text Draw::Bytes(int count) {
  Text bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(Below(256));
  return bytes;
}

const char* Draw::Path() {
  return OneIn(8) ? nullptr : kPaths[Below(7)];
}

int Files::Open(const char* path, int flags, mode_t mode) {
  const std::string_view name = path;
  const bool writes = (flags & O_ACCMODE) != O_RDONLY;
  const bool reads = (flags & O_ACCMODE) != O_WRONLY;
  if (name == "/nowhere/n.vex" || (name == "/sealed/s.vex" && writes) ||
      (name == "/drop/d.vex" && reads)) {
    return -EACCES;
  }
  return MemoryFiles::Open(path, flags, mode);
}

Operation DrawFileOperation(Draw& draw) {
  const char* path = draw.Path();
  switch (draw.Below(15)) {
    case 0:
    case 1:
    case 2:
      return {"SaveToFile(" + Shown(path) + ")",
              [=](OpenedManager& m) { return Shown(m.SaveToFile(path)); },
              [=](Manager& m) { return Shown(m.saveToFile(path)); }};
    case 3:
    case 4:
    case 5:
      return {"ReadFromFile(" + Shown(path) + ")",
              [=](OpenedManager& m) { return Shown(m.ReadFromFile(path)); },
              [=](Manager& m) { return Shown(m.readFromFile(path)); },
              [=](const Manager& m) { return m.isSettled(path); }};
    case 6:
      return openOperation(draw);
    case 7:
    case 8:
      return openFileOperation(draw);
    case 9:
      return statusOperation(draw);
    case 10:
      return putOperation(draw);
    case 11:
      return draw.OneIn(2) ? assignOperation(draw) : usageOperation(draw);
    case 12:
      return saveHeaderOperation(draw);
    case 13:
      return setHeaderOperation(draw);
    default:
      return {"Reset()", [](OpenedManager& m) { return Shown(m.Reset()); },
              [](Manager& m) { return Shown(m.reset()); }};
  }
}

}  // namespace vex2::test::model
