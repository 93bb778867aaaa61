// Our report engine behind the engine port: a report object loads a compiled template (cached by
// file), takes the run's memo texts, SQL, parameter and variable values, binds the template's
// named connections, and fills and outputs the report to a PDF file, the printer or the preview.
// docs/engine.md maps the options the component sets to what they do here.
//
// Thread-safety: a report object and its components belong to the thread that created them; the
// template cache is shared and thread-safe.
#ifndef VANTOREL_REPORT_BINDING_REPORT_ENGINE_H_
#define VANTOREL_REPORT_BINDING_REPORT_ENGINE_H_

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/port.h"
#include "report/compile/compiled_report.h"
#include "report/document/document.h"

namespace vantorel::report {

// What our engine does beyond the port's contract.
struct ReportEngineOptions {
  // Writes the prepared document's layout (LayoutText) beside every PDF it exports, named as the
  // PDF with ".layout" for ".pdf". The port has no way to hand a prepared document back, and the
  // component must not know our engine; an export beside the PDF gives a component print's
  // layout, the very document the PDF was drawn from, with neither of them changed. For the
  // layout golden tests and for reviewing where a printed document's boxes and line breaks
  // landed. Default: false.
  bool layout_beside_pdf = false;
};

// Our engine; the component's built-in one.
std::shared_ptr<engine::Engine> MakeReportEngine();
// Our engine with options, for a composition place outside the component (a test, a tool) that
// hands it to CRepoter(engine) or installs it with engine::SetDefaultEngineFactory.
std::shared_ptr<engine::Engine> MakeReportEngine(const ReportEngineOptions& options);

// "document" as Serialize writes it, with each text's line breaks where DrawPage breaks it: what
// the layout golden files hold.
std::string LayoutText(const Document& document);

// The layout file written beside the PDF "pdf_path": ".pdf" (in any case) replaced by ".layout",
// or ".layout" appended when the path has another ending.
std::string LayoutPathBeside(const std::string& pdf_path);

// The compiled template at "path", compiled once per file version (size and modification time)
// and shared. Throws vantorel::Error listing every problem of a bad template.
std::shared_ptr<const CompiledReport> LoadCompiledTemplate(const std::string& path);

// A render without the component: for `vantorel render`, benchmarks and tests.
struct RenderRequest {
  std::string template_path;
  std::map<std::string, std::string> connections;  // database name ("DMSDB") → connection string
  struct Setting {
    std::string owner;  // query name, or variable category
    std::string name;   // parameter or variable name
    std::string value;  // parameter: text in the parameter's type; variable: an expression
  };
  std::vector<Setting> parameters;
  std::vector<Setting> variables;
};

struct Rendered {
  Document document;
  std::vector<std::string> warnings;
  std::string printer;  // the template's printer, if it names one
};

// Loads, binds and fills a template. Throws vantorel::Error (bad template, unknown query or
// parameter, database failure).
Rendered RenderTemplate(const RenderRequest& request);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_BINDING_REPORT_ENGINE_H_
