#include "vex2/framework/Host.h"

#include <atomic>
#include <ctime>
#include <iostream>

#include "vex2/framework/ConsoleHost.h"

namespace vex2 {
namespace {

std::atomic<Host*> installedHost = nullptr;

// Never destroyed: static objects that are destroyed later may still trace or read a setting.
Host& consoleHost() {
  static Host* const host = new Host;
  return *host;
}

}  // namespace

Host::~Host() = default;

void Host::ShowMessage(const std::string& text) {
  std::cerr << text << std::endl;
}

bool Host::ChooseFile(const ChooserRequest&, ChooserResult&) {
  return false;
}

Setting Host::QuerySetting(bool localMachine, const std::string& key, const std::string& name) {
  return FindSetting(SettingsFiles(localMachine), key, name);
}

void Host::BeginWait() {}

void Host::EndWait() {}

void Host::Trace(const std::string&) {}

CTime Host::Now() {
  return CTime(std::time(nullptr));
}

Host* SetHost(Host* host) {
  return installedHost.exchange(host);
}

Host* GetHost() {
  Host* const host = installedHost.load();
  return host != nullptr ? host : &consoleHost();
}

}  // namespace vex2
