#include "fuzz/Content.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

#include "fuzz/Target.h"
#include "vex2/container/CByteValueComp.h"
#include "vex2/container/CFloatValueComp.h"
#include "vex2/container/CLongValueComp.h"
#include "vex2/container/CShortValueComp.h"
#include "vex2/container/CSkippedComp.h"
#include "vex2/container/CSpectrumChannelComp.h"
#include "vex2/format/RecordKinds.h"
#include "vex2/manager/Vex2FileManagerComponent.h"
#include "vex2/run/AcquisitionDataComp.h"
#include "vex2/run/ThermocycleProgramComp.h"
#include "vex2/setup/CBackgroundComp.h"
#include "vex2/setup/CCellComp.h"
#include "vex2/setup/CColorComp.h"
#include "vex2/setup/CPureDyeComp.h"
#include "vex2/study/CMultiPlateComp.h"
#include "vex2/study/CRQPlateComp.h"

namespace vex2::fuzz {
namespace {

constexpr std::array<std::string_view, 8> kStudyTags = {"DETL", "GLBL", "CALR", "ENDO",
                                                        "RQAT", "Conf", "MPLC", "TPro"};
constexpr int kHeaderSize = 1024;
// The largest number of rows whose usage table ends within the header.
constexpr int kMostRows = (kHeaderSize - 72) / 4;

// The largest number of well records, of 80 bytes each, in all files of one execution.
constexpr std::uint64_t kMostRecords = 20'000;

class Describer {
 public:
  explicit Describer(bool isFollowed) : isFollowed_(isFollowed) {}

  void Component(const CComponent& component) {
    text(component.GetTag());
    // Derived classes come before their base classes.
    static constexpr std::array kKinds = {
        &Describer::as<CSkippedComp, &Describer::skipped>,
        &Describer::as<CByteValueComp, &Describer::value<CByteValueComp>>,
        &Describer::as<CShortValueComp, &Describer::value<CShortValueComp>>,
        &Describer::as<CLongValueComp, &Describer::value<CLongValueComp>>,
        &Describer::as<CFloatValueComp, &Describer::value<CFloatValueComp>>,
        &Describer::as<CColorComp, &Describer::value<CColorComp>>,
        &Describer::as<ThermocycleProgramComp, &Describer::bytes<ThermocycleProgramComp>>,
        &Describer::as<CSpectrumChannelComp, &Describer::bytes<CSpectrumChannelComp>>,
        &Describer::as<CBlockValueComp, &Describer::characters>,
        &Describer::as<AcquisitionDataComp, &Describer::block>,
        &Describer::as<CPureDyeComp, &Describer::spectra<CPureDyeComp>>,
        &Describer::as<CBackgroundComp, &Describer::spectra<CBackgroundComp>>,
        &Describer::as<CCellComp, &Describer::cell>,
        &Describer::as<CRQPlateComp, &Describer::plate>,
        &Describer::as<CContainerComp, &Describer::list>};
    // Trying every class is slow, so remember the class of each tag, which never changes.
    static std::array<std::size_t, kTagRowCount + 1> kindOf{};
    const int row = FindTagIndex(component.GetTag());
    std::size_t& kind = kindOf.at(static_cast<std::size_t>(row >= 0 ? row : kTagRowCount));
    if ((this->*kKinds.at(kind))(component)) return;
    for (kind = 0; kind < kKinds.size() && !(this->*kKinds.at(kind))(component);) ++kind;
    Require(kind < kKinds.size(), "every component has a kind");
  }

  void Header(const Vex2HeaderData& header, bool hasPositions) {
    raw(header.magic, sizeof header.magic);
    raw(header.assayCode, sizeof header.assayCode);
    raw(header.runCode, sizeof header.runCode);
    raw(header.plateTypeCode, sizeof header.plateTypeCode);
    raw(header.text, sizeof header.text);
    raw(header.kindMarker, sizeof header.kindMarker);
    raw(header.acquisitionStatus, sizeof header.acquisitionStatus);
    number(header.formatA);
    number(header.formatB);
    number(header.columns);
    number(header.flagG);
    if (hasPositions) number(header.thermocycleOffset);
    if (hasPositions) number(header.acquisitionDataOffset);
    number(header.rows);
    raw(header.usage, sizeof *header.usage * header.rows);
  }

  std::string Take() { return std::move(content_); }
  bool IsReadable() const { return isReadable_; }

