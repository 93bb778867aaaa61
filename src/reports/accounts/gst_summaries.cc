// The GST summaries of sales and of purchases for a period, by rate ("sumtax") and by HSN code
// ("sumhsn"). Only the rate summary is tested for: the HSN summary and the four dates are used
// without a test.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

void PrintGstSummary(CRepoter& rep, const char* template_name, Date from, Date to) {
  if (!from.IsValid() || !to.IsValid()) return;
  ThreadReportState().RptName = template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("sumtax");
  pokes.RequireParameter("xdt", {from});
  pokes.RequireParameter("ydt", {to});
  pokes.RequireQuery("sumhsn");
  pokes.RequireParameter("xdt", {from});
  pokes.RequireParameter("ydt", {to});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

void CRepoter::GstSaleSummary(Date Fdt, Date Tdt) {
  PrintGstSummary(*this, "gstsalesummary", Fdt, Tdt);
}

void CRepoter::GstPurchaseSummary(Date Fdt, Date Tdt) {
  PrintGstSummary(*this, "gstpurchasesummary", Fdt, Tdt);
}

}  // namespace vantorel
