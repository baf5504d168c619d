// Opening, reading and saving whole documents.

#include <algorithm>
#include <array>

#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CWaitCursor.h"
#include "vex2/manager/FileChooser.h"
#include "vex2/manager/ManagerState.h"
#include "vex2/manager/TracedTime.h"

using vex2::Kind;
using vex2::kSuccess;
using vex2::Operation;
using vex2::TagOf;

namespace {

constexpr char kFilter[] = "Vex Files\0*.vex\0All Files\0*.*\0";
constexpr const char* kExtension = "vex";

// A study saves its own settings and its plates. Other components would belong to a plate.
constexpr std::array<std::string_view, 8> kStudyTags = {
    TagOf(Kind::kDetectorList), TagOf(Kind::kGlobal),       TagOf(Kind::kCalibrator),
    TagOf(Kind::kEndoControl),  TagOf(Kind::kAnalysisType), TagOf(Kind::kConfidence),
    TagOf(Kind::kPlates),       TagOf(Kind::kProgram)};

// Asks the user for a path if `path` is null or `dialog` is true. Returns false if the user
// cancelled.
bool choosePath(const char*& path, bool dialog, const char* title, CString& chosen) {
  if (path != nullptr && !dialog) return true;
  CString folder;
  if (!ChooseDocumentFile(nullptr, chosen, folder, kFilter, nullptr, kExtension, nullptr, title,
                          0)) {
    return false;
  }
  path = chosen.GetString();
  return true;
}

}  // namespace

int Vex2FileManager::guarded(int failure, vex2::FunctionRef<int()> operation) {
  return vex2::StatusOf(failure, operation);
}

int Vex2FileManager::attempt(int failure, vex2::FunctionRef<int()> operation) {
  return state_->store.Attempt(failure, operation);
}

int Vex2FileManager::guardedFile(int failure, vex2::FunctionRef<int()> operation) {
  return state_->store.AttemptAndClose(failure, operation);
}

int Vex2FileManager::SafeOpen(const char* path, int write, int append) {
  const Operation operation(state_->store);
  constexpr unsigned kCommon = typeBinary | shareExclusive;
  if (write == 0) return state_->store.Open(path, modeRead | kCommon) ? 1 : 0;
  if (append == 0) {
    if (state_->BackUpPartlyRead(path) != kSuccess) {
      static_cast<void>(guarded(0, [&] {
        state_->store.SetPath(CString(path));
        return 0;
      }));
      return 0;
    }
    return state_->store.Open(path, modeWrite | modeCreate | kCommon) ? 1 : 0;
  }
  if (!state_->store.Open(path, modeWrite | modeCreate | modeNoTruncate | kCommon)) return 0;
  SeekToEnd();
  return 1;
}

int Vex2FileManager::changeFile(const char* path, vex2::FunctionRef<int()> look,
                                vex2::FunctionRef<int()> change) {
  const Operation operation(state_->store);
  // Open the file once for looking and writing: between two opens another program could replace it.
  const bool isWritable = state_->store.Open(path, modeReadWrite | typeBinary | shareExclusive);
  if (!isWritable && SafeOpen(path, 0, 0) == 0) return vex2::kReadFailed;
  return guardedFile(vex2::kWriteFailed, [&] {
    if (const int status = attempt(vex2::kReadFailed, look); status != kSuccess) return status;
    if (!isWritable || state_->store.RefusesChanges()) {
      return static_cast<int>(vex2::kWriteFailed);
    }
    return change();
  });
}

int Vex2FileManager::appendRecord(const char* path, CComponent& component) {
  const Operation operation(state_->store);
  if (SafeOpen(path, 1, 1) == 0) return vex2::kWriteFailed;
  return appendToOpenFile([&] { return component.Write(this); });
}

int Vex2FileManager::appendToOpenFile(vex2::FunctionRef<int()> write) {
  const Operation operation(state_->store);
  if (state_->store.RefusesChanges()) return vex2::kWriteFailed;
  const int status = state_->store.WriteAtEnd(write);
  return guardedFile(vex2::kWriteFailed, [status] { return status; });
}

int Vex2FileManager::saveWhole(const char* path, vex2::FunctionRef<int()> write) {
  vex2::DocumentStore& store = state_->store;
  const Operation operation(store);
  if (path == nullptr) {
    store.Refuse(vex2::FileErrorReason::kNoPath);
    return vex2::kWriteFailed;
  }
  const int status = attempt(vex2::kWriteFailed, [&] {
    const CString kept(path);
    store.SetPath(kept);
    if (state_->BackUpPartlyRead(kept.GetString()) != kSuccess ||
        !store.OpenReplacement(kept.GetString())) {
      return static_cast<int>(vex2::kWriteFailed);
    }
    const int result = write();
    if (result == kSuccess) store.FinishReplacement();
    return result;
  });
  Abort();
  return status;
}

