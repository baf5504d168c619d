#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/SilentHost.h"

namespace vex2::test {

/// A host that records the requests to it and returns results that the test prepared.
class RecordingHost : public SilentHost {
 public:
  struct SettingQuery {
    bool localMachine;
    std::string key;
    std::string name;

    friend bool operator==(const SettingQuery&, const SettingQuery&) = default;
  };

  // Requests, oldest first.
  std::vector<std::string> messages;
  std::vector<std::string> traces;
  std::vector<ChooserRequest> chooserRequests;
  std::vector<SettingQuery> settingQueries;
  int waitsBegun = 0;
  int waitsEnded = 0;

  // Prepared results.
  std::optional<ChooserResult> choice;  ///< if empty, the chooser is cancelled
  Setting setting;
  std::optional<CTime> now;  ///< if empty, the time of the system's clock

  void ShowMessage(const std::string& text) override { messages.push_back(text); }
  void Trace(const std::string& text) override { traces.push_back(text); }
  void BeginWait() override { ++waitsBegun; }
  void EndWait() override { ++waitsEnded; }
  CTime Now() override { return now ? *now : Host::Now(); }

  bool ChooseFile(const ChooserRequest& request, ChooserResult& result) override {
    chooserRequests.push_back(request);
    if (choice) result = *choice;
    return choice.has_value();
  }

  Setting QuerySetting(bool localMachine, const std::string& key,
                       const std::string& name) override {
    settingQueries.push_back({localMachine, key, name});
    return setting;
  }
};

}  // namespace vex2::test
