// Binds data blocks and their frames.
#include "python/src/raw/RawManager.h"

namespace vex2::python {

namespace {

// The interface accepts any number as a type; for unknown types the operations return a status.
Vex2DataType typeOf(int type) {
  return static_cast<Vex2DataType>(type);
}

void bindBlocks(ManagerClass& manager) {
  manager
      .def(
          "RemoveAcquisitionDataBlock",
          [](Manager& self, int type) { return self.RemoveAcquisitionDataBlock(typeOf(type)); },
          py::arg("type"))
      .def(
          "ReplaceAcquisitionDataBlock",
          [](Manager& self, const PathArgument& path, const py::object& given, int type) {
            std::vector<Vex2FrameData> frames;
            if (!given.is_none()) {
              for (const py::handle frame : given) frames.push_back(ToFrame(frame));
            }
            for (const Vex2FrameData& frame : frames) {
              if (frame.wellCount == frames[0].wellCount) continue;
              throw py::value_error("all frames have the same number of wells");
            }
            const Vex2AcquisitionData data{.frames = frames.data(),
                                           .frameCount = static_cast<std::int32_t>(frames.size())};
            return self.ReplaceAcquisitionDataBlock(path.Get(), given.is_none() ? nullptr : &data,
                                                    typeOf(type));
          },
          py::arg("path"), py::arg("frames"), py::arg("type"))
      .def(
          "InitAcqDataWellNumberArray",
          [](Manager& self, const std::vector<std::uint16_t>& wells, int type) {
            if (wells.size() > 65535) throw py::value_error("a block has at most 65535 wells");
            self.InitAcqDataWellNumberArray(wells.data(), static_cast<std::uint16_t>(wells.size()),
                                            typeOf(type));
          },
          py::arg("wellNumbers"), py::arg("type"))
      .def(
          "SetAcqDataStartTime",
          [](Manager& self, const py::bytes& time, int type) {
            return self.SetAcqDataStartTime(ToTime(time), typeOf(type));
          },
          py::arg("time"), py::arg("type"))
      .def(
          "SetAcqDataEndTime",
          [](Manager& self, const py::bytes& time, int type) {
            return self.SetAcqDataEndTime(ToTime(time), typeOf(type));
          },
          py::arg("time"), py::arg("type"))
      .def(
          "GetAcqDataStartTime",
          [](const Manager& self, int type) {
            TimeStamp time;
            const bool done = self.GetAcqDataStartTime(time, typeOf(type));
            return py::make_tuple(done, FromBytes(time.fields, sizeof time.fields));
          },
          py::arg("type"))
      .def(
          "GetAcqDataEndTime",
          [](const Manager& self, int type) {
            TimeStamp time;
            const bool done = self.GetAcqDataEndTime(time, typeOf(type));
            return py::make_tuple(done, FromBytes(time.fields, sizeof time.fields));
          },
          py::arg("type"));
}

void bindWriting(ManagerClass& manager) {
  manager
      .def(
          "AppendAcquisitionDataFrame",
          [](Manager& self, const PathArgument& path, const py::object& given, int type) {
            const Vex2FrameData frame = given.is_none() ? Vex2FrameData() : ToFrame(given);
            const Vex2FrameData* passed = given.is_none() ? nullptr : &frame;
            return self.AppendAcquisitionDataFrame(path.Get(), passed, typeOf(type));
          },
          py::arg("path"), py::arg("frame"), py::arg("type"))
      .def(
          "CommitAcqDataFrame",
          [](Manager& self, const PathArgument& path, int index, int type) {
            return self.CommitAcqDataFrame(path.Get(), index, typeOf(type));
          },
          py::arg("path"), py::arg("frameIndex"), py::arg("type"))
      .def(
          "SetAcqDataWellRecord",
          [](Manager& self, const py::object& given, int frame, int well, int type) {
            if (given.is_none()) {
              return self.SetAcqDataWellRecord(nullptr, frame, well, typeOf(type));
            }
            const Vex2WellRecord record = ToRecord(given);
            return self.SetAcqDataWellRecord(&record, frame, well, typeOf(type));
          },
          py::arg("record"), py::arg("frameIndex"), py::arg("wellNumber"), py::arg("type"));
}

void bindReading(ManagerClass& manager) {
  manager
      .def(
          "ReadDataFrame",
          [](const Manager& self, int index, int type) {
            Vex2FrameData frame;
            const int status = self.ReadDataFrame(index, &frame, typeOf(type));
            return py::make_tuple(status, FromFrame(frame));
          },
          py::arg("frameIndex"), py::arg("type"))
      .def(
          "ReadDataFrame",
          [](Manager& self, const PathArgument& path, int index, int type) {
            Vex2FrameData frame;
            const int status = self.ReadDataFrame(path.Get(), index, &frame, typeOf(type));
            return py::make_tuple(status, FromFrame(frame));
          },
          py::arg("path"), py::arg("frameIndex"), py::arg("type"))
      .def(
          "GetAcqDataWellRecord",
          [](const Manager& self, int frame, int well, int type) {
            Vex2WellRecord record;
            const bool done = self.GetAcqDataWellRecord(&record, frame, well, typeOf(type));
            return py::make_tuple(done, FromRecord(record));
          },
          py::arg("frameIndex"), py::arg("wellNumber"), py::arg("type"))
      .def(
          "GetAcqDataWellRecordForWellIndex",
          [](const Manager& self, int frame, int index, int type) {
            Vex2WellRecord record;
            const bool done =
                self.GetAcqDataWellRecordForWellIndex(&record, frame, index, typeOf(type));
            return py::make_tuple(done, FromRecord(record));
          },
          py::arg("frameIndex"), py::arg("wellIndex"), py::arg("type"))
      .def(
          "GetDataCntInWell",
          [](const Manager& self, int well, int type) {
            return self.GetDataCntInWell(well, typeOf(type));
          },
          py::arg("wellNumber"), py::arg("type"))
      .def(
          "GetDataFrameCount",
          [](const Manager& self, int type) { return self.GetDataFrameCount(typeOf(type)); },
          py::arg("type"))
      .def(
          "GetDataFrameCount",
          [](Manager& self, const PathArgument& path, int type) {
            int count = 0;
            const int status = self.GetDataFrameCount(path.Get(), count, typeOf(type));
            return py::make_tuple(status, count);
          },
          py::arg("path"), py::arg("type"))
      .def(
          "GetDataFrameCountByName",
          [](const Manager& self, const TextArgument& plate, int type) {
            return self.GetDataFrameCountByName(plate.Get(), typeOf(type));
          },
          py::arg("plateName"), py::arg("type"))
      .def(
          "GetWellCount",
          [](const Manager& self, int type) { return self.GetWellCount(typeOf(type)); },
          py::arg("type"));
}

void bindQueries(ManagerClass& manager) {
  manager
      .def("GetPlateDataInfo",
           [](const Manager& self) {
             int wells = 0;
             int largest = 0;
             self.GetPlateDataInfo(wells, largest);
             return py::make_tuple(wells, largest);
           })
      .def("GetPlateInfo",
           [](const Manager& self) {
             long size = 0;
             const long frames = self.GetPlateInfo(size);
             return py::make_tuple(frames, size);
           })
      .def(
          "FindPCRMeltingParams",
          [](const Manager& self, const TextArgument& plate) {
            int frames = 0;
            int start = -1;
            self.FindPCRMeltingParams(plate.Get(), frames, start);
            return py::make_tuple(frames, start);
          },
          py::arg("plateName"))
      .def(
          "LoadSpectrum",
          [](const Manager& self, const py::object& spectrum, const TextArgument& plate) {
            if (spectrum.is_none()) return self.LoadSpectrum(nullptr, plate.Get());
            const py::list values(spectrum.attr("values"));
            KestorSpectrum held(static_cast<std::int32_t>(values.size()));
            for (std::size_t i = 0; i < values.size(); ++i) {
              held.values[i] = values[i].cast<std::uint32_t>();
            }
            held.frameIndex = spectrum.attr("frameIndex").cast<std::int32_t>();
            held.well = spectrum.attr("well").cast<std::int32_t>();
            held.failed = spectrum.attr("failed").cast<std::int32_t>();
            held.wellValue = spectrum.attr("wellValue").cast<std::int32_t>();
            const bool done = self.LoadSpectrum(&held, plate.Get());
            py::list loaded;
            for (std::int32_t i = 0; i < held.valueCount; ++i) loaded.append(held.values[i]);
            spectrum.attr("values") = loaded;
            spectrum.attr("failed") = held.failed;
            spectrum.attr("wellValue") = held.wellValue;
            return done;
          },
          py::arg("spectrum"), py::arg("plateName") = py::none());
}

}  // namespace

void BindReadings(ManagerClass& manager) {
  bindBlocks(manager);
  bindWriting(manager);
  bindReading(manager);
  bindQueries(manager);
}

}  // namespace vex2::python
