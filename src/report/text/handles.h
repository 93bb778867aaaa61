// Owning handles for the C objects the text and drawing stages hold: GObjects (Pango fonts,
// layouts, contexts), Cairo contexts, surfaces and scaled fonts, fontconfig configurations.
//
// Thread-safety: a handle is as thread-safe as the object it owns; copying a ScaledFont only
// touches Cairo's atomic reference count.
#ifndef VANTOREL_REPORT_TEXT_HANDLES_H_
#define VANTOREL_REPORT_TEXT_HANDLES_H_

#include <cairo.h>
#include <glib-object.h>

#include <memory>
#include <utility>

namespace vantorel::report {

struct GObjectUnref {
  void operator()(void* object) const {
    if (object != nullptr) g_object_unref(object);
  }
};
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

struct CairoDestroy {
  void operator()(cairo_t* cr) const { cairo_destroy(cr); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using CairoPtr = std::unique_ptr<cairo_t, CairoDestroy>;
using SurfacePtr = std::unique_ptr<cairo_surface_t, CairoDestroy>;

// A counted reference to a Cairo scaled font: laid-out text keeps the fonts it was shaped with
// alive even after the thread's font map that made them is gone.
class ScaledFont {
 public:
  ScaledFont() = default;
  // Takes a new reference to "font".
  explicit ScaledFont(cairo_scaled_font_t* font)
      : font_(font != nullptr ? cairo_scaled_font_reference(font) : nullptr) {}
  ScaledFont(const ScaledFont& other) : ScaledFont(other.font_) {}
  ScaledFont(ScaledFont&& other) noexcept : font_(std::exchange(other.font_, nullptr)) {}
  ScaledFont& operator=(ScaledFont other) noexcept {
    std::swap(font_, other.font_);
    return *this;
  }
  ~ScaledFont() {
    if (font_ != nullptr) cairo_scaled_font_destroy(font_);
  }

  cairo_scaled_font_t* get() const { return font_; }
  explicit operator bool() const { return font_ != nullptr; }
  friend bool operator==(const ScaledFont& a, const ScaledFont& b) { return a.font_ == b.font_; }

 private:
  cairo_scaled_font_t* font_ = nullptr;
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEXT_HANDLES_H_
