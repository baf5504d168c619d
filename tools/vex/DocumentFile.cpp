#include "tools/vex/DocumentFile.h"

#include <memory>

#include "tools/vex/Errors.h"
#include "vex2/container/TagFactory.h"

namespace vex2::tool {

namespace {

constexpr std::string_view kRawData = "RAWa";

}  // namespace

void DocumentFile::OpenDocument(const std::string& path) {
  CFileException reason;
  if (!Open(path.c_str(), modeRead | typeBinary | shareExclusive, &reason)) {
    throw SystemError(path, reason.GetError());
  }
  SetFilePath(path.c_str());
  if (!IsVex2Format()) {
    throw Error(ExitCode::kDocument, path, "this is no plate document: it does not begin with Vex2",
                0);
  }
}

int DocumentFile::ReadFrameAt(int index, Vex2FrameData& frame, std::uint64_t blockOffset) {
  return readAFrame(index, &frame, static_cast<long>(blockOffset));
}

bool DocumentFile::hasRawDataLast() const {
  const CComponent* last = GetComponent(GetAllComponentCount() - 1);
  return last != nullptr && last->GetTag() == kRawData;
}

void DocumentFile::moveRawDataToEnd() {
  CComponent* block = includesComponent(kRawData);
  std::unique_ptr<CComponent> copy;
  if (block == nullptr || CloneComponent(*block, copy) != 1) return;
  RemoveComponent(block);
  appendComponent(std::move(copy));
}

}  // namespace vex2::tool
