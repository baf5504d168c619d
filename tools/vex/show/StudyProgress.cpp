#include "tools/vex/show/StudyProgress.h"

#include "tools/vex/Errors.h"

namespace vex2::tool {

namespace {

constexpr std::chrono::milliseconds kPatience{200};

}  // namespace

StudyProgress::StudyProgress(std::size_t total)
    : total_(total), line_(kPatience, ProgressLine::AtEnd::kErase) {}

void StudyProgress::Show(const std::string& file) {
  ++done_;
  line_.Show("plate " + std::to_string(done_) + " of " + std::to_string(total_) + ": " +
             Printable(file));
}

}  // namespace vex2::tool
