// The engine port implemented by our engine. Components are thin handles on the run's shared
// state: what the component sets is recorded in the run settings and applied when the report is
// filled.
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <optional>

#include "data/connection.h"
#include "host/atomic_file.h"
#include "host/native_path.h"
#include "host/trace.h"
#include "report/binding/report_engine.h"
#include "report/expr/text_util.h"
#include "report/fill/fill.h"
#include "report/pdf/pdf_writer.h"
#include "report/preview/preview.h"
#include "report/print/printer.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::report {
namespace {

constexpr const char* kSource = "Vantorel report engine";

struct DatabaseState {
  std::string connection_string;
  bool login_prompt = false;
  std::unique_ptr<data::Connection> connection;
};

// Everything one report object and its components share.
struct RunState {
  std::shared_ptr<const CompiledReport> report;
  RunSettings settings;
  std::vector<DatabaseState> databases;
  std::optional<Document> prepared;
  int engine_option = 0;
  bool maximized = false;
  bool modal = true;
  bool editable = false;
  int preview_features = 1073;

  void Changed() { prepared.reset(); }

  const CompiledReport& Report() const {
    if (!report) throw Error(errnum::kEngineFailure, kSource, "No template is loaded");
    return *report;
  }
};

class Memo final : public engine::MemoObject {
 public:
  Memo(std::shared_ptr<RunState> run, std::string name)
      : run_(std::move(run)), name_(std::move(name)) {}
  const std::string& Name() const override { return name_; }
  void SetMemoText(const std::string& text) override {
    run_->settings.memo_texts[expr::AsciiUpper(name_)] = text;
    run_->Changed();
  }

 private:
  std::shared_ptr<RunState> run_;
  std::string name_;
};

class Parameter final : public engine::QueryParameter {
 public:
  Parameter(std::shared_ptr<RunState> run, std::string query, std::string key)
      : run_(std::move(run)), query_(std::move(query)), key_(std::move(key)) {}
  void SetParameterValue(const engine::ParameterValue& value) override {
    data::ParamValue converted = std::visit(
        [](const auto& v) -> data::ParamValue {
          using T = std::decay_t<decltype(v)>;
          if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, Date> ||
                        std::is_same_v<T, double>) {
            return v;
          } else {
            return static_cast<int64_t>(v);
          }
        },
        value.value);
    run_->settings.parameters[query_][key_] = std::move(converted);
    run_->Changed();
  }

 private:
  std::shared_ptr<RunState> run_;
  std::string query_;  // upper case
  std::string key_;
};

class Query final : public engine::QueryObject {
 public:
  Query(std::shared_ptr<RunState> run, std::string name)
      : run_(std::move(run)), name_(std::move(name)), key_(expr::AsciiUpper(name_)) {}
  const std::string& Name() const override { return name_; }
  void SetQueryText(const std::string& sql) override {
    run_->settings.query_sql[key_] = sql;
    run_->Changed();
  }
  std::shared_ptr<engine::QueryParameter> GetQueryParameter(const std::string& name) override {
    const CompiledReport& report = run_->Report();
    const int query = report.FindQuery(name_);
    if (query < 0) return nullptr;
    for (const CompiledParam& param : report.queries[static_cast<size_t>(query)].params) {
      if (expr::AsciiUpper(param.name) == expr::AsciiUpper(name)) {
        return std::make_shared<Parameter>(run_, key_, expr::AsciiUpper(name));
      }
    }
    return nullptr;
  }

 private:
  std::shared_ptr<RunState> run_;
  std::string name_;
  std::string key_;  // the name, upper case
};

class Database final : public engine::DatabaseObject {
 public:
  Database(std::shared_ptr<RunState> run, std::string name, int index)
      : run_(std::move(run)), name_(std::move(name)), index_(index) {}
  const std::string& Name() const override { return name_; }
  void SetLoginPrompt(bool prompt) override { State().login_prompt = prompt; }
  void SetConnected(bool connected) override {
    DatabaseState& state = State();
    state.connection.reset();
    run_->Changed();
    if (!connected) return;
    try {
      state.connection = data::Connection::Open(state.connection_string);
    } catch (const Error& error) {
      throw Error(error.number(), error.source(),
                  "Cannot connect database \"" + name_ + "\": " + error.description(),
                  error.system_code());
    }
  }
  void SetConnectionString(const std::string& text) override {
    State().connection_string = text;
    run_->Changed();
  }

 private:
  DatabaseState& State() { return run_->databases[static_cast<size_t>(index_)]; }

  std::shared_ptr<RunState> run_;
  std::string name_;
  int index_;
};

class OtherComponent final : public engine::Component {
 public:
  explicit OtherComponent(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const override { return name_; }
  engine::ComponentKind Kind() const override { return engine::ComponentKind::kOther; }

 private:
  std::string name_;
};

// Engine option 1 is the only one the component sets: it means "report problems to the caller,
// never in dialogs of the engine's own", which is how this engine always behaves.
class Options final : public engine::EngineOptions, public engine::PreviewOptions {
 public:
  explicit Options(std::shared_ptr<RunState> run) : run_(std::move(run)) {}
  void SetEngineOption(int32_t value) override { run_->engine_option = value; }
  // Option A: open the preview maximised.
  void SetPreviewOptionA(bool value) override { run_->maximized = value; }
  void SetPreviewFeatures(int32_t features) override { run_->preview_features = features; }
  // Option B: the preview is modal (ours always is: the call returns when it closes).
  void SetPreviewOptionB(bool value) override { run_->modal = value; }
  // Option C: pages may be edited in the preview (ours never are).
  void SetPreviewOptionC(bool value) override { run_->editable = value; }

