// Pictures: the image's Cairo surface, made once per image and cached per thread.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <utility>

#include "report/render/draw_parts.h"
#include "report/text/handles.h"

namespace vantorel::report::render {
namespace {

// Surfaces are cheap (they share the image's pixels), so the bound is about how many decoded
// images a thread keeps alive after their documents are gone.
constexpr size_t kCachedSurfaces = 32;

const cairo_user_data_key_t kImageKey = {};

void ReleaseImage(void* data) { delete static_cast<std::shared_ptr<const ImageData>*>(data); }

SurfacePtr MakeSurface(const std::shared_ptr<const ImageData>& image) {
  const ImageData& data = *image;
  if (data.width <= 0 || data.height <= 0 || data.stride < data.width * 4 || data.stride % 4 != 0 ||
      data.pixels.size() < static_cast<size_t>(data.stride) * static_cast<size_t>(data.height)) {
    return nullptr;
  }
  // Cairo only reads a source surface, so sharing the immutable pixels is safe.
  SurfacePtr surface(
      cairo_image_surface_create_for_data(const_cast<uint8_t*>(data.pixels.data()),
                                          data.has_alpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24,
                                          data.width, data.height, data.stride));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  // The surface keeps the image (and so its pixels and JPEG bytes) alive as long as it lives,
  // whoever holds it last: this cache, a pattern, or a PDF surface not yet finished.
  cairo_surface_set_user_data(surface.get(), &kImageKey,
                              new std::shared_ptr<const ImageData>(image), ReleaseImage);
  if (!data.jpeg.empty()) {
    cairo_surface_set_mime_data(surface.get(), CAIRO_MIME_TYPE_JPEG,
                                reinterpret_cast<const unsigned char*>(data.jpeg.data()),
                                data.jpeg.size(), nullptr, nullptr);
  }
  // The image's address is unique while the image lives, and it lives as long as this surface.
  char id[40];
  const int length =
      std::snprintf(id, sizeof id, "vantorel-image-%p", static_cast<const void*>(&data));
  auto* copy = static_cast<unsigned char*>(std::malloc(static_cast<size_t>(length)));
  std::memcpy(copy, id, static_cast<size_t>(length));
  cairo_surface_set_mime_data(surface.get(), CAIRO_MIME_TYPE_UNIQUE_ID, copy,
                              static_cast<unsigned long>(length), std::free, copy);
  return surface;
}

class SurfaceCache {
 public:
  cairo_surface_t* Get(const std::shared_ptr<const ImageData>& image) {
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
      if (it->first == image.get()) {
        entries_.splice(entries_.begin(), entries_, it);
        return entries_.front().second.get();
      }
    }
    SurfacePtr surface = MakeSurface(image);
    if (!surface) return nullptr;
    entries_.emplace_front(image.get(), std::move(surface));
    if (entries_.size() > kCachedSurfaces) entries_.pop_back();
    return entries_.front().second.get();
  }

 private:
  std::list<std::pair<const ImageData*, SurfacePtr>> entries_;  // most recently used first
};

}  // namespace

cairo_surface_t* ImageSurface(const std::shared_ptr<const ImageData>& image) {
  thread_local SurfaceCache cache;
  return cache.Get(image);
}

}  // namespace vantorel::report::render
