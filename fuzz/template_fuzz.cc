// Fuzzes the template loader and compiler: any bytes either load into a compiled report or fail
// with a TemplateError listing problems; nothing else may escape, crash or leak.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "report/compile/compiled_report.h"
#include "report/template/template_io.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view xml(reinterpret_cast<const char*>(data), size);
  try {
    vantorel::report::CompileTemplate(xml, "fuzz.fr3");
  } catch (const vantorel::report::TemplateError& error) {
    if (error.problems().empty()) __builtin_trap();  // a failure must say what is wrong
  }
  return 0;
}
