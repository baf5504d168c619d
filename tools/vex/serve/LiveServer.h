#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vex2::tool {

/// Shows a page that changes to browsers on this machine: a server of HTTP on the loopback address
/// alone. It answers reading requests only, those that name it as this machine: a page from
/// elsewhere whose name leads here gets nothing. Each viewer is served on a thread of its own, so
/// that one that is slow, or went away, costs the others and the caller nothing.
///
/// The destructor ends all connections, within two seconds.
class LiveServer {
 public:
  /// Makes the page of data, which then takes newer data from the events at the path `events`.
  using PageOf = std::string(std::string_view data, std::string_view events);

  LiveServer() = default;
  LiveServer(const LiveServer&) = delete;
  LiveServer& operator=(const LiveServer&) = delete;
  virtual ~LiveServer() = default;

  virtual std::uint16_t Port() const = 0;
  /// Whether a browser listens for newer data.
  virtual bool HasViewers() const = 0;
  /// Viewers see `data`, a line of JSON, from now on. One that is slow gets the latest data only.
  virtual void Show(std::string data) = 0;
};

/// Starts a server at that port, 0 for any that is free, which shows `data`. Throws `Error` that
/// says why when the port cannot be used, or when the module that serves is missing.
std::unique_ptr<LiveServer> StartLiveServer(std::uint16_t port, std::string data,
                                            LiveServer::PageOf* pageOf);

}  // namespace vex2::tool
