#include "lab/json/DiffJson.h"

#include <sstream>

#include "lab/json/Json.h"
#include "lab/json/JsonOutput.h"

namespace vex2::lab {

std::string DiffJson(const std::vector<Difference>& differences, const std::string& one,
                     const std::string& other) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Difference& difference : differences) {
    list.push_back({{"plate", difference.plate},
                    {"section", difference.section},
                    {"what", difference.what},
                    {"one", OrNull(difference.one)},
                    {"other", OrNull(difference.other)},
                    {"count", difference.count},
                    {"places", difference.places},
                    {"largest", difference.largest}});
  }
  std::ostringstream text;
  PrintJson(text, {{"one", one}, {"other", other}, {"differences", std::move(list)}});
  return text.str();
}

}  // namespace vex2::lab
