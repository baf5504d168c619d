#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "vex2/framework/CFileException.h"
#include "vex2/framework/CFileStatus.h"
#include "vex2/framework/CObject.h"
#include "vex2/framework/CString.h"
#include "vex2/framework/Export.h"
#include "vex2/framework/FileError.h"

namespace vex2 {
class DocumentStore;
}  // namespace vex2

/// A buffered binary file. Its file position is the offset at which it reads or writes next.
///
/// While the file is open, a reader holds a shared advisory lock and a writer an exclusive one. An
/// open that does not get its lock within two seconds fails like any failed open. On a file system
/// without locks the file is used without a lock. Offsets and lengths have 64 bits. Writes are
/// gathered in a buffer: they have reached the system after `Flush` or `Close`, and the disk after
/// `SyncData`. Not thread-safe; different objects are independent.
class VEX2_API CFile : public CObject {
 public:
  /// How `Open` opens a file. Combine values with "or".
  enum OpenFlags : unsigned {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareExclusive = 0x0010,  ///< the only sharing mode
    modeCreate = 0x1000,      ///< creates the file, and truncates it once it is locked
    modeNoTruncate = 0x2000,  ///< with modeCreate: keeps the content of the file
    typeBinary = 0x8000,      ///< the only type
  };
  /// The offset from which `Seek` counts.
  enum SeekPosition { begin, current, end };

  CFile();
  ~CFile() override;
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  /// The run-time description of this class.
  static const CRuntimeClass* ClassRecord();

  /// Closes the file that is open, if any, and opens `path`. If that fails, returns false and sets
  /// `error`, if given, to the reason; no file is open then.
  [[nodiscard]] virtual bool Open(const char* path, unsigned flags,
                                  CFileException* error = nullptr);

  /// Writes the buffered bytes and closes the file. Does nothing if no file is open. Throws
  /// `CFileException` if buffered bytes could not be written; the file is closed even then.
  virtual void Close();

  /// Closes the file without writing the buffered bytes. Never throws.
  virtual void Abort() noexcept;

  /// Reads up to `count` bytes at the file position and moves the position past them. Returns the
  /// number of bytes read, which is below `count` only at the end of the file. Throws
  /// `CFileException` if the system cannot read.
  virtual std::size_t Read(void* buffer, std::size_t count);

  /// Writes `count` bytes at the file position and moves the position past them. Throws
  /// `CFileException`.
  virtual void Write(const void* buffer, std::size_t count);

  /// Moves the file position, which may be past the end of the file, and returns the new position.
  /// Throws `CFileException` and changes nothing if the position would be below 0 or would not fit
  /// in 63 bits.
  virtual std::uint64_t Seek(std::int64_t offset, SeekPosition from);
  /// Moves the file position to offset 0.
  void SeekToBegin() { Seek(0, begin); }
  /// Moves the file position to the end of the file and returns it.
  std::uint64_t SeekToEnd() { return Seek(0, end); }

  /// The file position: the offset at which the file is read or written next.
  virtual std::uint64_t GetPosition() const;
  /// The length of the file in bytes, including bytes that are still in the buffer.
  virtual std::uint64_t GetLength() const;
  /// Truncates the file to `length` bytes, or extends it with zeros, and keeps the file position.
  /// Does nothing if the file is not a regular file.
  virtual void SetLength(std::uint64_t length);
  /// Passes the buffered bytes to the system. Throws `CFileException`.
  virtual void Flush();

  /// The name of the file, without its folder, from the path with which it was opened.
  virtual CString GetFileName() const;
  /// The name of the file, without folder and extension, from the path with which it was opened.
  virtual CString GetFileTitle() const;
  /// The whole path with which the file was opened.
  virtual CString GetFilePath() const;

  /// Fills `status`. Returns false if no file is open or the system returns an error.
  [[nodiscard]] bool GetStatus(CFileStatus& status) const;
  /// Whether a file is open.
  bool IsOpen() const { return handle_ >= 0; }

  /// Returns when all bytes written before are on the disk. Throws `CFileException`.
  void SyncData();

  /// Returns the buffered bytes at the file position, without moving it: at least `atLeast` bytes,
  /// or fewer at the end of the file. `atLeast` is at most `kBufferSize`. The file owns the bytes;
  /// they are valid until its next operation. Throws `CFileException`.
  std::span<const std::uint8_t> Peek(std::size_t atLeast);

