// The firm document and bulk receipts: selected through a parameter of their query.
#include "reports/print_steps.h"

namespace vantorel {

void CRepoter::Wrc() {
  TemplatePokes pokes(*this);
  ThreadReportState().RptName = "wrc";
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("mst");
  pokes.RequireParameter("coid", {ThreadReportState().FirmID});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

void CRepoter::BulkReceiptPrint(int16_t RecId, const std::string& d_or_r) {
  if (!(RecId > 0)) return;
  TemplatePokes pokes(*this);
  // "R" exactly prints the summary; anything else the receipt with its detail lines.
  ThreadReportState().RptName = d_or_r == "R" ? "bulkreceipt" : "bulkreceiptdetail";
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("q_rt");
  pokes.ParameterOrSkip("id", {RecId});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
