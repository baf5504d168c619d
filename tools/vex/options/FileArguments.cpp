#include "tools/vex/options/FileArguments.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>

#include "lab/Text.h"
#include "tools/vex/Terminal.h"
#include "tools/vex/options/Options.h"
#include "tools/vex/screen/ProgressLine.h"

namespace vex2::tool {

namespace {

constexpr std::uint32_t kMostJobs = 64;
constexpr std::chrono::seconds kPatience{1};

void addPaths(std::istream& list, std::vector<std::string>& files) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // some programs on Windows write it
  bool isFirst = true;
  for (std::string line; std::getline(list, line); isFirst = false) {
    if (isFirst && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty()) files.push_back(line);
  }
}

void addList(const std::string& name, std::vector<std::string>& files) {
  const std::size_t before = files.size();
  if (name == "-") {
    addPaths(std::cin, files);
  } else {
    const std::string path = name.substr(1);
    errno = 0;
    std::ifstream list(path);
    if (!list || list.peek() == std::ifstream::traits_type::eof()) {
      if (errno != 0) throw SystemError(path, errno);
    }
    list.clear();
    addPaths(list, files);
  }
  if (files.size() == before) {
    throw Error(ErrorCode::kUsage, name, "it lists no file; give a path on each line");
  }
}

/// What `work` made of a file.
struct Outcome {
  bool isReady = false;
  FileArguments::Shown show;
  std::exception_ptr error;
};

Outcome outcomeOf(const std::function<FileArguments::Shown(const std::string&)>& work,
                  const std::string& file) {
  Outcome outcome;
  try {
    outcome.show = work(file);
  } catch (...) {
    outcome.error = std::current_exception();
  }
  outcome.isReady = true;
  return outcome;
}

ExitCode show(Outcome outcome) {
  try {
    if (outcome.error) std::rethrow_exception(outcome.error);
    return outcome.show();
  } catch (const Error& error) {
    PrintError(error);
    return ExitCodeOf(error);
  }
}

/// Works on several files at once. Results are returned in the order of the files. The threads wait
/// while too many results are unread, so that only a few results are in memory.
class SideBySide {
 public:
  SideBySide(const std::vector<std::string>& files,
             const std::function<FileArguments::Shown(const std::string&)>& work, std::size_t jobs)
      : files_(files), work_(work), jobs_(jobs), outcomes_(files.size()) {
    threads_.reserve(jobs);
    try {
      for (std::size_t i = 0; i < jobs; ++i) threads_.emplace_back([this] { run(); });
    } catch (const std::system_error&) {
      // The system cannot start that many threads; the threads that were started do the work.
    }
  }

  ~SideBySide() {
    {
      const std::lock_guard lock(mutex_);
      next_ = files_.size();
    }
    changed_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }

  SideBySide(const SideBySide&) = delete;
  SideBySide& operator=(const SideBySide&) = delete;

  /// Waits for the outcome of the file at `index`. Call it in the order of the files.
  Outcome Wait(std::size_t index) {
    if (threads_.empty()) return outcomeOf(work_, files_[index]);
    std::unique_lock lock(mutex_);
    shown_ = index;
    changed_.notify_all();
    changed_.wait(lock, [&] { return outcomes_[index].isReady; });
    return std::move(outcomes_[index]);
  }

 private:
  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      changed_.wait(lock, [&] { return next_ >= files_.size() || next_ < shown_ + 2 * jobs_; });
      if (next_ >= files_.size()) return;
      const std::size_t index = next_++;
      lock.unlock();
      Outcome outcome = outcomeOf(work_, files_[index]);
      lock.lock();
      outcomes_[index] = std::move(outcome);
      changed_.notify_all();
    }
  }

  const std::vector<std::string>& files_;
  const std::function<FileArguments::Shown(const std::string&)>& work_;
  std::size_t jobs_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Outcome> outcomes_;
  std::size_t next_ = 0;
  std::size_t shown_ = 0;
  std::vector<std::thread> threads_;
};

}  // namespace

void FileArguments::AddTo(Options& options) {
  options.Add("FILE", arguments_, "The documents; @LIST or - for a list of paths")
      .Require()
      .Show("");
  options.Add("-j,--jobs", jobs_, "Work on N documents at once; 1 by default")
      .AllowRange(1U, kMostJobs)
      .Show("N");
}

std::vector<std::string> FileArguments::List() const {
  std::vector<std::string> files;
  for (const std::string& argument : arguments_) {
    if (argument == "-" || argument.starts_with('@')) {
      addList(argument, files);
    } else {
      files.push_back(argument);
    }
  }
  return files;
}

ExitCode FileArguments::ForEach(const std::vector<std::string>& files,
                                const std::function<Shown(const std::string& file)>& work) const {
  const std::size_t jobs = std::min<std::size_t>(jobs_.value_or(1), files.size());
  std::optional<SideBySide> workers;
  if (jobs > 1) workers.emplace(files, work, jobs);
  const auto begun = std::chrono::steady_clock::now();
  ExitCode worst = ExitCode::kDone;
  for (std::size_t i = 0; i < files.size(); ++i) {
    std::optional<ProgressLine> progress;  // destroyed before anything is printed
    const bool isLong = std::chrono::steady_clock::now() - begun > kPatience;
    if (i > 0 && isLong && Terminal::Error().CanRewriteLines()) {
      progress.emplace(std::chrono::milliseconds(0), ProgressLine::AtEnd::kErase);
      progress->Show(std::to_string(i) + " of " + Counted(files.size(), "document"));
    }
    Outcome outcome = workers ? workers->Wait(i) : outcomeOf(work, files[i]);
    progress.reset();
    worst = std::max(worst, show(std::move(outcome)));
  }
  return worst;
}

}  // namespace vex2::tool
