#include <cairo-pdf.h>
#include <librsvg/rsvg.h>

#include <memory>
#include <string_view>

#include "lab/picture/ImageModule.h"

namespace {

using vex2::lab::TakeBytes;

constexpr double kWidth = 960;  // width of the SVG
constexpr double kHeight = 600;
constexpr int kPixels = 2;        // pixels per unit
constexpr double kPoints = 0.75;  // points per unit of 1/96 inch

struct Sink {
  TakeBytes* take = nullptr;
  void* image = nullptr;
};

cairo_status_t write(void* closure, const unsigned char* bytes, unsigned int size) {
  const auto* sink = static_cast<const Sink*>(closure);
  sink->take(sink->image, reinterpret_cast<const char*>(bytes), size);
  return CAIRO_STATUS_SUCCESS;
}

struct Release {
  void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(GError* error) const { g_error_free(error); }
};
template <typename Thing>
using Owned = std::unique_ptr<Thing, Release>;

}  // namespace

extern "C" __attribute__((visibility("default"))) bool vex2_draw_image(const char* svg,
                                                                       std::size_t size, bool isPdf,
                                                                       TakeBytes* take, void* image,
                                                                       void* error) {
  const auto fail = [&](std::string_view why) {
    take(error, why.data(), why.size());
    return false;
  };
  GError* problem = nullptr;
  const Owned<RsvgHandle> handle(
      rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg), size, &problem));
  if (handle == nullptr) return fail(Owned<GError>(problem)->message);
  Sink sink{take, image};
  const Owned<cairo_surface_t> surface(
      isPdf ? cairo_pdf_surface_create_for_stream(write, &sink, kWidth * kPoints, kHeight * kPoints)
            : cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(kWidth) * kPixels,
                                         static_cast<int>(kHeight) * kPixels));
  const Owned<cairo_t> context(cairo_create(surface.get()));
  const double scale = isPdf ? kPoints : kPixels;
  cairo_scale(context.get(), scale, scale);
  const RsvgRectangle all{0, 0, kWidth, kHeight};
  if (rsvg_handle_render_document(handle.get(), context.get(), &all, &problem) == FALSE) {
    return fail(Owned<GError>(problem)->message);
  }
  if (isPdf) {
    cairo_surface_finish(surface.get());
  } else {
    cairo_surface_write_to_png_stream(surface.get(), write, &sink);
  }
  const cairo_status_t status = cairo_surface_status(surface.get());
  return status == CAIRO_STATUS_SUCCESS || fail(cairo_status_to_string(status));
}
