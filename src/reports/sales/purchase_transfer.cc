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
  std::string sql;                  // the SQL of "q_pm", when the document writes it
  bool by_tid_parameter = false;    // else: the id goes to the parameter "tid" of "q_pm"
};

void PrintTransferDocument(CRepoter& rep, int16_t xid, const TransferDocument& document) {
  ReportState& state = ThreadReportState();
  if (document.named_before_guard) state.RptName = document.template_name;
  if (!document.id_accepted) return;
  state.RptName = document.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  if (document.by_tid_parameter) {
    pokes.QueryOrSkip("q_pm");
    pokes.ParameterOrSkip("tid", {xid});
  } else {
    std::string& sql = PrintSteps::TextBuffer(rep);
    sql = document.sql;
    pokes.RequireQuerySql("q_pm", sql);
  }
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

void CRepoter::VehPurBill(int16_t Xid) {
  PrintTransferDocument(
      *this, Xid,
      {.template_name = "vehpurbill",
       .id_accepted = Xid > 0,
       .sql = std::string("select p.*,am_name,am_add1,am_add2,am_add3,am_town from purchase p,"
                          "fa_acmaster ") +
              "Where p.supid = am_id and p.id=" + Digits(Xid)});
}

void CRepoter::VehPurBillGST(int16_t Xid) {
  PrintTransferDocument(
      *this, Xid,
      {.template_name = "vehpurbillgst",
       .id_accepted = Xid > 0,
       .sql = std::string("select p.*,am_name,am_add1,am_add2,am_add3,am_town,am_gst from "
                          "purchase p,fa_acmaster ") +
              "Where p.supid = am_id and p.id=" + Digits(Xid)});
}

void CRepoter::VinTrf(int16_t Xid) {
  PrintTransferDocument(
      *this, Xid, {.template_name = "vintrf", .id_accepted = Xid > 0, .by_tid_parameter = true});
}

void CRepoter::VehBtPrint(int16_t Xid) {
  PrintTransferDocument(*this, Xid,
                        {.template_name = "vehbtprint",
                         .id_accepted = Xid != 0,
                         .named_before_guard = true,
                         .sql = "select BV.*,am_name,am_town from btmstveh bv ,fa_acmaster where "
                                "bv.btto=am_id and id=" +
                                Digits(Xid)});
}

}  // namespace vantorel