 private:
  void raw(const void* bytes, std::size_t count) {
    if (count != 0) content_.append(static_cast<const char*>(bytes), count);
  }
  template <typename Number>
  void number(Number value) {
    raw(&value, sizeof value);
  }
  void text(std::string_view characters) {
    number(characters.size());
    content_ += characters;
  }

  template <typename Kind, void (Describer::*describe)(const Kind&)>
  bool as(const CComponent& component) {
    const auto* kind = dynamic_cast<const Kind*>(&component);
    if (kind != nullptr) (this->*describe)(*kind);
    return kind != nullptr;
  }

  void skipped(const CSkippedComp& component) { number(component.GetLength()); }
  template <typename Component>
  void value(const Component& component) {
    number(component.GetValue());
  }
  template <typename Component>
  void bytes(const Component& component) {
    text({reinterpret_cast<const char*>(component.GetData()),
          component.GetData() != nullptr ? component.GetLength() : 0});
  }
  void characters(const CBlockValueComp& component) {
    std::size_t length = component.GetData() != nullptr ? component.GetLength() : 0;
    while (length > 0 && component.GetData()[length - 1] == 0) --length;
    text({reinterpret_cast<const char*>(component.GetData()), length});
  }

  void block(const AcquisitionDataComp& component) {
    // A block of length 0 has no body, so its times are not stored.
    number(component.GetLength() != 0);
    if (component.GetLength() == 0) return;
    if (component.GetVersion() < 2) isReadable_ = false;
    number(component.GetVersion());
    number(component.GetTimeBlockSize());
    raw(component.GetStartTime().fields, 6);
    raw(component.GetEndTime().fields, 6);
    const auto wells = component.GetWellNumbers();
    number(wells.size());
    raw(wells.data(), wells.size_bytes());
    number(component.GetFrameCount());
    // If a block is read without wells and then given some, it has as many empty frames as its
    // length declares. These can exceed the size limit for files here.
    const std::uint64_t recordCount =
        std::uint64_t{wells.size()} * static_cast<std::uint64_t>(component.GetFrameCount());
    if (recordCount > kMostRecords) {
      isReadable_ = false;
      return;
    }
    for (int index = 0; index < component.GetFrameCount(); ++index) {
      const Vex2WellRecord* records = component.GetFrame(index);
      for (std::size_t well = 0; well < wells.size(); ++well) {
        const Vex2WellRecord record = records != nullptr ? records[well] : Vex2WellRecord{};
        raw(record.leading, sizeof record.leading);
        raw(record.data, 32 * sizeof *record.data);
      }
    }
  }

  template <typename Component>
  void spectra(const Component& component) {
    const auto& record = component.GetRecord();
    raw(record.code, sizeof record.code);
    number(record.setting);
    number(record.option);
    number(record.value);
    raw(record.extra1, sizeof record.extra1);
    raw(record.extra2, sizeof record.extra2);
    raw(component.GetReserved().data(), component.GetReserved().size());
    number(record.entryCount);
    for (std::uint16_t index = 0; index < record.entryCount; ++index) {
      const auto& entry = record.entries[index];
      number(entry.key1);
      number(entry.key2);
      number(entry.dyeIndex);
      own(entry);
      text({entry.name, entry.nameLength});
      number(entry.valueCount);
      raw(entry.values, sizeof *entry.values * entry.valueCount);
    }
  }
  void own(const Vex2DyeSpectrum& entry) {
    number(entry.byte1);
    number(entry.byte2);
    number(entry.param1);
    number(entry.param2);
    number(entry.param3);
  }
  void own(const Vex2BackgroundSpectrum& entry) { number(entry.limit); }

  void cell(const CCellComp& component) {
    number(component.GetCoord1());
    number(component.GetCoord2());
    number(component.GetFlag());
    list(component);
  }
  void plate(const CRQPlateComp& component) {
    const Vex2FileManagerComponent* document = component.GetPlate();
    number(document != nullptr);
    if (document == nullptr) return;
    const bool before = std::exchange(isFollowed_, true);
    Header(document->GetHeaderData(), true);
    number(document->GetAllComponentCount());
    for (int i = 0; i < document->GetAllComponentCount(); ++i) {
      const CComponent& part = *document->GetComponent(i);
      if (part.GetTag() == "EOF " || part.GetTag() == "EOPl") isReadable_ = false;
      Component(part);
    }
    isFollowed_ = before;
  }
  void list(const CContainerComp& component) {
    const int children = component.GetChildCount();
    if (children != component.GetCount() && isFollowed_) isReadable_ = false;
    number(children);
    const bool before = isFollowed_;
    for (int index = 0; index < children; ++index) {
      isFollowed_ = before || index + 1 < children;
      Component(*component.GetChild(index));
    }
    isFollowed_ = before;
  }

