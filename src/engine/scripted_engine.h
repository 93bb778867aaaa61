// A report engine for contract tests: each template is scripted (which components it has, which
// parameters its queries take), any operation can be made to fail, and what the component did is
// kept for inspection. It draws nothing.
//
// Thread-safety: one engine per test thread; not shared.
#ifndef VANTOREL_ENGINE_SCRIPTED_ENGINE_H_
#define VANTOREL_ENGINE_SCRIPTED_ENGINE_H_

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "engine/port.h"

namespace vantorel::engine {

class ScriptedEngine final : public Engine {
 public:
  struct Template {
    std::map<std::string, ComponentKind> components;
    std::map<std::string, std::set<std::string>> parameters;  // query name → parameter names
  };

  // What the component did, over all reports of this engine.
  struct Observed {
    int reports_created = 0;
    std::vector<std::string> loaded;                   // template files
    std::map<std::string, std::string> memo_texts;     // memo → text
    std::map<std::string, std::string> query_sql;      // query → SQL
    std::map<std::string, ParameterValue> parameters;  // "query.param" → value
    std::map<std::string, std::string> variables;      // "Category.name" → value
    std::map<std::string, std::string> connections;    // database → connection string
    std::map<std::string, bool> connected;             // database → last SetConnected
    std::vector<std::string> outputs;  // "OpenDesigner", "PrepareReport", "PrintPrepared",
                                       // "ExportPdf <file>", "ShowPreview"
    std::vector<int> engine_options;
    std::vector<int> preview_features;
  };

  ScriptedEngine();
  ~ScriptedEngine() override;

  // Scripts template "name": it is what LoadTemplate loads for any file whose name, without
  // folders, is "name.fr3".
  void AddTemplate(const std::string& name, Template script);
  // Makes every call of operation "op" (the trace's op name, e.g. "LoadTemplate") fail with
  // "description"; "op:target" limits it to one component or database ("SetConnected:temp").
  void FailOn(const std::string& op, const std::string& description);

  const Observed& observed() const { return *observed_; }
  // Forgets what was observed so far, as if no report had run.
  void ResetObserved() { *observed_ = {}; }

  std::shared_ptr<ReportObject> CreateReport() override;

  struct Shared;  // the scripts, failures and observations every object of this engine shares

 private:
  std::shared_ptr<Shared> shared_;
  std::shared_ptr<Observed> observed_ = std::make_shared<Observed>();
};

}  // namespace vantorel::engine

#endif  // VANTOREL_ENGINE_SCRIPTED_ENGINE_H_
