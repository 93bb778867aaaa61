#include "report/raster/png_writer.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>

#include "host/atomic_file.h"
#include "host/native_path.h"
#include "report/render/draw_page.h"
#include "report/text/handles.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kSource[] = "Vantorel.Png";

cairo_status_t AppendToString(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

int Pixels(float points, double dpi) {
  // A hair below a whole pixel stays that pixel: 595.28 pt at 72 dpi is 596 px, not 597.
  return std::max(1, static_cast<int>(std::ceil(points * dpi / 72.0 - 1e-3)));
}

}  // namespace

std::string PagePng(const Document& document, size_t index, double dpi) {
  if (index >= document.pages.size()) {
    throw Error(errnum::kInvalidProcedureCall, kSource,
                "No page " + std::to_string(index + 1) + " in a document of " +
                    std::to_string(document.pages.size()) + " pages");
  }
  if (!(dpi > 0 && dpi <= 2400)) {
    throw Error(errnum::kInvalidProcedureCall, kSource, "Resolution out of range");
  }
  const Page& page = document.pages[index];
  // Opaque pixels: the page is paper-white, and the PNG needs no alpha channel.
  SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, Pixels(page.size.width, dpi),
                                                Pixels(page.size.height, dpi)));
  CairoPtr cr(cairo_create(surface.get()));
  cairo_set_source_rgb(cr.get(), 1, 1, 1);
  cairo_paint(cr.get());
  cairo_scale(cr.get(), dpi / 72.0, dpi / 72.0);
  DrawPage(cr.get(), document, page);
  cairo_status_t status = cairo_status(cr.get());
  std::string png;
  if (status == CAIRO_STATUS_SUCCESS) {
    cairo_surface_flush(surface.get());
    status = cairo_surface_write_to_png_stream(surface.get(), AppendToString, &png);
  }
  if (status != CAIRO_STATUS_SUCCESS) {
    throw Error(errnum::kEngineFailure, kSource,
                std::string("Cannot draw the page: ") + cairo_status_to_string(status));
  }
  return png;
}

std::vector<std::string> WritePngs(const Document& document, const std::string& directory,
                                   const std::string& stem, double dpi) {
  const std::filesystem::path folder(NativePath(directory));
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) {
    throw Error(errnum::kPathFileAccess, kSource,
                "Cannot create folder " + directory + ": " + error.message(), error.value());
  }
  const size_t digits = std::to_string(document.pages.size()).size();
  std::vector<std::string> paths;
  for (size_t i = 0; i < document.pages.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    std::string name = stem;
    name += '-';
    name.append(digits - number.size(), '0');
    name += number;
    name += ".png";
    const std::filesystem::path file = folder / name;
    AtomicFile out(file.string(), file.string(), {.source = kSource});
    out.Write(PagePng(document, i, dpi));
    out.Commit();
    paths.push_back(file.string());
  }
  return paths;
}

}  // namespace vantorel::report
