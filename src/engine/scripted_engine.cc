#include "engine/scripted_engine.h"

#include "vantorel/error.h"

namespace vantorel::engine {

struct ScriptedEngine::Shared {
  std::map<std::string, Template> templates;
  std::map<std::string, std::string> failures;
  std::shared_ptr<Observed> observed;

  void MaybeFail(const std::string& op, const std::string& target = {}) const {
    auto it = failures.find(op);
    if (it == failures.end() && !target.empty()) it = failures.find(op + ":" + target);
    if (it != failures.end()) throw Error(errnum::kEngineFailure, "ScriptedEngine", it->second);
  }
};

namespace {

using Shared = ScriptedEngine::Shared;

class Memo final : public MemoObject {
 public:
  Memo(std::shared_ptr<Shared> shared, std::string name)
      : shared_(std::move(shared)), name_(std::move(name)) {}
  const std::string& Name() const override { return name_; }
  void SetMemoText(const std::string& text) override {
    shared_->MaybeFail("SetMemoText", name_);
    shared_->observed->memo_texts[name_] = text;
  }

 private:
  std::shared_ptr<Shared> shared_;
  std::string name_;
};

class Parameter final : public QueryParameter {
 public:
  Parameter(std::shared_ptr<Shared> shared, std::string key)
      : shared_(std::move(shared)), key_(std::move(key)) {}
  void SetParameterValue(const ParameterValue& value) override {
    shared_->MaybeFail("SetParameterValue", key_);
    shared_->observed->parameters[key_] = value;
  }

 private:
  std::shared_ptr<Shared> shared_;
  std::string key_;
};

class Query final : public QueryObject {
 public:
  Query(std::shared_ptr<Shared> shared, std::string name, std::set<std::string> parameters)
      : shared_(std::move(shared)), name_(std::move(name)), parameters_(std::move(parameters)) {}
  const std::string& Name() const override { return name_; }
  void SetQueryText(const std::string& sql) override {
    shared_->MaybeFail("SetQueryText", name_);
    shared_->observed->query_sql[name_] = sql;
  }
  std::shared_ptr<QueryParameter> GetQueryParameter(const std::string& name) override {
    shared_->MaybeFail("GetQueryParameter", name_);
    if (parameters_.count(name) == 0) return nullptr;
    return std::make_shared<Parameter>(shared_, name_ + "." + name);
  }

 private:
  std::shared_ptr<Shared> shared_;
  std::string name_;
  std::set<std::string> parameters_;
};

class Database final : public DatabaseObject {
 public:
  Database(std::shared_ptr<Shared> shared, std::string name)
      : shared_(std::move(shared)), name_(std::move(name)) {}
  const std::string& Name() const override { return name_; }
  void SetLoginPrompt(bool) override { shared_->MaybeFail("SetLoginPrompt", name_); }
  void SetConnected(bool connected) override {
    if (connected) shared_->MaybeFail("SetConnected", name_);
    shared_->observed->connected[name_] = connected;
  }
  void SetConnectionString(const std::string& text) override {
    shared_->MaybeFail("SetConnectionString", name_);
    shared_->observed->connections[name_] = text;
  }

 private:
  std::shared_ptr<Shared> shared_;
  std::string name_;
};

class Other final : public Component {
 public:
  explicit Other(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const override { return name_; }
  ComponentKind Kind() const override { return ComponentKind::kOther; }

 private:
  std::string name_;
};

class Options final : public EngineOptions, public PreviewOptions {
 public:
  explicit Options(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}
  void SetEngineOption(int32_t value) override {
    shared_->MaybeFail("SetEngineOption");
    shared_->observed->engine_options.push_back(value);
  }
  void SetPreviewOptionA(bool) override { shared_->MaybeFail("SetPreviewOptionA"); }
  void SetPreviewFeatures(int32_t features) override {
    shared_->MaybeFail("SetPreviewFeatures");
    shared_->observed->preview_features.push_back(features);
  }
  void SetPreviewOptionB(bool) override { shared_->MaybeFail("SetPreviewOptionB"); }
  void SetPreviewOptionC(bool) override { shared_->MaybeFail("SetPreviewOptionC"); }

