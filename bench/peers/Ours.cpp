#include <algorithm>
#include <optional>
#include <utility>

#include "bench/Documents.h"
#include "bench/peers/Store.h"
#include "lab/model/RunReader.h"
#include "lab/record/RunRecorder.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::bench {

namespace {

constexpr std::size_t kLeading = 8;

class Manager final : public Store {
 public:
  std::string Name() const override { return "Vex2FileManager"; }
  std::string Settings() const override { return "opens the document for every operation"; }

  void ReadAll(const std::string& path) override {
    Vex2FileManager manager;
    Require(manager.ReadFromFile(path.c_str()) == 0, "read");
  }

  void ReadFrame(const std::string& path, int index) override {
    Vex2FileManager manager;
    Vex2FrameData frame;
    Require(manager.ReadDataFrame(path.c_str(), index, &frame, DataRAWa) == 0, "frame");
    Require(frame.records[0].leading[0] == 1, "values");
  }

  bool Hold(const FrameValues& frames, const std::string& path) override {
    MakeRun(path, kPeerWells, static_cast<int>(frames.size() / kFrameValues));
    Require(held_.ReadFromFile(path.c_str()) == 0, "read");
    return true;
  }
  void Save(const std::string& path) override {
    Require(held_.SaveToFile(path.c_str()) == 0, "save");
  }

  void BeginRun(const std::string& path) override {
    path_ = path;
    MakeRun(path, kPeerWells, 1);
    run_.emplace();
    Require(run_->ReadFromFile(path.c_str()) == 0, "read");
    next_ = 1;
  }
  void Prepare(const FrameValues& frame) override {
    Vex2WellRecord record;
    for (int well = 1; well <= kPeerWells; ++well) {
      setRecord(record, frame.data() + (well - 1) * kPeerValues);
      Require(run_->SetAcqDataWellRecord(&record, next_, well, DataRAWa) != 0, "set");
    }
  }
  void Commit(const FrameValues& /*frame*/) override {
    Require(run_->CommitAcqDataFrame(path_.c_str(), next_++, DataRAWa) == 0, "commit");
  }

 private:
  static void setRecord(Vex2WellRecord& record, const std::uint16_t* values) {
    std::copy_n(values, kLeading, record.leading);
    std::copy_n(values + kLeading, kPeerValues - kLeading, record.data);
    record.leading[0] = 1;
  }

  Vex2FileManager held_;
  std::optional<Vex2FileManager> run_;
  std::string path_;
  int next_ = 0;
};

class Lab final : public Store {
 public:
  std::string Name() const override { return "vex2::lab"; }
  std::string Settings() const override {
    return "RunReader and RunRecorder, which check the document as they go";
  }

  void ReadAll(const std::string& path) override {
    const lab::RunReader reader(path);
    Require(!reader.Readings().Values().empty(), "readings");
  }
  void ReadFrame(const std::string& path, int index) override {
    const lab::RunReader reader(path);
    Require(!reader.Frame(static_cast<std::uint64_t>(index)).wells.empty(), "frame");
  }

  // An editor saves only what it has changed, which cannot be compared with this.
  bool Hold(const FrameValues& /*frames*/, const std::string& /*path*/) override { return false; }
  void Save(const std::string& /*path*/) override {}

  void BeginRun(const std::string& path) override {
    lab::RecordingPlan plan;
    plan.plate.rows = 16;
    plan.plate.columns = 24;
    for (std::uint16_t well = 1; well <= kPeerWells; ++well) plan.wells.push_back(well);
    recorder_.emplace(path, plan, lab::RecorderOptions{.resume = false, .replace = true});
  }
  void Prepare(const FrameValues& frame) override {
    records_.resize(kPeerWells);
    for (std::size_t well = 0; well < kPeerWells; ++well) {
      const std::uint16_t* values = frame.data() + well * kPeerValues;
      records_[well].well = static_cast<std::uint16_t>(well + 1);
      std::copy_n(values, kLeading, records_[well].leading.begin());
      std::copy_n(values + kLeading, kPeerValues - kLeading, records_[well].readings.begin());
      records_[well].leading[0] = 1;
    }
  }
  void Commit(const FrameValues& /*frame*/) override {
    recorder_->Append(std::span<const lab::RawRecord>(records_));
  }
  void EndRun() override { recorder_.reset(); }

 private:
  std::optional<lab::RunRecorder> recorder_;
  std::vector<lab::RawRecord> records_;
};

}  // namespace

std::unique_ptr<Store> MakeManager() {
  return std::make_unique<Manager>();
}

std::unique_ptr<Store> MakeLab() {
  return std::make_unique<Lab>();
}

}  // namespace vex2::bench
