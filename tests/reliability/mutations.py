"""The mutations of mutate.py: each removes one safeguard of documents or their readers."""

import dataclasses


@dataclasses.dataclass(frozen=True)
class Mutation:
    kind: str
    name: str
    file: str
    what: str  # what is removed, in words
    original: str  # occurs once in the file
    replacement: str
    tests: str  # the test programs, optionally with a pattern, that are most likely to notice
    redundant: str = ""  # why no test can notice


def barrier(*fields, **more):
    return Mutation("barrier", *fields, **more)


def lock(*fields, **more):
    return Mutation("lock", *fields, **more)


def check(*fields, **more):
    return Mutation("check", *fields, **more)


FRAMES = "vex2/manager/Vex2FileManagerFrames.cpp"
FRAME_FILES = "vex2/manager/Vex2FileManagerFrameFiles.cpp"
FILES = "vex2/manager/Vex2FileManagerFiles.cpp"
HEADER = "vex2/manager/Vex2FileManagerHeader.cpp"
STATUS = "vex2/manager/Vex2FileManagerStatus.cpp"
STORE = "vex2/storage/DocumentStore.cpp"
SETUP = "vex2/manager/Vex2FileManagerSetup.cpp"
RESULTS = "vex2/manager/Vex2FileManagerAnalysis.cpp"
REPLACEMENT = "vex2/framework/CFileReplacement.cpp"
FILE = "vex2/framework/CFile.cpp"
SYSTEM = "vex2/framework/FileSystem.cpp"
BACKUP = "vex2/framework/Backup.cpp"
FRAME_LOG = "vex2/storage/FrameLog.cpp"
WALKER = "vex2/format/RecordWalker.cpp"
BLOCK_HEAD = "vex2/format/DataBlockHead.cpp"
GEOMETRY = "vex2/format/DataBlockHead.h"
LIST = "vex2/container/CContainerComp.cpp"
BYTES = "vex2/container/CBlockValueComp.cpp"
COMPONENT = "vex2/container/CComponent.cpp"
DATA = "vex2/run/AcquisitionDataComp.cpp"
STORED_RECORDS = "vex2/format/StoredRecords.h"
SPECTRUM_SET = "vex2/setup/SpectrumSetComp.cpp"
PLATES = "vex2/study/CMultiPlateComp.cpp"

