#include "lab/model/AcquisitionStatus.h"

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>

#include "lab/SystemError.h"
#include "lab/Text.h"
#include "lab/model/DocumentFile.h"
#include "lab/model/RawFile.h"
#include "vex2/format/HeaderLayout.h"

namespace vex2::lab {

namespace {

bool isAlike(std::string_view given, std::string_view known) {
  return std::equal(
      given.begin(), given.end(), known.begin(), known.end(),
      [](char one, char letter) { return one == letter || one == letter - 'A' + 'a'; });
}

}  // namespace

void RequireStatusCode(std::string_view code, const std::string& path) {
  const auto refuse = [&](const std::string& why) { throw Error(ErrorCode::kUsage, path, why); };
  for (const std::string_view known :
       {RunStatus::kNotStarted, RunStatus::kInProgress, RunStatus::kDone}) {
    if (code != known && isAlike(code, known)) {
      refuse(fmt::format("the status '{}' is not known; did you mean {}?", code, known));
    }
  }
  if (code.size() != kCodeLength || !IsPlain(code)) {
    refuse(fmt::format("the status '{}' is not four plain characters, like DONE", code));
  }
}

void StoreStatus(Vex2FileManager& document, std::string_view code) {
  Vex2HeaderData header = document.GetHeaderData();
  code.copy(header.acquisitionStatus, sizeof header.acquisitionStatus);
  document.SetHeaderData(header);
}

void WriteStatus(const std::string& path, const std::string& code) {
  DocumentFile document;
  if (document.SetAcquisitionStatus(path.c_str(), code.c_str()) == kSuccess) return;
  CFileException reason;
  if (!document.Open(path.c_str(), CFile::modeReadWrite, &reason)) {
    throw SystemError(path, reason.GetError());
  }
  if (document.GetLength() < HeaderLayout::kStatusAt + kCodeLength) {
    throw Error(ErrorCode::kDocument, path, "the header is cut short before the status",
                HeaderLayout::kStatusAt);
  }
  throw SystemError(path, EIO);
}

}  // namespace vex2::lab
