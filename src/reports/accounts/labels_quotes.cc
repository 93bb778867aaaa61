// The workshop's top list, quotations, and the QR label sheets of parts and vehicles (a roll of
// labels on paper type 1, a sheet of labels on any other). Each is named before its test.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

// The labels the host's SQL selects, with the "temp" folder for the label pictures.
void PrintLabels(CRepoter& rep, const std::string& sql, const char* template_name) {
  ThreadReportState().RptName = template_name;
  if (sql.empty()) return;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  pokes.RequirePicture("picpath", TempFolder());
  pokes.QuerySqlOrSkip("qry", sql);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

// Every selection prints, 0 and negative ones too.
void CRepoter::WS_TOPLIST(int16_t Xid) {
  PrintIdDocument(*this, Xid,
                  {.template_name = "ws_toplist",
                   .id_accepted = true,
                   .named_before_guard = true,
                   .parameter = "td_id"});
}

void CRepoter::QuotePrint(int16_t Xid) {
  PrintIdDocument(*this, Xid,
                  {.template_name = "quoteprint",
                   .id_accepted = Xid != 0,
                   .named_before_guard = true,
                   .query = "qry",
                   .parameter = "xid"});
}

void CRepoter::PartsQrPrint(const std::string& strQuery, int16_t PaPerType) {
  PrintLabels(*this, strQuery, PaPerType == 1 ? "w_partsqrprintroll" : "w_partsqrprint");
}

void CRepoter::ChassisQrPrint(const std::string& strQuery, int16_t PaPerType) {
  PrintLabels(*this, strQuery, PaPerType == 1 ? "chassisqrprintroll" : "chassisqrprint");
}

}  // namespace vantorel
