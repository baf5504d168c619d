#include "lab/model/RunReader.h"

#include <fmt/core.h>

#include <algorithm>

#include "lab/Guarded.h"
#include "lab/Text.h"
#include "lab/model/Codes.h"
#include "lab/model/Document.h"
#include "lab/model/DocumentPlates.h"
#include "lab/model/FrameFiller.h"
#include "lab/model/FrameReader.h"
#include "lab/model/PlateContents.h"
#include "lab/model/Settings.h"
#include "lab/model/StoredCalibration.h"
#include "lab/model/ValuesFromDocument.h"

namespace vex2::lab {

namespace {

// What was not read of the document, sorted by offset.
std::vector<FileFault> unreadPartsOf(const Document& document) {
  std::vector<FileFault> faults;
  if (const auto& fault = document.Fault()) faults.push_back(*fault);
  for (const Document::Loss& loss : document.Losses()) {
    if (!loss.wasRead) faults.push_back({loss.offset, loss.what});
  }
  std::stable_sort(faults.begin(), faults.end(),
                   [](const FileFault& a, const FileFault& b) { return a.offset < b.offset; });
  return faults;
}

// The faults within the plate.
std::vector<FileFault> faultsWithin(const std::vector<FileFault>& faults,
                                    const Document::Plate& plate) {
  std::vector<FileFault> within;
  std::copy_if(faults.begin(), faults.end(), std::back_inserter(within),
               [&](const FileFault& fault) {
                 const bool isBefore = plate.end == 0 || fault.offset < plate.end;
                 return fault.offset >= plate.offset && isBefore;
               });
  return within;
}

}  // namespace

/// What was read of a document, or of a plate in it.
struct RunReader::Content {
  Content(const Document& document, const Document::Plate& plate, std::vector<FileFault> found);

  std::filesystem::path path;
  FileIdentity identity;
  std::vector<FileFault> faults;
  bool isStudy = false;
  RunState state = RunState::kOther;
  std::string status;
  std::string assay;
  std::string kind;
  lab::Plate plate;
  std::vector<Detector> detectors;
  std::vector<std::string> dyes;
  lab::Calibration calibration;
  std::vector<SettingValue> settings;
  std::optional<lab::Program> program;
  std::string log;  // Latin-1, as the document stores it
  std::vector<BlockInfo> blocks;

