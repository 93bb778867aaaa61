// Vehicles coming in and moving between branches: purchase bills (plain and GST), the vehicle
// transfer note and the branch-transfer print, each selecting its document in query "q_pm".
#include "reports/print_steps.h"

namespace vantorel {
namespace {

// What one of these documents differs in.
struct TransferDocument {
  const char* template_name;
  bool id_accepted;                 // the document's id guard, evaluated
  bool named_before_guard = false;  // a refused call still leaves the template name
  std::string sql;                  // the SQL of "q_pm"
};

void PrintTransferDocument(CRepoter& rep, const TransferDocument& document) {
  ReportState& state = ThreadReportState();
  if (document.named_before_guard) state.RptName = document.template_name;
  if (!document.id_accepted) return;
  state.RptName = document.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  std::string& sql = PrintSteps::TextBuffer(rep);
  sql = document.sql;
  pokes.RequireQuerySql("q_pm", sql);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

void CRepoter::VehPurBill(int16_t Xid) {
  PrintTransferDocument(
      *this,
      {.template_name = "vehpurbill",
       .id_accepted = Xid > 0,
       .sql = std::string("select p.*,am_name,am_add1,am_add2,am_add3,am_town from purchase p,"
                          "fa_acmaster ") +
              "Where p.supid = am_id and p.id=" + Digits(Xid)});
}

void CRepoter::VehPurBillGST(int16_t Xid) {
  PrintTransferDocument(
      *this, {.template_name = "vehpurbillgst",
              .id_accepted = Xid > 0,
              .sql = std::string("select p.*,am_name,am_add1,am_add2,am_add3,am_town,am_gst from "
                                 "purchase p,fa_acmaster ") +
                     "Where p.supid = am_id and p.id=" + Digits(Xid)});
}

// Selected by the parameter "tid" of its query, which it tests for.
void CRepoter::VinTrf(int16_t Xid) {
  PrintIdDocument(
      *this, Xid,
      {.template_name = "vintrf", .id_accepted = Xid > 0, .query = "q_pm", .parameter = "tid"});
}

void CRepoter::VehBtPrint(int16_t Xid) {
  PrintTransferDocument(*this,
                        {.template_name = "vehbtprint",
                         .id_accepted = Xid != 0,
                         .named_before_guard = true,
                         .sql = "select BV.*,am_name,am_town from btmstveh bv ,fa_acmaster where "
                                "bv.btto=am_id and id=" +
                                Digits(Xid)});
}

}  // namespace vantorel
