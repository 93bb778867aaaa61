// Documents of the spare-parts store, each chosen by its id: the purchase check sheets, the
// placement list, the stock transfer note, the purchase order, the estimate (any non-zero id, a
// negative one too) and the purchase return (a positive id only, with its words and logo).
#include "reports/print_steps.h"

namespace vantorel {
namespace {

constexpr const char* kPurchaseOrderSetting =
    "select para_value from para_setup where para_flag='WS_PO' and para_type='PO'";

}  // namespace

void CRepoter::w_purchaseCheck(int16_t PuId) {
  PrintIdDocument(*this, PuId,
                  {.template_name = "w_purchasecheck",
                   .id_accepted = PuId != 0,
                   .query = "q",
                   .parameter = "pu_id"});
}

void CRepoter::w_purchaseCheckGST(int16_t PuId) {
  PrintIdDocument(*this, PuId,
                  {.template_name = "w_purchasecheckgst",
                   .id_accepted = PuId != 0,
                   .query = "q",
                   .parameter = "pu_id"});
}

void CRepoter::w_partPlacementList(int16_t PuId) {
  PrintIdDocument(*this, PuId,
                  {.template_name = "w_partplacementlist",
                   .id_accepted = PuId != 0,
                   .query = "q",
                   .parameter = "pu_id"});
}

void CRepoter::w_stocktransfer(int16_t StkId) {
  PrintIdDocument(
      *this, StkId,
      {.template_name = "w_stocktransfer", .id_accepted = StkId != 0, .parameter = "stk_id"});
}

void CRepoter::w_estimate(int16_t emid) {
  PrintIdDocument(*this, emid,
                  {.template_name = "w_estimate", .id_accepted = emid != 0, .parameter = "em_id"});
}

// Dealers who keep their orders on the view layout say so in a setting.
void CRepoter::w_purchaseorder(int16_t Odid) {
  if (Odid == 0) return;
  ReportState& state = ThreadReportState();
  TemplatePokes pokes(*this);
  data::Recordset rs;
  data::OpenRs(kPurchaseOrderSetting, rs, state.DbConnectstring);
  state.RptName = "w_purchaseorder";
  if (rs.RecordCount() > 0 && IsYes(rs.Fields("PARA_VALUE").Value())) state.RptName = "w_poview";
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("od_id", {Odid});
  pokes.RenderUnlessSkipped();
  CloseIfOpen(rs);
  pokes.Release();
}

// A return and a debit note print alike: isDN changes nothing.
void CRepoter::Apro_WsPrintPurRet(int16_t mPu_id, double Amt, VBool /*isDN*/,
                                  const std::string& LogoFile) {
  if (!(mPu_id > 0)) return;
  ThreadReportState().RptName = "wsprintpurret";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("pu_id", {mPu_id});
  pokes.RequireMemo("WORDS", "RUPEES : " + AmountInWords(Amt));
  pokes.RequirePicture("logo", LogoFile);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
