#include "lab/compare/Diff.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/compare/DiffReadings.h"
#include "lab/compare/PlateFacts.h"
#include "lab/model/DataBlock.h"
#include "lab/model/Document.h"
#include "lab/model/RawFile.h"
#include "lab/model/ReadingScale.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kLongestValue = 60;

using Shown = std::optional<std::string>;

/// Joins equal differences of one plate. Keeps the order in which they are found.
class Groups {
 public:
  void Add(const std::string& section, const std::string& what, const Shown& one,
           const Shown& other, const std::string& place) {
    sections_.insert(section);
    const auto [entry, isNew] =
        places_.emplace(std::tuple(section, what, one, other), list_.size());
    if (isNew) {
      Difference& difference = list_.emplace_back();
      difference.section = section;
      difference.what = what;
      difference.one = one;
      difference.other = other;
    }
    Difference& group = list_[entry->second];
    ++group.count;
    if (!place.empty() && group.places.size() < Difference::kMostPlaces)
      group.places.push_back(place);
  }

  bool Has(const std::string& section) const { return sections_.contains(section); }
  std::vector<Difference>& List() { return list_; }

 private:
  std::map<std::tuple<std::string, std::string, Shown, Shown>, std::size_t> places_;
  std::vector<Difference> list_;
  std::set<std::string> sections_;
};

Shown fieldOf(const FactFields& fields, const std::string& name) {
  const auto found = fields.find(name);
  return found != fields.end() ? Shown(found->second) : std::nullopt;
}

void compareFields(const FactPlace& place, const FactFields& one, const FactFields& other,
                   Groups& groups) {
  std::set<std::string> names;
  for (const auto& [name, value] : one) names.insert(name);
  for (const auto& [name, value] : other) names.insert(name);
  for (const std::string& name : names) {
    const Shown left = fieldOf(one, name);
    const Shown right = fieldOf(other, name);
    if (left != right) groups.Add(place.section, name, left, right, place.place);
  }
}

void compareFacts(const PlateFacts& one, const PlateFacts& other, Groups& groups) {
  for (const auto& [place, fields] : one) {
    const auto found = other.find(place);
    if (found != other.end()) {
      compareFields(place, fields, found->second, groups);
    } else {
      groups.Add(place.section, "", "there", std::nullopt, place.place);
    }
  }
  for (const auto& [place, fields] : other) {
    if (!one.contains(place)) groups.Add(place.section, "", std::nullopt, "there", place.place);
  }
}

bool isBlock(const std::string& tag) {
  return std::find(kDataBlockTags.begin(), kDataBlockTags.end(), tag) != kDataBlockTags.end();
}

// The bodies of a plate's top-level records by tag; further records with the same tag are numbered.
// Leaves out data blocks and plates, which are compared separately.
std::map<std::string, std::string> bodiesOf(const Document& document,
                                            const Document::Plate& plate) {
  std::map<std::string, std::string> bodies;
  CFile file;
  OpenToRead(file, document.Path());
  for (std::size_t i = 0; i < plate.records.size(); ++i) {
    const Document::Record& record = plate.records[i];
    if (isBlock(record.tag) || record.tag == TagOf(Kind::kPlates) ||
        record.tag == TagOf(Kind::kPlateName) || record.tag == TagOf(Kind::kPlateDate)) {
      continue;
    }
    const std::uint64_t last = plate.isEmbedded ? plate.end : document.RecordsEnd();
    const std::uint64_t end = i + 1 < plate.records.size() ? plate.records[i + 1].offset : last;
    const std::uint64_t begin = record.offset + kRecordHeadSize;
    std::string body(end > begin ? end - begin : 0, '\0');
    file.Seek(static_cast<std::int64_t>(begin), CFile::begin);
    body.resize(file.Read(body.data(), body.size()));
    std::string name = record.tag;
    for (int turn = 2; !bodies.emplace(name, body).second; ++turn) {
      name = record.tag + " (" + std::to_string(turn) + ")";
    }
  }
  return bodies;
}

std::string bytesText(const std::string& body) {
  return Counted(body.size(), "byte");
}

// Compares the bodies of records. Skips the records of a section if the section already has a
// difference.
void compareBodies(const std::map<std::string, std::string>& one,
                   const std::map<std::string, std::string>& other, Groups& groups) {
  for (const auto& [name, body] : one) {
    const auto found = other.find(name);
    const std::string section = SectionOf(std::string_view(name).substr(0, kTagLength));
    if (!section.empty() && groups.Has(section)) continue;
    if (found == other.end()) {
      groups.Add("records", "", bytesText(body), std::nullopt, name);
    } else if (found->second != body) {
      const auto place =
          std::mismatch(body.begin(), body.end(), found->second.begin(), found->second.end());
      groups.Add("records",
                 "bytes of " + name + " from " + std::to_string(place.first - body.begin()),
                 bytesText(body), bytesText(found->second), "");
    }
  }
  for (const auto& [name, body] : other) {
    const std::string section = SectionOf(std::string_view(name).substr(0, kTagLength));
    if (!one.contains(name) && (section.empty() || !groups.Has(section))) {
      groups.Add("records", "", std::nullopt, bytesText(body), name);
    }
  }
}

