#pragma once

#include <nlohmann/json.hpp>

// Compiled once, in Json.cpp; each source that speaks JSON would do it again otherwise, and that
// was the greater part of building the command.
extern template class nlohmann::basic_json<>;
extern template class nlohmann::basic_json<nlohmann::ordered_map>;
