#include "tools/vex/run/Recorder.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <utility>

#include "tools/vex/Errors.h"
#include "vex2/framework/Host.h"

namespace vex2::tool {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// Year since 2000, month, day, hour, minute, second, as the clock on the wall has them.
TimeStamp presentTime() {
  const auto now = static_cast<std::time_t>(GetHost()->Now().GetTime());
  std::tm parts{};
  ::localtime_r(&now, &parts);
  const std::array<int, 6> fields = {std::clamp(parts.tm_year - 100, 0, 255),
                                     parts.tm_mon + 1,
                                     parts.tm_mday,
                                     parts.tm_hour,
                                     parts.tm_min,
                                     parts.tm_sec};
  TimeStamp time;
  std::transform(fields.begin(), fields.end(), time.fields,
                 [](int field) { return static_cast<std::uint8_t>(field); });
  return time;
}

Vex2HeaderData headerFor(const RunPlan& plan) {
  Vex2HeaderData header;
  std::copy_n(plan.plate.TypeCode(), sizeof header.plateTypeCode, header.plateTypeCode);
  header.SetRows(static_cast<std::uint16_t>(plan.plate.rows));
  header.columns = static_cast<std::uint16_t>(plan.plate.columns);
  std::fill_n(header.usage, plan.plate.rows, 0U);
  for (const unsigned well : plan.wells) {
    header.usage[(well - 1) / plan.plate.columns] |= 1U << ((well - 1) % plan.plate.columns);
  }
  return header;
}

void setSettings(Vex2FileManager& manager, const RunPlan& plan) {
  Vex2GlobalComplex settings;
  const std::string log = LogText(plan);
  settings.SetComment(plan.comment.data(), static_cast<std::uint32_t>(plan.comment.size()));
  settings.SetLog(log.data(), static_cast<std::uint32_t>(log.size()));
  manager.ReplaceGlobalComplexComp(&settings);
}

void setProgram(Vex2FileManager& manager, const RunPlan& plan) {
  const std::string text = ProgramText(plan);
  ThermocycleProgram program;
  program.length = static_cast<std::uint32_t>(text.size());
  program.Allocate();
  std::copy(text.begin(), text.end(), program.data);
  manager.ReplaceThermocycleProgram(&program);
}

}  // namespace

Recorder::Recorder(const RunPlan& plan, RecordOptions options,
                   std::function<void(const RecordState&)> report)
    : plan_(plan),
      options_(std::move(options)),
      report_(std::move(report)),
      document_(ResolveDocument(options_.path)) {
  state_.framesTotal = plan.frames.size();
}

Recorder::Outcome Recorder::Run() {
  Interrupts interrupts;
  if (lock_ == nullptr) Claim();
  if (!goOn()) return Outcome::kWasDone;
  report_(state_);
  while (state_.framesDone < state_.framesTotal) {
    if (interrupts.Pending()) return Outcome::kInterrupted;
    const auto begun = Clock::now();
    commit(state_.framesDone);
    state_.lastCommit = secondsSince(begun);
    ++state_.framesDone;
    report_(state_);
    if (state_.framesDone < state_.framesTotal && options_.pace > 0) {
      interrupts.Wait(options_.pace - state_.lastCommit);
    }
  }
  finish();
  return Outcome::kDone;
}

void Recorder::Claim() {
  lock_ = std::make_unique<DocumentLock>(options_.path, DocumentLock::Holder::kRecorder);
  struct stat info {};
  const bool exists = ::stat(document_.c_str(), &info) == 0;
  // Under another name the file could be recorded to by someone who sees another lock.
  if (exists && info.st_nlink > 1) {
    throw Error(ExitCode::kUsage, options_.path, "has other names as well (hard links)");
  }
  if (exists && !options_.resume && !options_.force) {
    throw Error(ExitCode::kUsage, options_.path,
                "already exists; use --resume to continue it or --force to overwrite it");
  }
  if (!exists || options_.force) return;
  interrupted_.emplace(document_.string());
  if (!interrupted_->IsDone()) interrupted_->Check(plan_);
}

// Brings document and manager to where the next frame is to be committed. False when there is
// nothing left to do.
bool Recorder::goOn() {
  if (!interrupted_) {
    begin();
    return true;
  }
  if (interrupted_->IsDone()) return false;
  interrupted_->Repair();
  errno = 0;
  check(manager_.ReadFromFile(document_.c_str()));
  check(manager_.SetAcquisitionStatus(document_.c_str(), "PROG"));
  if (!interrupted_->HasBlock()) openBlock();
  state_.framesDone = interrupted_->FrameCount();
  return true;
}

// The document is complete but for its data block, which is to be its last record.
void Recorder::begin() {
  manager_.SetHeaderData(headerFor(plan_));
  setSettings(manager_, plan_);
  setProgram(manager_, plan_);
  StoreContents(manager_, plan_.contents);
  StoreCalibration(manager_, plan_.calibration);
  errno = 0;
  check(manager_.SaveToFile(document_.c_str()));
  check(manager_.SetAcquisitionStatus(document_.c_str(), "PROG"));
  openBlock();
}

void Recorder::openBlock() {
  manager_.InitAcqDataWellNumberArray(plan_.wells.data(),
                                      static_cast<unsigned short>(plan_.wells.size()), DataRAWa);
  manager_.SetAcqDataStartTime(presentTime(), DataRAWa);
}

void Recorder::commit(std::size_t frame) {
  const auto index = static_cast<int>(frame);
  const std::vector<Vex2WellRecord> records = FrameRecords(plan_, frame);
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (!manager_.SetAcqDataWellRecord(&records[i], index, plan_.wells[i], DataRAWa)) {
      throw Error(ExitCode::kSystem, options_.path, "the data block cannot grow further");
    }
  }
  errno = 0;
  check(manager_.CommitAcqDataFrame(document_.c_str(), index, DataRAWa));
}

void Recorder::finish() {
  manager_.SetAcqDataEndTime(presentTime(), DataRAWa);
  manager_.SetAcquisitionStatus("DONE");
  errno = 0;
  check(manager_.SaveToFile(document_.c_str()));
}

// The library answers only that a write failed. What the system said is still there, as nothing
// that succeeds afterwards changes it; the callers clear what was there before.
void Recorder::check(int status) const {
  if (status == kSuccess) return;
  const int error = errno;
  if (error != 0) throw Error(ExitCode::kSystem, options_.path, std::strerror(error));
  throw Error(ExitCode::kSystem, options_.path,
              "the library answers " + std::to_string(status) + " to a write");
}

}  // namespace vex2::tool
