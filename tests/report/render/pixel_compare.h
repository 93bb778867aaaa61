// Pixel helpers for drawing tests: render a page into an image surface, read pixels, find ink,
// and compare with a reference PNG within a tolerance. Set VANTOREL_UPDATE_REFERENCE=1 to write
// the reference images afresh instead of comparing (then review the new PNGs before committing).
#ifndef VANTOREL_TESTS_REPORT_RENDER_PIXEL_COMPARE_H_
#define VANTOREL_TESTS_REPORT_RENDER_PIXEL_COMPARE_H_

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "report/document/document.h"
#include "report/render/draw_page.h"
#include "report/text/handles.h"

namespace vantorel::report::testing {

// "page" of "document" drawn on white at "scale" pixels per point.
inline SurfacePtr RenderPage(const Document& document, const Page& page, double scale = 1) {
  SurfacePtr surface(cairo_image_surface_create(
      CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(page.size.width * scale)),
      static_cast<int>(std::ceil(page.size.height * scale))));
  CairoPtr cr(cairo_create(surface.get()));
  cairo_set_source_rgb(cr.get(), 1, 1, 1);
  cairo_paint(cr.get());
  cairo_scale(cr.get(), scale, scale);
  DrawPage(cr.get(), document, page);
  cairo_surface_flush(surface.get());
  return surface;
}

inline Color PixelAt(cairo_surface_t* surface, int x, int y) {
  const unsigned char* row =
      cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
  const uint32_t v = reinterpret_cast<const uint32_t*>(row)[x];
  return {static_cast<uint8_t>(v >> 16), static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v),
          255};
}

inline bool IsInk(const Color& c) { return c.r < 160 || c.g < 160 || c.b < 160; }

struct InkBox {
  int left, top, right, bottom;  // inclusive pixel bounds
};

// The bounds of the non-white pixels in [x0, x1) × [y0, y1), or nullopt when there are none.
inline std::optional<InkBox> FindInk(cairo_surface_t* surface, int x0, int y0, int x1, int y1) {
  x0 = std::max(x0, 0);
  y0 = std::max(y0, 0);
  x1 = std::min(x1, cairo_image_surface_get_width(surface));
  y1 = std::min(y1, cairo_image_surface_get_height(surface));
  std::optional<InkBox> box;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      if (!IsInk(PixelAt(surface, x, y))) continue;
      if (!box) box = InkBox{x, y, x, y};
      box->left = std::min(box->left, x);
      box->right = std::max(box->right, x);
      box->top = std::min(box->top, y);
      box->bottom = std::max(box->bottom, y);
    }
  }
  return box;
}

inline std::optional<InkBox> FindInk(cairo_surface_t* surface) {
  return FindInk(surface, 0, 0, cairo_image_surface_get_width(surface),
                 cairo_image_surface_get_height(surface));
}

struct Difference {
  int largest = 0;       // the largest difference of one channel anywhere
  size_t differing = 0;  // pixels where some channel differs by more than the threshold
  size_t pixels = 0;
  bool same_size = true;
};

inline Difference Compare(cairo_surface_t* actual, cairo_surface_t* expected, int threshold) {
  Difference d;
  const int width = cairo_image_surface_get_width(actual);
  const int height = cairo_image_surface_get_height(actual);
  if (width != cairo_image_surface_get_width(expected) ||
      height != cairo_image_surface_get_height(expected)) {
    d.same_size = false;
    return d;
  }
  d.pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Color a = PixelAt(actual, x, y), e = PixelAt(expected, x, y);
      const int diff = std::max({std::abs(a.r - e.r), std::abs(a.g - e.g), std::abs(a.b - e.b)});
      d.largest = std::max(d.largest, diff);
      if (diff > threshold) ++d.differing;
    }
  }
  return d;
}

// Compares "actual" with the reference PNG "name" under tests/report/render/reference/: at most
// "max_fraction" of the pixels may differ by more than "threshold" in some channel. Antialiasing
// and font rasterisation vary a little between Cairo and FreeType builds; layout errors move
// whole glyphs and fail loudly.
inline ::testing::AssertionResult MatchesReference(cairo_surface_t* actual, const std::string& name,
                                                   int threshold = 48,
                                                   double max_fraction = 0.002) {
  const std::filesystem::path path =
      std::filesystem::path(VANTOREL_TEST_DIR) / "report/render/reference" / name;
  const char* update = std::getenv("VANTOREL_UPDATE_REFERENCE");
  if (update != nullptr && std::string(update) == "1") {
    if (cairo_surface_write_to_png(actual, path.c_str()) != CAIRO_STATUS_SUCCESS) {
      return ::testing::AssertionFailure() << "cannot write " << path;
    }
    return ::testing::AssertionSuccess() << "updated " << path;
  }
  SurfacePtr expected(cairo_image_surface_create_from_png(path.c_str()));
  if (cairo_surface_status(expected.get()) != CAIRO_STATUS_SUCCESS) {
    return ::testing::AssertionFailure()
           << "no reference " << path << "; run with VANTOREL_UPDATE_REFERENCE=1 to make it";
  }
  const Difference d = Compare(actual, expected.get(), threshold);
  if (!d.same_size) return ::testing::AssertionFailure() << name << ": size differs";
  if (static_cast<double>(d.differing) > max_fraction * static_cast<double>(d.pixels)) {
    const std::filesystem::path failed =
        std::filesystem::temp_directory_path() / ("actual-" + name);
    cairo_surface_write_to_png(actual, failed.c_str());
    return ::testing::AssertionFailure()
           << name << ": " << d.differing << " of " << d.pixels << " pixels differ by more than "
           << threshold << " (largest " << d.largest << "); actual image written to " << failed;
  }
  return ::testing::AssertionSuccess();
}

}  // namespace vantorel::report::testing

#endif  // VANTOREL_TESTS_REPORT_RENDER_PIXEL_COMPARE_H_
