// Tests what happens to the files that commands write.

#include <unistd.h>

#include <csignal>

#include "tests/tools/DocumentFixture.h"
#include "tools/vex/Errors.h"
#include "tools/vex/files/Output.h"
#include "tools/vex/files/OutputFiles.h"

namespace vex2::test {

namespace {

namespace fs = std::filesystem;
using tool::OutputFiles;

class Outputs : public DocumentTest {
 protected:
  void SetUp() override {
    MakeRun();
    WriteBytes(table_, ToBytes("kept"));
  }

  bool hasTemporaryFile() const {
    const auto entries = fs::directory_iterator(folder_.Path());
    return std::any_of(begin(entries), end(entries), [](const fs::directory_entry& entry) {
      return entry.path().filename().string().starts_with(".vex2-");
    });
  }

  /// The error of claiming the files; empty on success.
  static std::string refusal(OutputFiles& files) {
    try {
      files.Claim();
    } catch (const lab::Error& error) {
      return error.what();
    }
    return {};
  }

  const std::string table_ = folder_ / "run.csv";
};

}  // namespace

TEST_F(Outputs, FileStaysUntilTheOutputIsFinished) {
  {
    tool::Output abandoned(table_);
    abandoned.Stream() << "half a ta";
  }
  EXPECT_EQ(ReadBytes(table_), ToBytes("kept"));
  tool::Output output(table_);
  output.Stream() << "a table\n";
  EXPECT_EQ(ReadBytes(table_), ToBytes("kept"));
  output.Finish();
  EXPECT_EQ(ReadBytes(table_), ToBytes("a table\n"));
  EXPECT_FALSE(hasTemporaryFile());
}

TEST_F(Outputs, EndedAtAnyMomentAnExportLeavesTheOldOrTheNewTable) {
  const Bytes whole = ToBytes(RunVex({"export", path_}).output);
  for (const int signal : {SIGTERM, SIGKILL}) {
    for (int round = 0; round < 12; ++round) {
      WriteBytes(table_, ToBytes("kept"));
      VexProcess command({"export", path_, "-o", table_, "--force"});
      ::usleep(static_cast<useconds_t>(round * 15000));
      command.Signal(signal);
      command.Wait();
      const Bytes left = ReadBytes(table_);
      EXPECT_TRUE(left == ToBytes("kept") || left == whole) << left.size();
      if (signal == SIGTERM) {
        EXPECT_FALSE(hasTemporaryFile());
      }
    }
  }
}

TEST_F(Outputs, ExistingFileIsReplacedOnlyWhenAsked) {
  OutputFiles careful(false);
  careful.Write(table_, OutputFiles::Kind::kTable);
  EXPECT_EQ(refusal(careful), table_ + ": already exists; use --force to overwrite it");
  OutputFiles asked(true);
  asked.Write(table_, OutputFiles::Kind::kTable);
  EXPECT_EQ(refusal(asked), "");
}

TEST_F(Outputs, InputIsNeverReplacedWhateverItIsCalled) {
  fs::create_hard_link(table_, folder_ / "hard.csv");
  fs::create_symlink("run.csv", folder_ / "soft.csv");
  fs::create_directory(folder_ / "sub");
  for (const char* name : {"run.csv", "hard.csv", "soft.csv", "sub/../run.csv", "./run.csv"}) {
    OutputFiles files(true);
    files.Read(table_).Write(folder_ / name, OutputFiles::Kind::kTable);
    EXPECT_THAT(refusal(files), testing::HasSubstr("is also an input")) << name;
  }
}

TEST_F(Outputs, TwoOutputsAreNeverOneFile) {
  fs::create_symlink("new.csv", folder_ / "soft.csv");
  for (const char* name : {"new.csv", "soft.csv", "./new.csv"}) {
    OutputFiles files(true);
    files.Write(folder_ / "new.csv", OutputFiles::Kind::kTable);
    files.Write(folder_ / name, OutputFiles::Kind::kTable);
    EXPECT_THAT(refusal(files), testing::HasSubstr("is given for two outputs")) << name;
  }
}

TEST_F(Outputs, DocumentIsNeverReplacedByATable) {
  OutputFiles files(true);
  files.Write(path_, OutputFiles::Kind::kTable);
  EXPECT_THAT(refusal(files), testing::HasSubstr("is a plate document"));
  OutputFiles document(true);
  document.Write(path_, OutputFiles::Kind::kDocument);
  EXPECT_EQ(refusal(document), "");
}

TEST_F(Outputs, RecorderWaitsForAClaimedFile) {
  OutputFiles files(true);
  files.Write(path_, OutputFiles::Kind::kDocument).Claim();
  VexProcess recorder({"simulate", path_, "--cycles", "1", "--force"});
  ::usleep(300000);
  EXPECT_TRUE(recorder.IsRunning());
}

TEST_F(Outputs, RefusalLeavesNoLock) {
  OutputFiles files(false);
  files.Write(folder_ / "new.csv", OutputFiles::Kind::kTable);
  files.Write(table_, OutputFiles::Kind::kTable);
  EXPECT_NE(refusal(files), "");
  files = OutputFiles(false);
  EXPECT_FALSE(fs::exists(folder_ / ".new.csv.recording"));
  EXPECT_FALSE(fs::exists(folder_ / ".run.csv.recording"));
}

}  // namespace vex2::test
