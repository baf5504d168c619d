#include <fmt/core.h>
#include <hdf5.h>
#include <unistd.h>

#include "bench/peers/Store.h"

namespace vex2::bench {

namespace {

constexpr const char* kDataset = "frames";
constexpr hsize_t kValues = kFrameValues;

hid_t good(hid_t id) {
  Require(id >= 0, "HDF5");
  return id;
}
void done(herr_t status) {
  Require(status >= 0, "HDF5");
}

// The newest file format, because it is the fastest.
hid_t newestFormat() {
  static const hid_t access = [] {
    const hid_t list = good(H5Pcreate(H5P_FILE_ACCESS));
    done(H5Pset_libver_bounds(list, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST));
    return list;
  }();
  return access;
}

void syncFile(hid_t file) {
  done(H5Fflush(file, H5F_SCOPE_GLOBAL));
  void* handle = nullptr;
  done(H5Fget_vfd_handle(file, newestFormat(), &handle));
  Require(::fsync(*static_cast<int*>(handle)) == 0, "sync");
}

class Hdf5 final : public Store {
 public:
  std::string Name() const override {
    unsigned major = 0;
    unsigned minor = 0;
    unsigned release = 0;
    H5get_libversion(&major, &minor, &release);
    return fmt::format("HDF5 {}.{}.{}", major, minor, release);
  }
  std::string Settings() const override {
    return "newest file format, values as this machine stores them, no compression; one contiguous "
           "dataset, for a run that grows chunks of one frame in a file that stays open";
  }

  void ReadAll(const std::string& path) override {
    const hid_t file = good(H5Fopen(path.c_str(), H5F_ACC_RDONLY, newestFormat()));
    const hid_t set = good(H5Dopen2(file, kDataset, H5P_DEFAULT));
    const hid_t space = good(H5Dget_space(set));
    const auto count = static_cast<std::size_t>(H5Sget_simple_extent_npoints(space));
    const std::unique_ptr<std::uint16_t[]> values(new std::uint16_t[count]);
    done(H5Dread(set, H5T_NATIVE_UINT16, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.get()));
    H5Sclose(space);
    H5Dclose(set);
    H5Fclose(file);
  }

  void ReadFrame(const std::string& path, int index) override {
    const hid_t file = good(H5Fopen(path.c_str(), H5F_ACC_RDONLY, newestFormat()));
    const hid_t set = good(H5Dopen2(file, kDataset, H5P_DEFAULT));
    const hid_t space = good(H5Dget_space(set));
    const hid_t memory = good(H5Screate_simple(1, &kValues, nullptr));
    const hsize_t start[2] = {static_cast<hsize_t>(index), 0};
    const hsize_t count[2] = {1, kValues};
    done(H5Sselect_hyperslab(space, H5S_SELECT_SET, start, nullptr, count, nullptr));
    std::uint16_t frame[kFrameValues];
    done(H5Dread(set, H5T_NATIVE_UINT16, memory, space, H5P_DEFAULT, frame));
    H5Sclose(memory);
    H5Sclose(space);
    H5Dclose(set);
    H5Fclose(file);
    Require(frame[0] == 1, "values");
  }

  bool Hold(const FrameValues& frames, const std::string& /*path*/) override {
    held_ = frames;
    return true;
  }
  void Save(const std::string& path) override {
    const hid_t file = good(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, newestFormat()));
    const hsize_t size[2] = {held_.size() / kValues, kValues};
    const hid_t space = good(H5Screate_simple(2, size, nullptr));
    const hid_t set = good(H5Dcreate2(file, kDataset, H5T_NATIVE_UINT16, space, H5P_DEFAULT,
                                      H5P_DEFAULT, H5P_DEFAULT));
    done(H5Dwrite(set, H5T_NATIVE_UINT16, H5S_ALL, H5S_ALL, H5P_DEFAULT, held_.data()));
    H5Dclose(set);
    H5Sclose(space);
    syncFile(file);
    H5Fclose(file);
  }

  void BeginRun(const std::string& path) override {
    file_ = good(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, newestFormat()));
    const hsize_t none[2] = {0, kValues};
    const hsize_t most[2] = {H5S_UNLIMITED, kValues};
    const hsize_t chunk[2] = {1, kValues};
    const hid_t space = good(H5Screate_simple(2, none, most));
    const hid_t chunked = good(H5Pcreate(H5P_DATASET_CREATE));
    done(H5Pset_chunk(chunked, 2, chunk));
    set_ = good(
        H5Dcreate2(file_, kDataset, H5T_NATIVE_UINT16, space, H5P_DEFAULT, chunked, H5P_DEFAULT));
    H5Pclose(chunked);
    H5Sclose(space);
    frames_ = 0;
  }
  void Commit(const FrameValues& frame) override {
    const hsize_t size[2] = {frames_ + 1, kValues};
    done(H5Dset_extent(set_, size));
    const hid_t space = good(H5Dget_space(set_));
    const hid_t memory = good(H5Screate_simple(1, &kValues, nullptr));
    const hsize_t start[2] = {frames_++, 0};
    const hsize_t count[2] = {1, kValues};
    done(H5Sselect_hyperslab(space, H5S_SELECT_SET, start, nullptr, count, nullptr));
    done(H5Dwrite(set_, H5T_NATIVE_UINT16, memory, space, H5P_DEFAULT, frame.data()));
    H5Sclose(memory);
    H5Sclose(space);
    syncFile(file_);
  }
  void EndRun() override {
    H5Dclose(set_);
    H5Fclose(file_);
  }

 private:
  FrameValues held_;
  hid_t file_ = -1;
  hid_t set_ = -1;
  hsize_t frames_ = 0;
};

}  // namespace

std::unique_ptr<Store> MakeHdf5() {
  return std::make_unique<Hdf5>();
}

}  // namespace vex2::bench
