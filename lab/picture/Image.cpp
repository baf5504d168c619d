#include <string>

#include "lab/Error.h"
#include "lab/OwnModule.h"
#include "lab/picture/ImageModule.h"
#include "lab/picture/Plot.h"

namespace vex2::lab {

namespace {

constexpr const char* kFile = "vex2image.so";

DrawImage* loadModule() {
  const OwnModule module(kFile);
  if (module.IsLoaded()) return module.Find<DrawImage>(kDrawImage);
  if (!module.Problem().empty()) {
    throw Error(ErrorCode::kSystem, "cannot draw PNG or PDF: " + module.Problem() +
                                        "; install the package librsvg2-2, or write SVG");
  }
  throw Error(
      ErrorCode::kSystem,
      std::string("cannot draw PNG or PDF: the module ") + kFile +
          " is missing; write SVG, or build the library with the package librsvg2-dev installed");
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