  /// A plate in the document. `name` is as the document stores it.
  struct Embedded {
    std::string name;
    std::shared_ptr<const Content> content;
  };
  std::vector<Embedded> plates;
};

RunReader::Content::Content(const Document& document, const Document::Plate& source,
                            std::vector<FileFault> found)
    : path(document.Path()),
      identity(document.Content().GetIdentity()),
      faults(std::move(found)),
      isStudy(source.content->IsRQS()),
      plate(PlateOf(*source.content)),
      detectors(DetectorValuesOf(*source.content)),
      dyes(RequiredDyeNamesOf(*source.content)),
      calibration(CalibrationOf(*source.content)),
      settings(SettingValuesOf(*source.content)),
      program(ProgramOf(*source.content)),
      log(LogText(*source.content)),
      blocks(BlocksOf(source)) {
  const Vex2HeaderData& header = source.content->GetHeaderData();
  status = CodeText(header.acquisitionStatus);
  state = RunStateOf(status);
  assay = CodeText(header.assayCode);
  kind = CodeText(header.kindMarker);
  const ReadFault& fault = source.content->GetReadFault();
  if (faults.empty() && !source.content->IsWhole()) faults.push_back({fault.offset, fault.reason});
}

RunReader::RunReader(std::shared_ptr<const Content> content) : content_(std::move(content)) {}

RunReader::RunReader(const std::filesystem::path& path) {
  content_ = Guarded(path.string(), [&] {
    const Document document(path.string(), Document::Purpose::kReadHeads);
    const std::vector<FileFault> faults = unreadPartsOf(document);
    auto content = std::make_shared<Content>(document, document.Itself(), faults);
    for (const Document::Plate& plate : document.Plates()) {
      content->plates.push_back(
          {plate.name, std::make_shared<Content>(document, plate, faultsWithin(faults, plate))});
    }
    return content;
  });
}

ReaderFile FileOf(const RunReader& reader) {
  return {reader.content_->identity, reader.content_->log};
}

const std::filesystem::path& RunReader::Path() const {
  return content_->path;
}

bool RunReader::IsWhole() const {
  return content_->faults.empty();
}

const std::vector<FileFault>& RunReader::Faults() const {
  return content_->faults;
}

RunState RunReader::State() const {
  return content_->state;
}

const std::string& RunReader::StatusCode() const {
  return content_->status;
}

const std::string& RunReader::AssayCode() const {
  return content_->assay;
}

const std::string& RunReader::KindCode() const {
  return content_->kind;
}

const lab::Plate& RunReader::Plate() const {
  return content_->plate;
}

const std::vector<Detector>& RunReader::Detectors() const {
  return content_->detectors;
}

const std::vector<std::string>& RunReader::RequiredDyes() const {
  return content_->dyes;
}

const lab::Calibration& RunReader::Calibration() const {
  return content_->calibration;
}

const std::vector<SettingValue>& RunReader::Settings() const {
  return content_->settings;
}

const std::optional<lab::Program>& RunReader::Program() const {
  return content_->program;
}

const std::vector<BlockInfo>& RunReader::Blocks() const {
  return content_->blocks;
}

const BlockInfo* RunReader::findBlock(std::string_view tag) const {
  const auto found = std::find_if(content_->blocks.begin(), content_->blocks.end(),
                                  [&](const BlockInfo& block) { return block.tag == tag; });
  return found != content_->blocks.end() ? &*found : nullptr;
}

std::uint64_t RunReader::FrameCount(std::string_view block) const {
  const BlockInfo* found = findBlock(block);
  return found != nullptr ? found->frameCount : 0;
}

const std::vector<std::uint16_t>& RunReader::Wells(std::string_view block) const {
  static const std::vector<std::uint16_t> none;
  const BlockInfo* found = findBlock(block);
  return found != nullptr ? found->wells : none;
}

// Calls `work` with a reader of the block, and returns its result; an empty result if there is no
// such block.
template <typename Result, typename Work>
Result RunReader::withFrames(std::string_view block, const Work& work) const {
  const BlockInfo* found = findBlock(block);
  if (found == nullptr) return {};
  const std::string path = content_->path.string();
  return Guarded(path, [&] {
    FrameReader reader(path, content_->identity, *found, content_->log);
    return work(reader);
  });
}

std::vector<FramePosition> RunReader::Axis(std::string_view block) const {
  const BlockInfo* found = findBlock(block);
  if (found != nullptr && !found->isRecorded) return std::vector<FramePosition>(found->frameCount);
  return withFrames<std::vector<FramePosition>>(
      block, [](FrameReader& reader) { return reader.ReadAxis(); });
}

Frame RunReader::Frame(std::uint64_t index, std::string_view block) const {
  const std::uint64_t count = FrameCount(block);
  if (index >= count) {
    throw Error(ErrorCode::kNoSuchFrame, content_->path.string(),
                fmt::format("it has no frame {}; the block {} has {}", index, ToUtf8(block),
                            Counted(count, "frame")));
  }
  return withFrames<lab::Frame>(block,
                                [&](FrameReader& reader) { return reader.ReadFrame(index); });
}

Readings RunReader::Readings(std::string_view block) const {
  return withFrames<lab::Readings>(block, [](FrameReader& reader) { return reader.ReadAll(); });
}

bool RunReader::IsStudy() const {
  return content_->isStudy;
}

std::vector<std::string> RunReader::PlateNames() const {
  std::vector<std::string> names;
  for (const Content::Embedded& plate : content_->plates) names.push_back(ToUtf8(plate.name));
  return names;
}

RunReader RunReader::Plate(std::string_view name) const {
  for (const Content::Embedded& plate : content_->plates) {
    if (IsPlateCalled(plate.name, name)) return RunReader(plate.content);
  }
  throw Error(ErrorCode::kNoSuchPlate, content_->path.string(),
              fmt::format("it has no plate '{}'", name));
}

}  // namespace vex2::lab
