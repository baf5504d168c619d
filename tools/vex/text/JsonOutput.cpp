#include "tools/vex/text/JsonOutput.h"

#include "tools/vex/text/Json.h"

namespace vex2::tool {

using nlohmann::ordered_json;

void PrintJson(std::ostream& out, const ordered_json& object, int indent) {
  ordered_json versioned = {{"version", kJsonVersion}};
  versioned.update(object);
  out << versioned.dump(indent, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace vex2::tool