BARRIERS = (
    barrier("frame-before-length", FRAME_LOG, "the barrier between a frame and the length that counts it",
            "  store_.Barrier();\n  patch(std",
            "  patch(std",
            "manager:Durability*:DataBlocks*"),
    barrier("length", FRAME_LOG, "the barrier behind the length of a commit",
            "  WriteWordAt(file_, offset, word);\n  store_.Barrier();",
            "  WriteWordAt(file_, offset, word);",
            "manager:Durability*:DataBlocks*"),
    barrier("first-block", FRAME_LOG, "the barrier between the first block and its tag",
            "  cutBehindPosition();\n  store_.Barrier();\n  moveTo",
            "  cutBehindPosition();\n  moveTo",
            "manager:Durability*:DataBlocks*"),
    barrier("first-tag", FRAME_LOG, "the barrier between the first block's tag and the header's offset",
            "kTagLength);\n  store_.Barrier();",
            "kTagLength);",
            "manager:Durability*:DataBlocks*"),
    barrier("first-offset", FRAME_LOG, "the barrier behind the header's offset",
            "kRawDataOffsetAt, offset);\n  store_.Barrier();",
            "kRawDataOffsetAt, offset);",
            "manager:Durability*:DataBlocks*"),
    barrier("first-untagged", FRAME_LOG, "that the first block goes without its tag until it is on the disk",
            "file_.Write(kUncommittedTag.data(), kUncommittedTag.size());",
            "file_.Write(held_.Tag().data(), kTagLength);",
            "reliability:*PowerLoss*"),
    barrier("status", STATUS, "the barrier behind the run's status",
            "    state_->store.Barrier();\n",
            "",
            "manager:AcquisitionStatus*"),
    barrier("change-in-place", STORE, "the barrier behind a block that was replaced in place",
            "  } else {\n    Barrier();",
            "  } else {",
            "manager:Durability*"),
    barrier("new-file", REPLACEMENT, "the sync of a new file before it takes the old one's place",
            "    syncAll(handle_);\n", "", "framework:Replacement* reliability:*PowerLoss*"),
    barrier("folder", REPLACEMENT, "the sync of the folder behind that exchange",
            "const int synced = vex2::SyncFolderOf(replacement.target); synced < 0", "const int synced = 0; synced < 0",
            "framework:Replacement* reliability:*PowerLoss*"),
    barrier("copied-over", REPLACEMENT, "the sync of an old file that took the new content",
            "  syncAll(target);\n", "", "framework:Replacement*"),
    barrier("backup", BACKUP, "the sync of a backup", "  target.SyncData();\n", "", "manager:PartlyRead*"),
    barrier("backup-folder", BACKUP, "the sync of the backup's folder",
            "const int status = SyncFolderOf(to); status < 0", "const int status = 0; status < 0",
            "manager:PartlyRead*"),
    barrier("sync-writes-out", FILE, "that a sync writes out what is buffered",
            "  writeOut();\n  int status = 0;\n  do {\n    status = CurrentFileSystem().SyncData",
            "  int status = 0;\n  do {\n    status = CurrentFileSystem().SyncData", "framework:File.*"),
    barrier("folder-sync-fails", SYSTEM, "that a failed sync of a folder is a failure",
            "return synced == -EINVAL ? 0 : synced;", "return 0 * synced;",
            "framework:Replacement*"),
    barrier("data-sync", SYSTEM, "the system's sync of data", "orError(::fdatasync(file))", "0 * file", "framework:SystemFiles*"),
    barrier("file-sync", SYSTEM, "the system's sync of a file", "orError(::fsync(file))", "0 * file", "framework:SystemFiles*"),
    barrier("committed-end", FRAME_LOG, "that a commit goes over uncommitted bytes",
            "if (store_.IsAsCommitted()) return",
            "if (file_.IsOpen()) return",
            "storage"),
    barrier("uncommitted-block-cut", FRAME_LOG, "that the first commit cuts off what is left of a longer uncommitted block",
            "  cutBehindPosition();\n  store_.Barrier();\n  moveTo",
            "  store_.Barrier();\n  moveTo",
            "storage"),
    barrier("only-uncommitted", FRAME_LOG, "that records behind the data are not taken for uncommitted bytes",
            "Uncommitted::kCommit && recordsFollow(file, frames.end)",
            "Uncommitted::kCommit && false",
            "storage"),
    barrier("one-frame-uncommitted", FRAME_LOG, "that at most a frame is taken for uncommitted bytes",
            "range.fileEnd - end <= range.frameSize ? Uncommitted::kCommit : Uncommitted::kMore",
            "Uncommitted::kCommit",
            "storage"),
    barrier("frames-uncommitted", FRAME_LOG, "that frames which are not the writer's are never written over",
            "    if (!held.IsFrame(file, frame)) return false;\n",
            "",
            "storage"),
    barrier("more-uncommitted", FRAME_LOG, "that more frames than the writer has are never written over",
            "  if (frames > held.Frames()) return false;\n",
            "",
            "storage"),
    barrier("other-plate", FRAME_LOG, "that the block of a plate of another size is left alone",
            "block.head.wells != held.Wells()) {",
            "false) {",
            "storage"),
    barrier("partly-read", FILES, "the backup of a document that was read in part before it is saved over",
            "if (state_->BackUpPartlyRead(kept.GetString()) != kSuccess ||\n",
            "if (false ||\n",
            "manager:PartlyRead*"),
)

LOCKS = (
    lock("writer-exclusive", SYSTEM, "that a writer's lock is exclusive", "(exclusive ? LOCK_EX : LOCK_SH)",
         "(exclusive ? LOCK_SH : LOCK_SH)", "framework:FileLock*"),
    lock("readers-shared", SYSTEM, "that readers share their lock", "(exclusive ? LOCK_EX : LOCK_SH)",
         "(exclusive ? LOCK_EX : LOCK_EX)", "framework:FileLock*"),
    lock("reader", FILE, "the reader's lock", "  auto& files = CurrentFileSystem();\n  // A waiter",
         "  auto& files = CurrentFileSystem();\n  if (!exclusive) return 0;\n  // A waiter", "framework:FileLock*"),
    lock("writer", FILE, "the writer's lock", "  auto& files = CurrentFileSystem();\n  // A waiter",
         "  auto& files = CurrentFileSystem();\n  if (exclusive) return 0;\n  // A waiter", "framework:FileLock*"),
    lock("gate", FILE, "the gate that keeps out those who come later", "isNext ? 0 : files.EnterGate(handle_, exclusive)",
         "isNext ? 0 : 0", "framework:FileLock* reliability:TwoPrograms*"),
    lock("gate-left", FILE, "that the gate is left with the lock", "static_cast<void>(files.LeaveGate(handle_));", "",
         "framework:FileLock* reliability:TwoPrograms*"),
    lock("gate-shared", SYSTEM, "that readers pass the gate side by side", "exclusive ? F_WRLCK : F_RDLCK",
         "exclusive ? F_WRLCK : F_WRLCK", "framework:FileLock* reliability:TwoPrograms*"),
    lock("locked-anew", FILE, "that the file in a replaced one's place is locked anew", "if (isStillAt(path)) break;",
         "break;", "framework:FileLock* reliability:TwoPrograms*"),
    lock("patience", FILE, "the end of waiting for a lock",
         "if (files.Milliseconds() >= deadline) return EWOULDBLOCK;",
         "if (files.Milliseconds() < 0 * deadline) return EWOULDBLOCK;", "framework:FileLock*"),
    lock("truncated-locked", FILE, "that a file is emptied only once it is locked", "result |= O_CREAT;",
         "result |= O_CREAT | ((flags & CFile::modeNoTruncate) == 0 ? O_TRUNC : 0);", "framework:FileLock*:File.*"),
    lock("save", REPLACEMENT, "that a save locks the old file", "openLocked(path, O_WRONLY, true, &why)",
         "openLocked(path, O_WRONLY, false, &why)", "framework:Replacement*:FileLock* reliability:TwoPrograms*"),
)

