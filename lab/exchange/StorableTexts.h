#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

#include "lab/exchange/Losses.h"

namespace vex2::lab {

/// Makes texts of foreign files such as documents can hold: of characters of Latin-1. Greek letters
/// are spelled out, all others become "?".
std::string StorableText(std::string_view text);

/// Names of one kind, such as samples: names that differ in the file differ in the document, too.
class StorableNames {
 public:
  /// `what` is the kind of name in the report, as "names of samples". `losses` must outlive it.
  StorableNames(std::string what, Losses& losses) : what_(std::move(what)), losses_(losses) {}

  /// The name as the document is to hold it.
  const std::string& Take(const std::string& name);

 private:
  std::string what_;
  Losses& losses_;
  std::map<std::string, std::string> stored_;
  std::set<std::string> taken_;
};

}  // namespace vex2::lab
