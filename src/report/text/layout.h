// Laid-out text: what MeasureText and FitText measure and what DrawPage paints, so measuring and
// drawing cannot disagree. A text is laid out once per (text, layout-relevant style, width) and
// kept in the thread's cache; the result is immutable and refers to its fonts by counted Cairo
// scaled fonts, so it may be drawn on any thread and outlives the font map that made it.
//
// Two ways produce the same form: plain single-font texts (the great majority of report cells)
// are shaped with HarfBuzz and wrapped by our own greedy breaker, at the places and by the
// measures Pango would use; everything else (markup, font fallback, complex scripts such as
// Devanagari) goes through a PangoLayout.
//
// Thread-safety: LayOut and the cache functions use the calling thread's cache; a LaidOutText
// may be shared and drawn from any thread.
#ifndef VANTOREL_REPORT_TEXT_LAYOUT_H_
#define VANTOREL_REPORT_TEXT_LAYOUT_H_

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "report/document/document.h"
#include "report/text/handles.h"

namespace vantorel::report::text {

// A run of glyphs of one font, positioned in the layout's frame (origin at the top left of the
// text area, y down, glyph y on its baseline), with the UTF-8 it came from and the cluster map
// between them so PDF text extracts exactly.
struct GlyphRun {
  ScaledFont font;
  std::vector<cairo_glyph_t> glyphs;
  std::string utf8;
  std::vector<cairo_text_cluster_t> clusters;
  cairo_text_cluster_flags_t cluster_flags = cairo_text_cluster_flags_t(0);
  // Rich text only: the run's own colour and decorations, and where they are drawn.
  bool has_color = false;
  Color color;
  bool underline = false;
  bool strikeout = false;
  float x0 = 0, x1 = 0, baseline = 0;
};

// An underline or strikeout line of a font: the top edge relative to the baseline (positive is
// below) and the thickness, in points.
struct DecorationLine {
  float offset = 0;
  float thickness = 0;
};

struct TextLine {
  float top = 0;  // the line's band, spacing included
  float height = 0;
  float baseline = 0;  // from the layout's top
  float left = 0;      // after alignment
  float width = 0;     // trailing spaces excluded
  uint32_t begin = 0;  // byte range of the line in the source text (markup included)
  uint32_t end = 0;
};

struct LaidOutText {
  SizeF size;  // widest line × sum of line heights
  std::vector<TextLine> lines;
  std::vector<GlyphRun> runs;
  // The primary font's decoration lines, for style.underline and style.strikeout.
  DecorationLine underline, strikeout;
  bool fast_path = false;  // which way it was made; for tests and profiling
  size_t bytes = 0;        // approximate memory, for the cache's budget
};

// "text" laid out with "style" in a line width of "width" points. Cached per thread.
std::shared_ptr<const LaidOutText> LayOut(std::string_view text, const TextStyle& style,
                                          float width);

struct LayoutCacheStats {
  size_t hits = 0;
  size_t misses = 0;
  size_t entries = 0;
  size_t bytes = 0;
};

// The calling thread's cache counters.
LayoutCacheStats GetLayoutCacheStats();

// Empties the calling thread's cache and resets its counters.
void ClearLayoutCache();

// Sets the calling thread's cache budget in bytes (0 disables caching). Default: 32 MiB.
void SetLayoutCacheBudget(size_t bytes);

}  // namespace vantorel::report::text

#endif  // VANTOREL_REPORT_TEXT_LAYOUT_H_
