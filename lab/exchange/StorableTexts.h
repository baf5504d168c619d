#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "lab/exchange/Losses.h"

namespace vex2::lab {

/// Converts a text of another program's file to the characters of Latin-1, which documents can
/// hold. Greek letters are spelled out; all others become "?".
std::string StorableText(std::string_view text);

/// Converts names of one kind, such as those of samples. Names that differ in the file also differ
/// in the document.
class StorableNames {
 public:
  /// `what` is the kind of names in the report, such as "names of samples". `losses` must outlive
  /// the object.
  StorableNames(std::string what, Losses& losses) : what_(std::move(what)), losses_(losses) {}

  /// The name to store in the document.
  const std::string& Take(const std::string& name);

 private:
  std::string what_;
  Losses& losses_;
  std::map<std::string, std::string> stored_;
  std::set<std::string> taken_;
};

}  // namespace vex2::lab
