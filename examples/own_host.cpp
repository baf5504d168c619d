// A custom host: the library gets windows, the clock and settings only from the installed host.
//
//     own_host RUN.vex    reads the document as if the user had chosen it in a dialog

#include <cstdio>
#include <string>
#include <utility>

#include "vex2/framework/Host.h"
#include "vex2/manager/Vex2FileManager.h"

namespace {

// Operations that this class does not override behave as in the console host.
class BenchHost : public vex2::Host {
 public:
  explicit BenchHost(std::string choice) : choice_(std::move(choice)) {}

  void ShowMessage(const std::string& text) override {
    std::printf("[message] %s\n", text.c_str());
  }

  bool ChooseFile(const vex2::ChooserRequest& request, vex2::ChooserResult& result) override {
    std::printf("[dialog] %s: %s\n", request.title.c_str(), choice_.c_str());
    result.path = choice_;
    result.title = choice_.substr(choice_.find_last_of('/') + 1);
    return true;
  }

  // Stands in for the system's registry: one key with one value.
  vex2::Setting QuerySetting(bool localMachine, const std::string& key,
                             const std::string& name) override {
    if (!localMachine || key != "Software\\Orbanet Scientific\\Vex2") return {};  // no such key
    if (name != "Blue LED Array Illumination") return vex2::NoValue();            // no such value
    return 1U;
  }

  void BeginWait() override { std::puts("[wait cursor]"); }
  void EndWait() override { std::puts("[arrow cursor]"); }
  void Trace(const std::string& text) override { std::printf("[trace] %s", text.c_str()); }

 private:
  std::string choice_;
};

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: own_host RUN.vex\n", stderr);
    return 2;
  }
  BenchHost host(arguments[1]);
  vex2::SetHost(&host);
  int status = 0;
  {
    Vex2FileManager document;
    status = document.ReadFromFile(nullptr);  // no path: the library asks the host
    if (status == 0 && !document.IsWhole()) {
      std::printf("read in part: %s\n", document.GetReadFault().reason);
    }
    if (status == 0) {
      std::printf("%d records, status %s\n", document.GetAllComponentCount(),
                  document.GetAcquisitionStatus().GetString());
      // The text does not have four characters, so the library shows a message through the host.
      if (document.SetAcquisitionStatus("finished") != 0) std::puts("the status stays");
    }
  }
  vex2::SetHost(nullptr);
  return status == 0 ? 0 : 1;
}