  /// If the buffer holds the next `count` bytes, reads them as `Read` does; otherwise returns false
  /// and does nothing. A fast path for the short fields that make up most of a document.
  [[nodiscard]] bool ReadBuffered(void* bytes, std::size_t count) noexcept {
    const std::uint64_t skip = position_ - bufferStart_;  // huge if position_ is before the buffer
    if (dirty_ || skip > bufferUsed_ || count > bufferUsed_ - skip) return false;
    if (count != 0) std::memcpy(bytes, buffer_.get() + skip, count);
    position_ += count;
    return true;
  }

  /// Drops the buffer, including bytes that were not yet passed to the system.
  void DiscardBuffer() noexcept { forgetBuffer(); }

  /// The number of bytes from the file position to the end of the file; 0 if the position is past
  /// it.
  std::uint64_t GetRemaining() const;

  /// The size of the buffer, in bytes.
  static constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

 protected:
  /// Opens a new, empty file for writing. `CloseReplacement` puts it in place of the file at
  /// `path`; without that call, the file at `path` stays unchanged. If the file cannot be replaced
  /// by a rename (it has several hard links, it is not a regular file, or no file can be created in
  /// its folder), opens and truncates `path` itself. Keeps permissions and symbolic links. Returns
  /// false on failure, and always if an existing file at `path` cannot be opened for writing.
  [[nodiscard]] bool OpenReplacement(const char* path, CFileException* error = nullptr);

  /// Starts to replace the file that is open for reading and writing: this object becomes the new,
  /// empty file, and the file at the path stays unchanged until `CloseReplacement`. Returns false,
  /// with the file open as before, if it cannot be replaced by a rename. Throws `CFileException` on
  /// failure.
  [[nodiscard]] bool ReplaceOpenFile();

  /// Writes the first `count` bytes of the file that is being replaced at the file position, or all
  /// of them if that file is shorter. Throws `CFileException`.
  void CopyReplaced(std::uint64_t count);

  /// The device and the number of a file.
  using Identity = std::pair<std::uint64_t, std::uint64_t>;

  /// Syncs the new file to the disk, renames it over the old one, and closes it. Returns the
  /// identity of the file that is now at the path. If it throws `CFileException`, the file is
  /// closed and the old content is still in place. There is one exception: if only the sync of the
  /// folder failed, the new file is in place, but a power failure may bring back the old one.
  Identity CloseReplacement();

  /// The identity of the file that was opened last; during a replacement, of the file that is being
  /// replaced. Both numbers are 0 if no file was ever opened.
  const Identity& GetIdentity() const { return identity_; }

 private:
  // DocumentStore calls the replacement operations for the manager.
  friend class vex2::DocumentStore;
  struct Replacement;

  bool openLocked(const char* path, int flags, bool exclusive, CFileException* error);
  int lockHandle(bool exclusive, std::int64_t deadline);
  bool isStillAt(const char* path) const;
  bool beginReplacement(const std::string& target, bool exists, CFileException& error);
  bool openTemporary(CFileException& error);
  bool putInPlace();
  void copyInto(int target);
  void syncAll(int handle);
  void writeOut();
  void writeAt(int handle, const std::uint8_t* bytes, std::size_t count, std::uint64_t offset);
  std::size_t readAt(std::uint8_t* bytes, std::size_t count, std::uint64_t offset);
  std::size_t readFrom(int handle, std::uint8_t* bytes, std::size_t count, std::uint64_t offset);
  void fill(std::size_t atLeast);
  void useBuffer(vex2::FileOperation operation);
  void forgetBuffer() noexcept;
  void releaseHandle() noexcept;
  [[noreturn]] void fail(vex2::FileOperation operation, int error, std::uint64_t offset) const;

  int handle_ = -1;
  bool regular_ = false;
  std::string path_;
  Identity identity_;
  std::uint64_t position_ = 0;
  std::uint64_t length_ = 0;  // of the file as the system sees it; buffered bytes may follow

  // One buffer for reading and writing. It holds the bytes that begin at the offset bufferStart_:
  // read from the file or, if dirty_, not yet written to it.
  std::unique_ptr<std::uint8_t[]> buffer_;
  std::uint64_t bufferStart_ = 0;
  std::size_t bufferUsed_ = 0;
  std::size_t readAhead_ = 0;
  bool dirty_ = false;

  std::unique_ptr<Replacement> replacement_;
};
