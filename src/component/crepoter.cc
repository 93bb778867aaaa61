#include "vantorel/crepoter.h"

#include <mutex>
#include <utility>

#include "component/built_in_engine.h"
#include "component/report_state.h"
#include "data/sqlite_backend.h"
#include "engine/port.h"
#include "engine/steps.h"

namespace vantorel {

namespace {

// The built-in engine is what prints unless a host or test installs another default.
std::shared_ptr<engine::Engine> DefaultEngineOrOurs() {
  static std::once_flag once;
  std::call_once(once, [] { engine::SetBuiltInEngineFactory(&MakeBuiltInEngine); });
  return engine::DefaultEngine();
}

}  // namespace

CRepoter::CRepoter() : CRepoter(DefaultEngineOrOurs()) {}

CRepoter::CRepoter(std::shared_ptr<engine::Engine> engine)
    : run_(std::make_unique<engine::ReportRun>(std::move(engine))),
      kept_connections_(data::KeepSqliteConnections()) {}

CRepoter::~CRepoter() = default;

std::string CRepoter::get_LastMsg() const { return LastMsg_; }
void CRepoter::put_LastMsg(std::string value) { LastMsg_ = std::move(value); }
std::string CRepoter::get_ReportPath() const { return ReportPath_; }
void CRepoter::put_ReportPath(std::string value) { ReportPath_ = std::move(value); }
std::string CRepoter::get_RptName() const { return RptName_; }
void CRepoter::put_RptName(std::string value) { RptName_ = std::move(value); }
VBool CRepoter::get_Export() const { return Export_; }
void CRepoter::put_Export(VBool value) { Export_ = value; }
std::string CRepoter::get_DbConnectstring() const { return DbConnectstring_; }
void CRepoter::put_DbConnectstring(std::string value) { DbConnectstring_ = std::move(value); }
std::string CRepoter::get_DbTConnectstring() const { return DbTConnectstring_; }
void CRepoter::put_DbTConnectstring(std::string value) { DbTConnectstring_ = std::move(value); }
VBool CRepoter::get_DesigbeMode() const { return DesigbeMode_; }
void CRepoter::put_DesigbeMode(VBool value) { DesigbeMode_ = value; }
VBool CRepoter::get_RptPrint() const { return RptPrint_; }
void CRepoter::put_RptPrint(VBool value) { RptPrint_ = value; }
uint8_t CRepoter::get_FirmID() const { return FirmID_; }
void CRepoter::put_FirmID(uint8_t value) { FirmID_ = value; }
std::string CRepoter::get_AppPath() const { return AppPath_; }
void CRepoter::put_AppPath(std::string value) { AppPath_ = std::move(value); }
VBool CRepoter::get_RptPDF() const { return RptPDF_; }
void CRepoter::put_RptPDF(VBool value) { RptPDF_ = value; }
std::string CRepoter::get_PDFPath() const { return PDFPath_; }
void CRepoter::put_PDFPath(std::string value) { PDFPath_ = std::move(value); }

void CRepoter::SetVars() {
  // Field by field, so a getter that throws leaves the fields after it as they were.
  ReportState& state = ThreadReportState();
  state.AppPath = get_AppPath();
  state.DbConnectstring = get_DbConnectstring();
  state.DbTConnectstring = get_DbTConnectstring();
  state.DesigbeMode = get_DesigbeMode();
  state.Export = get_Export();
  state.FirmID = get_FirmID();
  state.ReportPath = get_ReportPath();
  state.RptName = get_RptName();
  state.RptPrint = get_RptPrint();
  state.RptPDF = get_RptPDF();
  state.PDFPath = get_PDFPath();
}

bool CRepoter::PrepareTemplate() {
  return engine::PrepareTemplate(*run_, ThreadReportState(), LastMsg_);
}

void CRepoter::RenderReport() { engine::RenderReport(*run_, ThreadReportState()); }

void CRepoter::ReleaseRun() { engine::ReleaseRun(*run_); }

void CRepoter::SuperReport(const std::string& RptName) {
  if (RptName.empty()) return;
  ThreadReportState().RptName = RptName;
  if (!PrepareTemplate()) return;
  RenderReport();
  ReleaseRun();
}

}  // namespace vantorel
