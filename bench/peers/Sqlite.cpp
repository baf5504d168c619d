#include <sqlite3.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "bench/peers/Store.h"

namespace vex2::bench {

namespace {

constexpr int kFrameBytes = kFrameValues * static_cast<int>(sizeof(std::uint16_t));

class Database {
 public:
  explicit Database(const std::string& path, int flags = SQLITE_OPEN_READONLY) {
    Require(sqlite3_open_v2(path.c_str(), &base_, flags, nullptr) == SQLITE_OK, "SQLite open");
  }
  ~Database() { sqlite3_close(base_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Run(const char* sql) {
    Require(sqlite3_exec(base_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql);
  }
  sqlite3_stmt* Prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(base_, sql, -1, &statement, nullptr) == SQLITE_OK, sql);
    return statement;
  }

 private:
  sqlite3* base_ = nullptr;
};

constexpr int kWritable = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
constexpr const char* kInsert = "INSERT INTO frame VALUES (?, ?)";

void makeTable(Database& base) {
  base.Run("CREATE TABLE frame (id INTEGER PRIMARY KEY, content BLOB)");
}

void insert(sqlite3_stmt* statement, int index, const std::uint16_t* values) {
  sqlite3_bind_int(statement, 1, index);
  sqlite3_bind_blob(statement, 2, values, kFrameBytes, SQLITE_STATIC);
  Require(sqlite3_step(statement) == SQLITE_DONE, "SQLite insert");
  sqlite3_reset(statement);
}

class Sqlite final : public Store {
 public:
  std::string Name() const override { return std::string("SQLite ") + sqlite3_libversion(); }
  std::string Settings() const override {
    return "a row for each frame with its values as this machine stores them, pages of 32 KiB, "
           "mapped for reading, synchronous=FULL; for a run that grows a write-ahead log and a "
           "prepared statement in a file that stays open";
  }

  void ReadAll(const std::string& path) override {
    Database base(path);
    base.Run("PRAGMA mmap_size=268435456");
    sqlite3_stmt* all = base.Prepare("SELECT content FROM frame ORDER BY id");
    std::vector<std::unique_ptr<std::uint16_t[]>> frames;
    while (sqlite3_step(all) == SQLITE_ROW) {
      frames.emplace_back(new std::uint16_t[kFrameValues]);
      std::memcpy(frames.back().get(), sqlite3_column_blob(all, 0), kFrameBytes);
    }
    sqlite3_finalize(all);
    Require(!frames.empty(), "frames");
  }

  void ReadFrame(const std::string& path, int index) override {
    Database base(path);
    base.Run("PRAGMA mmap_size=268435456");
    sqlite3_stmt* one = base.Prepare("SELECT content FROM frame WHERE id = ?");
    sqlite3_bind_int(one, 1, index);
    Require(sqlite3_step(one) == SQLITE_ROW, "SQLite row");
    std::uint16_t frame[kFrameValues];
    std::memcpy(frame, sqlite3_column_blob(one, 0), kFrameBytes);
    sqlite3_finalize(one);
    Require(frame[0] == 1, "values");
  }

  bool Hold(const FrameValues& frames, const std::string& /*path*/) override {
    held_ = frames;
    return true;
  }
  void Save(const std::string& path) override {
    std::remove(path.c_str());
    Database base(path, kWritable);
    base.Run("PRAGMA page_size=32768; PRAGMA synchronous=FULL; BEGIN");
    makeTable(base);
    sqlite3_stmt* statement = base.Prepare(kInsert);
    for (std::size_t first = 0; first < held_.size(); first += kFrameValues) {
      insert(statement, static_cast<int>(first / kFrameValues), held_.data() + first);
    }
    sqlite3_finalize(statement);
    base.Run("COMMIT");
  }

  void BeginRun(const std::string& path) override {
    for (const char* end : {"", "-wal", "-shm"}) std::remove((path + end).c_str());
    run_ = std::make_unique<Database>(path, kWritable);
    run_->Run("PRAGMA page_size=32768; PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL");
    makeTable(*run_);
    insert_ = run_->Prepare(kInsert);
    next_ = 0;
  }
  void Commit(const FrameValues& frame) override { insert(insert_, next_++, frame.data()); }
  void EndRun() override {
    sqlite3_finalize(insert_);
    run_.reset();
  }

 private:
  FrameValues held_;
  std::unique_ptr<Database> run_;
  sqlite3_stmt* insert_ = nullptr;
  int next_ = 0;
};

}  // namespace

std::unique_ptr<Store> MakeSqlite() {
  return std::make_unique<Sqlite>();
}

}  // namespace vex2::bench
