#include "lab/check/RepairFile.h"

#include <algorithm>
#include <vector>

#include "lab/SystemError.h"
#include "lab/model/BigEndian.h"
#include "lab/model/FileContent.h"
#include "lab/model/RawFile.h"
#include "vex2/framework/Backup.h"
#include "vex2/framework/CFile.h"
#include "vex2/framework/CFileException.h"

namespace vex2::lab {

namespace {

constexpr std::size_t kChunk = CFile::kBufferSize;
constexpr std::uint64_t kWordSize = 4;

// Throws an error if another program has changed the document since the backup. The document is
// locked here, so no user of the library can change it any more. An empty document is accepted: if
// the system cannot rename a file over the document, NewFile has emptied it.
void requireUnchanged(const std::string& path, const std::string& backup) {
  const auto now = ContentOf(path);
  if (now && (now->size == 0 || now == ContentOf(backup))) return;
  throw Error(ErrorCode::kDocument, path,
              "another program has changed it meanwhile, and it was left alone; try "
              "again");
}

}  // namespace

std::string BackUp(const std::string& path) {
  try {
    return BackUpFile(path);
  } catch (const CFileException& failure) {
    throw SystemError(failure.GetPath(), failure.GetError());
  }
}

void ApplyRepair(const RepairPlan& plan, const std::string& backup, const std::string& path) {
  CFile source;
  OpenToRead(source, backup);
  NewFile target(path);
  requireUnchanged(path, backup);
  const std::uint64_t size = plan.newSize.value_or(plan.size);
  std::vector<std::uint8_t> bytes(kChunk);
  for (std::uint64_t done = 0; done < size;) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kChunk, size - done));
    if (source.Read(bytes.data(), count) != count) {
      throw Error(ErrorCode::kSystem, backup, "it changed while it was read", done);
    }
    target.Write(bytes.data(), count);
    done += count;
  }
  for (const RepairPlan::Patch& patch : plan.patches) {
    if (patch.offset + kWordSize > size) continue;
    const auto word = LongBytes(patch.after);
    target.Seek(static_cast<std::int64_t>(patch.offset), CFile::begin);
    target.Write(word.data(), word.size());
  }
  target.PutInPlace();
}

}  // namespace vex2::lab
