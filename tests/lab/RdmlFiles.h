#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "lab/exchange/Import.h"
#include "lab/exchange/RdmlExport.h"
#include "lab/exchange/ZipArchive.h"
#include "lab/model/RunReader.h"
#include "tests/lab/ErrorOf.h"
#include "tests/lab/RunDocuments.h"
#include "tests/support/Files.h"
#include "tests/support/SampleData.h"

/// RDML files for tests: made by hand as other programs write them, and checked by the schema.
namespace vex2::test {

/// An archive of these members, by name and content.
inline void WriteZip(const std::string& path,
                     const std::vector<std::pair<std::string, std::string>>& members) {
  lab::ZipWriter zip;
  for (const auto& [name, content] : members) {
    zip.Add(name, [content = content, isDone = false](std::string& piece) mutable {
      piece = content;
      return !std::exchange(isDone, true);
    });
  }
  std::ofstream out(path, std::ios::binary);
  zip.Write(out, path);
}

/// The member of the archive.
inline std::string ReadMember(const std::string& path, const std::string& name) {
  const lab::ZipReader zip(path, path);
  std::string text;
  zip.Read(zip.Find(name).value(), [&](std::string_view piece) {
    text += piece;
    return true;
  });
  return text;
}

inline void WriteText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

inline std::string TextOf(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

/// Whether there is a program to check XML by a schema.
inline bool HasSchemaCheck() {
  return std::system("xmllint --version >/dev/null 2>&1") == 0;  // NOLINT: a fixed command
}

/// What the schema of this version has against the XML in the file; empty when it is valid.
inline std::string SchemaFaults(const std::string& xml, const std::string& version = "1_3") {
  const std::string schema = SourcePath("tests/data/rdml/RDML_v" + version + "_REC.xsd").string();
  const std::string command =
      "xmllint --noout --schema '" + schema + "' '" + xml + "' >'" + xml + ".faults' 2>&1";
  return std::system(command.c_str()) == 0 ? "" : TextOf(xml + ".faults");  // NOLINT: own paths
}

/// Exports the document and answers the archive's path.
inline std::string ExportTo(const std::string& document, const std::string& path,
                            const lab::RdmlOptions& options = {}, lab::Losses* losses = nullptr) {
  std::ofstream out(path, std::ios::binary);
  const lab::Losses found = lab::ExportRdml(document, out, options);
  if (losses != nullptr) *losses = found;
  return path;
}

/// The count of a loss; 0 where there is none.
inline std::uint64_t CountOf(const lab::Losses& losses, std::string_view what) {
  for (const lab::Loss& loss : losses.List()) {
    if (loss.what == what) return loss.count;
  }
  return 0;
}

inline std::string TextOf(const lab::Losses& losses) {
  std::string text;
  for (const lab::Loss& loss : losses.List()) text += lab::TextOf(loss) + "\n";
  return text;
}

}  // namespace vex2::test
