#pragma once

#include <cstddef>
#include <cstdint>
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

/// A buffered binary file with a position.
///
/// Readers hold a shared advisory lock for as long as the file is open, writers an exclusive one;
/// an open that cannot have its lock within two seconds fails like any failed open. On a file
/// system without locks the file is used without. Positions and lengths are 64-bit throughout.
/// Writes are gathered in a buffer: they have reached the system after `Flush` or `Close`, and the
/// disk after `SyncData`. Not thread-safe; different objects are independent.
class VEX2_API CFile : public CObject {
 public:
  enum OpenFlags : unsigned {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareExclusive = 0x0010,  ///< the only sharing there is
    modeCreate = 0x1000,      ///< creates the file, and empties it once its lock is held
    modeNoTruncate = 0x2000,  ///< with modeCreate: keeps what the file holds
    typeBinary = 0x8000,      ///< the only type there is
  };
  enum SeekPosition { begin, current, end };

  CFile();
  ~CFile() override;
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  const CRuntimeClass* GetRuntimeClass() const override;
  static const CRuntimeClass* ClassRecord();

  /// Opens `path`, closing what was open before. False on failure, and then `error`, if given,
  /// says why; the file is closed.
  [[nodiscard]] virtual bool Open(const char* path, unsigned flags,
                                  CFileException* error = nullptr);

  /// Writes out what is buffered and closes. Closing a closed file does nothing. Throws
  /// `CFileException` when buffered bytes could not be written; the file is closed all the same.
  virtual void Close();

  /// Closes without writing out what is buffered. Never throws.
  virtual void Abort() noexcept;

  /// Reads up to `count` bytes at the position and moves it past them. Returns how many there
  /// were, below `count` only at the file's end. Throws when the system cannot read.
  virtual std::size_t Read(void* buffer, std::size_t count);

  /// Writes `count` bytes at the position and moves it past them. Throws `CFileException`.
  virtual void Write(const void* buffer, std::size_t count);

  /// Moves the position; past the end is allowed. Returns the new position. A position before the
  /// file's begin, or past what 63 bits hold, throws and changes nothing.
  virtual std::uint64_t Seek(std::int64_t offset, SeekPosition from);
  void SeekToBegin() { Seek(0, begin); }
  std::uint64_t SeekToEnd() { return Seek(0, end); }

  virtual std::uint64_t GetPosition() const;
  virtual std::uint64_t GetLength() const;
  /// Cuts or extends (with zeros) the file to `length` bytes and leaves the position as it is.
  /// Nothing happens on what is no regular file.
  virtual void SetLength(std::uint64_t length);
  /// Hands the buffered bytes to the system.
  virtual void Flush();

  /// The name, the name without extension, and the whole path that the file was opened with.
  virtual CString GetFileName() const;
  virtual CString GetFileTitle() const;
  virtual CString GetFilePath() const;

  /// False when no file is open or the system does not say.
  [[nodiscard]] bool GetStatus(CFileStatus& status) const;
  bool IsOpen() const { return handle_ >= 0; }

  /// A data barrier: returns when all that was written before is on the disk. Throws.
  void SyncData();

  /// The buffered bytes at the position without moving it: at least `atLeast` of them, fewer only
  /// at the file's end. `atLeast` is at most `kBufferSize`. Valid until the next operation.
  std::span<const std::uint8_t> Peek(std::size_t atLeast);

  /// Drops what is buffered and was not yet written out.
  void DiscardBuffer() noexcept { forgetBuffer(); }

  /// Bytes from the position to the end; 0 past the end.
  std::uint64_t GetRemaining() const;

  static constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

 protected:
  /// Opens a new, empty file for writing that takes the place of `path` only when
  /// `CloseReplacement` is called; until then, and when it never is, what stands at `path` is
  /// untouched. Where a rename cannot serve (several hard links, no regular file, a folder that
  /// takes no new file) `path` itself is opened and emptied. Permissions and symbolic links are
  /// kept. False on failure, also where `path` could not have been opened for writing.
  [[nodiscard]] bool OpenReplacement(const char* path, CFileException* error = nullptr);

  /// The same for a file that is open for reading and writing and is to be changed: from here on
  /// this is the new file, empty, and what stands at the path is untouched. False where a rename
  /// cannot serve: then the file is open as it was. Throws `CFileException` where it failed.
  [[nodiscard]] bool ReplaceOpenFile();

  /// Writes the first `count` bytes of what is being replaced, fewer where it is shorter, at the
  /// position.
  void CopyReplaced(std::uint64_t count);

  /// Device and number of a file.
  using Identity = std::pair<std::uint64_t, std::uint64_t>;

  /// Makes the new content durable and puts it in place, then closes. Gives the file that is there
  /// now. Throws `CFileException`, and then the file is closed and the old content is still in
  /// place, unless only the last step was refused, which makes the exchange itself durable.
  Identity CloseReplacement();

  /// The file that was opened last; what is or was to be replaced where that was a replacement.
  /// Both 0 where there is none.
  const Identity& GetIdentity() const { return identity_; }

 private:
  // Replaces files as a whole on behalf of the class that owns both.
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
  std::uint64_t length_ = 0;  // as the system has it; bytes still in the buffer may lie past it

  // One buffer serves both directions. It holds the bytes from bufferStart_ on: read from the
  // file, or, when dirty_, still to be written there.
  std::unique_ptr<std::uint8_t[]> buffer_;
  std::uint64_t bufferStart_ = 0;
  std::size_t bufferUsed_ = 0;
  std::size_t readAhead_ = 0;
  bool dirty_ = false;

  std::unique_ptr<Replacement> replacement_;
};
