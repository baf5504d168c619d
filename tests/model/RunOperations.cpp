#include <memory>

#include "tests/model/Operation.h"

namespace vex2::test::model {
namespace {

struct Block {
  Vex2DataType type;
  const char* tag;
};

constexpr Block kBlocks[] = {{DataRAWa, "RAWa"}, {DataRAWa, "RAWa"}, {DataRAWa, "RAWa"},
                             {DataREPr, "REPr"}, {DataREPn, "REPn"}, {DataREPt, "REPt"}};

/// 44 values. The first is nonzero if the well counts as filled.
Text drawAnyRecord(Draw& draw) {
  return Big(draw.OneIn(5) ? 0U : 1U + static_cast<unsigned>(draw.Below(9)), 2) + draw.Bytes(86);
}

Frame drawFrame(Draw& draw) {
  Frame frame;
  frame.wells = static_cast<std::uint16_t>(draw.OneIn(6) ? 3 : 2);
  for (int well = 0; well < frame.wells; ++well) frame.records += drawAnyRecord(draw);
  return frame;
}

Vex2WellRecord recordOf(const Text& bytes, std::size_t at) {
  Vex2WellRecord record;
  for (std::size_t i = 0; i < 8; ++i) {
    record.leading[i] = static_cast<std::uint16_t>(NumberAt(bytes, at + 2 * i, 2));
  }
  for (std::size_t i = 0; i < 36; ++i) {
    record.data[i] = static_cast<std::uint16_t>(NumberAt(bytes, at + 16 + 2 * i, 2));
  }
  return record;
}

Vex2FrameData frameOf(const Frame& from) {
  Vex2FrameData frame(from.wells);
  for (std::size_t i = 0; i < from.wells; ++i) frame.records[i] = recordOf(from.records, 88 * i);
  return frame;
}

Text shown(const Vex2FrameData& frame) {
  Text bytes;
  for (int i = 0; i < frame.wellCount; ++i) {
    for (const std::uint16_t value : frame.records[i].leading) bytes += Big(value, 2);
    for (const std::uint16_t value : frame.records[i].data) bytes += Big(value, 2);
  }
  return bytes;
}

/// Frames of a whole block, as a caller passes them. `Data` refers to them.
struct Frames {
  explicit Frames(const std::vector<Frame>& from) {
    for (const Frame& frame : from) list.push_back(frameOf(frame));
  }
  Vex2AcquisitionData Data(int count) { return {list.data(), count}; }
  std::vector<Vex2FrameData> list;
};

Operation wholeBlockOperation(Draw& draw, const Block& block, const char* path) {
  const bool isNull = draw.OneIn(6);
  std::vector<Frame> frames = {drawFrame(draw)};
  const int count = draw.Below(4);
  while (static_cast<int>(frames.size()) < count) {
    frames.push_back(drawFrame(draw));
    frames.back().wells = frames.front().wells;
    frames.back().records.resize(88UL * frames.front().wells);
  }
  const Text how = "(" + Shown(path) + ", " + (isNull ? "null" : Shown(count) + " frames") + ")";
  // The operation must read the file to find the offset of the block.
  const bool canBeRead = path == nullptr || Text(path) != "/drop/d.vex";
  if (block.type == DataRAWa && canBeRead && draw.OneIn(3)) {
    return {
        "AppendAcquisitionDataBlock" + how,
        [=](OpenedManager& m) {
          Frames held(frames);
          const Vex2AcquisitionData data = held.Data(count);
          return Shown(m.AppendAcquisitionDataBlock(path, isNull ? nullptr : &data));
        },
        [=](Manager& m) { return Shown(m.appendBlock(path, isNull ? nullptr : &frames, count)); },
        [=](const Manager& m) { return m.isSettled(path); }};
  }
  return {"ReplaceAcquisitionDataBlock " + Text(block.tag) + how,
          [=](OpenedManager& m) {
            Frames held(frames);
            const Vex2AcquisitionData data = held.Data(count);
            return Shown(m.ReplaceAcquisitionDataBlock(path, isNull ? nullptr : &data, block.type));
          },
          [=](Manager& m) {
            return Shown(m.replaceBlock(path, isNull ? nullptr : &frames, count, block.tag));
          },
          [=](const Manager& m) { return block.type == DataRAWa || m.hasPlainRecords(path); }};
}

Operation wellsOperation(Draw& draw, const Block& block) {
  std::vector<std::uint16_t> wells(static_cast<std::size_t>(draw.OneIn(8) ? 3 : 2));
  for (std::uint16_t& well : wells) well = static_cast<std::uint16_t>(1 + draw.Below(9));
  return {"InitAcqDataWellNumberArray " + Text(block.tag) + " of " + std::to_string(wells.size()),
          [=](OpenedManager& m) {
            m.InitAcqDataWellNumberArray(wells.data(), static_cast<unsigned short>(wells.size()),
                                         block.type);
            return Text();
          },
          [=](Manager& m) {
            m.initWells(wells, block.tag);
            return Text();
          }};
}

Operation frameOperation(Draw& draw, const Block& block, const char* path) {
  const Frame frame = drawFrame(draw);
  return {"AppendAcquisitionDataFrame(" + Shown(path) + ") " + block.tag,
          [=](OpenedManager& m) {
            const Vex2FrameData given = frameOf(frame);
            return Shown(m.AppendAcquisitionDataFrame(path, &given, block.type));
          },
          [=](Manager& m) { return Shown(m.appendFrame(path, frame, block.tag)); }};
}

Operation recordOperation(Draw& draw, const Block& block) {
  const Text record = drawAnyRecord(draw);
  const int frame = draw.Below(5) - 1;
  const int well = draw.Below(5);
  return {"SetAcqDataWellRecord frame " + Shown(frame) + ", well " + Shown(well) + ", " + block.tag,
          [=](OpenedManager& m) {
            const Vex2WellRecord given = recordOf(record, 0);
            return Shown(m.SetAcqDataWellRecord(&given, frame, well, block.type));
          },
          [=](Manager& m) { return Shown(m.setRecord(record, frame, well, block.tag)); }};
}

Operation timeOperation(Draw& draw, const Block& block) {
  const Text time = draw.Bytes(6);
  return {"SetAcqDataEndTime " + Text(block.tag),
          [=](OpenedManager& m) {
            TimeStamp stamp;
            std::copy(time.begin(), time.end(), stamp.fields);
            return Shown(m.SetAcqDataEndTime(stamp, block.type));
          },
          [=](Manager& m) { return Shown(m.setTime(time, true, block.tag)); }};
}

Operation readOperation(Draw& draw, const Block& block, const char* path) {
  const int index = draw.Below(5) - 1;
  if (path == nullptr) {
    return {"ReadDataFrame(" + Shown(index) + ") " + block.tag,
            [=](OpenedManager& m) {
              Vex2FrameData frame;
              const int status = m.ReadDataFrame(index, &frame, block.type);
              return Shown(status) + (status == 0 ? " " + shown(frame) : "");
            },
            [=](Manager& m) { return m.readFrame(index, block.tag); }};
  }
  if (draw.OneIn(2)) {
    return {"GetDataFrameCount(" + Shown(path) + ") " + block.tag,
            [=](OpenedManager& m) {
              int count = -1;
              const int status = m.GetDataFrameCount(path, count, block.type);
              return Shown(status) + " " + Shown(count);
            },
            [=](Manager& m) { return m.frameCount(path, block.tag); },
            [=](const Manager& m) { return m.isSettled(path) && m.leadsToBlock(path, block.tag); }};
  }
  return {"ReadDataFrame(" + Shown(path) + ", " + Shown(index) + ") " + block.tag,
          [=](OpenedManager& m) {
            Vex2FrameData frame;
            const int status = m.ReadDataFrame(path, index, &frame, block.type);
            return Shown(status) + (status == 0 ? " " + shown(frame) : "");
          },
          [=](Manager& m) { return m.readFrame(path, index, block.tag); },
          [=](const Manager& m) { return m.isSettled(path) && m.leadsToBlock(path, block.tag); }};
}

}  // namespace

Operation DrawRunOperation(Draw& draw) {
  const Block block = kBlocks[draw.Below(6)];
  const char* path = draw.Path();
  const int index = draw.Below(5) - 1;
  switch (draw.Below(12)) {
    case 0:
    case 1:
      return wholeBlockOperation(draw, block, path);
    case 2:
      return wellsOperation(draw, block);
    case 3:
    case 4:
    case 5:
      return frameOperation(draw, block, path);
    case 6:
      return recordOperation(draw, block);
    case 7:
      return timeOperation(draw, block);
    case 8:
    case 9:
      return {
          "CommitAcqDataFrame(" + Shown(path) + ", " + Shown(index) + ") " + block.tag,
          [=](OpenedManager& m) { return Shown(m.CommitAcqDataFrame(path, index, block.type)); },
          [=](Manager& m) { return Shown(m.commit(path, index, block.tag)); }};
    case 10:
      return {"RemoveAcquisitionDataBlock " + Text(block.tag),
              [=](OpenedManager& m) { return Shown(m.RemoveAcquisitionDataBlock(block.type)); },
              [=](Manager& m) { return Shown(m.removeBlock(block.tag)); }};
    default:
      return readOperation(draw, block, path);
  }
}

}  // namespace vex2::test::model
