#include "tools/vex/files/OutputFiles.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Text.h"
#include "lab/model/DocumentFile.h"
#include "tools/vex/Errors.h"

namespace vex2::tool {

std::string ReplacedText(const std::string& path, bool force) {
  std::error_code error;
  if (!force || !std::filesystem::is_regular_file(path, error)) return {};
  HeadsFile replaced;
  static_cast<void>(replaced.ReadFromFile(path.c_str()));
  CStringList names;
  CStringList dates;
  const bool isStudy = replaced.IsRQS() && replaced.GetMultiPlateList(names, dates);
  const auto frames = static_cast<unsigned>(std::max(replaced.GetDataFrameCount(DataRAWa), 0));
  if (!isStudy && frames == 0) return {};
  return isStudy ? fmt::format("{}: replaces a study of {}", path,
                               Counted(static_cast<unsigned>(names.GetCount()), "plate"))
                 : fmt::format("{}: replaces a run of {}", path, Counted(frames, "frame"));
}

}  // namespace vex2::tool
