// Runs random sequences of operations on the library and on a literal model of the rules. After
// each operation, the returned values, every byte on disk, headers, components and paths must be
// equal.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include "tests/model/Operation.h"
#include "tests/support/Sweep.h"

namespace vex2::test::model {
namespace {

constexpr int kMostOperations = 40;

std::vector<Operation> sequenceOf(std::uint64_t seed) {
  using Family = Operation (*)(Draw&);
  static constexpr Family kFamilies[] = {
      DrawFileOperation,        DrawFileOperation,     DrawRunOperation,
      DrawRunOperation,         DrawRunOperation,      DrawSetupOperation,
      DrawCalibrationOperation, DrawSettingsOperation, DrawStudyOperation};
  Draw draw(seed);
  std::vector<Operation> sequence;
  for (int left = 1 + draw.Below(kMostOperations); left > 0; --left) {
    const Family family = kFamilies[draw.Below(9)];
    sequence.push_back(family(draw));
    sequence.back().manager = draw.OneIn(4) ? 1 : 0;
  }
  return sequence;
}

Text headerOf(const Vex2HeaderData& header) {
  const auto text = [](const auto& field) { return Text(field, sizeof field); };
  Text bytes = text(header.magic) + Big(header.formatA, 2) + Big(header.formatB, 2);
  bytes += text(header.assayCode) + text(header.runCode) + text(header.plateTypeCode);
  bytes += Big(header.rows, 2) + Big(header.columns, 2) + Big(header.thermocycleOffset, 4);
  bytes += Big(header.flagG, 1) + text(header.text) + text(header.kindMarker);
  bytes += text(header.acquisitionStatus) + Big(header.acquisitionDataOffset, 4);
  for (int row = 0; row < header.rows; ++row) bytes += Big(header.usage[row], 4);
  return bytes;
}

Text contentOf(const MemoryFiles& files, const Text& path) {
  const vex2::test::Bytes& bytes = files.Content(path);
  return {bytes.begin(), bytes.end()};
}

/// The bytes that each component writes.
std::vector<Text> componentsOf(MemoryFiles& files, const Vex2FileManager& manager) {
  constexpr const char* kScratch = "/scratch";
  std::vector<Text> components;
  for (int i = 0; i < manager.GetAllComponentCount(); ++i) {
    CFile file;
    EXPECT_TRUE(file.Open(kScratch, CFile::modeCreate | CFile::modeWrite));
    manager.GetComponent(i)->Write(&file);
    file.Close();
    components.push_back(contentOf(files, kScratch));
  }
  files.Remove(kScratch);
  return components;
}

/// Describes the first difference of two texts that are too long to print.
Text difference(const Text& what, const Text& library, const Text& model) {
  if (library == model) return {};
  return what + ": " + FirstDifference(ToBytes(library), ToBytes(model));
}

Text differenceOfManagers(Sides& sides, int number) {
  const OpenedManager& library = sides.actual[number];
  const Manager& model = sides.model[number];
  const Text which = number == 0 ? "first: " : "second: ";
  Text found = difference(which + "header", headerOf(library.GetHeaderData()), model.header);
  if (found.empty()) found = difference(which + "path", TextOf(library.GetFilePath()), model.path);
  if (found.empty() && library.IsOpen() != model.isOpen()) found = which + "open or not";
  const std::vector<Text> components = componentsOf(sides.files, library);
  if (found.empty() && components.size() != model.parts.size()) {
    found = which + "components: " + TagsOf(library) + " instead of";
    for (const Part& part : model.parts) found += " " + part.tag;
  }
  for (std::size_t i = 0; i < components.size() && found.empty(); ++i) {
    found = difference(which + "component " + model.parts[i].tag, components[i],
                       Written(model.parts[i]));
  }
  return found;
}

/// Compares the files of both sides, except files that are open for writing: their content is known
/// only when they are closed.
Text differenceOfFiles(Sides& sides) {
  std::size_t count = 0;
  for (const auto& [path, bytes] : sides.disk.files) {
    if (!sides.files.Has(path)) return path + " is missing";
    ++count;
    if (sides.disk.writers[path] != 0) continue;
    if (Text found = difference(path, contentOf(sides.files, path), bytes); !found.empty())
      return found;
  }
  return sides.files.FileCount() == count ? Text() : "there is a file too many";
}

/// Compares the backups, which the library makes of files that were read in part, with the bytes
/// from before the operation. The model makes no backups, so they are removed again.
Text takeBackups(Sides& sides, const std::map<Text, Text>& before) {
  for (const auto& [path, bytes] : before) {
    const Text backup = path + ".backup";
    if (!sides.files.Has(backup)) continue;
    const Text kept = contentOf(sides.files, backup);
    sides.files.Remove(backup.c_str());
    if (Text found = difference(backup, kept, bytes); !found.empty()) return found;
  }
  return {};
}

/// Describes the first difference between the sides after the operation; empty if there is none.
Text differenceAfter(Sides& sides, const Operation& operation) {
  const std::map<Text, Text> before(sides.disk.files.begin(), sides.disk.files.end());
  if (operation.onBoth) {
    operation.onBoth(sides);
  } else {
    Manager& model = sides.model[operation.manager];
    if (operation.isSettled && !operation.isSettled(model)) return {};
    const Text expected = operation.model(model);
    const Text answered = operation.tested(sides.actual[operation.manager]);
    if (Text found =
            difference("answer " + answered.substr(0, 5) + " instead of " + expected.substr(0, 5),
                       answered, expected);
        !found.empty()) {
      return found;
    }
  }
  std::vector<Text> messages = sides.model[0].messages;
  messages.insert(messages.end(), sides.model[1].messages.begin(), sides.model[1].messages.end());
  if (sides.host.messages.size() != messages.size()) return "messages to the user";
  for (const int number : {0, 1}) {
    if (Text found = differenceOfManagers(sides, number); !found.empty()) return found;
  }
  if (Text found = takeBackups(sides, before); !found.empty()) return found;
  return differenceOfFiles(sides);
}

struct Failure {
  std::size_t operation;
  Text what;
};

/// Runs the sequence and returns the first operation after which the sides differ.
std::optional<Failure> run(const std::vector<Operation>& sequence, int* operations = nullptr) {
  const auto sides = std::make_unique<Sides>();
  const Text sealed = Written(ValuePart("CALR", "sealed"));
  sides->disk.files["/sealed/s.vex"] = Manager::NewHeader() + Text(920, '\0') + sealed;
  sides->files.Put("/sealed/s.vex", ToBytes(sides->disk.files["/sealed/s.vex"]));
  for (std::size_t i = 0; i < sequence.size(); ++i) {
    if (Text found = differenceAfter(*sides, sequence[i]); !found.empty()) return Failure{i, found};
    if (operations != nullptr) ++*operations;
  }
  for (const int number : {0, 1}) {
    sides->actual[number].Close();
    sides->model[number].close();
  }
  if (Text found = differenceOfFiles(*sides); !found.empty())
    return Failure{sequence.size(), found};
  return std::nullopt;
}

/// Lists the sequence without the operations that are not needed for the failure.
Text Shrunk(std::vector<Operation> sequence, Failure failure) {
  sequence.resize(std::min(sequence.size(), failure.operation + 1));
  for (std::size_t i = sequence.size(); i-- > 0;) {
    std::vector<Operation> shorter = sequence;
    shorter.erase(shorter.begin() + static_cast<std::ptrdiff_t>(i));
    if (const auto still = run(shorter)) {
      failure = *still;
      sequence = shorter;
      sequence.resize(std::min(sequence.size(), failure.operation + 1));
      i = std::min(i, sequence.size());
    }
  }
  std::ostringstream list;
  for (const Operation& operation : sequence) {
    list << "  "
         << (operation.onBoth         ? ""
             : operation.manager == 0 ? "first."
                                      : "second.")
         << operation.text << '\n';
  }
  list << "  then " << failure.what << '\n';
  return list.str();
}

TEST(ManagerModel, RandomSequencesDoWhatTheRulesSay) {
  const int sequences = InFullSweeps(6000, 300);
  SweepResult result{"any sequence of operations",
                     "random sequences of up to 40 operations against a literal model"};
  for (int seed = 1; seed <= sequences; ++seed) {
    const std::vector<Operation> sequence = sequenceOf(static_cast<std::uint64_t>(seed));
    int operations = 0;
    const auto failure = run(sequence, &operations);
    ++result.points;
    result.states += static_cast<std::uint64_t>(operations);
    if (!failure) continue;
    if (++result.bad <= 500)
      ADD_FAILURE() << "seed " << seed << ":\n" << Shrunk(sequence, *failure);
  }
  EXPECT_EQ(result.bad, 0U);
  ReportSweep(result);
}

}  // namespace
}  // namespace vex2::test::model
