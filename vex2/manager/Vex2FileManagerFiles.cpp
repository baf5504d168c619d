// Opening, reading and saving whole documents.

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/TagFactory.h"
#include "vex2/format/HeaderLayout.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/framework/CWaitCursor.h"
#include "vex2/manager/FileChooser.h"
#include "vex2/manager/TracedTime.h"
#include "vex2/manager/Vex2FileManager.h"

using vex2::Kind;
using vex2::kSuccess;
using vex2::TagOf;

namespace {

constexpr char kFilter[] = "Vex Files\0*.vex\0All Files\0*.*\0";
constexpr const char* kExtension = "vex";

// A study keeps its own settings and its plates; all else would be a plate's.
constexpr std::array<std::string_view, 8> kStudyTags = {
    TagOf(Kind::kDetectorList), TagOf(Kind::kGlobal),       TagOf(Kind::kCalibrator),
    TagOf(Kind::kEndoControl),  TagOf(Kind::kAnalysisType), TagOf(Kind::kConfidence),
    TagOf(Kind::kPlates),       TagOf(Kind::kProgram)};

// Asks for a path where none is given. False when the user cancelled.
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
  try {
    return operation();
  } catch (const CFileException&) {
    return failure;
  } catch (const std::bad_alloc&) {
    return failure;
  } catch (const std::length_error&) {
    return failure;
  }
}

int Vex2FileManager::guardedFile(int failure, vex2::FunctionRef<int()> operation) {
  const int status = guarded(failure, [&] {
    const int result = operation();
    Close();
    return result;
  });
  Abort();
  return status;
}

bool Vex2FileManager::openKeepingPath(const char* path, unsigned flags) {
  if (path == nullptr) return false;
  const bool isOpen = guarded(0, [&] {
                        // The path may be the one that is held.
                        const CString kept(path);
                        filePath_ = kept;
                        return Open(kept.GetString(), flags) ? 1 : 0;
                      }) == 1;
  // Memory that ran out half-way must not leave a file that is open and locked.
  if (!isOpen) Abort();
  return isOpen;
}

int Vex2FileManager::SafeOpen(const char* path, int write, int append) {
  constexpr unsigned kCommon = typeBinary | shareExclusive;
  if (write == 0) return openKeepingPath(path, modeRead | kCommon) ? 1 : 0;
  if (append == 0) {
    if (keepPartlyRead(path) != kSuccess) return 0;
    return openKeepingPath(path, modeWrite | modeCreate | kCommon) ? 1 : 0;
  }
  if (!openKeepingPath(path, modeWrite | modeCreate | modeNoTruncate | kCommon)) return 0;
  SeekToEnd();
  return 1;
}

int Vex2FileManager::changeFile(const char* path, vex2::FunctionRef<int()> look,
                                vex2::FunctionRef<int()> change) {
  // One open for looking and writing: between two of them another program could replace the file.
  const bool isWritable = openKeepingPath(path, modeReadWrite | typeBinary | shareExclusive);
  if (!isWritable && SafeOpen(path, 0, 0) == 0) return vex2::kReadFailed;
  return guardedFile(vex2::kWriteFailed, [&] {
    if (const int status = guarded(vex2::kReadFailed, look); status != kSuccess) return status;
    if (!isWritable || refusesChanges()) return static_cast<int>(vex2::kWriteFailed);
    return change();
  });
}

int Vex2FileManager::appendRecord(const char* path, CComponent& component) {
  if (SafeOpen(path, 1, 1) == 0) return vex2::kWriteFailed;
  return appendToOpenFile([&] { return component.Write(this); });
}

int Vex2FileManager::appendToOpenFile(vex2::FunctionRef<int()> write) {
  if (refusesChanges()) return vex2::kWriteFailed;
  const int status = writeAtEnd(write);
  return guardedFile(vex2::kWriteFailed, [status] { return status; });
}

int Vex2FileManager::writeAtEnd(vex2::FunctionRef<int()> write) {
  const std::uint64_t before = GetLength();
  const int status = guarded(vex2::kWriteFailed, [&] {
    SeekToEnd();
    const int result = write();
    Flush();
    return result;
  });
  if (status != kSuccess) restoreLength(before);
  return status;
}

void Vex2FileManager::restoreLength(std::uint64_t length) {
  DiscardBuffer();
  // Where even that is refused, what was half written stays behind the last whole record.
  static_cast<void>(guarded(vex2::kWriteFailed, [&] {
    SetLength(length);
    return kSuccess;
  }));
}

int Vex2FileManager::saveWhole(const char* path, vex2::FunctionRef<int()> write) {
  if (path == nullptr) return vex2::kWriteFailed;
  const int status = guarded(vex2::kWriteFailed, [&] {
    const CString kept(path);
    filePath_ = kept;
    if (keepPartlyRead(kept.GetString()) != kSuccess || !OpenReplacement(kept.GetString())) {
      return static_cast<int>(vex2::kWriteFailed);
    }
    const int result = write();
    if (result == kSuccess) {
      finishReplacement();
    }
    return result;
  });
  Abort();
  return status;
}

