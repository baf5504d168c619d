#include "lab/json/LossReport.h"

#include <sstream>

#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"

namespace vex2::lab {

std::string LossReportJson(const Losses& losses, const std::string& source,
                           const std::string& target) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Loss& loss : losses.List()) {
    list.push_back({{"kind", loss.isChanged ? "changed" : "lost"},
                    {"what", loss.what},
                    {"count", loss.count},
                    {"example", loss.example}});
  }
  std::ostringstream text;
  PrintJson(text,
            {{"source", source},
             {"target", target},
             {"hasDocument", losses.hasDocument},
             {"losses", std::move(list)}},
            2);
  return text.str();
}

}  // namespace vex2::lab
