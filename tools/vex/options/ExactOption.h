#pragma once

#include <string>
#include <string_view>

#include "lab/model/RoundedNumbers.h"

namespace vex2::tool {

class Options;

/// The option --exact. Documents store some numbers in 32 bits: without the option, commands report
/// what was rounded; with it, they refuse to round.
class ExactOption {
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

/// Returns, for example, "2 readings rounded to 0.001, largest change 0.0004". `to` is the "0.001"
/// in this text.
std::string RoundedText(const lab::RoundedNumbers& rounded, std::string_view one,
                        std::string_view many, std::string_view to);

}  // namespace vex2::tool
