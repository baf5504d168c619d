#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vex2::lab {

/// Writes a ZIP archive. The content of a member comes in pieces, so that a member of any size
/// takes little memory. The same members always give the same bytes.
class ZipWriter {
 public:
  /// Sets `piece` to the next piece of a member. Returns false if there is none left. An exception
  /// ends the archive, and `Write` passes it on.
  using NextPiece = std::function<bool(std::string& piece)>;

  ZipWriter();
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  /// Adds a member; `comment` is stored with it in the list of the archive. `next` is called when
  /// the archive is written.
  void Add(const std::string& name, NextPiece next, const std::string& comment = {});
  /// Writes the archive. Throws an error that names `file` if it cannot be made.
  void Write(std::ostream& out, const std::string& file);

 private:
  struct Archive;

  std::unique_ptr<Archive> archive_;
};

/// A member of an archive, as its list describes it.
struct ZipMember {
  std::string name;
  std::uint64_t size = 0;        ///< bytes when unpacked
  std::uint64_t packedSize = 0;  ///< bytes in the archive
  std::uint32_t crc = 0;
  std::string comment;
};

/// Reads a ZIP archive. Nothing in it is trusted. Members are read by their index in the list,
/// never by a path. A member is refused if it unpacks to more than `ZipReader::kMostSize` bytes. It
/// is also refused if it unpacks to more than `kMostRatio` times its packed size, unless it has at
/// most `kSmall` bytes.
class ZipReader {
 public:
  /// Enough for the readings of some hundred runs.
  static constexpr std::uint64_t kMostSize = 4ULL << 30U;
  static constexpr std::uint64_t kMostRatio = 500;     ///< even flat curves have a smaller ratio
  static constexpr std::uint64_t kSmall = 16U << 20U;  ///< so small that any ratio is harmless
  /// Enough for one table of partitions per well.
  static constexpr std::size_t kMostMembers = 10'000;

  /// Reads the list of members from the archive in the file at `path`. Throws an error that names
  /// `name` if the file is not an archive.
  ZipReader(const std::string& path, const std::string& name);
  /// Reads the list of members from the archive in `bytes`, which must outlive the reader. Throws
  /// an error that names `name` if `bytes` are not an archive.
  ZipReader(std::string_view bytes, const std::string& name);
  ~ZipReader();
  ZipReader(const ZipReader&) = delete;
  ZipReader& operator=(const ZipReader&) = delete;

  const std::vector<ZipMember>& Members() const;
  /// The index of the member with this name; nothing if there is none.
  std::optional<std::size_t> Find(std::string_view name) const;
  /// Calls `take` with the member's bytes, piece by piece, until it returns false. Throws an error
  /// if the member is damaged, is packed in a way that is not supported, or is refused.
  void Read(std::size_t member, const std::function<bool(std::string_view piece)>& take) const;

 private:
  struct Archive;

  void list();

  std::unique_ptr<Archive> archive_;
};

/// Continues a checksum, as archives store it for their members: `crc` is that of the bytes before
/// `bytes`.
std::uint32_t ZipChecksum(std::uint32_t crc, std::string_view bytes);

}  // namespace vex2::lab
