#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vex2::lab {

/// Serves a changing page to browsers on this machine: an HTTP server that listens only on the
/// loopback address. It answers only requests that read and whose Host header names this machine,
/// so a web page from another server whose name resolves to this address gets no answer. Each
/// viewer has its own thread, so a slow or disconnected viewer delays neither the other viewers nor
/// the caller.
///
/// The destructor ends all connections within two seconds.
class LiveServer {
 public:
  /// Makes the page for `data`. The page receives newer data as server-sent events from the path
  /// `events`.
  using PageOf = std::string(std::string_view data, std::string_view events);

  LiveServer() = default;
  LiveServer(const LiveServer&) = delete;
  LiveServer& operator=(const LiveServer&) = delete;
  virtual ~LiveServer() = default;

  virtual std::uint16_t Port() const = 0;
  /// Whether a browser is waiting for newer data.
  virtual bool HasViewers() const = 0;
  /// Sends `data`, a line of JSON, to all viewers. A slow viewer gets only the latest data.
  virtual void Show(std::string data) = 0;
};

/// Starts a server that shows `data`, at `port` or, if that is 0, at any free port. Throws an
/// `Error` with the reason if the port cannot be used or the server module is missing.
std::unique_ptr<LiveServer> StartLiveServer(std::uint16_t port, std::string data,
                                            LiveServer::PageOf* pageOf);

}  // namespace vex2::lab
