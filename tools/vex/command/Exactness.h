#pragma once

#include <string>
#include <string_view>

#include "lab/model/RoundedNumbers.h"

namespace vex2::tool {

class Options;

/// What commands do about numbers that documents keep in 32 bits: they tell what was rounded, or
/// with --exact refuse to round.
class Exactness {
 public:
  void AddOption(Options& options);
  bool IsExact() const { return isExact_; }

  /// Tells on standard error what was rounded of the numbers from `source`; nothing when nothing
  /// was. `one` and `many` are what the numbers are called.
  static void Tell(const std::string& source, const lab::RoundedNumbers& rounded,
                   std::string_view one, std::string_view many);

 private:
  bool isExact_ = false;
};

/// "2 readings rounded to 0.001, largest change 0.0004". `to` is what they were rounded to.
std::string RoundedText(const lab::RoundedNumbers& rounded, std::string_view one,
                        std::string_view many, std::string_view to);

}  // namespace vex2::tool
