#include "report/pdf/queue_pdf.h"

#include <cairo-pdf.h>

#include <utility>

#include "report/pdf/resource_filter.h"
#include "report/render/draw_page.h"
#include "report/text/handles.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kSource[] = "Vantorel.Pdf";
constexpr SizeF kA4 = {595.28f, 841.89f};

cairo_status_t AppendToString(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

SizeF PageSize(const Page& page) {
  return page.size.width > 0 && page.size.height > 0 ? page.size : kA4;
}

// Draws every page through "write"; returns Cairo's final status.
cairo_status_t Render(const Document& document, cairo_write_func_t write, void* closure) {
  const SizeF first = document.pages.empty() ? kA4 : PageSize(document.pages.front());
  ResourceFilter filter(write, closure);
  SurfacePtr surface(cairo_pdf_surface_create_for_stream(&ResourceFilter::Write, &filter,
                                                         first.width, first.height));
  const Metadata& meta = document.metadata;
  const std::pair<cairo_pdf_metadata_t, const std::string*> fields[] = {
      {CAIRO_PDF_METADATA_TITLE, &meta.title},
      {CAIRO_PDF_METADATA_AUTHOR, &meta.author},
      {CAIRO_PDF_METADATA_SUBJECT, &meta.subject},
      {CAIRO_PDF_METADATA_CREATOR, &meta.creator}};
  for (const auto& [field, value] : fields) {
    if (!value->empty()) cairo_pdf_surface_set_metadata(surface.get(), field, value->c_str());
  }
  {
    CairoPtr cr(cairo_create(surface.get()));
    if (document.pages.empty()) {
      // A PDF needs a page; an empty document prints as one blank A4 sheet.
      cairo_show_page(cr.get());
    }
    for (const Page& page : document.pages) {
      const SizeF size = PageSize(page);
      cairo_pdf_surface_set_size(surface.get(), size.width, size.height);
      DrawPage(cr.get(), document, page);
      cairo_show_page(cr.get());
    }
    const cairo_status_t status = cairo_status(cr.get());
    if (status != CAIRO_STATUS_SUCCESS) return status;
  }
  cairo_surface_finish(surface.get());
  const cairo_status_t status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return status;
  return filter.Flush();
}

}  // namespace

std::string QueuePdfBytes(const Document& document) {
  std::string bytes;
  const cairo_status_t status = Render(document, AppendToString, &bytes);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw Error(errnum::kEngineFailure, kSource,
                std::string("Cannot make the PDF: ") + cairo_status_to_string(status));
  }
  return bytes;
}

}  // namespace vantorel::report
