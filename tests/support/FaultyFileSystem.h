#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vex2/framework/FileSystem.h"

namespace vex2::test {

enum class FileCall {
  open,
  createNew,  ///< an open that must create the file
  close,
  read,
  write,
  truncate,
  syncData,
  syncAll,
  lock,
  gate,  ///< entering or leaving the gate
  stat,
  statPath,
  rename,
  remove,
  copyAttributes
};

/// One call on the file system, with its arguments and result.
struct FileOperation {
  FileCall call;
  std::string path;          ///< path of the file; in a rename, the old path
  std::string to = {};       ///< in a rename, the new path
  std::uint64_t offset = 0;  ///< offset of a transfer; new length of a truncation
  std::uint64_t count = 0;   ///< bytes requested
  std::int64_t result = 0;
  std::vector<std::uint8_t> bytes = {};  ///< bytes written, if `KeepBytes` was called
};

/// A layer over the system's files that logs every call and injects faults. It is installed while
/// it exists. Calls of all kinds are counted together, from 0. Closing is logged, but neither
/// counted nor refused, so that no file descriptor leaks.
class FaultyFileSystem : public FileSystem {
 public:
  FaultyFileSystem();
  ~FaultyFileSystem() override;
  FaultyFileSystem(const FaultyFileSystem&) = delete;
  FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;

  /// Injected instead of an error number: memory runs out.
  static constexpr int kNoMemory = -1;

  /// Makes the call with the index `number` (from 0) fail with `error`; with `fromThenOn`, all
  /// later calls as well.
  void FailCall(int number, int error, bool fromThenOn = false);
  /// Makes `count` calls fail with `error`, beginning with the call with the index `number` (from
  /// 0).
  void FailCalls(int number, int count, int error);
  /// Makes calls of this kind fail after the first `after` of them; with `once`, only the next one.
  void FailKind(FileCall kind, int error, int after = 0, bool once = false);
  /// Ends the effect of `FailKind`.
  void Heal(FileCall kind) { failing_.erase(kind); }
  /// Makes every open for writing fail, as on a read-only document.
  void RefuseWriters(int error) { writersError_ = error; }
  /// Makes every open for reading fail, as on a write-only document.
  void RefuseReaders(int error) { readersError_ = error; }
  /// Limits every transfer to `bytes` bytes. With `interrupt`, every call that a signal can
  /// interrupt is interrupted once before it succeeds.
  void Shorten(std::size_t bytes, bool interrupt);

  enum class Moment { before, halfway, after };
  /// Kills the process with SIGKILL at the call with the index `number` (from 0): before the call
  /// takes effect, after it or, for a write, with half of its bytes written.
  void KillAt(int number, Moment moment);
  /// Counts and logs syncs without doing them, which saves time. The bytes that a killed process
  /// leaves to the system do not depend on syncs.
  void SkipSyncs() { skipsSyncs_ = true; }
  /// Keeps written bytes in the log.
  void KeepBytes() { keepsBytes_ = true; }

  /// Removes all faults, clears the log and counts calls from 0 again.
  void Restart();

  const std::vector<FileOperation>& Log() const { return log_; }
  /// The calls that change a file or order its changes, without interrupted ones, one letter each:
  /// (L)ock, (W)rite, (T)runcate, (D)ata sync, whole (S)ync, (R)ename.
  std::string Changes() const;
  /// The number of calls so far, not counting closes.
  int CallCount() const { return calls_; }
  /// Whether a call of this kind was refused; an interruption is not a refusal.
  bool WasRefused(FileCall kind) const;
  /// Whether an injected fault has occurred.
  bool HasFailed() const { return hit_; }

  int Open(const char* path, int flags, mode_t mode) override;
  int Close(int file) override;
  ssize_t ReadAt(int file, void* bytes, std::size_t count, std::uint64_t offset) override;
  ssize_t WriteAt(int file, const void* bytes, std::size_t count, std::uint64_t offset) override;
  int Truncate(int file, std::uint64_t length) override;
  int SyncData(int file) override;
  int SyncAll(int file) override;
  int Lock(int file, bool exclusive) override;
  int EnterGate(int file, bool exclusive) override;
  int LeaveGate(int file) override;
  int Stat(int file, struct stat& info) override;
  int StatPath(const char* path, struct stat& info) override;
  int Rename(const char* from, const char* to) override;
  int Remove(const char* path) override;
  int CopyAttributes(int model, int file) override;

 private:
  static constexpr std::size_t kNoLimit = SIZE_MAX;

  struct Fault {
    int error;
    int after;
    bool once;
  };

  template <typename Call>
  auto stage(FileOperation operation, Call call) -> decltype(call());
  int fault(FileCall kind);
  int faultOfKind(FileCall kind);
  std::size_t portion(std::size_t count) const;
  bool isKilled(int number, Moment moment) const { return number == killAt_ && moment == moment_; }

  FileSystem* before_;
  std::map<int, std::string> paths_;
  std::vector<FileOperation> log_;
  std::map<FileCall, Fault> failing_;
  int calls_ = 0;
  int failAt_ = -1;
  int failCount_ = 0;
  int error_ = 0;
  int killAt_ = -1;
  Moment moment_ = Moment::before;
  int writersError_ = 0;
  int readersError_ = 0;
  std::size_t most_ = kNoLimit;
  bool interrupts_ = false;
  bool interruptNow_ = false;
  bool skipsSyncs_ = false;
  bool keepsBytes_ = false;
  bool hit_ = false;
};

}  // namespace vex2::test
