#include <httplib.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "lab/live/ServerModule.h"

namespace {

using vex2::lab::LiveServer;

constexpr const char* kLoopback = "127.0.0.1";
constexpr std::chrono::seconds kHeartbeat(2);  // a disconnected viewer is noticed within this time
constexpr std::size_t kPiece = std::size_t{64} << 10U;

/// Uses one thread for each connection, because a viewer occupies its thread as long as it is
/// connected.
class Threads final : public httplib::TaskQueue {
 public:
  void enqueue(std::function<void()> task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    if (idle_ >= tasks_.size()) return hasTask_.notify_one();
    try {
      threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
      hasTask_.notify_one();  // no new thread can be started: the task waits for an existing one
    }
  }

  void shutdown() override {
    {
      const std::lock_guard lock(mutex_);
      isEnding_ = true;
    }
    hasTask_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

 private:
  void work() {
    std::unique_lock lock(mutex_);
    for (;;) {
      ++idle_;
      hasTask_.wait(lock, [this] { return isEnding_ || !tasks_.empty(); });
      --idle_;
      if (tasks_.empty()) return;
      const std::function<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      lock.unlock();
      task();
      lock.lock();
    }
  }

  std::mutex mutex_;
  std::condition_variable hasTask_;
  std::deque<std::function<void()>> tasks_;
  std::vector<std::thread> threads_;
  std::size_t idle_ = 0;
  bool isEnding_ = false;
};

/// Data that was shown, with a number that distinguishes it from other data, even of an earlier
/// server.
struct Shown {
  std::uint64_t id = 0;
  std::string data;
};
using ShownPointer = std::shared_ptr<const Shown>;

class HttpServer final : public LiveServer {
 public:
  HttpServer(std::string data, PageOf* pageOf) : pageOf_(pageOf) {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    shown_ = std::make_shared<Shown>(
        Shown{static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count()), std::move(data)});
    server_.new_task_queue = [] { return new Threads; };
    server_.set_address_family(AF_INET);
    // Do not set SO_REUSEPORT, which the library sets by default: a second server could then use
    // the same port.
    server_.set_socket_options([](socket_t socket) {
      const int yes = 1;
      ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    server_.set_keep_alive_max_count(1);
    server_.set_keep_alive_timeout(1);
    server_.set_read_timeout(2);
    server_.set_write_timeout(2);
    server_.set_payload_max_length(0);
    server_.set_default_headers({{"Cache-Control", "no-store"},
                                 {"X-Content-Type-Options", "nosniff"},
                                 {"X-Frame-Options", "DENY"},
                                 {"Referrer-Policy", "no-referrer"},
                                 {"Cross-Origin-Resource-Policy", "same-origin"}});
    server_.set_pre_routing_handler(
        [this](const auto& request, auto& response) { return admit(request, response); });
    server_.Get("/",
                [this](const auto& request, auto& response) { answerPage(request, response); });
    server_.Get("/events",
                [this](const auto& request, auto& response) { answerEvents(request, response); });
    server_.set_error_handler([](const httplib::Request&, httplib::Response& response) {
      if (response.body.empty()) response.set_content("nothing is here\n", "text/plain");
    });
  }

  ~HttpServer() override {
    {
      const std::lock_guard lock(mutex_);
      isEnding_ = true;
    }
    changed_.notify_all();
    if (!listener_.joinable()) return;
    server_.stop();
    listener_.join();
  }

  // Returns 0, or the error number of the system.
  int Listen(std::uint16_t port) {
    errno = 0;
    const bool isBound = port != 0 ? server_.bind_to_port(kLoopback, port)
                                   : (port_ = server_.bind_to_any_port(kLoopback)) > 0;
    if (!isBound) return errno != 0 ? errno : EADDRNOTAVAIL;
    if (port != 0) port_ = port;
    listener_ = std::thread([this] { server_.listen_after_bind(); });
    // The server can be stopped only once it is running.
    while (!server_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return 0;
  }

  std::uint16_t Port() const override { return static_cast<std::uint16_t>(port_); }
  bool HasViewers() const override { return viewers_ > 0; }

  void Show(std::string data) override {
    {
      const std::lock_guard lock(mutex_);
      shown_ = std::make_shared<Shown>(Shown{shown_->id + 1, std::move(data)});
    }
    changed_.notify_all();
  }

 private:
  using Request = httplib::Request;
  using Response = httplib::Response;
  using Handled = httplib::Server::HandlerResponse;

  // Refuses requests for another host name. A page from another server can make its own host name
  // resolve to this machine; its requests then arrive here, but with that name.
  Handled admit(const Request& request, Response& response) const {
    const std::string port = ":" + std::to_string(port_);
    const std::string host = request.get_header_value("Host");
    const std::string origin = request.get_header_value("Origin");
    const auto isOurs = [&](const std::string& name) {
      return name == kLoopback + port || name == "localhost" + port ||
             (port_ == 80 && (name == kLoopback || name == "localhost"));
    };
    if (isOurs(host) && (origin.empty() || origin == "http://" + host)) return Handled::Unhandled;
    response.status = 403;
    response.set_content("this page is for this machine alone\n", "text/plain");
    return Handled::Handled;
  }

  ShownPointer shown() const {
    const std::lock_guard lock(mutex_);
    return shown_;
  }

  void answerPage(const Request& /*request*/, Response& response) const {
    const ShownPointer now = shown();
    const auto page = std::make_shared<const std::string>(
        pageOf_(now->data, "/events?seen=" + std::to_string(now->id)));
    // Use a content provider: a plain text would be compressed, which takes more time than it saves
    // on one machine.
    response.set_content_provider(
        page->size(), "text/html",
        [this, page](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
          return !isEnding() && sink.write(page->data() + offset, std::min(length, kPiece));
        });
  }

  void answerEvents(const Request& request, Response& response) {
    // A browser that reconnects sends the id of the last event that it received.
    std::string seen = request.get_header_value("Last-Event-ID");
    if (seen.empty()) seen = request.get_param_value("seen");
    const auto last = std::make_shared<std::string>(std::move(seen));
    ++viewers_;
    response.set_chunked_content_provider(
        "text/event-stream",
        [this, last](std::size_t, httplib::DataSink& sink) { return sendNext(*last, sink); },
        [this](bool) { --viewers_; });
  }

  // Sends the next event, or a heartbeat. Returning false ends the connection.
  bool sendNext(std::string& last, httplib::DataSink& sink) const {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, kHeartbeat,
                      [&] { return isEnding_ || std::to_string(shown_->id) != last; });
    if (isEnding_) return false;
    const ShownPointer now = shown_;
    lock.unlock();
    const std::string id = std::to_string(now->id);
    if (id == last) return sink.write(":\n\n", 3);
    last = id;
    return send("id: " + id + "\ndata: ", sink) && send(now->data, sink) && send("\n\n", sink);
  }

  bool send(const std::string& text, httplib::DataSink& sink) const {
    for (std::size_t sent = 0; sent < text.size(); sent += kPiece) {
      if (isEnding()) return false;
      if (!sink.write(text.data() + sent, std::min(kPiece, text.size() - sent))) return false;
    }
    return true;
  }

  bool isEnding() const {
    const std::lock_guard lock(mutex_);
    return isEnding_;
  }

  httplib::Server server_;
  PageOf* pageOf_;
  int port_ = 0;
  std::thread listener_;
  std::atomic<int> viewers_ = 0;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  ShownPointer shown_;
  bool isEnding_ = false;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) LiveServer* vex2_make_live_server(
    std::uint16_t port, std::string* data, LiveServer::PageOf* pageOf, int* error) {
  auto server = std::make_unique<HttpServer>(std::move(*data), pageOf);
  *error = server->Listen(port);
  return *error == 0 ? server.release() : nullptr;
}
