// Single accounting documents: vouchers chosen by their id (the older pair refuses only 0, the
// GST pair every id not above 0, and all are named before the test), the cheque that prints the
// host's five texts, and the GST debit or credit note with its amount in words.
#include "reports/print_steps.h"

namespace vantorel {

void CRepoter::VoucherPrintSingle(int16_t Xid) {
  PrintIdDocument(*this, Xid,
                  {.template_name = "voucherprintsingle",
                   .id_accepted = Xid != 0,
                   .named_before_guard = true,
                   .parameter = "xvid"});
}

void CRepoter::OldVehicleReceiptPrint(int16_t Xid) {
  PrintIdDocument(*this, Xid,
                  {.template_name = "oldvehiclerecipt",
                   .id_accepted = Xid != 0,
                   .named_before_guard = true,
                   .query = "q_inv",
                   .parameter = "xid"});
}

void CRepoter::GstVoucherPrint(int16_t dId) {
  PrintIdDocument(*this, dId,
                  {.template_name = "gstvoucherprint",
                   .id_accepted = dId > 0,
                   .named_before_guard = true,
                   .parameter = "xdid"});
}

void CRepoter::PayoutVoucherPrint(int16_t dId) {
  PrintIdDocument(*this, dId,
                  {.template_name = "payoutvoucherprint",
                   .id_accepted = dId > 0,
                   .named_before_guard = true,
                   .parameter = "xdid"});
}

// Everything on the cheque comes ready-made from the host; nothing is checked.
void CRepoter::ChequePrint(const std::string& Chdate, const std::string& ACpay,
                           const std::string& PartyName, const std::string& Amt,
                           const std::string& inWords) {
  ThreadReportState().RptName = "chequeprint";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("mempay", ACpay);
  pokes.RequireMemo("memdate", Chdate);
  pokes.RequireMemo("memparty", PartyName);
  pokes.RequireMemo("memword", inWords);
  pokes.RequireMemo("memamt", Amt);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

// The note's amount is read, and its words kept, before the id is looked at.
void CRepoter::GstDCNPrint(int16_t dId) {
  ReportState& state = ThreadReportState();
  std::string& words = PrintSteps::TextBuffer(*this);
  data::Recordset rs;
  data::OpenRs("select damt from gstdcnmst where did=" + Digits(dId), rs, state.DbConnectstring);
  words = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
  state.RptName = "gstdcnprint";
  if (!(dId > 0)) return;
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("inwords", "(INR " + words + ")");
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("xdid", {dId});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