int Vex2FileManager::ReadFromFile(const char* path, bool dialog) {
  CString chosen;
  if (!choosePath(path, dialog, "Select Vex File to Open", chosen)) return vex2::kCancelled;
  if (SafeOpen(path, 0, 0) == 0) {
    partlyRead_ = {};
    noteFault(0, "the file cannot be opened");
    return guarded(vex2::kReadFailed, [&] {
      noteSource(path);
      return static_cast<int>(vex2::kReadFailed);
    });
  }
  // A document that could be read in part is a success: hosts show what there is.
  static_cast<void>(ReadComponentFile(nullptr));
  Abort();
  return kSuccess;
}

int Vex2FileManager::SaveToFile(const char* path, bool dialog) {
  CString chosen;
  if (!choosePath(path, dialog, "Select Vex File to Save", chosen)) return vex2::kCancelled;
  return saveWhole(path, [this] { return WriteComponentFile(nullptr); });
}

int Vex2FileManager::SaveHeader(const char* path, const Vex2HeaderData& header) {
  const int status = guarded(vex2::kWriteFailed, [&] {
    header_ = header;
    return kSuccess;
  });
  if (status != kSuccess) return status;
  return saveWhole(path, [this] { return WriteHeaderData(nullptr); });
}

int Vex2FileManager::ReadComponentFile(CFile* file) {
  const CWaitCursor wait;
  const vex2::TracedTime time("reading in components");
  CFile& source = file != nullptr ? *file : *this;
  const int status = guarded(vex2::kReadFailed, [&] { return readComponents(source); });
  if (status != kSuccess) noteFault(recordStart_, "the record cannot be read");
  return status;
}

int Vex2FileManager::readComponents(CFile& file) {
  Reset();
  recordStart_ = 0;
  noteSource(file.CFile::GetFilePath());
  const int status = ReadHeaderData(&file);
  if (status != kSuccess) noteFault(0, "it is no \"Vex2\" document");
  if (file.GetLength() < vex2::HeaderLayout::kSize)
    noteFault(file.GetLength(), "it ends within the header");
  if (status != kSuccess || file.GetLength() <= vex2::HeaderLayout::kSize) return status;
  return readRecords(file);
}

int Vex2FileManager::readRecords(CFile& file) {
  int status = kSuccess;
  std::uint64_t remaining = file.GetLength() - vex2::HeaderLayout::kSize;
  while (remaining > 0) {
    recordStart_ = file.GetPosition();
    std::array<char, vex2::kTagLength> tag{};
    // Declared lengths need not add up to the file's, so the file's end is what ends the loop.
    if (const std::size_t got = file.Read(tag.data(), tag.size()); got < tag.size()) {
      if (got > 0) noteFault(recordStart_, "it ends within a record");
      break;
    }
    std::unique_ptr<CComponent> component;
    const bool known = CreateComponent({tag.data(), tag.size()}, component) == 1;
    Seek(-static_cast<std::int64_t>(tag.size()), current);
    const std::uint64_t start = GetPosition();
    std::uint32_t size = 0;
    const int read = component->Read(&file, size);
    // The length of a study's plates grows with every save and in the end is more than they have.
    if (component->GetTag() == TagOf(Kind::kPlates))
      size = static_cast<std::uint32_t>(GetPosition() - start);
    if (known) {
      status = read;
      if (status != kSuccess) break;
      appendComponent(std::move(component));
    } else {
      noteFault(start, "the record is of an unknown kind");
    }
    // A list may end with the file, whatever its length says, and be a success.
    if (size > remaining) noteFault(start, "it ends within a record");
    remaining -= std::min<std::uint64_t>(remaining, size);
  }
  notePlates();
  if (status == kSuccess && file.GetPosition() < file.GetLength()) {
    noteFault(file.GetPosition(), "the lengths of the records end before the file does");
  }
  return status;
}

bool Vex2FileManager::isWritten(const CComponent& component) const {
  return !IsRQS() ||
         std::find(kStudyTags.begin(), kStudyTags.end(), component.GetTag()) != kStudyTags.end();
}

int Vex2FileManager::WriteComponentFile(CFile* file) {
  return guarded(vex2::kWriteFailed, [&] {
    CFile& target = file != nullptr ? *file : *this;
    int status = WriteHeaderData(&target);
    if (status != kSuccess) return status;
    target.SeekToEnd();
    for (const auto& component : components_) {
      if (status != kSuccess) break;
      if (!isWritten(*component)) continue;
      status = component->Write(&target);
      UpdateHeaderOffsets(*component);
    }
    if (IsRQS()) static_cast<void>(CLongValueComp(TagOf(Kind::kEndOfFile)).Write(&target));
    return status;
  });
}
