#include <gmock/gmock.h>

#include "lab/Error.h"
#include "lab/model/DocumentOverview.h"
#include "lab/model/FrameView.h"
#include "lab/model/RecordValue.h"
#include "lab/model/SelectedRecords.h"
#include "lab/model/WellSpectrum.h"
#include "tests/support/Files.h"
#include "tests/support/RunDocument.h"
#include "tests/support/TempFolder.h"

namespace vex2::test {
namespace {

using lab::Document;
using testing::ElementsAre;

constexpr std::uint16_t kWells = 2;
constexpr int kFrames = 3;

/// A document with a comment, and raw readings whose meaning is unknown because there is no log.
class OverviewTest : public TempFolderTest {
 protected:
  std::string Saved() const {
    const std::string settings = ListRecord("GLBL", 1, Record("COMM", "liver"));
    std::string records = settings;
    for (const auto byte : StoredBlock("RAWa", kWells, kFrames)) {
      records += static_cast<char>(byte);
    }
    WriteBytes(path_, DocumentOf(records));
    return path_;
  }

  const std::string path_ = folder_ / "run.vex";
};

TEST_F(OverviewTest, ReturnsWhatTheDocumentHolds) {
  const Document document(Saved());
  const lab::DocumentOverview overview = OverviewOf(document, document.Itself());
  EXPECT_EQ(overview.path, path_);
  EXPECT_TRUE(overview.isWhole);
  EXPECT_TRUE(overview.faults.empty());
  EXPECT_FALSE(overview.plates);
  const lab::PlateOverview& plate = overview.plate;
  EXPECT_FALSE(plate.isEmbedded);
  EXPECT_EQ(plate.size, document.Size());
  EXPECT_EQ(plate.wellCount, std::uint64_t{plate.rows} * plate.columns);
  EXPECT_EQ(plate.frames, kFrames);
  ASSERT_EQ(plate.blocks.size(), 1U);
  EXPECT_EQ(plate.blocks.front().tag, "RAWa");
  EXPECT_EQ(plate.blocks.front().wells.size(), kWells);
  EXPECT_EQ(plate.blocks.front().frameCount, kFrames);
  EXPECT_FALSE(plate.blocks.front().isRecorded);
  EXPECT_FALSE(plate.start);
  EXPECT_FALSE(plate.programSize);
  ASSERT_EQ(plate.records.size(), 2U);
  EXPECT_EQ(plate.records.front().tag, "GLBL");
  EXPECT_THAT(plate.settings,
              testing::Contains(lab::SettingValue{"comment", std::string("liver")}));
}

TEST_F(OverviewTest, FrameOfTheFileIsThatOfTheDocument) {
  const Document document(Saved());
  for (int index = 0; index < kFrames; ++index) {
    const lab::FrameQuery query(path_, "RAWa", index);
    lab::DocumentFile file;
    file.OpenDocument(path_);
    ASSERT_EQ(file.ReadHeaderData(nullptr), kSuccess);
    const lab::FrameView read = query.Read(file);
    const lab::FrameView viewed = query.ViewOf(document.Itself());
    EXPECT_TRUE(SameFrame(read.frame, MakeFrame(kWells, index)));
    EXPECT_TRUE(SameFrame(viewed.frame, read.frame));
    EXPECT_EQ(viewed.wells, read.wells);
    EXPECT_EQ(read.frameCount, static_cast<std::uint64_t>(kFrames));
    EXPECT_EQ(read.NameOf(1), "A2");
    EXPECT_FALSE(read.IsKnown());
    EXPECT_FALSE(read.ReadingOf(0));
  }
}

TEST_F(OverviewTest, FrameBeyondCountIsRefused) {
  const Document document(Saved());
  for (const int index : {-1, kFrames}) {
    const lab::FrameQuery query(path_, "RAWa", index);
    try {
      static_cast<void>(query.PlatesWithFrame(document, {document.Itself()}));
      FAIL() << index;
    } catch (const lab::Error& error) {
      EXPECT_EQ(error.Code(), lab::ErrorCode::kNoSuchFrame);
      EXPECT_EQ(error.File(), path_);
    }
  }
}

TEST_F(OverviewTest, SpectrumIsOfTheWellThatIsNamed) {
  const Document document(Saved());
  const lab::WellSpectrum spectrum = SpectrumOf(document, document.Itself(), "A2", 1);
  EXPECT_EQ(spectrum.well, 2U);
  EXPECT_EQ(spectrum.record, MakeRecord(1, 1));
  EXPECT_EQ(spectrum.UsedReadings(), 32U);
  EXPECT_TRUE(spectrum.rates.empty());
  EXPECT_THROW(SpectrumOf(document, document.Itself(), "A3", 1), lab::Error);
  EXPECT_THROW(SpectrumOf(document, document.Itself(), "A2", kFrames), lab::Error);
}

/// Collects the values of the records, by kind.
struct ValueReader final : RecordVisitor {
  void Begin(const FileRecord& record, CFile& file) override {
    values.push_back(lab::ReadRecordValue(file, record));
  }
  std::vector<lab::RecordValue> values;
};

TEST_F(OverviewTest, RecordValuesHaveTheTypeOfTheirLayout) {
  const std::string path = folder_ / "values.vex";
  WriteBytes(path, DocumentOf(Record("PRER", "\x11") + Record("PCRV", std::string("\x01\x02", 2)) +
                              Record("VERS", std::string("\x01\x02\x03\x04", 4)) +
                              Record("DATH", std::string("\x00\x00\x80\x3F", 4)) +
                              Record("DATH", std::string("\x00\x00\x80\x7F", 4)) +
                              Record("COLR", "abc") + Record("COMM", std::string("text\0", 5)) +
                              Record("TPro", "\xFF") + Record("COMM", "")));
  lab::DocumentFile file;
  file.OpenDocument(path);
  ValueReader reader;
  static_cast<void>(lab::WalkRecords(file, reader));
  ASSERT_EQ(reader.values.size(), 9U);
  EXPECT_EQ(std::get<std::uint32_t>(reader.values[0]), 0x11U);
  EXPECT_EQ(std::get<std::uint32_t>(reader.values[1]), 0x102U);
  EXPECT_EQ(std::get<std::uint32_t>(reader.values[2]), 0x1020304U);
  EXPECT_EQ(std::get<float>(reader.values[3]), 1.0F);
  EXPECT_TRUE(std::holds_alternative<std::monostate>(reader.values[4]))
      << "infinity is not a number";
  EXPECT_THAT(std::get<lab::RecordColour>(reader.values[5]), ElementsAre('a', 'b', 'c'));
  EXPECT_EQ(std::get<std::string>(reader.values[6]), "text");
  EXPECT_EQ(std::get<lab::RecordBytes>(reader.values[7]).bytes, "\xFF");
  EXPECT_TRUE(std::holds_alternative<std::monostate>(reader.values[8]));
}

TEST_F(OverviewTest, RecordValueEndsWithTheFile) {
  const std::string path = folder_ / "cut.vex";
  WriteBytes(path, DocumentOf(RecordDeclaring("COMM", 1000, "text")));
  lab::DocumentFile file;
  file.OpenDocument(path);
  ValueReader reader;
  static_cast<void>(lab::WalkRecords(file, reader));
  ASSERT_EQ(reader.values.size(), 1U);
  EXPECT_EQ(std::get<std::string>(reader.values[0]), "text");
}

}  // namespace
}  // namespace vex2::test
