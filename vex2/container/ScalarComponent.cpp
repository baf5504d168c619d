#include "vex2/container/ScalarComponent.h"

#include "vex2/container/Status.h"
#include "vex2/format/Encoding.h"

namespace vex2 {

template <typename Value>
ScalarComponent<Value>::ScalarComponent(std::string_view tag, Value value)
    : CComponent(tag, sizeof(Value)), value_(value) {}

template <typename Value>
CComponent& ScalarComponent<Value>::Assign(const CComponent& source) {
  const auto* same = dynamic_cast<const ScalarComponent*>(&source);
  if (same != nullptr && source.GetTag() == GetTag()) {
    CComponent::Assign(source);
    value_ = same->value_;
  }
  return *this;
}

template <typename Value>
int ScalarComponent<Value>::WriteBody(CFile* file) {
  if (file == nullptr) return kWriteFailed;
  WriteField(*file, value_);
  return kSuccess;
}

template <typename Value>
int ScalarComponent<Value>::ReadBody(CFile* file) {
  return file != nullptr && ReadField(*file, value_) ? kSuccess : kReadFailed;
}

template class ScalarComponent<std::uint8_t>;
template class ScalarComponent<std::uint16_t>;
template class ScalarComponent<std::uint32_t>;
template class ScalarComponent<float>;
template class ScalarComponent<std::array<std::uint8_t, 3>>;

}  // namespace vex2
