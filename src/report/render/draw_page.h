// Draws one page of a prepared document on a Cairo context: the one drawing routine behind the
// PDF, the PNG pages, the printer and the preview window, which differ only in their surface.
// Coordinates are points with the origin at the page's top left; callers that draw in pixels
// scale the context first.
//
// Thread-safety: may run on several threads at once for different contexts.
#ifndef VANTOREL_REPORT_RENDER_DRAW_PAGE_H_
#define VANTOREL_REPORT_RENDER_DRAW_PAGE_H_

#include <cairo.h>

#include <string_view>

#include "report/document/document.h"

namespace vantorel::report {

namespace render {
class Painter;
}

// Paints page "page" of "document" on "painter", and flushes it.
void DrawPage(render::Painter& painter, const Document& document, const Page& page);

// Paints page "page" of "document" (items in order; later items over earlier ones). Drawing
// errors are sticky on the context, as is Cairo's way; callers check cairo_status once.
void DrawPage(cairo_t* cr, const Document& document, const Page& page);

// Paints one text box as a TextItem with "style" would be painted: fill, text laid out in the
// box less its padding (rotated, aligned, clipped as the style says), then borders. For callers
// that draw a box of their own, such as a designer's canvas.
void DrawTextBox(cairo_t* cr, const TextStyle& style, const RectF& box, std::string_view text);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_RENDER_DRAW_PAGE_H_
