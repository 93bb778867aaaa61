// Vehicles coming in and moving between branches: purchase bills (plain and GST), the vehicle
// transfer note and the branch-transfer print, each selecting its document in query "q_pm".
#include "reports/print_steps.h"

namespace vantorel {

void CRepoter::VehPurBill(int16_t Xid) {
  if (!(Xid > 0)) return;
  ThreadReportState().RptName = "vehpurbill";
  PrintWithSql(*this, "q_pm",
               std::string("select p.*,am_name,am_add1,am_add2,am_add3,am_town from purchase p,"
                           "fa_acmaster ") +
                   "Where p.supid = am_id and p.id=" + Digits(Xid));
}

void CRepoter::VehPurBillGST(int16_t Xid) {
  if (!(Xid > 0)) return;
  ThreadReportState().RptName = "vehpurbillgst";
  PrintWithSql(*this, "q_pm",
               std::string("select p.*,am_name,am_add1,am_add2,am_add3,am_town,am_gst from "
                           "purchase p,fa_acmaster ") +
                   "Where p.supid = am_id and p.id=" + Digits(Xid));
}

void CRepoter::VinTrf(int16_t Xid) {
  if (!(Xid > 0)) return;
  engine::ReportRun& run = PrintSteps::Run(*this);
  ThreadReportState().RptName = "vintrf";
  if (!PrintSteps::Prepare(*this)) return;
  run.query = run.LocateQuery("q_pm");
  if (run.query) {
    run.param = run.query.GetQueryParameter("tid");
    if (run.param) {
      run.param.SetParameterValue({Xid});
      run.param = {};
      run.database = {};
      PrintSteps::Render(*this);
    }
  }
  PrintSteps::Release(*this);
}

void CRepoter::VehBtPrint(int16_t Xid) {
  // The name is set before the guard: a refused call still leaves it.
  ThreadReportState().RptName = "vehbtprint";
  if (Xid == 0) return;
  PrintWithSql(*this, "q_pm",
               "select BV.*,am_name,am_town from btmstveh bv ,fa_acmaster where bv.btto=am_id "
               "and id=" +
                   Digits(Xid));
}

}  // namespace vantorel
