// Text layout, shared by the fill stage (how tall a stretching memo must be, where a tall text
// splits across pages) and the renderers (what to paint). Text is laid out with our own
// deterministic font setup — 72 dpi, no hinting, hint metrics off, a private font configuration
// holding only the fonts we install — so a line breaks at the same place in the preview, the PNG,
// the PDF and on paper.
//
// Thread-safety: every function may be called from any thread; each thread keeps its own font
// map and layout cache.
#ifndef VANTOREL_REPORT_TEXT_TEXT_LAYOUT_H_
#define VANTOREL_REPORT_TEXT_TEXT_LAYOUT_H_

#include <cstddef>
#include <string_view>

#include "report/document/document.h"

namespace vantorel::report::text {

// The size of "text" laid out with "style" (font, wrapping, spacing, markup when style.rich) in a
// line width of "width" points (the box's width less its padding; for rotated text, the box's
// height less padding). Height is the sum of the line heights; width the widest line.
SizeF MeasureText(std::string_view text, const TextStyle& style, float width);

// The height MeasureText gives. A plain text that surely lays out as one line is answered from
// its font without laying it out: most cells of a long register are so, are never measured
// again, and laid out only once, when drawn.
float MeasureHeight(std::string_view text, const TextStyle& style, float width);

// Whether "text" fits in a box of "size" drawn with "style", judged as the renderer draws it:
// lines as long as the box less its padding (along its height when rotated); text taller than
// its box starts at the top. Upright text may use the box's padding before any of it is cut;
// rotated text is cut at its padded frame.
struct BoxFit {
  bool fits = true;
  bool across = false;  // it does not fit for a line too long, rather than too many lines
  float needed = 0;     // the box's height (width when "across") the text needs, padding included
  float available = 0;  // the box's height (width) as it is
};
BoxFit FitInBox(std::string_view text, const TextStyle& style, SizeF size);

// For a text too tall for "height": the byte offset in "text" where the first part ends, at a
// line boundary, so that text[0, offset) fits. Returns text.size() when everything fits and 0
// when not even one line fits.
size_t FitText(std::string_view text, const TextStyle& style, float width, float height);

}  // namespace vantorel::report::text

#endif  // VANTOREL_REPORT_TEXT_TEXT_LAYOUT_H_