int Vex2FileManager::ReadFromFile(const char* path, bool dialog) {
  CString chosen;
  const Operation operation(state_->store);
  if (!choosePath(path, dialog, "Select Vex File to Open", chosen)) return vex2::kCancelled;
  if (SafeOpen(path, 0, 0) == 0) {
    state_->partlyRead = {};
    noteFault(0, "the file cannot be opened");
    return attempt(vex2::kReadFailed, [&] {
      state_->partlyRead.SetSource(path);
      return static_cast<int>(vex2::kReadFailed);
    });
  }
  // This is a success even if only a part could be read: hosts show that part.
  static_cast<void>(ReadComponentFile(nullptr));
  Abort();
  return kSuccess;
}

int Vex2FileManager::SaveToFile(const char* path, bool dialog) {
  CString chosen;
  const Operation operation(state_->store);
  if (!choosePath(path, dialog, "Select Vex File to Save", chosen)) return vex2::kCancelled;
  return saveWhole(path, [this] { return WriteComponentFile(nullptr); });
}

int Vex2FileManager::SaveHeader(const char* path, const Vex2HeaderData& header) {
  const Operation operation(state_->store);
  const int status = attempt(vex2::kWriteFailed, [&] {
    header_ = header;
    return kSuccess;
  });
  if (status != kSuccess) return status;
  return saveWhole(path, [this] { return WriteHeaderData(nullptr); });
}

int Vex2FileManager::ReadComponentFile(CFile* file) {
  const CWaitCursor wait;
  const vex2::TracedTime time("reading in components");
  const Operation operation(state_->store);
  CFile& source = file != nullptr ? *file : *this;
  const int status = attempt(vex2::kReadFailed, [&] {
    Reset();
    state_->recordStart = 0;
    state_->partlyRead.SetSource(source.CFile::GetFilePath());
    const int header = ReadHeaderData(&source);
    if (header != kSuccess) noteFault(0, "it is no \"Vex2\" document");
    const std::uint64_t length = source.GetLength();
    if (length < vex2::HeaderLayout::kSize) noteFault(length, "it ends within the header");
    if (header != kSuccess || length <= vex2::HeaderLayout::kSize) return header;
    return state_->ReadRecords(source);
  });
  if (status != kSuccess) noteFault(state_->recordStart, "the record cannot be read");
  return status;
}

int Vex2FileManager::State::ReadRecords(CFile& file) {
  CFile& own = store.File();
  int status = kSuccess;
  std::uint64_t remaining = file.GetLength() - vex2::HeaderLayout::kSize;
  while (remaining > 0) {
    recordStart = file.GetPosition();
    std::array<char, vex2::kTagLength> tag{};
    // Declared lengths may add up to more than the file has, so the end of the file also ends the
    // loop.
    if (const std::size_t got = file.Read(tag.data(), tag.size()); got < tag.size()) {
      if (got > 0) partlyRead.Note(recordStart, "it ends within a record");
      break;
    }
    std::unique_ptr<CComponent> component;
    const bool known = CreateComponent({tag.data(), tag.size()}, component) == 1;
    own.Seek(-static_cast<std::int64_t>(tag.size()), CFile::current);
    const std::uint64_t start = own.GetPosition();
    std::uint32_t size = 0;
    const int read = component->Read(&file, size);
    // The length of a study's plates grows with every save, and in time exceeds their true size.
    if (component->GetTag() == TagOf(Kind::kPlates)) {
      size = static_cast<std::uint32_t>(std::min<std::uint64_t>(size, own.GetPosition() - start));
    }
    if (known) {
      status = read;
      if (status != kSuccess) break;
      components.Append(std::move(component));
    } else {
      partlyRead.Note(start, "the record is of an unknown kind");
    }
    // A list can be read with success although it declares more bytes than the file has.
    if (size > remaining) partlyRead.Note(start, "it ends within a record");
    remaining -= std::min<std::uint64_t>(remaining, size);
  }
  NotePlates();
  if (status == kSuccess && file.GetPosition() < file.GetLength()) {
    partlyRead.Note(file.GetPosition(), "the lengths of the records end before the file does");
  }
  return status;
}

bool Vex2FileManager::isWritten(const CComponent& component) const {
  return !IsRQS() ||
         std::find(kStudyTags.begin(), kStudyTags.end(), component.GetTag()) != kStudyTags.end();
}

int Vex2FileManager::WriteComponentFile(CFile* file) {
  const Operation operation(state_->store);
  return attempt(vex2::kWriteFailed, [&] {
    CFile& target = file != nullptr ? *file : *this;
    int status = WriteHeaderData(&target);
    if (status != kSuccess) return status;
    target.SeekToEnd();
    for (const auto& component : state_->components) {
      if (status != kSuccess) break;
      if (!isWritten(*component)) continue;
      status = component->Write(&target);
      UpdateHeaderOffsets(*component);
    }
    if (IsRQS()) static_cast<void>(CLongValueComp(TagOf(Kind::kEndOfFile)).Write(&target));
    return status;
  });
}