/// Compares two documents.
class DocumentDiff {
 public:
  DocumentDiff(const Document& one, const Document& other, const DiffOptions& options)
      : one_(one), other_(other), options_(options) {}

  std::vector<Difference> Run() {
    compare(one_.Itself(), other_.Itself(), "");
    for (const Document::Plate& plate : one_.Plates()) {
      const Document::Plate* same = find(other_, plate.name);
      if (same != nullptr) {
        compare(plate, *same, ToUtf8(plate.name));
      } else {
        addLone(plate.name, true);
      }
    }
    for (const Document::Plate& plate : other_.Plates()) {
      if (find(one_, plate.name) == nullptr) addLone(plate.name, false);
    }
    const std::uint64_t rest = one_.Size() - one_.RecordsEnd();
    const std::uint64_t otherRest = other_.Size() - other_.RecordsEnd();
    if (options_.records && rest != otherRest) {
      addWhole("records", "uncommitted bytes", std::to_string(rest), std::to_string(otherRest));
    }
    return std::move(found_);
  }

 private:
  static const Document::Plate* find(const Document& document, const std::string& name) {
    const auto& plates = document.Plates();
    const auto found = std::find_if(plates.begin(), plates.end(),
                                    [&](const Document::Plate& one) { return one.name == name; });
    return found != plates.end() ? &*found : nullptr;
  }

  void addWhole(const char* section, const std::string& what, const Shown& one,
                const Shown& other) {
    Difference& difference = found_.emplace_back();
    difference.section = section;
    difference.what = what;
    difference.one = one;
    difference.other = other;
    difference.count = 1;
  }

  void addLone(const std::string& name, bool isFirst) {
    const Shown there = "there";
    addWhole("plates", ToUtf8(name), isFirst ? there : std::nullopt,
             isFirst ? std::nullopt : there);
  }

  void compare(const Document::Plate& one, const Document::Plate& other, const std::string& name) {
    Groups groups;
    compareFacts(FactsOf(one), FactsOf(other), groups);
    if (options_.records) compareBodies(bodiesOf(one_, one), bodiesOf(other_, other), groups);
    std::vector<Difference> differences = std::move(groups.List());
    std::erase_if(differences, [&](const Difference& difference) {
      return !options_.setup && difference.section != "records";
    });
    if (options_.readings) DiffReadings(one, other, options_.tolerance, differences);
    for (Difference& difference : differences) {
      difference.plate = name;
      found_.push_back(std::move(difference));
    }
  }

  const Document& one_;
  const Document& other_;
  DiffOptions options_;
  std::vector<Difference> found_;
};

std::string shownValue(const Shown& value) {
  if (!value) return "none";
  if (value->size() <= kLongestValue) return "'" + *value + "'";
  return "'" + value->substr(0, kLongestValue) + "...'";
}

}  // namespace

std::vector<Difference> Diff(const std::filesystem::path& one, const std::filesystem::path& other,
                             const DiffOptions& options) {
  const Document first = Guarded(one.string(), [&] {
    Document document(one.string());
    document.RequireWhole("compared");
    return document;
  });
  return Guarded(other.string(), [&] {
    const Document second(other.string());
    second.RequireWhole("compared");
    return DocumentDiff(first, second, options).Run();
  });
}

std::string TextOf(const Difference& difference) {
  std::string text;
  if (!difference.plate.empty()) text += "plate " + difference.plate + ": ";
  text += difference.section;
  if (!difference.what.empty()) text += ": " + difference.what;
  const bool isOfReadings = difference.largest > 0;
  if (difference.count > 1 || isOfReadings) {
    text += ": " + std::to_string(difference.count) + " differ";
    if (isOfReadings) text += ", by up to " + PlainText(difference.largest);
  }
  // For readings, each of the places already contains its two values.
  if (difference.places.empty() || difference.section != "readings") {
    text += ": " + shownValue(difference.one) + " -> " + shownValue(difference.other);
  }
  for (std::size_t i = 0; i < difference.places.size(); ++i) {
    text += (i == 0 ? ": " : ", ") + difference.places[i];
  }
  if (difference.count > difference.places.size() && !difference.places.empty()) text += ", ...";
  return text;
}

}  // namespace vex2::lab
