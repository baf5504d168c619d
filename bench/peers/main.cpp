// Compares this library with system calls, HDF5 and SQLite at the same work. In every round, each
// store does the work once, in turn. A row shows the median time of the first store and, for each
// other store, the median over all rounds of the ratio of its time to the first store's time. So a
// temporary slowdown of the machine affects all stores. Other options do work for the comparison of
// whole commands.

#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>
#include <string_view>

#include "bench/Documents.h"
#include "bench/peers/Store.h"

namespace vex2::bench {

namespace {

constexpr int kSmallRun = 45;
constexpr int kLongRun = 400;
constexpr int kEndlessRun = 4000;

std::string folder;
int rounds = 51;
std::vector<std::unique_ptr<Store>> stores;

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double secondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Returns the seconds that a store took for the work; below 0 if it cannot do the work.
using Work = std::function<double(std::size_t store)>;

void row(const std::string& name, int count, const Work& work) {
  std::vector<std::vector<double>> times(stores.size());
  for (int round = 0; round < count; ++round) {
    for (std::size_t i = 0; i < stores.size(); ++i) {
      const std::size_t store = (i + static_cast<std::size_t>(round)) % stores.size();
      times[store].push_back(work(store));
    }
  }
  fmt::print("| {} | {:.0f} |", name, median(times[0]) * 1e6);
  for (std::size_t store = 1; store < stores.size(); ++store) {
    std::vector<double> ratios;
    for (std::size_t round = 0; round < times[0].size(); ++round) {
      if (times[store][round] >= 0) ratios.push_back(times[store][round] / times[0][round]);
    }
    if (ratios.empty()) {
      fmt::print(" – |");
    } else {
      fmt::print(" {:.2f} |", median(ratios));
    }
  }
  fmt::print("\n");
  std::fflush(stdout);
}

FrameValues valuesOf(int frames) {
  FrameValues values(static_cast<std::size_t>(frames) * kFrameValues);
  std::iota(values.begin(), values.end(), std::uint16_t{1});
  for (std::size_t i = 0; i < values.size(); i += kPeerValues) values[i] = 1;
  return values;
}

// The first three stores read documents; the others read files of their own.
std::string fileOf(std::size_t store, int frames) {
  constexpr std::size_t kReadDocuments = 3;
  const std::string path = fmt::format(
      "{}/{}-{}", folder, store < kReadDocuments ? "run" : std::to_string(store), frames);
  if (std::filesystem::exists(path)) return path;
  if (store < kReadDocuments) {
    MakeRun(path, kPeerWells, frames);
  } else {
    stores[store]->Hold(valuesOf(frames), {});
    stores[store]->Save(path);
  }
  return path;
}

void readingRows() {
  for (const int frames : {kSmallRun, kLongRun}) {
    row(fmt::format("Read 384 × {}", frames), rounds, [&](std::size_t store) {
      const std::string path = fileOf(store, frames);
      return secondsOf([&] { stores[store]->ReadAll(path); });
    });
  }
  for (const int frames : {kSmallRun, kLongRun, kEndlessRun}) {
    row(fmt::format("Read one frame of 384 × {}", frames), rounds, [&](std::size_t store) {
      const std::string path = fileOf(store, frames);
      return secondsOf([&] { stores[store]->ReadFrame(path, frames / 2); });
    });
  }
}

void savingRows() {
  for (const int frames : {kSmallRun, kLongRun}) {
    std::vector<bool> canSave;
    for (const auto& store : stores) {
      canSave.push_back(store->Hold(valuesOf(frames), folder + "/held"));
    }
    row(fmt::format("Save 384 × {} to the disk", frames), rounds, [&](std::size_t store) {
      if (!canSave[store]) return -1.0;
      const std::string path = fmt::format("{}/saved-{}", folder, store);
      return secondsOf([&] { stores[store]->Save(path); });
    });
  }
}

void committingRow() {
  for (std::size_t store = 0; store < stores.size(); ++store) {
    stores[store]->BeginRun(fmt::format("{}/growing-{}", folder, store));
  }
  const FrameValues frame = valuesOf(1);
  row("Commit a frame of 384 wells", 4 * rounds, [&](std::size_t store) {
    stores[store]->Prepare(frame);
    return secondsOf([&] { stores[store]->Commit(frame); });
  });
  for (const auto& store : stores) store->EndRun();
}

void printTable() {
  fmt::print("| Work | {} (µs) |", stores[0]->Name());
  for (std::size_t i = 1; i < stores.size(); ++i) fmt::print(" {} |", stores[i]->Name());
  fmt::print("\n|---|---|");
  for (std::size_t i = 1; i < stores.size(); ++i) fmt::print("---|");
  fmt::print("\n");
  readingRows();
  savingRows();
  committingRow();
  fmt::print("\n");
  for (const auto& store : stores) fmt::print("- {}: {}\n", store->Name(), store->Settings());
}

// Reads the first 64 KiB of each file in a folder.
void readHeads(const std::string& path) {
  std::vector<char> bytes(std::size_t{64} * 1024);
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    std::ifstream file(entry.path(), std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    Require(file.gcount() > 0, "read");
  }
}

void writeBytes(std::size_t count) {
  const std::vector<char> bytes(std::size_t{64} * 1024, 'x');
  while (count > 0) {
    const ssize_t put = ::write(STDOUT_FILENO, bytes.data(), std::min(count, bytes.size()));
    Require(put > 0, "write");
    count -= static_cast<std::size_t>(put);
  }
}

int compareAll() {
  std::string name = (std::filesystem::current_path() / "peers-XXXXXX").string();
  Require(::mkdtemp(name.data()) != nullptr, "mkdtemp");
  folder = name;
  for (const auto make : {MakeFloor, MakeManager, MakeLab, MakeHdf5, MakeSqlite}) {
    stores.push_back(make());
  }
  int status = 0;
  try {
    printTable();
  } catch (const std::exception& error) {
    fmt::print(stderr, "vex2_peers: {} failed\n", error.what());
    status = 1;
  }
  stores.clear();
  std::filesystem::remove_all(folder);
  return status;
}

}  // namespace

int run(int count, char** arguments) {
  std::string made;
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    const std::string name(argument.substr(0, argument.find('=') + 1));
    const std::string value(argument.substr(name.size()));
    if (name == "--rounds=") {
      rounds = std::max(1, std::atoi(value.c_str()));
    } else if (name == "--make=") {
      made = value;
    } else if (name == "--frames=") {
      MakeRun(made, kPeerWells, std::atoi(value.c_str()));
      return 0;
    } else if (name == "--read=") {
      MakeFloor()->ReadAll(value);
      return 0;
    } else if (name == "--heads=") {
      readHeads(value);
      return 0;
    } else if (name == "--write=") {
      writeBytes(std::stoul(value));
      return 0;
    } else {
      fmt::print(stderr,
                 "usage: vex2_peers [--rounds=N | --make=FILE --frames=N | --read=FILE | "
                 "--heads=FOLDER | --write=BYTES]\n");
      return 2;
    }
  }
  return compareAll();
}

}  // namespace vex2::bench

int main(int count, char** arguments) {
  return vex2::bench::run(count, arguments);
}
