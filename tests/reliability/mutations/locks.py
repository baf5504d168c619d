"""Locks, and the waiting for them."""

from .mutation import lock
from .sources import (FILE, FRAME_READER, RECORDING, REPLACEMENT, SYSTEM)

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
    lock("hard-links", RECORDING, "that a document with other names, which have locks of their own, is not recorded",
         "if (exists && info.st_nlink > 1) {", "if (exists && info.st_nlink > 99) {", "lab:RunRecorder*"),
    lock("same-file", FRAME_READER, "that frames are read from the file that was opened, not from one in its place",
         "file_.GetIdentity() != identity || ", "(false && file_.GetIdentity() != identity) || ", "lab:Run*:Readings*"),
)
