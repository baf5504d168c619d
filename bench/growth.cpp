// growth [FILE.csv]: measures how the time of each operation grows with the size of its input, over
// six sizes. The exponent is the slope of log time over log size. Fails if an exponent is not as
// expected: 1 if all of the input must be read, 0 if the result is found in one place.

#include <fmt/core.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Documents.h"
#include "lab/model/RunReader.h"
#include "vex2/manager/Vex2FileManager.h"

namespace {

constexpr int kRounds = 9;
constexpr int kWells = 384;
constexpr double kLinearTolerance = 0.08;
constexpr double kConstantTolerance = 0.05;
using Sizes = std::array<int, 6>;

struct Question {
  std::string name;
  std::string unit;  ///< what the sizes count
  double exponent;   ///< the expected one
  Sizes sizes;
  std::function<std::string(int size)> make;  ///< returns the path
  std::function<void(const std::string& path, int size)> ask;
};

struct Answer {
  Question question;
  std::array<double, 6> seconds{};
  double exponent = 0;
};

void require(bool isFine, const char* what) {
  if (!isFine) throw std::runtime_error(what);
}

double leastOf(const std::vector<double>& values) {
  return *std::min_element(values.begin(), values.end());
}

double slope(const Sizes& sizes, const std::array<double, 6>& seconds) {
  double sumX = 0, sumY = 0, sumXX = 0, sumXY = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const double x = std::log(sizes[i]);
    const double y = std::log(seconds[i]);
    sumX += x;
    sumY += y;
    sumXX += x * x;
    sumXY += x * y;
  }
  const auto count = static_cast<double>(sizes.size());
  return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

Answer measured(const Question& question) {
  std::array<std::vector<double>, 6> times;
  std::array<std::string, 6> paths;
  for (std::size_t i = 0; i < paths.size(); ++i) paths[i] = question.make(question.sizes[i]);
  for (int round = 0; round < kRounds; ++round) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
      // Return the free memory, so that every read gets its memory from the system, as in a new
      // program.
      ::malloc_trim(0);
      const auto start = std::chrono::steady_clock::now();
      question.ask(paths[i], question.sizes[i]);
      times[i].push_back(
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
  }
  Answer answer{.question = question};
  // Noise only makes times longer.
  std::transform(times.begin(), times.end(), answer.seconds.begin(), leastOf);
  answer.exponent = slope(question.sizes, answer.seconds);
  return answer;
}

void readWhole(const std::string& path) {
  Vex2FileManager manager;
  require(manager.ReadFromFile(path.c_str()) == 0, "read");
}

std::string runIn(const std::string& folder, int frames) {
  std::string path = fmt::format("{}/run-{}.vex", folder, frames);
  if (!std::filesystem::exists(path)) vex2::bench::MakeRun(path, kWells, frames);
  return path;
}

std::vector<Question> questionsIn(const std::string& folder) {
  constexpr Sizes kFrames = {125, 250, 500, 1000, 2000, 4000};
  const auto run = [folder](int frames) { return runIn(folder, frames); };
  const auto overview = [](const std::string& path, int /*size*/) {
    require(!vex2::lab::RunReader(path).Wells().empty(), "wells");
  };
  return {
      {"read a document", "frames", 1, kFrames, run,
       [](const std::string& path, int) { readWhole(path); }},
      {"read one frame", "frames", 0, kFrames, run,
       [](const std::string& path, int size) {
         Vex2FileManager manager;
         Vex2FrameData frame;
         require(manager.ReadDataFrame(path.c_str(), size - 1, &frame, DataRAWa) == 0, "frame");
       }},
      {"read plate and settings", "frames", 0, kFrames, run, overview},
      {"read a plate setup",
       "plate setups",
       1,
       {2, 4, 8, 16, 32, 64},
       [folder](int setups) {
         std::string path = fmt::format("{}/setup-{}.vex", folder, setups);
         vex2::bench::MakeSetups(path, setups);
         return path;
       },
       [](const std::string& path, int) { readWhole(path); }},
      {"read a study",
       "plates",
       1,
       {2, 4, 8, 16, 32, 64},
       [folder](int plates) {
         std::string path = fmt::format("{}/study-{}.vex", folder, plates);
         vex2::bench::MakeStudy(path, plates, 40);
         return path;
       },
       [](const std::string& path, int) { readWhole(path); }},
      {"read plate and settings of all documents",
       "documents",
       1,
       {10, 20, 40, 80, 160, 320},
       [folder](int documents) {
         std::string path = fmt::format("{}/folder-{}", folder, documents);
         std::filesystem::create_directory(path);
         const std::string one = runIn(folder, 45);
         for (int i = 0; i < documents; ++i) {
           std::filesystem::copy_file(one, fmt::format("{}/{}.vex", path, i));
         }
         return path;
       },
       [overview](const std::string& path, int size) {
         for (const auto& entry : std::filesystem::directory_iterator(path)) {
           overview(entry.path().string(), size);
         }
       }},
  };
}

int tell(const std::vector<Answer>& answers, const char* table) {
  std::ofstream csv;
  if (table != nullptr) csv.open(table);
  csv << "question,unit,size,seconds,exponent\n";
  int failures = 0;
  fmt::print("{:42} {:>10} {:>10} {:>9}\n", "question", "smallest", "largest", "exponent");
  for (const Answer& answer : answers) {
    const Question& question = answer.question;
    for (std::size_t i = 0; i < question.sizes.size(); ++i) {
      csv << fmt::format("{},{},{},{:.9f},{:.3f}\n", question.name, question.unit,
                         question.sizes[i], answer.seconds[i], answer.exponent);
    }
    const double tolerance = question.exponent > 0 ? kLinearTolerance : kConstantTolerance;
    const bool isFine = std::abs(answer.exponent - question.exponent) <= tolerance;
    if (!isFine) ++failures;
    fmt::print("{:42} {:7.0f} µs {:7.0f} µs {:9.3f}  {}\n", question.name,
               answer.seconds.front() * 1e6, answer.seconds.back() * 1e6, answer.exponent,
               isFine ? "ok" : fmt::format("MUST BE {} WITHIN {}", question.exponent, tolerance));
  }
  return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  std::string folder = (std::filesystem::current_path() / "growth-XXXXXX").string();
  int status = 1;
  try {
    require(::mkdtemp(folder.data()) != nullptr, "mkdtemp");
    std::vector<Answer> answers;
    for (const Question& question : questionsIn(folder)) answers.push_back(measured(question));
    status = tell(answers, count > 1 ? arguments[1] : nullptr);
  } catch (const std::exception& error) {
    fmt::print(stderr, "vex2_growth: {} failed\n", error.what());
  }
  std::filesystem::remove_all(folder);
  return status;
}