 private:
  std::shared_ptr<Shared> shared_;
};

class Exporter final : public PdfExporter {
 public:
  explicit Exporter(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}
  void ExportPdf(const std::string& file, bool, bool, bool, bool, const std::string&,
                 const std::string&) override {
    shared_->MaybeFail("ExportPdf");
    shared_->observed->outputs.push_back("ExportPdf " + file);
  }

 private:
  std::shared_ptr<Shared> shared_;
};

class Report final : public ReportObject {
 public:
  explicit Report(std::shared_ptr<Shared> shared)
      : shared_(std::move(shared)), options_(std::make_shared<Options>(shared_)) {}

  void LoadTemplate(const std::string& file) override {
    shared_->MaybeFail("LoadTemplate");
    const size_t slash = file.find_last_of("/\\");
    std::string name = file.substr(slash == std::string::npos ? 0 : slash + 1);
    if (name.size() >= 4 && name.compare(name.size() - 4, 4, ".fr3") == 0) {
      name.resize(name.size() - 4);
    }
    const auto it = shared_->templates.find(name);
    if (it == shared_->templates.end()) {
      throw Error(errnum::kEngineFailure, "ScriptedEngine",
                  "Cannot load template " + file + ": the scripted engine does not know it");
    }
    template_ = &it->second;
    shared_->observed->loaded.push_back(file);
  }
  std::shared_ptr<EngineOptions> GetEngineOptions() override { return options_; }
  std::shared_ptr<PreviewOptions> GetPreviewOptions() override { return options_; }
  std::shared_ptr<Component> LocateComponent(const std::string& name) override {
    shared_->MaybeFail("LocateComponent", name);
    if (template_ == nullptr) return nullptr;
    const auto it = template_->components.find(name);
    if (it == template_->components.end()) return nullptr;
    switch (it->second) {
      case ComponentKind::kMemo:
        return std::make_shared<Memo>(shared_, name);
      case ComponentKind::kQuery: {
        const auto params = template_->parameters.find(name);
        return std::make_shared<Query>(
            shared_, name,
            params == template_->parameters.end() ? std::set<std::string>() : params->second);
      }
      case ComponentKind::kDatabase:
        return std::make_shared<Database>(shared_, name);
      case ComponentKind::kOther:
        break;
    }
    return std::make_shared<Other>(name);
  }
  void SetTemplateVariable(const std::string& category, const std::string& name,
                           const std::string& value) override {
    shared_->MaybeFail("SetTemplateVariable", name);
    shared_->observed->variables[category + "." + name] = value;
  }
  void OpenDesigner() override { Output("OpenDesigner"); }
  void ShowPreview() override { Output("ShowPreview"); }
  void PrepareReport(bool) override { Output("PrepareReport"); }
  void PrintPrepared() override { Output("PrintPrepared"); }
  std::shared_ptr<PdfExporter> GetPdfExporter() override {
    shared_->MaybeFail("GetPdfExporter");
    return std::make_shared<Exporter>(shared_);
  }

 private:
  void Output(const std::string& op) {
    shared_->MaybeFail(op);
    shared_->observed->outputs.push_back(op);
  }

  std::shared_ptr<Shared> shared_;
  std::shared_ptr<Options> options_;
  const ScriptedEngine::Template* template_ = nullptr;
};

}  // namespace

ScriptedEngine::ScriptedEngine() : shared_(std::make_shared<Shared>()) {}

ScriptedEngine::~ScriptedEngine() = default;

void ScriptedEngine::AddTemplate(const std::string& name, Template script) {
  shared_->templates[name] = std::move(script);
}

void ScriptedEngine::FailOn(const std::string& op, const std::string& description) {
  shared_->failures[op] = description;
}

std::shared_ptr<ReportObject> ScriptedEngine::CreateReport() {
  shared_->observed = observed_;
  shared_->MaybeFail("CreateReport");
  ++observed_->reports_created;
  return std::make_shared<Report>(shared_);
}

}  // namespace vantorel::engine
