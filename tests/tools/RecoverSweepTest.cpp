#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <unordered_map>

#include "lab/check/RecordPlaces.h"
#include "lab/recover/RecoverPass.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"
#include "tests/support/Sweep.h"
#include "tests/support/TempFolder.h"
#include "tests/tools/DocumentIndex.h"
#include "tests/tools/VexProcess.h"
#include "vex2/manager/Vex2FileManager.h"

namespace vex2::test {

namespace {

using Part = DocumentIndex::Part;

// One damage: bytes from `begin` to before `end` may have changed.
struct Damage {
  const char* kind;
  std::uint64_t begin;
  std::uint64_t end;
};

std::ostream& operator<<(std::ostream& out, const Damage& damage) {
  return out << damage.kind << " from byte " << damage.begin << " to " << damage.end;
}

// The range from the first to the last different byte of two files of the same length.
Damage differenceOf(const Bytes& whole, const Bytes& damaged) {
  const auto first = std::mismatch(whole.begin(), whole.end(), damaged.begin(), damaged.end());
  const auto last = std::mismatch(whole.rbegin(), whole.rend(), damaged.rbegin(), damaged.rend());
  return {"damaged", static_cast<std::uint64_t>(first.first - whole.begin()),
          static_cast<std::uint64_t>(whole.rend() - last.first)};
}

// Damages a document in one of four ways, mostly after its header.
class Damager {
 public:
  explicit Damager(std::uint64_t seed) : random_(seed) {}

  Damage Apply(Bytes& bytes) {
    switch (below(4)) {
      case 0:
        return cut(bytes);
      case 1:
        return flip(bytes);
      case 2:
        return overwrite(bytes);
      default:
        return zero(bytes);
    }
  }

 private:
  std::uint64_t below(std::uint64_t limit) { return random_() % std::max<std::uint64_t>(limit, 1); }

  std::uint64_t place(const Bytes& bytes) {
    constexpr std::uint64_t kHeader = 1024;
    const bool behindHeader = below(4) != 0 && bytes.size() > kHeader;
    return behindHeader ? kHeader + below(bytes.size() - kHeader) : below(bytes.size());
  }

  Damage cut(Bytes& bytes) {
    const std::uint64_t size = bytes.size();
    bytes.resize(place(bytes));
    return {"cut", bytes.size(), size};
  }

  Damage flip(Bytes& bytes) {
    const std::uint64_t at = place(bytes);
    bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ 1U << below(8));
    return {"flipped", at, at + 1};
  }

  Damage overwrite(Bytes& bytes) {
    const std::uint64_t at = place(bytes);
    const std::uint64_t end = std::min<std::uint64_t>(bytes.size(), at + 1 + below(200));
    for (std::uint64_t i = at; i < end; ++i) bytes[i] = static_cast<std::uint8_t>(random_());
    return {"overwritten", at, end};
  }

  Damage zero(Bytes& bytes) {
    constexpr std::uint64_t kSector = 512;
    const std::uint64_t at = place(bytes) / kSector * kSector;
    const std::uint64_t end = std::min<std::uint64_t>(bytes.size(), at + kSector * (1 + below(3)));
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(at),
              bytes.begin() + static_cast<std::ptrdiff_t>(end), std::uint8_t{0});
    return {"zeroed", at, end};
  }

  std::mt19937_64 random_;
};

// Counts the parts of a document by their content, and by their content together with the list that
// they are in.
class Contents {
 public:
  explicit Contents(const std::vector<Part>& parts) {
    for (const Part& part : parts) {
      ++anywhere_[anywhere(part)];
      ++inPlace_[inPlace(part)];
    }
  }

  // Removes one such part. Returns false if there is none.
  bool Take(const Part& part) {
    if (IsBound(part) && !takeFrom(inPlace_, inPlace(part))) return false;
    return takeFrom(anywhere_, anywhere(part));
  }

 private:
  using Counts = std::unordered_map<std::size_t, int>;

  // Whether the part must be in the same list as before. A part in a list in which no writer stores
  // it may move, and calibration may be in a list or at the top level.
  static bool IsBound(const Part& part) {
    return lab::StandsIn(part.around, part.tag) && part.tag != "PDYE" && part.tag != "BKGD";
  }
  static std::size_t anywhere(const Part& part) {
    return part.content * 2 + (part.isFrame ? 1 : 0);
  }
  static std::size_t inPlace(const Part& part) {
    // If the end of a plate and the head of the next block are both lost, nothing shows to which
    // plate the frames belong; but readers must find them in some plate.
    const bool isPlates = part.isFrame && part.around == "RQPl";
    return anywhere(part) * 31 + std::hash<std::string>()(isPlates ? "" : part.around);
  }
  static bool takeFrom(Counts& counts, std::size_t key) {
    const auto found = counts.find(key);
    if (found == counts.end() || found->second == 0) return false;
    --found->second;
    return true;
  }

  Counts anywhere_;
  Counts inPlace_;
};

