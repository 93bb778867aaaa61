// The customer delivery challan and the money receipt: the two documents every other print
// method is modelled on, each its own procedure.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

constexpr const char* kGatePassSetting =
    "select para_value from para_setup where para_flag='CHALLAN' and para_type='GATEPASS'";

}  // namespace

void CRepoter::Challan_Customer(int16_t Cid, const std::string& LogoFile) {
  ReportState& state = ThreadReportState();
  TemplatePokes pokes(*this);
  state.RptName = "challancus";
  if (!(Cid > 0)) return;
  data::Recordset rs;
  data::OpenRs(kGatePassSetting, rs, state.DbConnectstring);
  // Dealers who hand over a gate pass with the vehicle print the challan on its layout.
  if (rs.RecordCount() > 0 && IsYes(rs.Fields(0).Value())) state.RptName = "chlgatepass";
  data::OpenRs("select * from challan where id=" + Digits(Cid), rs, state.DbConnectstring);
  if (rs.RecordCount() >= 1) {
    if (!pokes.Prepare()) return;
    pokes.RequireMemo("WORDS", [&] {
      return "RUPEES : " + AmountInWords(LeadingAmount(rs.Fields("Amt").Value()));
    });
    pokes.RequirePicture("logo", LogoFile);
    pokes.RequireQuerySql("Q_CHL",
                          "SELECT * FROM VU_CHALLAN WHERE id=" + Digits(Cid) + " AND TYPE='C'");
    pokes.RenderUnlessSkipped();
  } else {
    ShowMessage("Challan Id [" + Digits(Cid) + "] not found", MessageIcon::kCritical);
  }
  CloseIfOpen(rs);
  pokes.Release();
}

void CRepoter::ReceiptPrint(int16_t RecId) {
  ReportState& state = ThreadReportState();
  TemplatePokes pokes(*this);
  std::string& words = PrintSteps::TextBuffer(*this);
  // The amount is read before the id is looked at, for every id.
  data::Recordset rs;
  data::OpenRs("select amt from receipt where id=" + Digits(RecId), rs, state.DbConnectstring);
  words = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
  state.RptName = "receipt";
  if (!(RecId > 0)) return;
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("inwords", "(AMOUNT IN WORDS RUPEES " + words + ")");
  pokes.QueryOrSkip("q_rt");
  pokes.ParameterOrSkip("id", {RecId});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
