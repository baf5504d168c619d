#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "lab/Guarded.h"
#include "lab/SystemError.h"
#include "lab/model/OutputFiles.h"
#include "python/src/Bindings.h"
#include "python/src/Values.h"
#include "vex2/framework/FileSystem.h"

namespace vex2::python {

namespace {

/// Replaces a document as a whole. While this object exists, no recorder, editor or command can
/// change the existing document.
class Replacement {
 public:
  Replacement(const std::string& path, bool mayReplace)
      : path_(path), files_(mayReplace, "use replace=True to overwrite it") {
    lab::Guarded(path_, [&] {
      files_.Write(path_, lab::OutputFiles::Kind::kDocument).Claim();
      document_ = lab::ResolveDocument(path_).string();
    });
  }

  /// The folder of the document, in which a new file can be renamed to the document.
  std::string Folder() const { return std::filesystem::path(document_).parent_path().string(); }

  /// Replaces the document with the one at `made`, which is on the disk.
  void Commit(const std::string& made) {
    struct stat info {};
    if (::stat(document_.c_str(), &info) == 0) {
      static_cast<void>(::chmod(made.c_str(), info.st_mode & ~S_IFMT));
    }
    if (std::rename(made.c_str(), document_.c_str()) != 0) throw lab::SystemError(path_, errno);
    if (const int status = SyncFolderOf(document_); status < 0) {
      throw lab::SystemError(path_, -status);
    }
  }

 private:
  std::string path_;
  lab::OutputFiles files_;
  std::string document_;
};

}  // namespace

void BindReplacement(py::module_& module) {
  py::class_<Replacement>(module, "Replacement", "A document that takes its place as a whole.")
      .def(py::init<const std::string&, bool>(), py::arg("path"), py::arg("replace"))
      .def("folder", [](const Replacement& self) { return py::bytes(self.Folder()); })
      .def("commit", &Replacement::Commit, py::arg("made"));
}

}  // namespace vex2::python
