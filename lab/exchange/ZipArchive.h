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

/// Makes a ZIP archive of members whose content comes in pieces, so that a member of any size takes
/// little memory. The same members make the same bytes.
class ZipWriter {
 public:
  /// Makes the text the next piece of a member; false when there is none left. An exception ends
  /// the archive and is thrown by `Write`.
  using NextPiece = std::function<bool(std::string& piece)>;

  ZipWriter();
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  /// Adds a member; `comment` stands beside it in the archive's list. `next` is called when the
  /// archive is written.
  void Add(const std::string& name, NextPiece next, const std::string& comment = {});
  /// Writes the archive. Throws an error that names `file` when it cannot be made.
  void Write(std::ostream& out, const std::string& file);

 private:
  struct Archive;

  std::unique_ptr<Archive> archive_;
};

/// A member of an archive, as the archive's list has it.
struct ZipMember {
  std::string name;
  std::uint64_t size = 0;        ///< bytes when it is unpacked
  std::uint64_t packedSize = 0;  ///< bytes in the archive
  std::uint32_t crc = 0;
  std::string comment;
};

/// Reads a ZIP archive. Nothing in it is believed: members are read by their places in its list,
/// never by paths; one that unpacks to more than `ZipReader::kMostSize` bytes, or to more than
/// `kMostRatio` times its packed size and more than a few megabytes, is refused.
class ZipReader {
 public:
  static constexpr std::uint64_t kMostSize = 4ULL << 30U;  ///< readings of some hundred runs
  static constexpr std::uint64_t kMostRatio = 500;         ///< even flat curves pack less
  static constexpr std::uint64_t kSmall = 16U << 20U;      ///< no bomb, however well it packs
  static constexpr std::size_t kMostMembers = 10'000;      ///< of tables of partitions, one a well

  /// Reads the list of the archive in the file at `path`. Throws an error that names `name` when it
  /// is none.
  ZipReader(const std::string& path, const std::string& name);
  /// Reads the list of the archive in `bytes`, which must outlive the reader. Throws an error that
  /// names `name` when it is none.
  ZipReader(std::string_view bytes, const std::string& name);
  ~ZipReader();
  ZipReader(const ZipReader&) = delete;
  ZipReader& operator=(const ZipReader&) = delete;

  const std::vector<ZipMember>& Members() const;
  /// The place of the member of that name; nothing if there is none.
  std::optional<std::size_t> Find(std::string_view name) const;
  /// Hands `take` the member's bytes, piece by piece, until it returns false. Throws an error when
  /// the member is damaged, packed in a way that is not supported, or refused.
  void Read(std::size_t member, const std::function<bool(std::string_view piece)>& take) const;

 private:
  struct Archive;

  void list();

  std::unique_ptr<Archive> archive_;
};

/// The checksum that archives keep of their members, of `bytes` after those of which it was `crc`.
std::uint32_t ZipChecksum(std::uint32_t crc, std::string_view bytes);

}  // namespace vex2::lab
