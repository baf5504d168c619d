#include "lab/json/StudyJson.h"

#include "lab/Text.h"
#include "lab/json/Json.h"

namespace vex2::lab {

using nlohmann::ordered_json;

ordered_json ToJson(const std::vector<StudyPlate>& plates) {
  ordered_json list = ordered_json::array();
  for (const StudyPlate& plate : plates) {
    list.push_back({{"name", plate.name},
                    {"modified", plate.modified},
                    {"wells", plate.wells},
                    {"frames", plate.frames},
                    {"status", plate.status},
                    {"offset", plate.offset},
                    {"size", plate.size}});
  }
  return list;
}

ordered_json DescribePlates(const std::vector<Document::Plate>& plates, bool all,
                            const std::function<ordered_json(const Vex2FileManager&)>& describe) {
  if (!all) return describe(*plates.front().content);
  ordered_json result = ordered_json::object();
  ordered_json list = ordered_json::array();
  for (const Document::Plate& plate : plates) {
    ordered_json entry;
    if (plate.isEmbedded) entry["plate"] = ToUtf8(plate.name);
    entry.update(describe(*plate.content));
    if (plate.isEmbedded) {
      list.push_back(std::move(entry));
    } else {
      result.update(entry);
    }
  }
  result["plates"] = std::move(list);
  return result;
}

}  // namespace vex2::lab
