// Account ledgers and voucher lists: the ledger of one reference account over a period (the one
// 32-bit id of the accounts), a party's ledger by its account code, and the party ledger and
// user-wise voucher list whose SQL the host writes. Every query and parameter is tested for.
#include "reports/print_steps.h"

namespace vantorel {

// Only 0 is refused: negative references print.
void CRepoter::RefLedger(int32_t RefiD, Date Fdt, Date Tdt) {
  if (RefiD == 0) return;
  ThreadReportState().RptName = "refledger";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("MAIN");
  pokes.ParameterOrSkip("refid", {RefiD});
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("fdt", {Fdt});
  pokes.ParameterOrSkip("tdt", {Tdt});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

void CRepoter::PartyRefLedgerOld(int16_t ActId) {
  PrintIdDocument(
      *this, ActId,
      {.template_name = "partyrefledgerold", .id_accepted = ActId > 0, .parameter = "vcode"});
}

// The title is set only once the query was found; an empty title is set as it is.
void CRepoter::PartyRefLedger(const std::string& SqlQry, const std::string& mTitle) {
  if (SqlQry.empty()) return;
  ThreadReportState().RptName = "partyrefledger";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.QuerySqlOrSkip("mst", SqlQry);
  pokes.RequireMemo("memtitle", mTitle);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

void CRepoter::VoucherPrintUserWise(const std::string& SqlQry) {
  if (SqlQry.empty()) return;
  ThreadReportState().RptName = "voucherprintuwise";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.QuerySqlOrSkip("mst", SqlQry);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
