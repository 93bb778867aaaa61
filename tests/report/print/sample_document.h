// A small prepared document for the printing and preview tests: A4 pages, each with a heading,
// a few lines of text, a rule and a box, and "Page n of N" at the foot.
#ifndef VANTOREL_TESTS_REPORT_PRINT_SAMPLE_DOCUMENT_H_
#define VANTOREL_TESTS_REPORT_PRINT_SAMPLE_DOCUMENT_H_

#include <string>

#include "report/document/document.h"

namespace vantorel::report::testing {

inline Document SampleDocument(int pages, const std::string& title) {
  Document document;
  document.metadata.title = title;
  TextStyle heading;
  heading.size = 18;
  heading.bold = true;
  const uint32_t heading_style = document.InternStyle(heading);
  const uint32_t body_style = document.InternStyle(TextStyle{});
  for (int n = 1; n <= pages; ++n) {
    Page page;
    page.size = {595.28f, 841.89f};
    page.items.push_back(
        TextItem{{40, 40, 515, 28}, heading_style, "Sales register, page " + std::to_string(n)});
    page.items.push_back(LineItem{{40, 72}, {555, 72}, Stroke{1.0f}});
    for (int line = 0; line < 6; ++line) {
      page.items.push_back(
          TextItem{{40, 90.0f + 16 * line, 515, 14},
                   body_style,
                   "Invoice " + std::to_string(n * 100 + line) + "  Splendor Plus  Rs 74,500.00"});
    }
    RectItem box;
    box.box = {40, 200, 200.0f + 60 * n, 80};
    box.fill = Color{200, 220, 255, 255};
    box.stroke = Stroke{1.0f};
    page.items.push_back(box);
    page.items.push_back(TextItem{{40, 800, 515, 14},
                                  body_style,
                                  "Page " + std::to_string(n) + " of " + std::to_string(pages)});
    document.pages.push_back(std::move(page));
  }
  return document;
}

}  // namespace vantorel::report::testing

#endif  // VANTOREL_TESTS_REPORT_PRINT_SAMPLE_DOCUMENT_H_
