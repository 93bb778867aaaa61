// The state VAT return forms and the list of C forms for a tax period: five take their SQL from
// the host and write a period title, none of it tested for; the quarterly form takes its quarter,
// month and year as parameters, each tested for.
#include <functional>
#include <vector>

#include "reports/print_steps.h"

namespace vantorel {
namespace {

std::string PeriodDate(Date date) { return DateText(date, "dd/mm/yyyy"); }

// What one SQL-taking return differs in.
struct ReturnForm {
  const char* template_name;
  std::vector<const char*> title_memos;  // each gets the same title, in order
  std::function<std::string()> title;    // made once the dates passed the guard
  const char* query = "QRY";
  const std::string* second_sql = nullptr;  // the SQL of "QRY1", on the two-statement forms
};

void PrintReturn(CRepoter& rep, const std::string& sql, Date from, Date to,
                 const ReturnForm& form) {
  if (!from.IsValid() || !to.IsValid() || sql.empty()) return;
  if (form.second_sql != nullptr && form.second_sql->empty()) return;
  ThreadReportState().RptName = form.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  const std::string title = form.title();
  for (const char* memo : form.title_memos) pokes.RequireMemo(memo, title);
  pokes.RequireQuerySql(form.query, sql);
  if (form.second_sql != nullptr) pokes.RequireQuerySql("QRY1", *form.second_sql);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

std::string TaxPeriod(Date from, Date to) {
  return "Tax Period From : " + PeriodDate(from) + "  To  " + PeriodDate(to);
}

std::string FromTo(Date from, Date to) {
  return " From " + PeriodDate(from) + "  To  " + PeriodDate(to);
}

}  // namespace

void CRepoter::VAT23print(const std::string& Sq, const std::string& Sq2, Date Fdt, Date Tdt) {
  PrintReturn(*this, Sq, Fdt, Tdt,
              {.template_name = "vat23",
               .title_memos = {"Memo13", "Memo40"},
               .title = [&] { return TaxPeriod(Fdt, Tdt); },
               .second_sql = &Sq2});
}

void CRepoter::VAT24print(const std::string& Sq, const std::string& Sq2, Date Fdt, Date Tdt) {
  PrintReturn(*this, Sq, Fdt, Tdt,
              {.template_name = "vat24",
               .title_memos = {"Memo13", "Memo40"},
               .title = [&] { return TaxPeriod(Fdt, Tdt); },
               .second_sql = &Sq2});
}

void CRepoter::Vat18Print(const std::string& Sq, Date Fdt, Date Tdt) {
  PrintReturn(*this, Sq, Fdt, Tdt,
              {.template_name = "vat18", .title_memos = {"Memo10"}, .title = [&] {
                 return FromTo(Fdt, Tdt);
               }});
}

void CRepoter::Vat19Print(const std::string& Sq, Date Fdt, Date Tdt) {
  PrintReturn(*this, Sq, Fdt, Tdt,
              {.template_name = "vat19", .title_memos = {"Memo10"}, .title = [&] {
                 return FromTo(Fdt, Tdt);
               }});
}

void CRepoter::PrintCformList(const std::string& Sq, Date Fdt, Date Tdt, const std::string& Title) {
  PrintReturn(*this, Sq, Fdt, Tdt,
              {.template_name = "cformlist",
               .title_memos = {"TITEL"},
               .title =
                   [&] {
                     return " C form List From " + PeriodDate(Fdt) + "  To  " + PeriodDate(Tdt) +
                            " (" + Title + ")";
                   },
               .query = "mst"});
}

// The month is "xmm" on every query; the payments have no year.
void CRepoter::PrintVat16(int16_t Xqno, int16_t Xmno, int16_t Xyy) {
  ThreadReportState().RptName = "vat16";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("payment");
  pokes.ParameterOrSkip("xqno", {Xqno});
  pokes.ParameterOrSkip("xmm", {Xmno});
  pokes.QueryOrSkip("wsheet");
  pokes.ParameterOrSkip("xmm", {Xmno});
  pokes.ParameterOrSkip("xyy", {Xyy});
  pokes.QueryOrSkip("cst");
  pokes.ParameterOrSkip("xmm", {Xmno});
  pokes.ParameterOrSkip("xyy", {Xyy});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
