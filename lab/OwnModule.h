#pragma once

#include <string>

namespace vex2::lab {

/// A module that is loaded when it is first needed, because its own libraries take longer to load
/// than most commands run. It lies beside the program or library that this code is part of, or
/// where the libraries are installed, and stays loaded.
class OwnModule {
 public:
  /// Loads the module of that file name, without a folder.
  explicit OwnModule(const char* file);

  bool IsLoaded() const { return handle_ != nullptr; }
  /// Why the module, which is there, could not be loaded; empty where there is none.
  const std::string& Problem() const { return problem_; }
  /// What the module calls `name`; null where it has nothing of that name.
  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(find(name));
  }

 private:
  void* find(const char* name) const;

  void* handle_ = nullptr;
  std::string problem_;
};

}  // namespace vex2::lab
