// Tests commands that change a document while other commands, recorders and programs use it.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>

#include "lab/model/DocumentLock.h"
#include "tests/tools/DocumentFixture.h"

using testing::HasSubstr;

namespace vex2::test {

namespace {

using lab::DocumentLock;

constexpr const char* kWellsTable = "well,sample,target,task,quantity,reporter\nA1,liver,,,,\n";

/// Makes a command wait half-way: the command reads its input from this named pipe after it has
/// read the document, and continues when the pipe is closed.
class Pipe {
 public:
  explicit Pipe(std::string path) : path_(std::move(path)) { ::mkfifo(path_.c_str(), 0600); }
  ~Pipe() {
    if (handle_ >= 0) ::close(handle_);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  bool WaitForReader() {
    for (int tries = 0; tries < 4000 && handle_ < 0; ++tries) {
      handle_ = ::open(path_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
      if (handle_ < 0) ::usleep(5000);
    }
    return handle_ >= 0;
  }
  void Send(const std::string& text) {
    EXPECT_EQ(::write(handle_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    ::close(std::exchange(handle_, -1));
  }

 private:
  std::string path_;
  int handle_ = -1;
};

class Change : public DocumentTest {
 protected:
  void SetUp() override { MakeRun(); }

  std::string comment() const {
    Vex2FileManager document;
    EXPECT_EQ(document.ReadFromFile(path_.c_str()), 0);
    Vex2GlobalComplex settings;
    EXPECT_EQ(document.GetGlobalComplexInfo(&settings), kSuccess);
    return {reinterpret_cast<const char*>(settings.commentData), settings.commentLength};
  }
  std::vector<std::string> filesBeside() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  const std::string pipe_ = folder_ / "wells.pipe";
};

}  // namespace

TEST_F(Change, IsRefusedWhenAnotherProgramSavedTheDocumentMeanwhile) {
  Pipe wells(pipe_);
  VexProcess command({"wells", path_, "--from", pipe_});
  ASSERT_TRUE(wells.WaitForReader());
  Vex2FileManager other;
  ASSERT_EQ(other.ReadFromFile(path_.c_str()), 0);
  Vex2GlobalComplex settings;
  settings.SetComment("theirs", 6);
  EXPECT_EQ(other.ReplaceGlobalComplexComp(&settings), kSuccess);
  ASSERT_EQ(other.SaveToFile(path_.c_str()), 0);
  const Bytes theirs = ReadBytes(path_);
  wells.Send(kWellsTable);
  const CommandResult result = command.Wait();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.errors, "vex: " + path_ +
                               ": another program has changed it meanwhile, and nothing was saved; "
                               "try again\n");
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(FirstDifference(ReadBytes(path_), theirs), "");
}

TEST_F(Change, IsRefusedWhenTheDocumentWasPatchedInPlace) {
  Pipe wells(pipe_);
  VexProcess command({"wells", path_, "--from", pipe_});
  ASSERT_TRUE(wells.WaitForReader());
  Vex2FileManager other;
  ASSERT_EQ(other.SetAcquisitionStatus(path_.c_str(), "ZERO"),
            0);  // keeps the size and the file number
  wells.Send(kWellsTable);
  EXPECT_EQ(command.Wait().exitCode, 1);
  EXPECT_EQ(Output({"status", path_}), "ZERO\n");
}

TEST_F(Change, WaitsForAnotherCommandAndKeepsItsWork) {
  Pipe wells(pipe_);
  VexProcess first({"wells", path_, "--from", pipe_});
  ASSERT_TRUE(wells.WaitForReader());
  VexProcess second({"set", path_, "comment=second"});
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_TRUE(second.IsRunning());
  wells.Send(kWellsTable);
  EXPECT_EQ(first.Wait().exitCode, 0);
  EXPECT_EQ(second.Wait().exitCode, 0);
  EXPECT_EQ(comment(), "second");
  EXPECT_THAT(Output({"wells", path_, "--csv"}), HasSubstr("A1,liver"));
  EXPECT_EQ(filesBeside().size(), 2U) << "the document and the pipe";
}

TEST_F(Change, ManyAtOnceAllArrive) {
  std::vector<std::unique_ptr<VexProcess>> commands;
  for (int i = 0; i < 8; ++i) {
    const std::string dye = "dye " + std::to_string(i);
    commands.push_back(
        std::make_unique<VexProcess>(VexProcess::Arguments{"dyes", path_, "--add", dye}));
  }
  for (const auto& command : commands) {
    const CommandResult result = command->Wait();
    EXPECT_EQ(result.exitCode, 0) << result.errors;
  }
  EXPECT_EQ(JsonOutput({"dyes", path_, "--json"})["dyes"].size(), 8U);
}

TEST_F(Change, IsRefusedUnderTheDocumentsOtherNameWhileARecorderHoldsIt) {
  const DocumentLock recorder(path_, DocumentLock::Holder::kRecorder);
  ExpectRefused({"set", path_, "comment=x"}, 3, "is being recorded already; wait until");
  const std::string link = folder_ / "link.vex";
  std::filesystem::create_symlink("run.vex", link);
  const CommandResult result = RunVex({"status", link, "ZERO"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.errors, HasSubstr(link + ": leads to "));
  EXPECT_EQ(Output({"status", path_}), "DONE\n");
}

TEST_F(Change, ARecorderWaitsForItsEnd) {
  auto command = std::make_unique<DocumentLock>(path_, DocumentLock::Holder::kCommand);
  VexProcess recorder({"simulate", path_, "--cycles", "1", "--force"});
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_TRUE(recorder.IsRunning());
  const Bytes before = ReadBytes(path_);
  command.reset();
  EXPECT_EQ(recorder.Wait().exitCode, 0);
  EXPECT_NE(FirstDifference(ReadBytes(path_), before), "");
}

TEST_F(Change, TheLockOfAKilledRecorderIsNoObstacle) {
  WriteBytes(folder_ / ".run.vex.recording", ToBytes("recorder"));
  Output({"set", path_, "comment=x"});
  EXPECT_EQ(comment(), "x");
  EXPECT_EQ(filesBeside().size(), 1U);
}

}  // namespace vex2::test
