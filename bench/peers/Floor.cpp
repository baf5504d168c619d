#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cstdio>
#include <stdexcept>

#include "bench/peers/Store.h"

namespace vex2::bench {

void Require(bool isFine, const char* what) {
  if (!isFine) throw std::runtime_error(what);
}

namespace {

constexpr std::size_t kFrameBytes = kFrameValues * sizeof(std::uint16_t);
constexpr std::size_t kRecordValues = 44;  ///< of one well in memory
constexpr off_t kFirstFrame = 1024 + 26 + 2 * kPeerWells;

class Handle {
 public:
  Handle(const std::string& path, int flags) : handle_(::open(path.c_str(), flags, 0600)) {
    Require(handle_ >= 0, "open");
  }
  ~Handle() { ::close(handle_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  int Get() const { return handle_; }

 private:
  int handle_;
};

void writeAt(int file, const void* bytes, std::size_t count, off_t offset) {
  const auto* from = static_cast<const char*>(bytes);
  for (std::size_t done = 0; done < count;) {
    const ssize_t put =
        ::pwrite(file, from + done, count - done, offset + static_cast<off_t>(done));
    Require(put > 0, "write");
    done += static_cast<std::size_t>(put);
  }
}

// Swaps the bytes of each value of a frame, and copies each record to where it is in memory.
void unpack(const std::uint16_t* from, std::uint16_t* to) {
  for (int well = 0; well < kPeerWells; ++well) {
    for (int value = 0; value < kPeerValues; ++value) {
      to[value] = static_cast<std::uint16_t>(from[value] << 8U | from[value] >> 8U);
    }
    for (std::size_t value = kPeerValues; value < kRecordValues; ++value) to[value] = 0;
    from += kPeerValues;
    to += kRecordValues;
  }
}

class Floor final : public Store {
 public:
  std::string Name() const override { return "system calls"; }
  std::string Settings() const override {
    return "the calls, byte swaps and copies that the work cannot do without";
  }

  void ReadAll(const std::string& path) override {
    const Handle file(path, O_RDONLY | O_CLOEXEC);
    constexpr std::size_t kAtOnce = 8;
    const std::unique_ptr<std::uint16_t[]> stage(new std::uint16_t[kAtOnce * kFrameValues]);
    std::vector<std::unique_ptr<std::uint16_t[]>> frames;
    off_t offset = kFirstFrame;
    for (ssize_t got = 0;
         (got = ::pread(file.Get(), stage.get(), kAtOnce * kFrameBytes, offset)) > 0;
         offset += got) {
      const std::size_t count = static_cast<std::size_t>(got) / kFrameBytes;
      for (std::size_t i = 0; i < count; ++i) {
        frames.emplace_back(new std::uint16_t[kPeerWells * kRecordValues]);
        unpack(stage.get() + i * kFrameValues, frames.back().get());
      }
      if (count == 0) break;
    }
    Require(!frames.empty(), "frames");
  }

  void ReadFrame(const std::string& path, int index) override {
    const Handle file(path, O_RDONLY | O_CLOEXEC);
    char header[1024];
    Require(::pread(file.Get(), header, sizeof header, 0) == sizeof header, "header");
    std::uint16_t stored[kFrameValues];
    Require(::pread(file.Get(), stored, sizeof stored,
                    kFirstFrame + index * static_cast<off_t>(kFrameBytes)) == sizeof stored,
            "frame");
    const std::unique_ptr<std::uint16_t[]> frame(new std::uint16_t[kPeerWells * kRecordValues]);
    unpack(stored, frame.get());
    Require(frame[0] == 1, "values");
  }

  bool Hold(const FrameValues& frames, const std::string& /*path*/) override {
    held_ = frames;
    return true;
  }

  void Save(const std::string& path) override {
    const std::string beside = path + ".new";
    {
      const Handle file(beside, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
      writeAt(file.Get(), held_.data(), held_.size() * sizeof held_[0], 0);
      Require(::fsync(file.Get()) == 0, "sync");
    }
    Require(::rename(beside.c_str(), path.c_str()) == 0, "rename");
  }

  void BeginRun(const std::string& path) override {
    path_ = path;
    const Handle file(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
    const std::vector<char> start(kFirstFrame, '\0');
    writeAt(file.Get(), start.data(), start.size(), 0);
    length_ = 0;
  }

  // Opens the file for each frame, like a host that keeps no document open between frames.
  void Commit(const FrameValues& frame) override {
    const Handle file(path_, O_RDWR | O_CLOEXEC);
    unsigned char word[4];
    Require(::pread(file.Get(), word, sizeof word, 68) == sizeof word, "offset");
    struct stat info {};
    Require(::fstat(file.Get(), &info) == 0, "length");
    writeAt(file.Get(), frame.data(), kFrameBytes, info.st_size);
    Require(::fdatasync(file.Get()) == 0, "barrier");
    length_ += kFrameBytes;
    for (unsigned i = 0; i < 4; ++i) word[i] = static_cast<unsigned char>(length_ >> (24U - 8 * i));
    writeAt(file.Get(), word, sizeof word, 1028);
    Require(::fdatasync(file.Get()) == 0, "barrier");
  }

 private:
  FrameValues held_;
  std::string path_;
  std::uint32_t length_ = 0;
};

}  // namespace

std::unique_ptr<Store> MakeFloor() {
  return std::make_unique<Floor>();
}

}  // namespace vex2::bench