CHECKS = (
    check("nesting", COMPONENT, "the limit of 64 on nesting", "if (nesting.IsTooDeep()) return vex2::kNotFound;", "",
          "reliability:*Nesting* manager:Hostile*"),
    check("walker-nesting", WALKER, "the limit on nesting where records are walked over",
          "if (depth > kMaxNesting) return stop(record, Reason::kTooDeep);", "", "format"),
    check("bytes", BYTES, "a record's length against the bytes that are left",
          "if (!vex2::HasBytesLeft(*file, GetLength()))", "if (false)", "container reliability:*HostileFields*"),
    check("well-numbers", BLOCK_HEAD, "a block's wells against the bytes that are left",
          "if (!HasBytesLeft(file, sizeof(std::uint16_t) * std::uint64_t{count})) return ShortRead(file);", "",
          "format run reliability:*HostileFields*"),
    check("frames", DATA, "a block's frames times their size against the bytes that are left",
          "if (!vex2::HasBytesLeft(file, size)) {", "if (false) {",
          "run reliability:*HostileFields*"),
    check("entries", SPECTRUM_SET, "a calibration's entries times their size against the bytes that are left",
          "if (has(std::uint64_t{count} * fixedSizeOf(record.entries))) record", "record",
          "setup reliability:*HostileFields*"),
    check("list-room", LIST, "that room is made for few records, whatever a list counts",
          "std::min<std::size_t>(count_, kUsualChildren)", "count_", "reliability:*HostileFields*:*Nesting*"),
    check("unknown-shortened", LIST, "that an unknown record keeps no more bytes than the file holds",
          "shortenToFile(*child, *file);", "if (child == nullptr) shortenToFile(*child, *file);", "container manager:Hostile*"),
    check("study-full", PLATES, "the limit of 65,535 on the plates of a study",
          " || GetChildCount() >= std::numeric_limits<std::uint16_t>::max()", "", "study manager"),
    check("list-overflow", LIST, "that a list's length fits 32 bits",
          "  if (length > std::numeric_limits<std::uint32_t>::max()) return false;\n", "", "container manager"),
    check("list-underflow", LIST, "that a list's length does not fall below 0",
          "length = length >= removed + fixedLength_ ? length - removed", "length = true ? length - removed",
          "container setup manager"),
    check("study-overflow", PLATES, "that a study's length fits 32 bits",
          "std::min(GetLength() + plate->GetSize(), kMaxLength)", "kMaxLength & (GetLength() + plate->GetSize())",
          "study manager"),
    check("counter-overflow", COMPONENT, "that the bytes of a record are counted up to 32 bits",
          "std::min(std::uint64_t{counter} + length_ + kRecordHeadSize, kMaxCount)",
          "kMaxCount & (std::uint64_t{counter} + length_ + kRecordHeadSize)", "container manager"),
    check("block-overflow", DATA, "that a block's length fits 32 bits", "  if (!canGrow() || !makeRoom(index)) return false;",
          "  if (!makeRoom(index)) return false;", "run manager"),
    check("frame-overflow", DATA, "that a frame's end fits 32 bits",
          " || end > std::numeric_limits<std::uint32_t>::max()) return false;", " || end == 1) return false;", "run manager"),
    check("well-position", DATA, "the place of a well to be filled against the plate's size",
          "position < 0 || position >= GetWellCount() || !canGrow()", "!canGrow()", "run manager"),
    check("well-below", DATA, "that a well to be filled is on the plate", "if (position < 0 || position >= ",
          "if (position >= ", "run manager"),
    check("written-frame", DATA, "the index of a frame to be committed against the count",
          "  if (index < 0 || index >= GetFrameCount()) return vex2::kNoSuchFrame;\n", "", "manager"),
    check("read-frame", FRAMES, "the index of a frame to be read from memory against the count",
          "  if (frameIndex < 0 || frameIndex >= block->GetFrameCount()) return kNoSuchFrame;\n", "", "manager:Frames*"),
    check("read-record", FRAMES, "the index of a frame of a well's record against the count",
          "frameIndex < 0 || frameIndex >= block->GetFrameCount() || position", "position", "manager:Frames*"),
    check("read-well", FRAMES, "a well's place in a frame against the plate's size",
          " || position < 0 ||\n      position >= block->GetWellCount()", "", "manager:Frames*"),
    check("no-wells", GEOMETRY, "that a block without wells has no frames",
          "if (wells == 0 || length < kBlockFixedSize) return 0;", "if (length < kBlockFixedSize) return 0;",
          "run manager:Hostile*"),
    check("block-head", GEOMETRY, "a block's length against that of its head",
          "if (wells == 0 || length < kBlockFixedSize) return 0;", "if (wells == 0) return 0;", "run manager:Hostile*"),
    check("whole-frames", GEOMETRY, "a block's length against that of its head, for frames read alone",
          "if (wells == 0 || length < FramesOffset(wells)) return 0;", "if (wells == 0) return 0;",
          "manager:ReadFromAFile*:Frames*"),
    check("no-block-alone", FRAME_FILES, "that a document without a block has no frames to be read alone",
          "  if (blockOffset <= 0) return kSuccess;\n", "", "manager:ReadFromAFile*:Frames*"),
    check("frame-alone", FRAME_FILES, "the index of a frame read alone against the count",
          " || index >= geometry.frameCount) return kSuccess;", ") return kSuccess;", "manager:ReadFromAFile*"),
    check("cut-record", STORED_RECORDS, "a well's record against the bytes that are left",
          "if (whole == 0) return ShortRead(file);", "if (bytes.empty()) return ShortRead(file);\n    if (whole == 0) whole = 1;", "manager reliability:*CutAnywhere*"),
    check("magic", HEADER, "that a document begins with its code",
          "    if (!state_->IsDocument(*this)) return static_cast<int>(vex2::kReadFailed);\n",
          "",
          "manager:Lifecycle*"),
    check("patched-header", STORE, "that a position is set only in a whole header",
          " || file_.GetLength() < HeaderLayout::kSize) return",
          ") return",
          "manager:ThermocycleDocument*"),
    check("usage-no-rows", SETUP, "that a usage table has rows", "rows < 1 || rows", "rows", "manager:UsageArray*:Header*"),
    check("usage-columns", SETUP, "the columns of a usage table against the 32 of a row's mask",
          " || columns > kMaxColumns) {\n    return false;\n  }\n  return guarded(vex2::kWriteFailed",
          ") {\n    return false;\n  }\n  return guarded(vex2::kWriteFailed", "manager:UsageArray*:Header*"),
    check("usage-read-columns", SETUP, "the columns of a header against the 32 of a row's mask",
          " || columns > kMaxColumns) {\n    return false;\n  }\n  return guarded(vex2::kReadFailed",
          ") {\n    return false;\n  }\n  return guarded(vex2::kReadFailed", "manager:UsageArray*:Header*"),
    check("least-well", RESULTS, "that well INT_MIN has no index", "return well >= 1 ? well - 1 : -1;", "return well - 1;",
          "manager:Analysis*"),
    check("result-index", "vex2/framework/CPtrArray.cpp", "the index of a result against the table",
          "  if (holds(index)) entries_", "  entries_", "framework:CPtrArrayTest* manager:Analysis*"),
    check("result-asked", "vex2/framework/CPtrArray.cpp", "the index of a result that is asked for against the table",
          "return holds(index) ? entries_", "return true ? entries_", "framework:CPtrArrayTest* manager:Analysis*"),
    check("component-index", "vex2/manager/Vex2FileManager.cpp", "the index of a component",
          "return index >= 0 && index < GetAllComponentCount()\n", "return index != 99999\n", "manager:Lifecycle*"),
    check("file-end", FILES, "that the file's end is the end of reading", "got < tag.size()) {", "got > tag.size()) {",
          "manager:PartlyRead*:Hostile.*"),
)

MUTATIONS = BARRIERS + LOCKS + CHECKS
