#include "engine/run.h"

#include <utility>

#include "host/trace.h"
#include "vantorel/error.h"

namespace vantorel::engine {
namespace {

constexpr const char* kSource = "Vantorel report engine";

[[noreturn]] void ThrowEmpty(const char* kind, const std::string& name) {
  throw Error(errnum::kObjectNotSet, kSource,
              std::string("Object not set: the template has no ") + kind + " \"" + name + "\"");
}

void TraceParameter(const std::string& query, const std::string& param,
                    const ParameterValue& value) {
  if (!trace::Enabled()) return;
  trace::Event event("SetParameterValue");
  event.Text("query", query).Text("param", param).Number("type", value.TypeCode());
  std::visit(
      [&event](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
          event.Text("value", v);
        } else if constexpr (std::is_same_v<T, Date>) {
          event.Text("value", v.IsValid() ? v.ToIso() : std::string("invalid"));
        } else if constexpr (std::is_same_v<T, double>) {
          event.Real("value", v);
        } else {
          event.Number("value", v);
        }
      },
      value.value);
  event.Write();
}

}  // namespace

void MemoRef::SetMemoText(const std::string& text) {
  trace::Event("SetMemoText").Text("memo", name_).Text("text", text).Write();
  if (!object_) ThrowEmpty("memo", name_);
  object_->SetMemoText(text);
}

void ParamRef::SetParameterValue(const ParameterValue& value) {
  TraceParameter(query_, name_, value);
  if (!object_) ThrowEmpty("query parameter", query_ + "." + name_);
  object_->SetParameterValue(value);
}

void QueryRef::SetQueryText(const std::string& sql) {
  trace::Event("SetQueryText").Text("query", name_).Text("sql", sql).Write();
  if (!object_) ThrowEmpty("query", name_);
  object_->SetQueryText(sql);
}

ParamRef QueryRef::GetQueryParameter(const std::string& name) {
  if (!object_) {
    trace::Event("GetQueryParameter")
        .Text("query", name_)
        .Text("name", name)
        .Flag("found", false)
        .Write();
    ThrowEmpty("query", name_);
  }
  ParamRef param;
  param.object_ = object_->GetQueryParameter(name);
  param.query_ = name_;
  param.name_ = name;
  trace::Event("GetQueryParameter")
      .Text("query", name_)
      .Text("name", name)
      .Flag("found", param.object_ != nullptr)
      .Write();
  return param;
}

void DatabaseRef::SetLoginPrompt(bool prompt) {
  trace::Event("SetLoginPrompt").Text("db", name_).Flag("value", prompt).Write();
  if (!object_) ThrowEmpty("database", name_);
  object_->SetLoginPrompt(prompt);
}

void DatabaseRef::SetConnected(bool connected) {
  trace::Event("SetConnected").Text("db", name_).Flag("value", connected).Write();
  if (!object_) ThrowEmpty("database", name_);
  object_->SetConnected(connected);
}

void DatabaseRef::SetConnectionString(const std::string& connection_string) {
  // The string itself never reaches the trace: it may hold a password.
  trace::Event("SetConnectionString").Text("db", name_).Write();
  if (!object_) ThrowEmpty("database", name_);
  object_->SetConnectionString(connection_string);
}

ReportRun::ReportRun(std::shared_ptr<Engine> engine) : engine_(std::move(engine)) {}

void ReportRun::CreateReport() {
  trace::Event("CreateReport").Write();
  report_.reset();
  report_ = engine_->CreateReport();
}

ReportObject& ReportRun::Report() {
  if (!report_) CreateReport();
  return *report_;
}

void ReportRun::SetEngineOption(int32_t value) {
  ReportObject& report = Report();
  trace::Event("SetEngineOption").Number("value", value).Write();
  report.GetEngineOptions()->SetEngineOption(value);
}

void ReportRun::LoadTemplate(const std::string& file) {
  ReportObject& report = Report();
  trace::Event("LoadTemplate").Text("file", file).Write();
  report.LoadTemplate(file);
}

