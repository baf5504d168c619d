#include "lab/json/RecoverJson.h"

#include "lab/json/Json.h"

namespace vex2::lab {

using nlohmann::ordered_json;

namespace {

ordered_json notesOf(const std::vector<RecoverNote>& notes, bool withBytes) {
  ordered_json list = ordered_json::array();
  for (const RecoverNote& note : notes) {
    ordered_json object = {{"offset", note.offset}};
    if (withBytes) object["bytes"] = note.bytes;
    object["what"] = note.what;
    list.push_back(std::move(object));
  }
  return list;
}

}  // namespace

ordered_json RecoverJson(const RecoverReport& report, const std::string& source,
                         const std::string& target) {
  return {
      {"file", source},
      {"output", target},
      {"whole", report.IsWhole()},
      {"size", report.size},
      {"written", report.written},
      {"records", report.records},
      {"frames", report.frames},
      {"plates", report.plates},
      {"lostBytes", report.lostBytes},
      {"lostRecords", report.lostRecords},
      {"lostFrames", report.lostFrames},
      {"lostPlaces", report.lostPlaces},
      {"lost", notesOf(report.lost, true)},
      {"correctedPlaces", report.correctedPlaces},
      {"corrected", notesOf(report.corrected, false)},
  };
}

}  // namespace vex2::lab
