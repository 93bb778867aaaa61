// The spare-parts stock lists (opening, closing, valuation, negative), whose SQL the component
// writes from the caller's arguments and keeps in the text buffer; the service history of one
// vehicle; and the stock summary as on a date.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

std::string SqlDate(Date date) { return DateText(date, "yyyy/mm/dd"); }

// Gives query "mst" the list's SQL, kept in the text buffer; the query is tested for.
void PrintStockList(CRepoter& rep, const char* template_name, const std::string& sql) {
  ThreadReportState().RptName = template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  pokes.QuerySqlOrSkip("mst", [&] { return PrintSteps::TextBuffer(rep) = sql; });
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

void CRepoter::w_OpeningParts() {
  PrintStockList(*this, "w_openingparts",
                 std::string("SELECT PART_NO,PART_DESC,PART_SOURCE,part_hsncode,PART_LOCATION,"
                             "PART_OP1 as op ") +
                     "From WS_PARTMASTER where coalesce(part_op1,0)<>0 order by part_no");
}

// Zero balances are listed only when ShowZero is exactly true.
void CRepoter::w_ClosingParts(Date ason, VBool ShowZero) {
  PrintStockList(
      *this, "w_closingbal",
      "SELECT PART_NO,PART_DESC,PART_LOCATION,PART_SOURCE,part_hsncode,part_balance1 as "
      "Balance,cast('" +
          SqlDate(ason) +
          (ShowZero == kTrue
               ? "' as date) AS ason From ws_partmaster order by part_no"
               : "' as date) AS ason From ws_partmaster where part_balance1<>0 order by part_no"));
}

// The rate column is part_ followed by the basis as given; a valuation at PP is labelled DP,
// any other basis MRP.
void CRepoter::w_Stockvaluation(Date ason, VBool ShowZero, const std::string& SOA,
                                const std::string& Based) {
  PrintStockList(
      *this, "w_stockvaluation",
      "SELECT PART_NO,PART_DESC,PART_LOCATION,PART_HSNCODE,PART_BINCARD,PART_MRP,PART_SOURCE,"
      "part_balance1 as Balance,cast('" +
          SqlDate(ason) + "' as date) AS ason,part_" + Based + " as rate,'" +
          (Based == "PP" ? "DP" : "MRP") + "' as based, part_igstrate as taxrate " +
          "From ws_partmaster where left(part_type,1) in (" + SOA +
          (ShowZero == kTrue ? ") order by part_no" : ") and  part_balance1<>0 order by part_no"));
}

void CRepoter::w_Negativepart(Date ason) {
  PrintStockList(*this, "w_negativereport",
                 "SELECT PART_NO,PART_DESC,PART_LOCATION,PART_HSNCODE,PART_SOURCE,part_balance1 "
                 "as Balance,cast('" +
                     SqlDate(ason) +
                     "' as date) AS ason From ws_partmaster where part_balance1<0 order by "
                     "part_no");
}

// The template's own SQL, for the chassis number given.
void CRepoter::w_history(const std::string& chassisno) {
  if (chassisno.empty()) return;
  ThreadReportState().RptName = "w_history";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("chassisno", {chassisno});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

// The title speaks of vehicles, as the dealers' summary always has.
void CRepoter::Apro_StockSummary(Date Fdt) {
  if (!Fdt.IsValid()) return;
  ThreadReportState().RptName = "stocksummary";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo26", "Vehicle Stock Summary as on " + DateText(Fdt, "dd/mm/yyyy"));
  pokes.QueryOrSkip("Q_SUM");
  pokes.ParameterOrSkip("xdt", {Fdt});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
