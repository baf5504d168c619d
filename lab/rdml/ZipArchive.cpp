#include "lab/rdml/ZipArchive.h"

#include <zip.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>

#include "lab/Error.h"

namespace vex2::lab {

namespace {

constexpr std::uint16_t kFirstDay = (0U << 9U) | (1U << 5U) | 1U;  // 1980-01-01, the earliest date
constexpr zip_uint32_t kPackingLevel = 6;                          // the usual level

std::string reasonOf(zip_error_t* error) {
  const bool hasNoList = zip_error_code_zip(error) == ZIP_ER_NOZIP;
  const std::string reason =
      hasNoList ? "the list of its members is missing; the end of the file may be cut off"
                : zip_error_strerror(error);
  zip_error_fini(error);
  return reason;
}

// A member whose content is made while it is packed.
struct Source {
  ZipWriter::NextPiece next;
  std::string piece;
  std::size_t used = 0;
  std::exception_ptr* failure = nullptr;

  zip_int64_t Read(char* to, zip_uint64_t size) {
    zip_uint64_t done = 0;
    while (done < size) {
      if (used == piece.size()) {
        used = 0;
        if (!next(piece)) {
          piece.clear();
          break;
        }
        continue;
      }
      const auto part = std::min<zip_uint64_t>(size - done, piece.size() - used);
      std::memcpy(to + done, piece.data() + used, part);
      used += part;
      done += part;
    }
    return static_cast<zip_int64_t>(done);
  }
};

zip_int64_t serve(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command) {
  auto* source = static_cast<Source*>(state);
  switch (command) {
    case ZIP_SOURCE_READ:
      try {
        return source->Read(static_cast<char*>(data), length);
      } catch (...) {
        *source->failure = std::current_exception();
        return -1;
      }
    case ZIP_SOURCE_STAT:
      zip_stat_init(static_cast<zip_stat_t*>(data));
      return sizeof(zip_stat_t);
    case ZIP_SOURCE_ERROR: {
      zip_error_t error;
      zip_error_init_with_code(&error, ZIP_ER_READ);
      return zip_error_to_data(&error, data, length);
    }
    case ZIP_SOURCE_SUPPORTS:
      return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE,
                                            ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, -1);
    default:
      return 0;
  }
}

}  // namespace

struct ZipWriter::Archive {
  zip_source_t* buffer = nullptr;
  zip_t* zip = nullptr;
  std::vector<std::unique_ptr<Source>> sources;
  std::exception_ptr failure;

  ~Archive() {
    if (zip != nullptr) zip_discard(zip);
    if (buffer != nullptr) zip_source_free(buffer);
  }
};

ZipWriter::ZipWriter() : archive_(std::make_unique<Archive>()) {
  zip_error_t error;
  zip_error_init(&error);
  archive_->buffer = zip_source_buffer_create(nullptr, 0, 0, &error);
  if (archive_->buffer == nullptr) throw std::bad_alloc();
  archive_->zip = zip_open_from_source(archive_->buffer, ZIP_TRUNCATE, &error);
  if (archive_->zip == nullptr) throw std::bad_alloc();
  zip_source_keep(archive_->buffer);
}

ZipWriter::~ZipWriter() = default;

void ZipWriter::Add(const std::string& name, NextPiece next, const std::string& comment) {
  auto& source = *archive_->sources.emplace_back(std::make_unique<Source>());
  source.next = std::move(next);
  source.failure = &archive_->failure;
  zip_source_t* content = zip_source_function(archive_->zip, serve, &source);
  if (content == nullptr) throw std::bad_alloc();
  const zip_int64_t index = zip_file_add(archive_->zip, name.c_str(), content, ZIP_FL_ENC_UTF_8);
  if (index < 0) {
    zip_source_free(content);
    throw std::bad_alloc();
  }
  const auto member = static_cast<zip_uint64_t>(index);
  // By default the library packs as well as it can. That takes several times as long, and saves one
  // percent.
  zip_set_file_compression(archive_->zip, member, ZIP_CM_DEFLATE, kPackingLevel);
  zip_file_set_dostime(archive_->zip, member, 0, kFirstDay, 0);
  if (comment.empty()) return;
  zip_file_set_comment(archive_->zip, member, comment.c_str(),
                       static_cast<zip_uint16_t>(comment.size()), ZIP_FL_ENC_UTF_8);
}

void ZipWriter::Write(std::ostream& out, const std::string& file) {
  if (zip_close(archive_->zip) != 0) {
    if (archive_->failure) std::rethrow_exception(archive_->failure);
    throw Error(ErrorCode::kSystem, file,
                std::string("cannot make the archive: ") +
                    zip_error_strerror(zip_get_error(archive_->zip)));
  }
  archive_->zip = nullptr;
  if (zip_source_open(archive_->buffer) != 0) throw std::bad_alloc();
  std::array<char, 1U << 16U> part{};
  while (true) {
    const zip_int64_t size = zip_source_read(archive_->buffer, part.data(), part.size());
    if (size <= 0) break;
    out.write(part.data(), size);
  }
  zip_source_close(archive_->buffer);
}