 private:
  std::shared_ptr<RunState> run_;
};

std::string Printer(const RunState& run) {
  if (!run.Report().page.printer.empty()) return run.Report().page.printer;
  if (const char* printer = std::getenv("VANTOREL_PRINTER")) return printer;
  return {};
}

class ReportImpl final : public engine::ReportObject {
 public:
  explicit ReportImpl(const ReportEngineOptions& engine_options)
      : engine_options_(engine_options),
        run_(std::make_shared<RunState>()),
        options_(std::make_shared<Options>(run_)) {}

  void LoadTemplate(const std::string& file) override {
    run_->report = LoadCompiledTemplate(file);
    run_->settings = RunSettings();
    run_->databases.clear();
    run_->databases.resize(run_->report->databases.size());
    run_->prepared.reset();
  }

  std::shared_ptr<engine::EngineOptions> GetEngineOptions() override { return options_; }
  std::shared_ptr<engine::PreviewOptions> GetPreviewOptions() override { return options_; }

  std::shared_ptr<engine::Component> LocateComponent(const std::string& name) override {
    if (!run_->report) return nullptr;
    const ComponentEntry* entry = run_->report->Find(name);
    if (entry == nullptr) return nullptr;
    switch (entry->kind) {
      case ComponentEntry::Kind::kMemo:
        return std::make_shared<Memo>(run_, name);
      case ComponentEntry::Kind::kQuery:
        return std::make_shared<Query>(run_, name);
      case ComponentEntry::Kind::kDatabase:
        return std::make_shared<Database>(run_, name, entry->index);
      case ComponentEntry::Kind::kOther:
        break;
    }
    return std::make_shared<OtherComponent>(name);
  }

  void SetTemplateVariable(const std::string& category, const std::string& name,
                           const std::string& value) override {
    // A variable the template does not declare cannot appear in it: nothing to change.
    if (run_->Report().FindVariable(category, name) >= 0) {
      run_->settings.variables[{expr::AsciiUpper(category), expr::AsciiUpper(name)}] = value;
    }
    run_->Changed();
  }

  void OpenDesigner() override {
    throw Error(errnum::kEngineFailure, kSource,
                "The template designer is not available in this version of Vantorel. Edit the "
                ".fr3 file in a text editor (see docs/template-format.md) and check it with "
                "`vantorel check`; set DesigbeMode to false to print without it.");
  }

  void ShowPreview() override {
    const Document& document = Prepared();
    PreviewSettings settings;
    settings.title = document.metadata.title;
    settings.allow_export = (run_->preview_features & 8) != 0;
    settings.maximized = run_->maximized;
    settings.printer = Printer(*run_);
    report::ShowPreview(document, settings);
  }

  void PrepareReport(bool clear_previous) override {
    Document document = Fill();
    if (!clear_previous && run_->prepared) {
      AppendPages(*run_->prepared, std::move(document));
    } else {
      run_->prepared = std::move(document);
    }
  }

  void PrintPrepared() override {
    PrintOptions options;
    options.queue = Printer(*run_);
    PrintDocument(Prepared(), options);
  }

  std::shared_ptr<engine::PdfExporter> GetPdfExporter() override {
    return std::make_shared<Exporter>(this);
  }

 private:
  class Exporter final : public engine::PdfExporter {
   public:
    explicit Exporter(ReportImpl* report) : report_(report) {}
    // The four flags and two texts are export settings of engines that have them; a PDF of ours
    // always embeds its fonts and keeps its text, so they change nothing here.
    void ExportPdf(const std::string& file, bool, bool, bool, bool, const std::string&,
                   const std::string&) override {
      WritePdf(report_->Prepared(), file);
      if (report_->engine_options_.layout_beside_pdf) {
        const std::string layout = LayoutPathBeside(file);
        AtomicFile out(NativePath(layout), layout, {.source = kSource});
        out.Write(LayoutText(report_->Prepared()));
        out.Commit();
      }
    }

   private:
    ReportImpl* report_;
  };

  const Document& Prepared() {
    if (!run_->prepared) run_->prepared = Fill();
    return *run_->prepared;
  }

  Document Fill() {
    const CompiledReport& report = run_->Report();
    FillServices services;
    services.connection = [this, &report](int index) -> data::Connection& {
      DatabaseState& state = run_->databases[static_cast<size_t>(index)];
      if (!state.connection) {
        if (state.connection_string.empty()) {
          throw Error(errnum::kConnectionInvalid, kSource,
                      "Database \"" + report.databases[static_cast<size_t>(index)] +
                          "\" of the template has no connection");
        }
        state.connection = data::Connection::Open(state.connection_string);
      }
      return *state.connection;
    };
    SetClock(services, CurrentPlatform()->Now());
    FillResult result = report::Fill(report, run_->settings, services);
    for (const std::string& warning : result.warnings) {
      trace::Event("Warning").Text("template", report.file).Text("text", warning).Write();
    }
    return std::move(result.document);
  }

  ReportEngineOptions engine_options_;
  std::shared_ptr<RunState> run_;
  std::shared_ptr<Options> options_;
};

class ReportEngine final : public engine::Engine {
 public:
  explicit ReportEngine(const ReportEngineOptions& options) : options_(options) {}
  std::shared_ptr<engine::ReportObject> CreateReport() override {
    return std::make_shared<ReportImpl>(options_);
  }

 private:
  ReportEngineOptions options_;
};

}  // namespace

std::shared_ptr<engine::Engine> MakeReportEngine() { return MakeReportEngine({}); }

std::shared_ptr<engine::Engine> MakeReportEngine(const ReportEngineOptions& options) {
  return std::make_shared<ReportEngine>(options);
}

}  // namespace vantorel::report
