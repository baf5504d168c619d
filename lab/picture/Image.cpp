#include <dlfcn.h>

#include <filesystem>

#include "lab/Error.h"
#include "lab/picture/ImageModule.h"
#include "lab/picture/Plot.h"

namespace vex2::lab {

namespace {

constexpr const char* kFile = "vex2image.so";

// Where the program or library is that this code is part of.
std::filesystem::path ownFolder() {
  Dl_info info{};
  static const char kHere = 0;
  if (::dladdr(&kHere, &info) == 0 || info.dli_fname == nullptr) return {};
  std::error_code error;
  auto path = std::filesystem::canonical(info.dli_fname, error);
  // Of a program that was found on the search path the system keeps only the name.
  if (error) path = std::filesystem::canonical("/proc/self/exe", error);
  return path.parent_path();
}

DrawImage* loadModule() {
  const std::filesystem::path folder = ownFolder();
  std::string why;
  for (const auto& place : {folder / kFile, folder / VEX2_LIBRARY_FOLDER / kFile}) {
    // It stays loaded: its libraries are not made to be unloaded.
    void* module = ::dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr) {
      std::error_code error;
      if (std::filesystem::exists(place, error)) why = ::dlerror();
      continue;
    }
    return reinterpret_cast<DrawImage*>(::dlsym(module, kDrawImage));
  }
  if (!why.empty()) {
    throw Error(ErrorCode::kSystem, "cannot draw PNG and PDF: " + why +
                                        "; install the package librsvg2-2, or write SVG");
  }
  throw Error(ErrorCode::kSystem,
              std::string("cannot draw PNG and PDF: the module ") + kFile +
                  " is missing; it is built when the package librsvg2-dev is installed; write SVG");
}

}  // namespace

std::string ImageOf(std::string_view svg, ImageFormat format) {
  static DrawImage* const draw = loadModule();
  std::string image;
  std::string error;
  const auto append = [](void* target, const char* bytes, std::size_t size) {
    static_cast<std::string*>(target)->append(bytes, size);
  };
  const bool isDrawn = draw != nullptr && draw(svg.data(), svg.size(), format == ImageFormat::kPdf,
                                               append, &image, &error);
  if (!isDrawn) throw Error(ErrorCode::kSystem, "cannot draw the picture: " + error);
  return image;
}

}  // namespace vex2::lab
