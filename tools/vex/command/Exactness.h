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

  /// Reports on standard error how many numbers from `source` were rounded; prints nothing if none
  /// was. `one` and `many` name the rounded numbers in the message, as in "quantity" and
  /// "quantities".
  static void Tell(const std::string& source, const lab::RoundedNumbers& rounded,
                   std::string_view one, std::string_view many);

 private:
  bool isExact_ = false;
};

/// "2 readings rounded to 0.001, largest change 0.0004". `to` is what they were rounded to.
std::string RoundedText(const lab::RoundedNumbers& rounded, std::string_view one,
                        std::string_view many, std::string_view to);

}  // namespace vex2::tool
