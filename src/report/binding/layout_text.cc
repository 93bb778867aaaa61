#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "report/binding/report_engine.h"
#include "report/render/text_lines.h"

namespace vantorel::report {

std::string LayoutText(const Document& document) {
  return Serialize(document, [](const TextItem& item, const TextStyle& style) {
    return TextLineStarts(style, item.box, item.text);
  });
}

std::string LayoutPathBeside(const std::string& pdf_path) {
  constexpr std::string_view kPdf = ".pdf";
  const size_t stem = pdf_path.size() - std::min(pdf_path.size(), kPdf.size());
  bool is_pdf = pdf_path.size() > kPdf.size();
  for (size_t i = 0; is_pdf && i < kPdf.size(); ++i) {
    is_pdf = std::tolower(static_cast<unsigned char>(pdf_path[stem + i])) == kPdf[i];
  }
  return (is_pdf ? pdf_path.substr(0, stem) : pdf_path) + ".layout";
}

}  // namespace vantorel::report
