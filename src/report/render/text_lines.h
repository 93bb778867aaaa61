// Where the renderer breaks the lines of a text box, for code that describes a page without
// drawing it, such as the layout text of golden files; no Cairo in sight.
//
// Thread-safety: may be called from any thread (it uses the calling thread's layout cache).
#ifndef VANTOREL_REPORT_RENDER_TEXT_LINES_H_
#define VANTOREL_REPORT_RENDER_TEXT_LINES_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "report/document/document.h"

namespace vantorel::report {

// Where the lines of "text" begin in a text box of "style" and "box", laid out as DrawPage lays
// them out: byte offsets into "text" (markup included for rich text), the first 0. Empty for an
// empty text.
std::vector<uint32_t> TextLineStarts(const TextStyle& style, const RectF& box,
                                     std::string_view text);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_RENDER_TEXT_LINES_H_