void ReportRun::SetPreviewOptionA(bool value) {
  ReportObject& report = Report();
  trace::Event("SetPreviewOptionA").Flag("value", value).Write();
  report.GetPreviewOptions()->SetPreviewOptionA(value);
}

void ReportRun::SetPreviewFeatures(int32_t features) {
  ReportObject& report = Report();
  trace::Event("SetPreviewFeatures").Number("value", features).Write();
  report.GetPreviewOptions()->SetPreviewFeatures(features);
}

void ReportRun::SetPreviewOptionB(bool value) {
  ReportObject& report = Report();
  trace::Event("SetPreviewOptionB").Flag("value", value).Write();
  report.GetPreviewOptions()->SetPreviewOptionB(value);
}

void ReportRun::SetPreviewOptionC(bool value) {
  ReportObject& report = Report();
  trace::Event("SetPreviewOptionC").Flag("value", value).Write();
  report.GetPreviewOptions()->SetPreviewOptionC(value);
}

void ReportRun::SetTemplateVariable(const std::string& category, const std::string& name,
                                    const std::string& value) {
  ReportObject& report = Report();
  trace::Event("SetTemplateVariable")
      .Text("category", category)
      .Text("name", name)
      .Text("value", value)
      .Write();
  report.SetTemplateVariable(category, name, value);
}

void ReportRun::OpenDesigner() {
  ReportObject& report = Report();
  trace::Event("OpenDesigner").Write();
  report.OpenDesigner();
}

void ReportRun::ShowPreview() {
  ReportObject& report = Report();
  trace::Event("ShowPreview").Write();
  report.ShowPreview();
}

void ReportRun::PrepareReport(bool clear_previous) {
  ReportObject& report = Report();
  trace::Event("PrepareReport").Flag("clear", clear_previous).Write();
  report.PrepareReport(clear_previous);
}

void ReportRun::PrintPrepared() {
  ReportObject& report = Report();
  trace::Event("PrintPrepared").Write();
  report.PrintPrepared();
}

void ReportRun::ExportPdf(const std::string& file) {
  ReportObject& report = Report();
  trace::Event("GetPdfExporter").Write();
  std::shared_ptr<PdfExporter> exporter = report.GetPdfExporter();
  trace::Event("ExportPdf").Text("file", file).Write();
  exporter->ExportPdf(file, true, true, true, true, "", "");
}

std::shared_ptr<Component> ReportRun::Locate(const std::string& name) {
  ReportObject& report = Report();
  std::shared_ptr<Component> component = report.LocateComponent(name);
  trace::Event("LocateComponent").Text("name", name).Flag("found", component != nullptr).Write();
  return component;
}

namespace {

// Views a located component as kind T; a component of another kind fails here, at the view.
template <typename T>
std::shared_ptr<T> View(const std::shared_ptr<Component>& component, ComponentKind wanted,
                        const std::string& name) {
  if (!component) return nullptr;
  auto viewed = std::dynamic_pointer_cast<T>(component);
  if (!viewed) {
    throw Error(errnum::kTypeMismatch, kSource,
                std::string("Type mismatch: component \"") + name + "\" is a " +
                    KindName(component->Kind()) + ", not a " + KindName(wanted));
  }
  return viewed;
}

}  // namespace

MemoRef ReportRun::LocateMemo(const std::string& name) {
  MemoRef ref;
  ref.object_ = View<MemoObject>(Locate(name), ComponentKind::kMemo, name);
  ref.name_ = name;
  return ref;
}

QueryRef ReportRun::LocateQuery(const std::string& name) {
  QueryRef ref;
  ref.object_ = View<QueryObject>(Locate(name), ComponentKind::kQuery, name);
  ref.name_ = name;
  return ref;
}

DatabaseRef ReportRun::LocateDatabase(const std::string& name) {
  DatabaseRef ref;
  ref.object_ = View<DatabaseObject>(Locate(name), ComponentKind::kDatabase, name);
  ref.name_ = name;
  return ref;
}

void ReportRun::Release() {
  trace::Event("ReleaseRun").Write();
  memo = MemoRef();
  report_.reset();
  database = DatabaseRef();
  query = QueryRef();
  param = ParamRef();
}

}  // namespace vantorel::engine
