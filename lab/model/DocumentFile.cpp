#include "lab/model/DocumentFile.h"

#include <fmt/core.h>

#include <memory>

#include "lab/Error.h"
#include "lab/model/RawFile.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/RecordKinds.h"

namespace vex2::lab {

namespace {

constexpr std::string_view kRawData = TagOf(Kind::kRawData);

// Whether the component is the name or the date that a study adds to a plate.
bool isPlateText(const CComponent& component) {
  return component.GetTag() == TagOf(Kind::kPlateName) ||
         component.GetTag() == TagOf(Kind::kPlateDate);
}

}  // namespace

DocumentFile::DocumentFile(const Vex2FileManager& plate) : Vex2FileManager(plate) {
  int last = GetAllComponentCount() - 1;
  while (last >= 0 && isPlateText(*GetComponent(last))) --last;
  if (last >= 0 && GetComponent(last)->GetTag() == kRawData) moveToEnd(GetComponent(last));
}

void DocumentFile::OpenDocument(const std::string& path) {
  RequireReadable(path);
  if (SafeOpen(path.c_str(), 0, 0) == 0) throw FileFailure(path, GetLastFileError());
  if (const auto why = WhyNoDocument(*this)) {
    throw Error(ErrorCode::kNoDocument, path,
                fmt::format("this is not a plate document: {}", why->text), 0, why->remedy);
  }
}

void DocumentFile::ExpectUnchanged(const std::string& path) {
  expectedPath_ = path;
  expected_ = FileState::Note(path);
}

bool DocumentFile::isUnchanged() const {
  return expectedPath_.empty() || expected_.IsStillAt(expectedPath_);
}

void DocumentFile::RequireUnchanged() const {
  if (isUnchanged()) return;
  throw Error(ErrorCode::kDocument, expectedPath_,
              "another program has changed it meanwhile, and nothing was saved; try "
              "again");
}

int DocumentFile::WriteComponentFile(CFile* file) {
  // SaveDocument has compared the file before this call. If the file is empty now, the library
  // itself has emptied it, because the system cannot rename another file over it.
  struct stat now {};
  const bool isEmptied =
      !expectedPath_.empty() && ::stat(expectedPath_.c_str(), &now) == 0 && now.st_size == 0;
  if (!isEmptied && !isUnchanged()) return kWriteFailed;
  return Vex2FileManager::WriteComponentFile(file);
}

int HeadsFile::WriteComponentFile(CFile* /*file*/) {
  return kWriteFailed;
}

int DocumentFile::ReadFrameAt(int index, Vex2FrameData& frame, std::uint64_t blockOffset) {
  return readAFrame(index, &frame, static_cast<long>(blockOffset));
}

bool DocumentFile::hasRawDataLast() const {
  const CComponent* last = GetComponent(GetAllComponentCount() - 1);
  return last != nullptr && last->GetTag() == kRawData;
}

void DocumentFile::moveToEnd(CComponent* component) {
  std::unique_ptr<CComponent> copy;
  if (component == nullptr || CloneComponent(*component, copy) != 1) return;
  RemoveComponent(component);
  appendComponent(std::move(copy));
}

}  // namespace vex2::lab
