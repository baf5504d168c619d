#include "lab/model/OutputFiles.h"

#include <fmt/core.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <utility>

#include "lab/SystemError.h"
#include "lab/model/Document.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

namespace fs = std::filesystem;

constexpr const char* kDocumentName = ".vex";

bool isNamedAsDocument(const fs::path& path) {
  return ::strcasecmp(path.extension().c_str(), kDocumentName) == 0;
}

// A file named .vex counts as a document even if its first bytes are damaged: it may be all that is
// left of a run.
bool isPlateDocument(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, kMagic.size()> begin{};
  if (!file.read(begin.data(), begin.size())) return false;
  return std::string_view(begin.data(), begin.size()) == kMagic || isNamedAsDocument(path);
}

bool holdsSomethingElse(const fs::path& path) {
  return !isNamedAsDocument(path) && fs::file_size(path) > 0 && !isPlateDocument(path);
}

bool holds(const std::string& path, const std::string& content) {
  std::ifstream file(path, std::ios::binary);
  return file && content == std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace

OutputFiles& OutputFiles::Read(const std::string& path) {
  File file{.path = path, .resolved = {}, .identity = {}};
  struct stat info {};
  if (::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode))
    file.identity = {info.st_dev, info.st_ino};
  inputs_.push_back(std::move(file));
  return *this;
}

OutputFiles& OutputFiles::Write(const std::string& path, Kind kind) {
  struct stat info {};
  const bool isThere = ::stat(path.c_str(), &info) == 0;
  if (isThere && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode)) return *this;
  File file{.path = path, .resolved = ResolveDocument(path), .identity = {}, .kind = kind};
  if (isThere) file.identity = {info.st_dev, info.st_ino};
  outputs_.push_back(std::move(file));
  return *this;
}

bool OutputFiles::IsThere(const std::string& path, const std::string& content) {
  for (File& file : outputs_) {
    if (file.path == path) return file.isSame = holds(path, content);
  }
  return false;
}

bool OutputFiles::isSameFile(const File& one, const File& other) {
  if (one.identity && other.identity) return *one.identity == *other.identity;
  return !one.resolved.empty() && one.resolved == other.resolved;
}

void OutputFiles::Claim() {
  checkDistinct();
  std::vector<std::unique_ptr<DocumentLock>> locks;
  for (const File& output : outputs_) {
    if (mayReplace_ && output.kind != Kind::kTable) requireForDocuments(output);
    if (output.kind == Kind::kRecording) continue;
    locks.push_back(std::make_unique<DocumentLock>(output.path, DocumentLock::Holder::kCommand));
    checkExisting(output);
  }
  locks_ = std::move(locks);
}

void OutputFiles::checkDistinct() const {
  for (auto output = outputs_.begin(); output != outputs_.end(); ++output) {
    for (const File& input : inputs_) {
      if (!isSameFile(*output, input)) continue;
      throw Error(ErrorCode::kUsage, output->path,
                  "is also an input, so it is never written to; give another name");
    }
    for (auto other = outputs_.begin(); other != output; ++other) {
      if (!isSameFile(*output, *other)) continue;
      throw Error(ErrorCode::kUsage, output->path,
                  "is given for two outputs; give each a different name");
    }
  }
}

// Looks at the file again, now that it is locked.
void OutputFiles::checkExisting(const File& output) const {
  struct stat info {};
  if (output.isSame || ::lstat(output.resolved.c_str(), &info) != 0) return;
  if (output.kind == Kind::kTable && isPlateDocument(output.path)) {
    throw Error(ErrorCode::kUsage, output.path,
                "is a plate document, which nothing else ever replaces; give another name");
  }
  if (!mayReplace_)
    throw Error(ErrorCode::kExists, output.path, fmt::format("already exists; {}", remedy_));
  if (info.st_nlink > 1) {
    throw Error(ErrorCode::kUsage, output.path,
                "has other names as well (hard links), so it is not replaced; give another name");
  }
  if (output.kind == Kind::kDocument) RequireNoRunAt(output.path);
}

void OutputFiles::requireForDocuments(const File& output) {
  if (!output.identity || !holdsSomethingElse(output.resolved)) return;
  if (::access(output.resolved.c_str(), R_OK) != 0) throw SystemError(output.path, errno);
  throw Error(
      ErrorCode::kUsage, output.path,
      "is not a plate document, so it is never replaced by one; give another name, or remove "
      "it first");
}

}  // namespace vex2::lab
