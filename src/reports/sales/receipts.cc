// The firm document and bulk receipts: selected through a parameter of their query.
#include "reports/print_steps.h"

namespace vantorel {

void CRepoter::Wrc() {
  engine::ReportRun& run = PrintSteps::Run(*this);
  ThreadReportState().RptName = "wrc";
  if (!PrintSteps::Prepare(*this)) return;
  run.query = run.LocateQuery("mst");
  if (run.query) {
    run.param = run.query.GetQueryParameter("coid");
    run.param.SetParameterValue({ThreadReportState().FirmID});
    run.param = {};
    run.database = {};
    PrintSteps::Render(*this);
  }
  PrintSteps::Release(*this);
}

void CRepoter::BulkReceiptPrint(int16_t RecId, const std::string& d_or_r) {
  if (!(RecId > 0)) return;
  engine::ReportRun& run = PrintSteps::Run(*this);
  // "R" exactly prints the summary; anything else the receipt with its detail lines.
  ThreadReportState().RptName = d_or_r == "R" ? "bulkreceipt" : "bulkreceiptdetail";
  if (!PrintSteps::Prepare(*this)) return;
  run.query = run.LocateQuery("q_rt");
  if (run.query) {
    run.param = run.query.GetQueryParameter("id");
    if (run.param) {
      run.param.SetParameterValue({RecId});
      run.param = {};
      run.database = {};
      PrintSteps::Render(*this);
    }
  }
  PrintSteps::Release(*this);
}

}  // namespace vantorel
