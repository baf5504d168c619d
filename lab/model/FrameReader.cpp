#include "lab/model/FrameReader.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "lab/Error.h"
#include "lab/Text.h"
#include "lab/model/DataBlock.h"
#include "lab/model/FrameFiller.h"
#include "lab/model/RawFile.h"
#include "lab/model/ReadingMatrix.h"
#include "lab/model/ValuesFromDocument.h"
#include "lab/model/WellTemperature.h"
#include "vex2/format/StoredRecords.h"

namespace vex2::lab {

namespace {

bool isUnknown(const FramePosition& position) {
  return position == FramePosition{};
}

}  // namespace

/// Fills the matrix and its axes from one record after the other.
class ReadingsFiller {
 public:
  ReadingsFiller(const BlockInfo& block, const RecordedReadings& recorded)
      : wells_(block.wells.size()), recorded_(recorded) {
    const std::size_t cells = block.frameCount * wells_;
    matrix_->values = std::make_shared_for_overwrite<std::uint16_t[]>(cells * kReadingValues);
    if (recorded.Log()) matrix_->missing = std::make_shared_for_overwrite<std::uint16_t[]>(cells);
    matrix_->wells = block.wells;
    matrix_->axis.resize(block.frameCount);
    common_.resize(block.frameCount);
    matrix_->meaning = MeaningOf(recorded.Log());
  }

  void Take(const std::uint8_t* bytes) {
    Vex2WellRecord record;
    LoadStoredRecord(bytes, record.leading, record.data);
    std::copy_n(record.data, kReadingValues, matrix_->values.get() + cell_ * kReadingValues);
    if (matrix_->missing != nullptr) interpret(record);
    ++cell_;
  }

  Readings Done() { return Readings(std::move(matrix_)); }

  static const Readings::Matrix& MatrixOf(const Readings& readings) { return *readings.matrix_; }

 private:
  void interpret(const Vex2WellRecord& record) {
    const std::size_t frame = cell_ / wells_;
    const auto reading = recorded_.Read(record, frame);
    matrix_->missing[static_cast<std::ptrdiff_t>(cell_)] = reading ? reading->missing : kAllMissing;
    FramePosition& position = matrix_->axis[frame];
    if (!reading) return;
    if (isUnknown(position)) {
      position = PositionOf(*reading);
      common_[frame] = reading->temperature;
    }
    takeTemperature(reading->temperature, frame);
  }

  // Most recorders give all wells of a frame one temperature, which the axis has.
  void takeTemperature(std::uint16_t temperature, std::size_t frame) {
    std::vector<std::uint16_t>& own = matrix_->temperatures;
    if (own.empty()) {
      if (temperature == common_[frame]) return;
      own.reserve(common_.size() * wells_);
      for (const std::uint16_t common : common_) own.insert(own.end(), wells_, common);
    }
    own[cell_] = temperature;
  }

  std::size_t wells_;
  const RecordedReadings& recorded_;
  std::size_t cell_ = 0;
  std::vector<std::uint16_t> common_;  // temperature of the first well read in each frame
  std::shared_ptr<Readings::Matrix> matrix_ = std::make_shared<Readings::Matrix>();
};

std::optional<double> WellTemperature(const Readings& readings, std::size_t frame,
                                      std::size_t well) {
  static_cast<void>(readings.Values(frame, well));  // throws for an index that is too large
  const auto& matrix = ReadingsFiller::MatrixOf(readings);
  const std::optional<double>& common = matrix.axis[frame].temperature;
  if (!common || matrix.temperatures.empty()) return common;
  const std::size_t cell = frame * matrix.wells.size() + well;
  if (matrix.missing[static_cast<std::ptrdiff_t>(cell)] == kAllMissing) return common;
  return static_cast<double>(matrix.temperatures[cell]) / kTemperatureSteps;
}

FrameReader::FrameReader(std::string path, const FileIdentity& identity, const BlockInfo& block,
                         std::string_view log)
    : path_(std::move(path)), block_(block), recorded_(log, block.tag) {
  if (block.frameCount == 0) return;
  OpenToRead(file_, path_);
  requireSameBlock(identity);
}

void FrameReader::requireSameBlock(const FileIdentity& identity) {
  FileRecord record;
  file_.Seek(static_cast<std::int64_t>(block_.offset), CFile::begin);
  const bool isBlock = ReadRecordHead(file_, record) && record.Tag() == block_.tag;
  const auto stored = isBlock ? ReadStoredBlock(file_, record) : std::nullopt;
  if (file_.GetIdentity() != identity || !stored || stored->version != block_.version ||
      stored->wells != block_.wells || stored->frameCount < block_.frameCount) {
    throw Error(ErrorCode::kDocument, path_,
                "another program has changed it since it was read; open it again");
  }
  firstFrame_ = stored->firstFrame;
  frameSize_ = stored->frameSize;
}

void FrameReader::seekFrame(std::uint64_t index) {
  file_.Seek(static_cast<std::int64_t>(firstFrame_ + index * frameSize_), CFile::begin);
}

template <typename Take>
void FrameReader::readRecords(std::size_t count, Take take) {
  const std::uint64_t start = file_.GetPosition();
  if (ReadStoredRecords(file_, count, take)) return;
  throw Error(ErrorCode::kDocument, path_, "the readings are cut short", start);
}

// The position of the frame in the run, from the first of its records that is as the recorder wrote
// it. Records that another program has changed, and records without a reading, are skipped.
FramePosition FrameReader::readPosition(std::uint64_t index) {
  seekFrame(index);
  for (std::size_t well = 0; well < block_.wells.size(); ++well) {
    Vex2WellRecord record;
    readRecords(1, [&](const std::uint8_t* bytes) {
      LoadStoredRecord(bytes, record.leading, record.data);
    });
    if (const auto reading = recorded_.Read(record, index)) return PositionOf(*reading);
  }
  return {};
}

std::vector<FramePosition> FrameReader::ReadAxis() {
  std::vector<FramePosition> axis(block_.frameCount);
  for (std::uint64_t frame = 0; frame < axis.size(); ++frame) axis[frame] = readPosition(frame);
  return axis;
}

Frame FrameReader::ReadFrame(std::uint64_t index) {
  FrameFiller filler(block_, recorded_, index);
  seekFrame(index);
  readRecords(block_.wells.size(), [&](const std::uint8_t* bytes) { filler.Take(bytes); });
  return filler.Done();
}

Readings FrameReader::ReadAll() {
  ReadingsFiller filler(block_, recorded_);
  if (block_.frameCount > 0) {
    seekFrame(0);
    readRecords(block_.frameCount * block_.wells.size(),
                [&](const std::uint8_t* bytes) { filler.Take(bytes); });
  }
  return filler.Done();
}

std::optional<ReadingMeaning> MeaningOf(const std::optional<RunLog>& log) {
  if (!log) return std::nullopt;
  ReadingMeaning meaning{.scale = log->scale, .channels = {}};
  for (const std::string& name : log->channels) meaning.channels.push_back(ToUtf8(name));
  return meaning;
}

}  // namespace vex2::lab
