#include "tests/reliability/DamagedDocuments.h"

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "tests/reliability/HeapCount.h"
#include "tests/support/SampleData.h"
#include "vex2/manager/Vex2FileManagerComponent.h"

namespace vex2::test {
namespace {

constexpr std::size_t kMegabyte = std::size_t{1} << 20U;

// The processor time of this thread, so that tests that run at the same time do not count.
double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

bool isReadStatus(int status) {
  return status == 0 || status == -100 || status == -300;
}

}  // namespace

std::vector<std::filesystem::path> SampleDocuments() {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(SourcePath("tests/data"))) {
    if (entry.path().extension() == ".vex") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const auto& path : SampleFiles("golden", ".vex")) {
    if (path.stem().extension() != ".roundtrip") paths.push_back(path);
  }
  return paths;
}

std::string SampleName(const testing::TestParamInfo<std::filesystem::path>& info) {
  std::string name = info.param.stem();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

void DamagedDocument::expectToStand(const Bytes& bytes) {
  const double start = processorSeconds();
  files_.Clear();
  files_.SetLargestFile(2 * bytes.size() + kMegabyte);
  files_.Put(kPath, bytes);
  read(bytes.size());
  askForFrames();
  readAsPlate();
  save(bytes.size());
  EXPECT_EQ(files_.OpenCount(), 0U) << "nothing is left open";
  EXPECT_LT(processorSeconds() - start, 1.0 + static_cast<double>(bytes.size() / kMegabyte));
}

bool DamagedDocument::countState() {
  constexpr std::uint64_t kEnough = 10;
  ++states_;
  if (failures_.Any()) ++bad_;
  return bad_ < kEnough;
}

void DamagedDocument::read(std::size_t size) {
  document_.Reset();
  const HeapPeak heap;
  EXPECT_EQ(document_.SafeOpen(kPath, 0, 0), 1);
  status_ = document_.ReadComponentFile(nullptr);
  document_.Close();
  EXPECT_TRUE(isReadStatus(status_)) << status_;
  EXPECT_LT(heap.Bytes(), 4 * size + kMegabyte);
}

void DamagedDocument::askForFrames() {
  for (const auto type : {DataRAWa, DataREPn}) {
    int count = 0;
    Vex2FrameData frame;
    EXPECT_TRUE(isReadStatus(document_.GetDataFrameCount(kPath, count, type)));
    if (count == 0) continue;
    EXPECT_TRUE(isReadStatus(document_.ReadDataFrame(kPath, 0, &frame, type)));
    EXPECT_TRUE(isReadStatus(document_.ReadDataFrame(kPath, count - 1, &frame, type)));
  }
}

void DamagedDocument::readAsPlate() {
  Vex2FileManagerComponent plate;
  CFile file;
  ASSERT_TRUE(file.Open(kPath, CFile::modeRead));
  EXPECT_TRUE(isReadStatus(plate.ReadComponentFile(&file)));
}

void DamagedDocument::save(std::size_t size) {
  Vex2FileManager copy(document_);
  const int status = copy.SaveToFile("/saved.vex");
  // An unknown record can declare so many bytes that its zeros do not fit on the disk.
  EXPECT_TRUE(status == 0 || (status == -200 && files_.HasRefused())) << status;
  EXPECT_LE(files_.Content("/saved.vex").size(), 2 * size + kMegabyte);
}

}  // namespace vex2::test
