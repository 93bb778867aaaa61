#include "engine/steps.h"

#include "host/messages.h"
#include "host/trace.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::engine {
namespace {

constexpr bool kAskForLogin = false;        // the host's connection strings carry the login
constexpr bool kClearPreviousPages = true;  // every output builds the pages afresh

// Binds one named connection of the template; "status" is written before binding when given.
void BindConnection(ReportRun& run, const std::string& name, const std::string& connection,
                    std::string* last_msg) {
  run.database = run.LocateDatabase(name);
  if (run.database) {
    if (last_msg != nullptr) SetLastMsg(*last_msg, "setting logon parameters");
    run.database.SetLoginPrompt(kAskForLogin);
    run.database.SetConnected(false);
    run.database.SetConnectionString(connection);
    run.database.SetConnected(true);
  }
  run.database = DatabaseRef();
}

}  // namespace

void SetLastMsg(std::string& last_msg, const std::string& text) {
  trace::Event("LastMsg").Text("text", text).Write();
  last_msg = text;
}

bool PrepareTemplate(ReportRun& run, const ReportState& state, std::string& last_msg) {
  SetLastMsg(last_msg, "Starting setfrx");
  try {
    const std::string file = state.ReportPath + state.RptName + ".fr3";
    // A missing file makes the attribute query itself fail (the platform's file-not-found
    // text); only a folder of that name gets the "not found.." message.
    if (CurrentPlatform()->FileAttributes(file) & kAttributeDirectory) {
      ShowMessage("Report File [" + state.RptName + "] not found..", MessageIcon::kCritical);
      return false;
    }
    SetLastMsg(last_msg, "setting frx dll");
    run.CreateReport();
    SetLastMsg(last_msg, "setting engine options");
    run.SetEngineOption(1);
    SetLastMsg(last_msg, "loading Report definition file");
    run.LoadTemplate(file);
    SetLastMsg(last_msg, "finding db name in rpt");
    BindConnection(run, "DMSDB", state.DbConnectstring, &last_msg);
    BindConnection(run, "temp", state.DbTConnectstring, nullptr);
    SetLastMsg(last_msg, "setting preview options");
    run.SetPreviewOptionA(true);
    run.SetPreviewFeatures(state.Export != 0 ? 1081 : 1073);
    run.SetPreviewOptionB(true);
    run.SetPreviewOptionC(false);
    SetLastMsg(last_msg, "Run setfrx is ok ");
    return true;
  } catch (const Error& error) {
    ShowMessage(error.description(), MessageIcon::kNone);
  } catch (const std::exception& error) {
    ShowMessage(error.what(), MessageIcon::kNone);
  }
  return false;
}

void RenderReport(ReportRun& run, ReportState& state) {
  if (IsExactlyTrue(state.DesigbeMode)) run.OpenDesigner();
  if (IsExactlyTrue(state.RptPrint)) {
    run.PrepareReport(kClearPreviousPages);
    run.PrintPrepared();
  } else if (IsExactlyTrue(state.RptPDF)) {
    if (state.PDFPath.empty()) state.PDFPath = state.AppPath + "\\export.pdf";
    run.PrepareReport(kClearPreviousPages);
    run.ExportPdf(state.PDFPath);
  } else {
    run.ShowPreview();
  }
}

void ReleaseRun(ReportRun& run) { run.Release(); }

}  // namespace vantorel::engine