// A part is touched if the damage includes any of its bytes, including those of the records in it.
bool isTouched(const Part& part, const Damage& damage) {
  return part.begin < damage.end && damage.begin < part.end;
}

std::string describe(const Part& part) {
  return (part.isFrame ? "a frame of \"" : "the record \"") + part.tag + "\" in \"" + part.around +
         "\" from byte " + std::to_string(part.begin) + " to " + std::to_string(part.end);
}

// Whether nothing shows the number of wells in the frame. That is so if the number is not 96 or
// 384, no other block has frames of this size, and the damage reaches from the head of the record
// before the block, which shows the offset of the block, into the block's own head.
bool isUndecidable(const std::vector<Part>& parts, std::size_t frame, const Damage& damage) {
  const std::uint64_t wells = (parts[frame].end - parts[frame].begin) / 80;
  if (wells == 96 || wells == 384) return false;
  std::size_t block = frame;
  while (parts[block].isFrame) --block;
  std::uint64_t before = parts[block].begin;
  for (const Part& part : parts) {
    const bool isOther = part.end <= parts[block].begin || part.begin >= parts[block].end;
    if (part.isFrame && isOther && part.end - part.begin == 80 * wells) return false;
    if (part.end == parts[block].begin) before = std::min(before, part.begin);
  }
  constexpr std::uint64_t kHead = 8;
  return damage.begin < before + kHead && damage.end > parts[block].begin;
}

// The parts that the damage did not touch and that are not in `found`.
struct Losses {
  std::string first;            // the first part that is lost despite the promise; empty for none
  std::uint64_t undecided = 0;  // lost frames that the promise does not cover
};

Losses missing(const DocumentIndex& whole, const Damage& damage, const DocumentIndex& found) {
  Losses losses;
  Contents contents(found.parts);
  for (std::size_t i = 0; i < whole.parts.size(); ++i) {
    const Part& part = whole.parts[i];
    if (!part.isKnown || isTouched(part, damage) || contents.Take(part)) continue;
    if (part.isFrame && isUndecidable(whole.parts, i, damage)) {
      ++losses.undecided;
    } else if (losses.first.empty()) {
      losses.first = describe(part);
    }
  }
  return losses;
}

// Describes why the library cannot read the document at `path` completely; empty if it can.
std::string readersComplaint(const std::string& path, const DocumentIndex& index,
                             std::uint64_t size) {
  if (!index.fault.empty()) return index.fault;
  if (index.end != size) return "bytes behind the last record";
  Vex2FileManager document;
  if (document.SafeOpen(path.c_str(), 0, 0) != 1) return "cannot be opened";
  if (const int status = document.ReadComponentFile(nullptr); status != 0) {
    return "is read with the status " + std::to_string(status);
  }
  const auto top = std::count_if(index.parts.begin(), index.parts.end(), [](const Part& part) {
    return part.around.empty() && !part.isFrame && part.isKnown;
  });
  if (document.GetAllComponentCount() != top) {
    return "the library reads " + std::to_string(document.GetAllComponentCount()) + " of " +
           std::to_string(top) + " records";
  }
  return {};
}

class RecoverSweep : public TempFolderTest {
 protected:
  static DocumentIndex indexOf(const std::string& path) {
    CFile file;
    EXPECT_TRUE(file.Open(path.c_str(), CFile::modeRead));
    return IndexDocument(file);
  }

  lab::RecoverReport recover() const {
    CFile in;
    CFile out;
    EXPECT_TRUE(in.Open(damaged_.c_str(), CFile::modeRead));
    EXPECT_TRUE(out.Open(recovered_.c_str(), CFile::modeReadWrite | CFile::modeCreate));
    return lab::RecoverPass(in, out, {}).Run();
  }

  struct Verdict {
    std::string wrong;            // how the promise was broken; empty if it was kept
    std::uint64_t undecided = 0;  // lost frames that the promise does not cover
  };

  // Recovers the damaged `bytes` and checks the result.
  Verdict verdict(const DocumentIndex& whole, const Bytes& bytes, const Damage& damage) const {
    WriteBytes(damaged_, bytes);
    const lab::RecoverReport report = recover();
    const bool isAnything = report.IsAnything();
    const DocumentIndex found = isAnything ? indexOf(recovered_) : DocumentIndex();
    const Losses losses = missing(whole, damage, found);
    if (!losses.first.empty()) return {"lost: " + losses.first, losses.undecided};
    if (!isAnything) return {"", losses.undecided};
    return {readersComplaint(recovered_, found, report.written), losses.undecided};
  }

