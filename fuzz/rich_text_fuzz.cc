// Fuzzes the rich-text reader: any markup reads into plain text whose byte map and spans stay
// inside the text, in order.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "report/text/rich_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace vantorel::report::text;
  const std::string_view markup(reinterpret_cast<const char*>(data), size);
  for (const PlainText& plain : {ParseRichText(markup), ValidUtf8(markup)}) {
    if (plain.source.size() != plain.text.size() + 1) __builtin_trap();
    uint32_t end = 0;
    for (const RichSpan& span : plain.spans) {
      if (span.begin < end || span.end <= span.begin || span.end > plain.text.size()) {
        __builtin_trap();
      }
      end = span.end;
    }
  }
  ProtectFromMarkup(markup);
  return 0;
}
