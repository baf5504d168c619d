#pragma once

#include <string>

namespace vex2::lab {

/// A module that is loaded only when it is needed, because its libraries take longer to load than
/// most commands run. It is in the folder of the program or library that contains this code, or in
/// the folder where the libraries are installed. Once loaded, it stays loaded.
class OwnModule {
 public:
  /// Loads the module with this file name, which has no folder.
  explicit OwnModule(const char* file);

  bool IsLoaded() const { return handle_ != nullptr; }
  /// Why the module could not be loaded although its file exists; empty if the file does not exist
  /// or the module was loaded.
  const std::string& Problem() const { return problem_; }
  /// The function `name` of the module; null if the module is not loaded or has no such function.
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
