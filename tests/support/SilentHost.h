#pragma once

#include <string>

#include "vex2/framework/Host.h"

namespace vex2::test {

/// A host that shows nothing, has no settings and cancels choosers. It is installed while it
/// exists.
class SilentHost : public Host {
 public:
  SilentHost() : before_(SetHost(this)) {}
  ~SilentHost() override { SetHost(before_); }
  SilentHost(const SilentHost&) = delete;
  SilentHost& operator=(const SilentHost&) = delete;

  void ShowMessage(const std::string&) override {}
  Setting QuerySetting(bool, const std::string&, const std::string&) override { return {}; }

 private:
  Host* before_;
};

}  // namespace vex2::test
