#include "tools/vex/files/OutputFiles.h"

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
  return path + ": replaces a " +
         (isStudy ? "study of " + Counted(static_cast<unsigned>(names.GetCount()), "plate")
                  : "run of " + Counted(frames, "frame"));
}

}  // namespace vex2::tool
