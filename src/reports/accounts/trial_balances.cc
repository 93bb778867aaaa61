// Trial balances and party lists as on a date: titles in memos (used without a test), then the
// queries and their parameters in order, each tested for.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

std::string AsOn(Date date) { return DateText(date, "dd/mm/yyyy"); }

}  // namespace

void CRepoter::TrialParty(Date Fdt, const std::string& NatureType) {
  if (!Fdt.IsValid()) return;
  ThreadReportState().RptName = "trialparty";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo3", "List of " + NatureType + " as on " + AsOn(Fdt));
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.ParameterOrSkip("nature", {NatureType});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

// Debtors and creditors side by side ("Debitors", as the dealers' books spell it).
void CRepoter::TrialPartydcr(Date Fdt) {
  if (!Fdt.IsValid()) return;
  ThreadReportState().RptName = "trialpartydcr";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo3", "List of Debitors as on " + AsOn(Fdt));
  pokes.RequireMemo("Memo23", "List of Creditors as on " + AsOn(Fdt));
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.QueryOrSkip("mstcr");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

// The group goes to the query as the number its id text starts with, a double.
void CRepoter::TrialGroup(Date Fdt, const std::string& TrlID, const std::string& TrlName) {
  if (!Fdt.IsValid()) return;
  ThreadReportState().RptName = "trialgroup";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo3", "Group Trial as on " + AsOn(Fdt));
  if (!TrlName.empty()) pokes.RequireMemo("Memo16", TrlName + " Trial as on " + AsOn(Fdt));
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.QueryOrSkip("qry");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.ParameterOrSkip("Tid", {data::Val(TrlID)});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

// The host writes the SQL of "mst"; the date and the nature go to "qry".
void CRepoter::TrialNature(Date Fdt, const std::string& Nature, const std::string& Qry) {
  if (!Fdt.IsValid()) return;
  ThreadReportState().RptName = "trialnature";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo3", "Trial Balance as on " + AsOn(Fdt));
  if (!Nature.empty()) pokes.RequireMemo("Memo16", Nature + " Trial as on " + AsOn(Fdt));
  pokes.QuerySqlOrSkip("mst", Qry);
  pokes.QueryOrSkip("qry");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.ParameterOrSkip("nature", {Nature});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