  std::string content_;
  bool isReadable_ = true;
  bool isFollowed_;
};

bool isStudyTag(std::string_view tag) {
  return std::find(kStudyTags.begin(), kStudyTags.end(), tag) != kStudyTags.end();
}

Content contentOf(const Vex2FileManager& document, bool saved) {
  Content content;
  const Vex2HeaderData& header = document.GetHeaderData();
  if (header.rows > kMostRows) {
    content.isReadable = false;
    return content;
  }
  Describer head(true);
  head.Header(header, false);
  content.header = head.Take();
  const bool isStudy = saved && document.IsRQS();
  for (int i = 0; i < document.GetAllComponentCount(); ++i) {
    const CComponent& component = *document.GetComponent(i);
    if (isStudy && !isStudyTag(component.GetTag())) continue;
    Describer describer(isStudy || i + 1 < document.GetAllComponentCount());
    describer.Component(component);
    content.components.push_back(describer.Take());
    content.isReadable = content.isReadable && describer.IsReadable();
  }
  if (isStudy) content.components.push_back(ContentOf(CLongValueComp("EOF ")));
  return content;
}

std::uint64_t bytesOf(CComponent& component) {
  CFile file;
  Require(file.Open("/fuzz/plates", CFile::modeWrite | CFile::modeCreate), "memory takes a file");
  component.Write(&file);
  return file.GetLength();
}

// The bytes that a reader counted when it read the file of `written` into `read`. For plates, takes
// their size from `written`, because reading may have dropped trailing zero bytes of their texts.
std::uint64_t countedBytes(const Vex2FileManager& written, const Vex2FileManager& read) {
  std::uint64_t counted = 0;
  int at = 0;
  for (int i = 0; i < read.GetAllComponentCount(); ++i) {
    const CComponent& component = *read.GetComponent(i);
    if (component.GetTag() != "MPLC") {
      counted += component.GetSize();
      continue;
    }
    while (written.GetComponent(at)->GetTag() != "MPLC") ++at;
    counted += bytesOf(*written.GetComponent(at++));
  }
  return counted;
}

// The number of bytes after the header of the last saved document.
std::uint64_t savedBytes() {
  const auto& files = static_cast<test::MemoryFiles&>(CurrentFileSystem());
  return files.Content(kSaved).size() - kHeaderSize;
}

}  // namespace

std::string ContentOf(const CComponent& component) {
  Describer describer(false);
  describer.Component(component);
  return describer.Take();
}

Content ContentOf(const Vex2FileManager& document) {
  return contentOf(document, false);
}

Content SavedContentOf(const Vex2FileManager& document) {
  return contentOf(document, true);
}

bool RequireKept(Vex2FileManager& document) {
  auto& files = static_cast<test::MemoryFiles&>(CurrentFileSystem());
  const Content expected = SavedContentOf(document);
  if (document.SaveToFile(kSaved) != 0) {
    Require(files.HasRefused(), "a save fails only where the disk is full");
    return false;
  }
  Vex2FileManager again;
  const int status = Read(again, kSaved);
  if (!expected.isReadable) return false;
  Require(status == 0, "what was saved can be read");
  const Content found = ContentOf(again);
  Require(found.header == expected.header, "the header is what it was");
  Require(found.components.size() <= expected.components.size(), "nothing comes of itself");
  Require(std::equal(found.components.begin(), found.components.end(), expected.components.begin()),
          "the components are what they were");
  if (found.components.size() == expected.components.size()) return true;
  // A reader stops when it has counted as many bytes as the file has after the header, and declared
  // lengths may count more bytes than exist.
  Require(countedBytes(document, again) >= savedBytes(), "nothing is lost");
  return true;
}

bool CanBeFollowed(const Vex2FileManager& document, const Vex2FileManager& saved) {
  Describer describer(true);
  for (int i = 0; i < saved.GetAllComponentCount(); ++i)
    describer.Component(*saved.GetComponent(i));
  return describer.IsReadable() && countedBytes(document, saved) <= savedBytes();
}

}  // namespace vex2::fuzz
