#include "lab/csv/TextDecoder.h"

#include <fmt/core.h>
#include <iconv.h>

#include <array>
#include <cerrno>
#include <utility>

#include "lab/Error.h"

namespace vex2::lab {

namespace {

constexpr const char* kUtf8 = "UTF-8";

struct Mark {
  std::string_view bytes;
  const char* encoding;
};
// UTF-32 comes before UTF-16, since its mark begins with the mark of UTF-16.
constexpr std::array<Mark, 5> kMarks = {{{"\xEF\xBB\xBF", kUtf8},
                                         {{"\xFF\xFE\0\0", 4}, "UTF-32LE"},
                                         {{"\0\0\xFE\xFF", 4}, "UTF-32BE"},
                                         {"\xFF\xFE", "UTF-16LE"},
                                         {"\xFE\xFF", "UTF-16BE"}}};

}  // namespace

// The system's converter. After it has refused a byte, it cannot be used any more.
class TextDecoder::Converter {
 public:
  explicit Converter(const std::string& encoding) : handle_(::iconv_open(kUtf8, encoding.c_str())) {
    if (isOpen()) return;
    throw Error(ErrorCode::kUsage,
                fmt::format("the encoding '{}' is not known; 'iconv -l' lists those "
                            "that are, such as utf-8, utf-16le, latin1, "
                            "windows-1252",
                            encoding));
  }
  ~Converter() {
    if (isOpen()) ::iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  enum class Stop : std::uint8_t { kEnd, kIncomplete, kNoCharacter };

  /// Appends the converted text of `bytes` to `text`, and removes the converted bytes from `bytes`.
  Stop Convert(std::string_view& bytes, std::string& text) {
    std::array<char, 4096> buffer;
    // iconv takes a pointer to char that is not const, but does not write there.
    char* in = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    for (;;) {
      char* out = buffer.data();
      std::size_t room = buffer.size();
      const bool isDone = ::iconv(handle_, &in, &left, &out, &room) != static_cast<std::size_t>(-1);
      const int error = errno;
      text.append(buffer.data(), out);
      if (!isDone && error == E2BIG) continue;
      bytes.remove_prefix(bytes.size() - left);
      if (isDone) return Stop::kEnd;
      return error == EINVAL ? Stop::kIncomplete : Stop::kNoCharacter;
    }
  }

 private:
  bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  iconv_t handle_;
};

TextDecoder::TextDecoder(std::string encoding) : encoding_(std::move(encoding)) {
  if (encoding_.empty()) encoding_ = kUtf8;
  open();
}

TextDecoder::~TextDecoder() = default;

void TextDecoder::open() {
  converter_ = std::make_unique<Converter>(encoding_);
}

std::size_t TextDecoder::chooseBy(std::string_view begin) {
  const auto choose = [this](const char* encoding) {
    encoding_ = encoding;
    open();
  };
  for (const Mark& mark : kMarks) {
    if (!begin.starts_with(mark.bytes)) continue;
    choose(mark.encoding);
    return mark.bytes.size();
  }
  if (begin.size() < 2) return 0;
  if (begin[0] != '\0' && begin[1] == '\0') choose("UTF-16LE");
  if (begin[0] == '\0' && begin[1] != '\0') choose("UTF-16BE");
  return 0;
}

std::string TextDecoder::Decode(std::string_view bytes) {
  if (fault_) return {};
  if (!std::exchange(hasBegun_, true)) {
    restAt_ = chooseBy(bytes);
    bytes.remove_prefix(restAt_);
  }
  rest_ += bytes;
  std::string text;
  std::string_view open = rest_;
  const auto stop = converter_->Convert(open, text);
  restAt_ += rest_.size() - open.size();
  rest_.erase(0, rest_.size() - open.size());
  if (stop == Converter::Stop::kNoCharacter) fault_ = restAt_;
  return text;
}

std::string TextDecoder::Finish() {
  std::string text = Decode({});
  if (!fault_ && !rest_.empty()) fault_ = restAt_;
  return text;
}

}  // namespace vex2::lab
