// The engine port: what the component needs of a report engine. A report object loads a ".fr3"
// template, finds its named components (memos, queries, database connections), takes new memo
// texts, SQL, query parameter values and template variables, and then opens the designer, shows
// a preview, prints or writes a PDF file. Our report engine implements it (report/); a scripted
// engine implements it for contract tests.
//
// Every operation reports failure by throwing vantorel::Error. LocateComponent and
// GetQueryParameter of an absent name are not failures: they return nullptr.
//
// Thread-safety: engine objects are used only on the thread that created them.
#ifndef VANTOREL_ENGINE_PORT_H_
#define VANTOREL_ENGINE_PORT_H_

#include <cstdint>
#include <memory>
#include <string>
#include <variant>

#include "vantorel/types.h"

namespace vantorel::engine {

enum class ComponentKind { kMemo, kQuery, kDatabase, kOther };

// "memo", "query", "database" or "component", for messages.
const char* KindName(ComponentKind kind);

// A value for a query parameter, typed by the automation type code the caller states with it:
// 2 (16-bit integer), 3 (32-bit integer), 17 (unsigned 8-bit integer), 5 (double), 7 (date),
// 8 (string).
struct ParameterValue {
  std::variant<int16_t, int32_t, uint8_t, double, Date, std::string> value;

  int TypeCode() const;
  friend bool operator==(const ParameterValue&, const ParameterValue&) = default;
};

class Component {
 public:
  virtual ~Component() = default;
  virtual const std::string& Name() const = 0;
  virtual ComponentKind Kind() const = 0;
};

class MemoObject : public Component {
 public:
  ComponentKind Kind() const override { return ComponentKind::kMemo; }
  // Replaces the memo's text; the text may hold the template's own expressions.
  virtual void SetMemoText(const std::string& text) = 0;
};

class QueryParameter {
 public:
  virtual ~QueryParameter() = default;
  virtual void SetParameterValue(const ParameterValue& value) = 0;
};

class QueryObject : public Component {
 public:
  ComponentKind Kind() const override { return ComponentKind::kQuery; }
  // Replaces the query's SQL; it runs on the query's connection when the report is built.
  virtual void SetQueryText(const std::string& sql) = 0;
  // The named parameter of the query, or nullptr when the query has none of that name.
  virtual std::shared_ptr<QueryParameter> GetQueryParameter(const std::string& name) = 0;
};

// A named database connection of the template ("DMSDB", "temp").
class DatabaseObject : public Component {
 public:
  ComponentKind Kind() const override { return ComponentKind::kDatabase; }
  virtual void SetLoginPrompt(bool prompt) = 0;
  // false closes the connection; true opens it with the current connection string and throws
  // when it cannot.
  virtual void SetConnected(bool connected) = 0;
  virtual void SetConnectionString(const std::string& connection_string) = 0;
};

class EngineOptions {
 public:
  virtual ~EngineOptions() = default;
  virtual void SetEngineOption(int32_t value) = 0;
};

// The preview window's settings. Feature bit 3 (value 8) offers export from the preview.
class PreviewOptions {
 public:
  virtual ~PreviewOptions() = default;
  virtual void SetPreviewOptionA(bool value) = 0;
  virtual void SetPreviewFeatures(int32_t features) = 0;
  virtual void SetPreviewOptionB(bool value) = 0;
  virtual void SetPreviewOptionC(bool value) = 0;
};

class PdfExporter {
 public:
  virtual ~PdfExporter() = default;
  // Writes the prepared pages as a PDF file named "file". The flags and texts are the engine's
  // export settings; the component always passes true four times and two empty texts.
  virtual void ExportPdf(const std::string& file, bool flag1, bool flag2, bool flag3, bool flag4,
                         const std::string& text1, const std::string& text2) = 0;
};

class ReportObject {
 public:
  virtual ~ReportObject() = default;
  virtual void LoadTemplate(const std::string& file) = 0;
  virtual std::shared_ptr<EngineOptions> GetEngineOptions() = 0;
  virtual std::shared_ptr<PreviewOptions> GetPreviewOptions() = 0;
  // The component of the loaded template named "name", or nullptr when there is none.
  virtual std::shared_ptr<Component> LocateComponent(const std::string& name) = 0;
  // Sets template variable "name" of "category" to "value", an expression of the template's
  // language (a quoted text for a string).
  virtual void SetTemplateVariable(const std::string& category, const std::string& name,
                                   const std::string& value) = 0;
  // Opens the designer on the loaded template; returns when the user closes it.
  virtual void OpenDesigner() = 0;
  // Builds the report and shows it in a preview window; returns when the window closes.
  virtual void ShowPreview() = 0;
  // Builds the report pages without showing them.
  virtual void PrepareReport(bool clear_previous) = 0;
  // Prints the pages PrepareReport built.
  virtual void PrintPrepared() = 0;
  virtual std::shared_ptr<PdfExporter> GetPdfExporter() = 0;
};

class Engine {
 public:
  virtual ~Engine() = default;
  // A new, empty report object. Throws when the engine is not available.
  virtual std::shared_ptr<ReportObject> CreateReport() = 0;
};

// The engine a CRepoter prints with unless it was given one: the one installed with
// SetDefaultEngineFactory, else the built-in one.
std::shared_ptr<Engine> DefaultEngine();
// Installs the default engine's factory for the process (hosts and tests); nullptr removes it.
void SetDefaultEngineFactory(std::shared_ptr<Engine> (*factory)());
// The engine used when no default is installed: the component sets our report engine here.
void SetBuiltInEngineFactory(std::shared_ptr<Engine> (*factory)());

}  // namespace vantorel::engine

#endif  // VANTOREL_ENGINE_PORT_H_
