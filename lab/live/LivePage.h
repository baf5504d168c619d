#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "lab/live/LiveServer.h"
#include "lab/record/RunFollower.h"

namespace vex2::lab {

/// Shows the report page of a run in progress in the browsers of this machine. Reads the document
/// again only while a browser shows the page, and at most once per second.
class LivePage {
 public:
  /// Serves the page of the document at `path`, which need not exist yet; `program` is the one that
  /// makes it, as the page names it. Throws as `StartLiveServer` does.
  LivePage(std::filesystem::path path, std::uint16_t port, std::string program);

  std::string Address() const;
  /// Updates the page if the document has changed. Call this repeatedly.
  void Refresh(const RunFollower& follower);

 private:
  using Clock = std::chrono::steady_clock;

  /// The state of the file. If it differs, the file was changed.
  struct Sight {
    std::uintmax_t file = 0;
    std::uintmax_t size = 0;
    std::int64_t changed = 0;  // in nanoseconds

    friend bool operator==(const Sight&, const Sight&) = default;
  };

  std::optional<Sight> look() const;
  std::optional<std::string> read(FollowState state) const;

  std::filesystem::path path_;
  std::string program_;
  std::unique_ptr<LiveServer> server_;
  std::optional<Sight> shown_;
  bool isWholeShown_ = false;
  Clock::time_point next_;  // the document is not read before this time
};

}  // namespace vex2::lab