struct ZipReader::Archive {
  std::string name;
  zip_t* zip = nullptr;
  std::vector<ZipMember> members;

  ~Archive() {
    if (zip != nullptr) zip_discard(zip);
  }
};

ZipReader::ZipReader(const std::string& path, const std::string& name)
    : archive_(std::make_unique<Archive>()) {
  archive_->name = name;
  int code = 0;
  archive_->zip = zip_open(path.c_str(), ZIP_RDONLY, &code);
  if (archive_->zip == nullptr) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    throw Error(ErrorCode::kDocument, name, "is a damaged ZIP archive: " + reasonOf(&error));
  }
  list();
}

ZipReader::ZipReader(std::string_view bytes, const std::string& name)
    : archive_(std::make_unique<Archive>()) {
  archive_->name = name;
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
  if (source == nullptr) throw std::bad_alloc();
  archive_->zip = zip_open_from_source(source, ZIP_RDONLY, &error);
  if (archive_->zip == nullptr) {
    zip_source_free(source);
    throw Error(ErrorCode::kDocument, name, "is a damaged ZIP archive: " + reasonOf(&error));
  }
  list();
}

ZipReader::~ZipReader() = default;

void ZipReader::list() {
  const zip_int64_t count = zip_get_num_entries(archive_->zip, 0);
  if (count > static_cast<zip_int64_t>(kMostMembers)) {
    throw Error(ErrorCode::kDocument, archive_->name,
                "has " + std::to_string(count) + " members; at most " +
                    std::to_string(kMostMembers) + " are read");
  }
  for (zip_int64_t i = 0; i < count; ++i) {
    const auto index = static_cast<zip_uint64_t>(i);
    zip_stat_t info;
    ZipMember& member = archive_->members.emplace_back();
    if (zip_stat_index(archive_->zip, index, 0, &info) != 0) continue;
    if ((info.valid & ZIP_STAT_NAME) != 0 && info.name != nullptr) member.name = info.name;
    if ((info.valid & ZIP_STAT_SIZE) != 0) member.size = info.size;
    if ((info.valid & ZIP_STAT_COMP_SIZE) != 0) member.packedSize = info.comp_size;
    if ((info.valid & ZIP_STAT_CRC) != 0) member.crc = info.crc;
    zip_uint32_t length = 0;
    const char* comment = zip_file_get_comment(archive_->zip, index, &length, 0);
    if (comment != nullptr) member.comment.assign(comment, length);
  }
}

const std::vector<ZipMember>& ZipReader::Members() const {
  return archive_->members;
}

std::optional<std::size_t> ZipReader::Find(std::string_view name) const {
  const auto found = std::find_if(archive_->members.begin(), archive_->members.end(),
                                  [&](const ZipMember& member) { return member.name == name; });
  if (found == archive_->members.end()) return std::nullopt;
  return static_cast<std::size_t>(found - archive_->members.begin());
}

void ZipReader::Read(std::size_t member, const std::function<bool(std::string_view)>& take) const {
  const ZipMember& info = archive_->members[member];
  const auto refuse = [&](const std::string& why) {
    throw Error(ErrorCode::kDocument, archive_->name, "its member '" + info.name + "' " + why);
  };
  zip_file_t* file = zip_fopen_index(archive_->zip, member, 0);
  if (file == nullptr) {
    refuse(std::string("cannot be read: ") + zip_error_strerror(zip_get_error(archive_->zip)));
  }
  const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> owner(file, zip_fclose);
  // Do not trust the sizes in the list: count the bytes that are unpacked.
  const std::uint64_t most =
      std::min(kMostSize, std::max(kSmall, info.packedSize > kMostSize / kMostRatio
                                               ? kMostSize
                                               : info.packedSize * kMostRatio));
  std::array<char, 1U << 16U> part{};
  std::uint64_t done = 0;
  while (true) {
    const zip_int64_t size = zip_fread(file, part.data(), part.size());
    if (size < 0) {
      refuse(std::string("is damaged: ") + zip_error_strerror(zip_file_get_error(file)));
    }
    if (size == 0) return;
    done += static_cast<std::uint64_t>(size);
    if (done > most) {
      refuse("unpacks to more than " + std::to_string(most) + " bytes, so it is not read");
    }
    if (!take({part.data(), static_cast<std::size_t>(size)})) return;
  }
}

std::uint32_t ZipChecksum(std::uint32_t crc, std::string_view bytes) {
  return static_cast<std::uint32_t>(
      crc32_z(crc, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

}  // namespace vex2::lab