  // Damages and recovers the document `damages` times, and counts the results.
  void Sweep(const std::filesystem::path& path, std::uint64_t damages, SweepResult& result) const {
    // With VEX2_FIRST_DAMAGE, uses other damages than the usual ones.
    const char* const other = std::getenv("VEX2_FIRST_DAMAGE");
    const std::uint64_t first = other != nullptr ? std::stoull(other) : 0;
    const Bytes bytes = ReadBytes(path);
    const DocumentIndex whole = indexOf(path);
    for (std::uint64_t seed = first; seed < first + damages; ++seed) {
      Bytes copy = bytes;
      const Damage damage = Damager(seed).Apply(copy);
      const Verdict judged = verdict(whole, copy, damage);
      ++result.points;
      ++result.states;
      result.leftOut += judged.undecided;
      if (judged.wrong.empty()) continue;
      ++result.bad;
      ADD_FAILURE() << path.filename() << ", seed " << seed << ", " << damage << ": "
                    << judged.wrong;
    }
  }

  void SweepAll(const std::vector<std::filesystem::path>& documents,
                const std::string& what) const {
    const auto damages = static_cast<std::uint64_t>(InFullSweeps(1000, 20));
    SweepResult result{
        "a document is damaged",
        "`vex recover` of " + what + ": cut, a bit flipped, overwritten, sectors zeroed"};
    for (const auto& path : documents) Sweep(path, damages, result);
    RecordProperty("undecided", static_cast<int>(result.leftOut));
    ReportSweep(result);
  }

  const std::string damaged_ = folder_ / "damaged.vex";
  const std::string recovered_ = folder_ / "recovered.vex";
};

std::vector<std::filesystem::path> documentsIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> found;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename();
    const bool isDocument = entry.path().extension() == ".vex";
    if (isDocument && name.find(".roundtrip.") == std::string::npos) found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

TEST_F(RecoverSweep, WhatDamageDidNotTouchOfATestDocumentIsRecovered) {
  SweepAll(documentsIn(SourcePath("tests/data")), "the documents in tests/data");
}

TEST_F(RecoverSweep, WhatDamageDidNotTouchOfASampleDocumentIsRecovered) {
  if (SampleFolder().empty()) GTEST_SKIP() << "no sample documents";
  SweepAll(documentsIn(SampleFolder() / "golden"), "the sample documents");
}

TEST_F(RecoverSweep, WhatDamageDidNotTouchOfARealRunIsRecovered) {
  if (SampleFolder().empty()) GTEST_SKIP() << "no readings";
  const std::string run = folder_ / "run.vex";
  const CommandResult made =
      RunVex({"record", run, "--readings", SampleFolder() / "real/calibration-96-readings.csv",
              "--wells", SampleFolder() / "real/calibration-96-wells.csv"});
  ASSERT_EQ(made.exitCode, 0) << made.errors;
  SweepAll({run}, "a real run");
}

// Damages for which recovery used to lose content: the only frame of a block whose number of wells
// or tag was damaged, small runs that end with part of a frame, and the records after a plate whose
// end record is half lost.
TEST_F(RecoverSweep, DamagesThatOnceLostContent) {
  const std::pair<const char*, const char*> damages[] = {
      {"torn-frame", "recover/torn-frame.block-head-overwritten"},
      {"torn-frame", "recover/torn-frame.program-to-block-tag-overwritten"},
      {"torn-frame", "recover/torn-frame.program-to-block-length-overwritten"},
      {"old-block", "recover/old-block.well-count-overwritten"},
      {"recover/reporting-blocks", "recover/reporting-blocks.tag-flipped"},
      {"recover/every-kind", "recover/every-kind.plate-end-overwritten"},
      {"recover/study", "recover/study.well-count-flipped"}};
  for (const auto& [name, damagedName] : damages) {
    const std::string path = SourcePath("tests/data/" + std::string(name) + ".vex");
    const Bytes bytes = ReadBytes(path);
    const Bytes damaged = ReadBytes(SourcePath("tests/data/" + std::string(damagedName) + ".vex"));
    const Damage damage = differenceOf(bytes, damaged);
    ASSERT_LT(damage.begin, damage.end) << damagedName;
    EXPECT_EQ(verdict(indexOf(path), damaged, damage).wrong, "") << damagedName << ", " << damage;
  }
}

// Tests the sweep itself: it must notice parts that are missing, changed or in another list.
TEST_F(RecoverSweep, TheSweepNoticesMissingParts) {
  const auto path = SourcePath("tests/data/setup.vex");
  const DocumentIndex whole = indexOf(path);
  const Damage none{"nothing", 0, 0};
  EXPECT_EQ(missing(whole, none, whole).first, "");
  for (std::size_t i = 0; i < whole.parts.size(); ++i) {
    DocumentIndex less = whole;
    less.parts.erase(less.parts.begin() + static_cast<std::ptrdiff_t>(i));
    EXPECT_NE(missing(whole, none, less).first, "") << i;
    DocumentIndex other = whole;
    ++other.parts[i].content;
    EXPECT_NE(missing(whole, none, other).first, "") << i;
    const Damage touching{"touching", whole.parts[i].begin, whole.parts[i].begin + 1};
    less.parts.clear();
    for (const Part& part : whole.parts) {
      if (!isTouched(part, touching)) less.parts.push_back(part);
    }
    EXPECT_EQ(missing(whole, touching, less).first, "") << i;
  }
}

}  // namespace vex2::test
