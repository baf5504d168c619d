#include "lab/rdml/RdmlReader.h"

#include <cmath>
#include <limits>

#include "lab/Text.h"
#include "lab/model/PlateLayout.h"
#include "lab/model/ReadingScale.h"
#include "lab/rdml/RdmlReaderElements.h"
#include "lab/rdml/RdmlTerms.h"

namespace vex2::lab::rdml {

namespace {

constexpr std::uint32_t kMostPlateNumber = 100'000;
constexpr double kMostCycle = 65535;

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// Whether the element at this path holds an exported text in which every blank counts.
bool isVerbatim(const std::string& path) {
  return path == "rdml/documentation/text" || path == "rdml/experiment/run/description" ||
         path == "rdml/sample/annotation/value" || path == "rdml/target/xRef/id";
}

}  // namespace

RdmlReader::RdmlReader(std::string name, Losses& losses)
    : losses_(losses), xml_(*this, std::move(name), kNamespace) {}

Content RdmlReader::Finish() {
  xml_.Finish();
  return std::move(content_);
}

void RdmlReader::Begin(const std::string& path, const std::vector<XmlAttribute>& attributes) {
  attribute_.clear();
  for (const XmlAttribute& attribute : attributes) {
    if (attribute_.empty() || attribute.name == "id" || attribute.name == "version" ||
        attribute.name == "targetId") {
      attribute_ = attribute.value;
    }
  }
  if (path.find('/') == std::string::npos && path != "rdml") {
    throw xml_.Failure("this is no RDML: its root is not the element rdml");
  }
  if (const RdmlElement* element = FindElement(path)) element->begin(*this, {});
}

void RdmlReader::End(const std::string& path, std::string_view raw, bool isLeaf) {
  const std::string_view plain = trimmed(raw);
  const std::string_view text = !plain.empty() && isVerbatim(path) ? raw : plain;
  if (const RdmlElement* element = FindElement(path)) {
    element->end(*this, text);
  } else if (isLeaf) {
    listLost(path.substr(path.find('/') + 1), text.empty() ? std::string_view(attribute_) : text);
  }
  attribute_.clear();
}

void RdmlReader::beginRoot() {
  content_.version = attribute_;
  if (content_.version.starts_with("1.") || content_.version.empty()) return;
  throw xml_.Failure("its version is '" + content_.version + "'; 1.0 to 1.3 are read");
}

void RdmlReader::listLost(const std::string& path, std::string_view text) {
  if (text.empty()) return;
  losses_.Add("elements " + path,
              "line " + std::to_string(xml_.Line()) + ": '" + std::string(text) + "'");
}

std::optional<double> RdmlReader::number(std::string_view text) const {
  if (text.empty()) return std::nullopt;
  if (text == "NaN") return std::nullopt;
  if (text == "INF" || text == "-INF") {
    const double infinity = std::numeric_limits<double>::infinity();
    return text.front() == '-' ? -infinity : infinity;
  }
  const auto value = NumberIn<double>(text.front() == '+' ? text.substr(1) : text);
  if (value && std::isfinite(*value)) return value;
  throw xml_.Failure("'" + std::string(text) + "' is no number");
}

std::optional<std::uint32_t> RdmlReader::whole(std::string_view text) const {
  if (text.empty()) return std::nullopt;
  const auto value = NumberIn<std::uint32_t>(text);
  if (value && *value <= kMostPlateNumber) return value;
  throw xml_.Failure("'" + std::string(text) + "' is no whole number up to " +
                     std::to_string(kMostPlateNumber));
}

void RdmlReader::endPoint(bool isMelting) {
  const auto lose = [&](const char* what) {
    losses_.Add(what, "line " + std::to_string(xml_.Line()) + ", react " + react_);
  };
  if (fluorescence_ && !(std::abs(*fluorescence_) <= ReadingScale::kLargestReading)) {
    return lose("readings beyond 1e12");
  }
  if (isMelting) {
    if (!temperature_) return lose("readings of a melting without a temperature");
    return addPoint(data().melting, 0);
  }
  if (!cycle_) return lose("readings of an amplification without a cycle");
  if (*cycle_ != std::floor(*cycle_)) return lose("readings whose cycle is not a whole number");
  if (!(*cycle_ >= 1 && *cycle_ <= kMostCycle)) {
    return lose("readings of cycles that are not from 1 to 65535");
  }
  addPoint(data().amplification, *cycle_);
}

void RdmlReader::addPoint(Points& points, double cycle) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  if (cycle > 0) points.cycles.push_back(static_cast<std::uint16_t>(cycle));
  points.temperatures.push_back(static_cast<float>(temperature_.value_or(none)));
  points.readings.push_back(fluorescence_.value_or(none));
}

void RdmlReader::endReact() {
  ReadReact& done = react();
  if (const auto value = NumberIn<std::uint32_t>(react_)) {
    done.number = *value;
  } else if (run().columns > 0) {
    // Some programs write the name of the well instead of its number.
    done.number = WellNumber(PlainWellName(react_), run().rows, run().columns).value_or(0);
  }
  if (done.number > 0) return;
  throw xml_.Failure("'" + react_ + "' is no number of a well");
}

}  // namespace vex2::lab::rdml
