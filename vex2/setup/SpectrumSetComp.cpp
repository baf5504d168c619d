#include "vex2/setup/SpectrumSetComp.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"
#include "vex2/format/ReadLimits.h"
#include "vex2/setup/Vex2BGC.h"
#include "vex2/setup/Vex2PureDye.h"

namespace vex2 {
namespace {

constexpr std::uint32_t kFixedLength = 72;

// The two layouts differ only in where the first reserved word is: before the extra words in pure
// dyes, after them in the background. Sic: the format cannot change.
template <typename Record>
constexpr std::size_t kReservedBeforeExtras = std::is_same_v<Record, Vex2PureDye> ? 4 : 0;

// Bytes of an entry without its name and its values.
constexpr std::uint32_t fixedSizeOf(const Vex2DyeSpectrum* /*entry*/) {
  return 16;
}
constexpr std::uint32_t fixedSizeOf(const Vex2BackgroundSpectrum* /*entry*/) {
  return 10;
}

// Reads fields from the file until one is incomplete; the following fields stay unchanged.
class BodyReader {
 public:
  explicit BodyReader(CFile& file) : file_(file) {}

  int Status() const { return isWhole_ ? kSuccess : kReadFailed; }
  template <typename Value>
  void Number(Value& value) {
    isWhole_ = isWhole_ && ReadField(file_, value);
  }
  void Bytes(void* bytes, std::size_t count) {
    isWhole_ = isWhole_ && (count == 0 || ReadExactly(file_, bytes, count));
  }
  void Name(Spectrum& spectrum) {
    std::uint8_t length = 0;
    Number(length);
    if (!has(length)) return;
    spectrum.SetName(nullptr, length);
    Bytes(spectrum.name, length);
  }
  void Values(Spectrum& spectrum) {
    std::uint8_t count = 0;
    Number(count);
    if (!has(count * sizeof *spectrum.values)) return;
    spectrum.SetValues(nullptr, count);
    Bytes(spectrum.values, count * sizeof *spectrum.values);
  }
  template <typename Record>
  void EntryCount(Record& record) {
    std::uint16_t count = 0;
    Number(count);
    // The check ignores the rest of the head between the count and the entries, so it accepts
    // slightly too many entries. Reading the fields of the entries then fails.
    if (has(std::uint64_t{count} * fixedSizeOf(record.entries))) record.SetEntryCount(count);
  }

 private:
  bool has(std::uint64_t count) {
    isWhole_ = isWhole_ && (HasBytesLeft(file_, count) || ShortRead(file_));
    return isWhole_;
  }

  CFile& file_;
  bool isWhole_ = true;
};

class BodyWriter {
 public:
  explicit BodyWriter(CFile& file) : file_(file) {}

  template <typename Value>
  void Number(Value value) {
    WriteField(file_, value);
  }
  void Bytes(const void* bytes, std::size_t count) { file_.Write(bytes, count); }
  void Name(const Spectrum& spectrum) {
    WriteField(file_, spectrum.nameLength);
    file_.Write(spectrum.name, spectrum.nameLength);
  }
  void Values(const Spectrum& spectrum) {
    WriteField(file_, spectrum.valueCount);
    file_.Write(spectrum.values, spectrum.valueCount * sizeof *spectrum.values);
  }
  template <typename Record>
  void EntryCount(const Record& record) {
    WriteField(file_, record.entryCount);
  }

 private:
  CFile& file_;
};

// Calls `fields` for each field before the entries, in the order of the format.
template <typename Fields, typename Record, typename Reserved>
void exchangeHead(Fields& fields, Record& record, Reserved& reserved) {
  constexpr std::size_t kBefore = kReservedBeforeExtras<std::remove_const_t<Record>>;
  fields.Bytes(record.code, sizeof record.code);
  fields.Number(record.setting);
  fields.EntryCount(record);
  fields.Number(record.option);
  fields.Number(record.value);
  fields.Bytes(reserved, kBefore);
  fields.Bytes(record.extra1, sizeof record.extra1);
  fields.Bytes(record.extra2, sizeof record.extra2);
  fields.Bytes(reserved + kBefore, std::size(reserved) - kBefore);
}

template <typename Fields, typename Entry>
void exchangeEntry(Fields& fields, Entry& entry) {
  constexpr bool kIsDye = std::is_same_v<std::remove_const_t<Entry>, Vex2DyeSpectrum>;
  fields.Number(entry.key1);
  fields.Number(entry.key2);
  fields.Number(entry.dyeIndex);
  if constexpr (kIsDye) {
    fields.Number(entry.byte1);
    fields.Number(entry.byte2);
  } else {
    fields.Number(entry.limit);
  }
  fields.Name(entry);
  if constexpr (kIsDye) {
    fields.Number(entry.param1);
    fields.Number(entry.param2);
    fields.Number(entry.param3);
  }
  fields.Values(entry);
}

template <typename Record>
std::uint32_t bodyLengthOf(const Record& record) {
  std::uint32_t length = kFixedLength;
  for (std::uint16_t index = 0; index < record.entryCount; ++index) {
    const auto& entry = record.entries[index];
    length += fixedSizeOf(&entry) + entry.nameLength + 4U * entry.valueCount;
  }
  return length;
}

}  // namespace

template <typename Record>
SpectrumSetComp<Record>::SpectrumSetComp(std::string_view tag) : CComponent(tag, kFixedLength) {}

template <typename Record>
SpectrumSetComp<Record>::SpectrumSetComp(std::string_view tag, const Record& record)
    : SpectrumSetComp(tag) {
  record_.CopyFrom(record);
  setLength(bodyLengthOf(record_));
}

template <typename Record>
void SpectrumSetComp<Record>::SetReserved(std::span<const std::uint8_t, 48> reserved) {
  std::copy(reserved.begin(), reserved.end(), reserved_);
}

template <typename Record>
CComponent& SpectrumSetComp<Record>::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const SpectrumSetComp*>(&source);
  if (same != nullptr && same != this && source.GetTag() == GetTag()) {
    record_.CopyFrom(same->record_);
    std::copy(std::begin(same->reserved_), std::end(same->reserved_), reserved_);
    CComponent::Assign(source);
  }
  return *this;
}

template <typename Record>
int SpectrumSetComp<Record>::WriteBody(CFile* file) {
  if (file == nullptr) return kWriteFailed;
  BodyWriter fields(*file);
  exchangeHead(fields, std::as_const(record_), std::as_const(reserved_));
  for (std::uint16_t index = 0; index < record_.entryCount; ++index) {
    exchangeEntry(fields, std::as_const(record_.entries[index]));
  }
  return kSuccess;
}

template <typename Record>
int SpectrumSetComp<Record>::ReadBody(CFile* file) {
  if (file == nullptr) return kReadFailed;
  BodyReader fields(*file);
  exchangeHead(fields, record_, reserved_);
  for (std::uint16_t index = 0; fields.Status() == kSuccess && index < record_.entryCount;
       ++index) {
    exchangeEntry(fields, record_.entries[index]);
  }
  return fields.Status();
}

template class SpectrumSetComp<Vex2PureDye>;
template class SpectrumSetComp<Vex2BGC>;

}  // namespace vex2
