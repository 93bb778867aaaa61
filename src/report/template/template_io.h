// Reading and writing templates: the ".fr3" XML into the design model, reporting every problem at
// once with its line and a hint, and the design model back into XML.
//
// Thread-safety: pure functions.
#ifndef VANTOREL_REPORT_TEMPLATE_TEMPLATE_IO_H_
#define VANTOREL_REPORT_TEMPLATE_TEMPLATE_IO_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "report/template/design.h"

namespace vantorel::report {

struct Problem {
  std::string file;
  int line = 0;  // 0 when the problem concerns the whole file
  std::string message;
  std::string hint;
};

// How deeply elements may nest in a template. Real templates nest a dozen levels at most; every
// walk over the design (compile, fill, drawing) recurses once per level, and this bound keeps
// that well inside the 1 MB stack a host's thread may have.
inline constexpr int kMaxTemplateNesting = 64;

// The largest template file read: far above any layout, it stops a wrong path (a database, a
// log) from being read whole into memory.
inline constexpr size_t kMaxTemplateBytes = size_t{256} << 20;

// The longest message or hint FormatProblems prints whole; longer ones (a message quoting data, a
// name that is a whole file) are cut with an ellipsis.
inline constexpr size_t kMaxProblemText = 300;

// Everything wrong with a template, formatted "file:line: message (hint)" one per line; the
// first "most" problems, then how many more there are.
std::string FormatProblems(const std::vector<Problem>& problems, size_t most = SIZE_MAX);

// Thrown when a template cannot be used; holds every problem found.
class TemplateError : public std::runtime_error {
 public:
  explicit TemplateError(std::vector<Problem> problems);
  const std::vector<Problem>& problems() const { return problems_; }

 private:
  std::vector<Problem> problems_;
};

// Writes "design" as template XML in the layout docs/template-format.md describes, keeping what
// the file it was read from wrote (Written): a template read and written unchanged gives the
// same bytes when its file is in that layout, and an edit changes the file only where it was made.
std::string WriteTemplate(const Template& design);

// The [expressions] of a text: their byte ranges, brackets included. Brackets nest, quotes hide
// them, and "[[" is a literal "[".
std::vector<std::pair<size_t, size_t>> ExpressionSpans(std::string_view text);

// Parses template XML; "file" names it in problems. Throws TemplateError with all problems.
Template ParseTemplate(std::string_view xml, const std::string& file);

// Parses as much of "xml" as it can and adds what is wrong to "problems" instead of throwing, so
// the compiler can add its own and the author sees everything at once. XML that is not a
// template at all gives an empty design.
Template ParseTemplate(std::string_view xml, const std::string& file,
                       std::vector<Problem>& problems);

// The bytes of the template file at "path" (a host path). Throws TemplateError.
std::string ReadTemplateFile(const std::string& path);

// Reads and parses the template file at "path" (a host path).
Template LoadTemplateFile(const std::string& path);

// Lengths as templates write them: "12mm", "1.5cm", "0.5in", "10pt", or a bare number of
// millimetres. Returns points; nullopt when the text is not a length.
std::optional<float> ParseLength(std::string_view text);

// Colours: "#rgb", "#rrggbb", "#rrggbbaa", or a name (black, white, red, green, blue, gray,
// grey, silver, maroon, navy, transparent, none, …).
std::optional<Color> ParseColor(std::string_view text);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_TEMPLATE_IO_H_
