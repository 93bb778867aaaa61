// The customer delivery challan and the money receipt: the two documents every other print
// method is modelled on.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

constexpr const char* kGatePassSetting =
    "select para_value from para_setup where para_flag='CHALLAN' and para_type='GATEPASS'";

}  // namespace

void CRepoter::Challan_Customer(int16_t Cid, const std::string& LogoFile) {
  ReportState& state = ThreadReportState();
  engine::ReportRun& run = PrintSteps::Run(*this);
  state.RptName = "challancus";
  if (!(Cid > 0)) return;
  data::Recordset rs;
  data::OpenRs(kGatePassSetting, rs, state.DbConnectstring);
  // Dealers who hand over a gate pass with the vehicle print the challan on its layout.
  if (rs.RecordCount() > 0 && IsYes(rs.Fields(0).Value())) state.RptName = "chlgatepass";
  data::OpenRs("select * from challan where id=" + Digits(Cid), rs, state.DbConnectstring);
  if (rs.RecordCount() >= 1) {
    if (!PrintSteps::Prepare(*this)) return;
    run.memo = run.LocateMemo("WORDS");
    run.memo.SetMemoText("RUPEES : " + AmountInWords(LeadingAmount(rs.Fields("Amt").Value())));
    SetPicture(run, "logo", LogoFile);
    run.memo = {};
    run.query = run.LocateQuery("Q_CHL");
    run.query.SetQueryText("SELECT * FROM VU_CHALLAN WHERE id=" + Digits(Cid) + " AND TYPE='C'");
    run.database = {};
    run.query = {};
    PrintSteps::Render(*this);
  } else {
    ShowMessage("Challan Id [" + Digits(Cid) + "] not found", MessageIcon::kCritical);
  }
  CloseIfOpen(rs);
  PrintSteps::Release(*this);
}

void CRepoter::ReceiptPrint(int16_t RecId) {
  ReportState& state = ThreadReportState();
  engine::ReportRun& run = PrintSteps::Run(*this);
  std::string& words = PrintSteps::TextBuffer(*this);
  // The amount is read before the id is looked at, for every id.
  data::Recordset rs;
  data::OpenRs("select amt from receipt where id=" + Digits(RecId), rs, state.DbConnectstring);
  words = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
  state.RptName = "receipt";
  if (!(RecId > 0)) return;
  if (!PrintSteps::Prepare(*this)) return;
  run.memo = run.LocateMemo("inwords");
  run.memo.SetMemoText("(AMOUNT IN WORDS RUPEES " + words + ")");
  run.memo = {};
  run.query = run.LocateQuery("q_rt");
  if (run.query) {
    run.param = run.query.GetQueryParameter("id");
    if (run.param) {
      run.param.SetParameterValue({RecId});
      run.param = {};
      run.database = {};
      run.query = {};
      PrintSteps::Render(*this);
    }
  }
  PrintSteps::Release(*this);
}

}  // namespace vantorel
