#pragma once

#include "tools/vex/serve/LiveServer.h"

/// The interface of the module that serves pages. It is apart from the command because the library
/// that it is made with takes longer to load than most commands run.
namespace vex2::tool {

/// Makes a server; null when it cannot listen at the port, and `error` then is the number of the
/// system's error.
using MakeLiveServer = LiveServer*(std::uint16_t port, std::string* data,
                                   LiveServer::PageOf* pageOf, int* error);

/// The name of that operation in the module.
inline constexpr const char* kMakeLiveServer = "vex2_make_live_server";

}  // namespace vex2::tool
