// The two ways text gets laid out, behind LayOut: our own HarfBuzz shaping and greedy wrapping
// for plain single-font text, and a PangoLayout for the rest. Both place lines by the same rules
// (LineGeometry) so a text measures the same whichever way it went.
//
// Thread-safety: use the calling thread's fonts.
#ifndef VANTOREL_REPORT_TEXT_LAYOUT_PATHS_H_
#define VANTOREL_REPORT_TEXT_LAYOUT_PATHS_H_

#include <cmath>
#include <string_view>
#include <vector>

#include "report/document/document.h"
#include "report/text/fonts.h"
#include "report/text/layout.h"
#include "report/text/rich_text.h"

namespace vantorel::report::text {

// Where lines go: each line's natural height is its font's ascent plus descent; line spacing
// multiplies the distance from one line's top to the next; alignment shifts a line within the
// available width (justified lines are stretched by the path itself, so they align left).
class LineGeometry {
 public:
  LineGeometry(const TextStyle& style, float width, bool bounded)
      : style_(style), width_(width), bounded_(bounded) {}

  // Adds a line and returns it placed; "width" excludes trailing spaces.
  TextLine& Add(LaidOutText& out, float ascent, float descent, float width, uint32_t begin,
                uint32_t end) const;

  // True when a line may be wrapped at "width_" points.
  bool bounded() const { return bounded_; }
  float width() const { return width_; }

 private:
  const TextStyle& style_;
  float width_;
  bool bounded_;
};

// "points" in Pango units, rounded as both paths round a line's width.
inline int PangoUnits(float points) {
  return static_cast<int>(std::lround(static_cast<double>(points) * PANGO_SCALE));
}

// True when a line must not break before byte "i" of "text" although Pango's rules allow it:
// after a hyphen-minus or a slash that a digit follows, so dates ("22-02-2030") and document
// numbers ("VSI/24-25/0007") stay whole (UAX #14: HY × NU, SY × NU). Both paths apply it.
bool NumberJoinsAt(std::string_view text, size_t i);

// A stretch of "text" that no line breaks inside: bytes [begin, end). A line may still end just
// before it and start just after it.
struct KeptSpan {
  size_t begin = 0;
  size_t end = 0;
};

// The stretches of "text" kept whole when they fit on a line, in order and apart: a place name,
// a hyphen (or an em dash) and a six-digit PIN code ("Pune - 411013": no break before or after
// the dash), and a phrase of at most 24 characters in round brackets with no brackets and no en
// dash inside ("(Candy Yellow)"). Both
// paths keep them, each measuring whether a stretch fits on its line as it measures its lines;
// one wider than its line breaks as any text would.
std::vector<KeptSpan> FindKeptSpans(std::string_view text);

// True when the fast path lays "text" out exactly as Pango would: valid UTF-8, no control
// characters but line breaks, only scripts without shaping subtleties, every character in
// "font".
bool CanLayOutFast(std::string_view text, const FontInfo& font);

// Shapes "buffer" (holding text of "font", its properties set, not yet shaped) as hb_shape would,
// without HarfBuzz's shaping, when every character is in font.plain_without_letters: each
// character its nominal glyph at its advance. False, leaving the buffer as it was, otherwise.
bool ShapeWithoutLookups(hb_buffer_t* buffer, const FontInfo& font);

LaidOutText LayOutFast(std::string_view text, const TextStyle& style, const FontInfo& font,
                       const LineGeometry& geometry);

// "plain" laid out by Pango; line byte ranges are mapped back through plain.source.
LaidOutText LayOutWithPango(const PlainText& plain, const TextStyle& style, const FontInfo& primary,
                            const LineGeometry& geometry);

}  // namespace vantorel::report::text

#endif  // VANTOREL_REPORT_TEXT_LAYOUT_PATHS_H_
