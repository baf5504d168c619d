#pragma once

#include "lab/live/LiveServer.h"

/// The interface of the module that serves pages. It is separate from this library because loading
/// its HTTP library takes longer than most commands run.
namespace vex2::lab {

/// Makes a server. Returns null if it cannot listen at the port, and sets `error` to the error
/// number of the system.
using MakeLiveServer = LiveServer*(std::uint16_t port, std::string* data,
                                   LiveServer::PageOf* pageOf, int* error);

/// The name of that function in the module.
inline constexpr const char* kMakeLiveServer = "vex2_make_live_server";

}  // namespace vex2::lab
