#include "lab/json/FindingsJson.h"

#include "lab/json/Json.h"

namespace vex2::lab {

using nlohmann::ordered_json;

ordered_json FindingsJson(const std::string& path, const Findings& findings) {
  ordered_json list = ordered_json::array();
  for (const Finding& finding : findings.list) {
    list.push_back({{"severity", NameOf(finding.severity)},
                    {"record", finding.record},
                    {"offset", finding.offset},
                    {"problem", finding.problem},
                    {"consequence", finding.consequence},
                    {"remedy", finding.remedy}});
  }
  return {{"file", path}, {"findings", std::move(list)}, {"leftOut", findings.LeftOut()}};
}

}  // namespace vex2::lab
