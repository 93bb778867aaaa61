// Running a command from a test: what it wrote on stdout, and the text of a PDF as pdftotext
// reads it.
#ifndef VANTOREL_TESTS_SUPPORT_SHELL_H_
#define VANTOREL_TESTS_SUPPORT_SHELL_H_

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace vantorel::testing {

// What "command" (run by the shell) wrote on stdout.
inline std::string Shell(const std::string& command) {
  std::string out;
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
  if (!pipe) return out;
  std::array<char, 4096> buffer;
  size_t read;
  while ((read = std::fread(buffer.data(), 1, buffer.size(), pipe.get())) > 0) {
    out.append(buffer.data(), read);
  }
  return out;
}

// The text of "pdf" in layout order.
inline std::string PdfText(const std::string& pdf) {
  return Shell("pdftotext -layout '" + pdf + "' - 2>&1");
}

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_SUPPORT_SHELL_H_
