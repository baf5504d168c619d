#include "lab/live/LiveServer.h"

#include <fmt/core.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "lab/Error.h"
#include "lab/OwnModule.h"
#include "lab/live/ServerModule.h"

namespace vex2::lab {

namespace {

constexpr const char* kFile = "vex2serve.so";

MakeLiveServer* loadModule() {
  const OwnModule module(kFile);
  MakeLiveServer* const make = module.Find<MakeLiveServer>(kMakeLiveServer);
  if (make != nullptr) return make;
  if (!module.Problem().empty()) {
    throw Error(ErrorCode::kSystem,
                fmt::format("cannot serve pages: {}; install the package libcpp-httplib0.11",
                            module.Problem()));
  }
  throw Error(ErrorCode::kSystem,
              fmt::format("cannot serve pages: the module {} is missing; to have it, build vex "
                          "with the package libcpp-httplib-dev installed",
                          kFile));
}

}  // namespace

std::unique_ptr<LiveServer> StartLiveServer(std::uint16_t port, std::string data,
                                            LiveServer::PageOf* pageOf) {
  int error = 0;
  std::unique_ptr<LiveServer> server(loadModule()(port, &data, pageOf, &error));
  if (server != nullptr) return server;
  if (error == EADDRINUSE) {
    throw Error(ErrorCode::kSystem,
                fmt::format("cannot serve at port {}: another program uses it; give another port, "
                            "or none to take one that is free",
                            port));
  }
  throw Error(ErrorCode::kSystem,
              fmt::format("cannot serve at port {}: {}", port, std::strerror(error)));
}

}  // namespace vex2::lab
