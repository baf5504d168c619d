#include "lab/live/LivePage.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>

#include "lab/SystemError.h"
#include "lab/picture/Report.h"
#include "lab/picture/ReportHead.h"

namespace vex2::lab {

namespace {

// After reading the document, the page rests for at least kLeastRest and at least kRest times as
// long as the reading took.
constexpr int kRest = 5;
constexpr std::chrono::seconds kLeastRest(1);

std::string pageOf(std::string_view data, std::string_view events) {
  return ReportPage(data, events);
}

// The data that the page shows before the run was read for the first time.
std::string firstData(const std::filesystem::path& path, const std::string& program) {
  ReportSettings settings = ReportHead(program);
  settings.withFile = false;
  std::error_code error;
  if (std::filesystem::exists(path, error)) return ReportData(std::array{path}, settings);
  settings.note = Escaped(path.filename().string()) +
                  " does not exist yet. The page shows the run as soon as it begins.";
  return ReportData({}, settings);
}

}  // namespace

LivePage::LivePage(std::filesystem::path path, std::uint16_t port, std::string program)
    : path_(std::move(path)),
      program_(std::move(program)),
      server_(StartLiveServer(port, firstData(path_, program_), pageOf)) {}

std::string LivePage::Address() const {
  return "http://127.0.0.1:" + std::to_string(server_->Port()) + "/";
}

std::optional<LivePage::Sight> LivePage::look() const {
  struct stat info {};
  if (::stat(path_.c_str(), &info) != 0) return std::nullopt;
  return Sight{info.st_ino, static_cast<std::uintmax_t>(info.st_size),
               info.st_mtim.tv_sec * 1'000'000'000 + info.st_mtim.tv_nsec};
}

void LivePage::Refresh(const RunFollower& follower) {
  const bool isDone = follower.State() == FollowState::kDone;
  if (follower.State() == FollowState::kWaiting || Clock::now() < next_) return;
  const auto sight = look();
  const bool isShown = sight == shown_ && isDone == isWholeShown_;
  // Read the document once even without a viewer, so that the first browser finds data.
  if (!sight || isShown || (shown_ && !server_->HasViewers())) return;
  const auto begun = Clock::now();
  if (auto data = read(follower.State())) {
    server_->Show(std::move(*data));
    shown_ = sight;
    isWholeShown_ = isDone;
  }
  const auto end = Clock::now();
  next_ = end + std::max<Clock::duration>(kRest * (end - begun), kLeastRest);
}

// Returns nothing if the document cannot be read at this moment, for example while it is being
// replaced.
std::optional<std::string> LivePage::read(FollowState state) const {
  bool isRead = true;
  ReportSettings settings = ReportHead(program_);
  // The check and the digest need the whole file, so they are made only when the run is complete.
  settings.withFile = state == FollowState::kDone;
  settings.onError = [&](const Error& error) {
    if (error.Class() != ErrorClass::kDocument) isRead = false;
  };
  std::string data = ReportData(std::array{path_}, settings);
  return isRead ? std::optional(std::move(data)) : std::nullopt;
}

}  // namespace vex2::lab
