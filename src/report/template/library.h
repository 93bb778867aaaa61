// The house library: one file in the template folder holding the styles and parts (letterhead,
// signatures, amount in words…) that the dealership's templates share. A template names it with
// <library file="…"/> and places parts with <use part="…" left top …arguments/>; before
// compiling, every use is replaced by its part's objects, and the part's queries and variables and
// the library's styles join the template (docs/template-format.md, "The house library").
//
// Thread-safety: pure functions.
#ifndef VANTOREL_REPORT_TEMPLATE_LIBRARY_H_
#define VANTOREL_REPORT_TEMPLATE_LIBRARY_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "report/template/design.h"
#include "report/template/template_io.h"

namespace vantorel::report {

// Parts may use parts; this many levels deep at most.
inline constexpr int kMaxPartNesting = 16;

// The largest library file read.
inline constexpr size_t kMaxLibraryBytes = size_t{16} << 20;

struct PartParam {
  std::string name;
  std::optional<std::string> default_value;  // none: every use must give it
  int line = 0;
};

// A part as the library writes it: its parameters and its XML, which is read afresh for every use
// once the arguments are put in.
struct PartSource {
  std::string name;
  int line = 0;
  std::vector<PartParam> params;
  std::string xml;  // from "<part" to "</part>"

  const PartParam* FindParam(std::string_view wanted) const;
};

struct Library {
  std::string file;  // as problems name it
  std::vector<Style> styles;
  std::vector<PartSource> parts;

  const PartSource* FindPart(std::string_view wanted) const;
};

// What one use of a part brings: its objects (relative to the part's top left), and the queries
// and variables it needs.
struct PartBody {
  std::vector<DesignObject> objects;
  std::vector<Query> queries;
  std::vector<Variable> variables;
};

// Parses library XML; adds what is wrong to "problems".
Library ParseLibrary(std::string_view xml, const std::string& file, std::vector<Problem>& problems);

// Parses the XML of one part, its arguments put in; "first_line" is the line of the library file
// the XML starts on, so that problems name the library's lines; "styles" are the library's, which
// may make a text rich.
PartBody ParsePartBody(std::string_view xml, const std::string& file, int first_line,
                       const std::vector<Style>& styles, std::vector<Problem>& problems);

// The template "design" (read from "file") with every <use> replaced by the objects of its part,
// the library's styles before its own (a style of the template overrides the library's of the
// same name) and the queries and variables its parts bring. The library is read from the
// template's folder. A template without <library> comes back unchanged.
Template ExpandParts(const Template& design, const std::string& file,
                     std::vector<Problem>& problems);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_TEMPLATE_LIBRARY_H_
