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
  createNew,  ///< an open that must make the file
  close,
  read,
  write,
  truncate,
  syncData,
  syncAll,
  lock,
  gate,  ///< entered or left
  stat,
  statPath,
  rename,
  remove,
  copyAttributes
};

/// One call on the file system as it was made, and what it answered.
struct FileOperation {
  FileCall call;
  std::string path;          ///< of the file worked on; where a rename comes from
  std::string to = {};       ///< where a rename leads
  std::uint64_t offset = 0;  ///< of a transfer; the new length of a truncation
  std::uint64_t count = 0;   ///< bytes asked for
  std::int64_t result = 0;
  std::vector<std::uint8_t> bytes = {};  ///< that were written, where they are kept
};

/// The system's files behind a layer that logs every call and stages faults. Installed while it
/// lives. Calls are counted from 0 over all kinds; closing is logged but neither counted nor
/// refused, so that nothing is leaked.
class FaultyFileSystem : public FileSystem {
 public:
  FaultyFileSystem();
  ~FaultyFileSystem() override;
  FaultyFileSystem(const FaultyFileSystem&) = delete;
  FaultyFileSystem& operator=(const FaultyFileSystem&) = delete;

  /// What a fault is when it is no error number: memory that runs out.
  static constexpr int kNoMemory = -1;

  /// Lets call number `number` fail with `error`, and with `fromThenOn` all that follow it.
  void FailCall(int number, int error, bool fromThenOn = false);
  /// Lets `count` calls fail, the first of them number `number`.
  void FailCalls(int number, int count, int error);
  /// Lets calls of this kind fail once `after` of them went well, or `once` the one that follows.
  void FailKind(FileCall kind, int error, int after = 0, bool once = false);
  /// Ends what `FailKind` began.
  void Heal(FileCall kind) { failing_.erase(kind); }
  /// Lets every opening for writing fail, as on a document that is for reading only.
  void RefuseWriters(int error) { writersError_ = error; }
  /// Lets every opening for reading fail, as on a document that may only be written.
  void RefuseReaders(int error) { readersError_ = error; }
  /// Transfers move at most `bytes` at a time; and with `interrupt` every call that a signal can
  /// interrupt is interrupted once before it is carried out.
  void Shorten(std::size_t bytes, bool interrupt);

  enum class Moment { before, halfway, after };
  /// Kills the process, as nothing can prevent, at call number `number`: before it takes effect,
  /// after it, or, if it writes, with half of its bytes written.
  void KillAt(int number, Moment moment);
  /// Lets syncing be counted and logged but cost nothing. What a killed process leaves to the
  /// system does not depend on it.
  void SkipSyncs() { skipsSyncs_ = true; }
  /// Keeps what is written in the log.
  void KeepBytes() { keepsBytes_ = true; }

  /// Ends all faults, forgets the log and counts calls from 0 again.
  void Restart();

  const std::vector<FileOperation>& Log() const { return log_; }
  /// The calls that change a file or order its changes, interrupted ones left out, a letter each:
  /// (L)ock, (W)rite, (T)runcate, (D)ata sync, whole (S)ync, (R)ename.
  std::string Changes() const;
  /// Calls that could have failed.
  int CallCount() const { return calls_; }
  /// Whether a call of this kind was refused, and not only interrupted.
  bool WasRefused(FileCall kind) const;
  /// Whether a staged fault has struck.
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
