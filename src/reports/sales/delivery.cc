// The papers that leave with a vehicle: the sub-dealer challan, provisional registration,
// gate passes, declaration form, stickers, sale letters, form 22, the HSRP form and temporary
// registration certificates. All guard on a non-zero id (a negative one passes).
#include <vector>

#include "reports/print_steps.h"

namespace vantorel {
namespace {

constexpr const char* kGatePassSql =
    "select itype,num,idate,cname,cfname,cadd1,cadd2,cadd3,ccity,cmobile,model,color,chassis,"
    "engine from vu_invoice where id=";
constexpr const char* kInvoiceSql = "SELECT * FROM VU_INVOICE WHERE ID=";

struct Parameter {
  const char* name;
  engine::ParameterValue value;
};

// Documents selected by parameters of query "Q_INV": rendered only when the template has it.
void PrintWithParameters(CRepoter& rep, const std::vector<Parameter>& parameters,
                         bool sticker_pictures = false) {
  engine::ReportRun& run = PrintSteps::Run(rep);
  if (!PrintSteps::Prepare(rep)) return;
  run.query = run.LocateQuery("Q_INV");
  if (run.query) {
    // Sticker templates find their pictures in the process's temporary folder.
    if (sticker_pictures) SetPicture(run, "picpath", TempFolder());
    for (const Parameter& parameter : parameters) {
      run.param = run.query.GetQueryParameter(parameter.name);
      run.param.SetParameterValue(parameter.value);
    }
    run.param = {};
    run.database = {};
    run.query = {};
    PrintSteps::Render(rep);
  }
  PrintSteps::Release(rep);
}

}  // namespace

void CRepoter::ChallanSub(int16_t ChlId, const std::string& LogoFile) {
  if (ChlId == 0) return;
  ReportState& state = ThreadReportState();
  engine::ReportRun& run = PrintSteps::Run(*this);
  std::string& buffer = PrintSteps::TextBuffer(*this);
  state.RptName = "challansub";
  data::Recordset rs;
  data::OpenRs("select sum(chlamt) from purdata where chlid=" + Digits(ChlId), rs,
               state.DbConnectstring);
  buffer = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
  if (!PrintSteps::Prepare(*this)) return;
  SetPicture(run, "logo", LogoFile);
  run.memo = run.LocateMemo("AMT");
  run.memo.SetMemoText("          AMOUNT IN WORDS " + buffer);
  run.memo = {};
  run.query = run.LocateQuery("q_pm");
  run.query.SetQueryText("select * FROM VU_CHALLAN where id=" + Digits(ChlId) + " order by line");
  run.database = {};
  run.query = {};
  PrintSteps::Render(*this);
  CloseIfOpen(rs);
  PrintSteps::Release(*this);
}

void CRepoter::ProVisionalRc(int16_t ID) {
  if (ID == 0) return;
  ThreadReportState().RptName = "prorc";
  PrintWithParameters(*this, {{"ID", {ID}}});
}

void CRepoter::VehGatePass(int16_t ID) {
  if (ID == 0) return;
  ThreadReportState().RptName = "vehgatepass";
  PrintWithSql(*this, "Q_INV", kGatePassSql + Digits(ID));
}

void CRepoter::CycleGatePass(int16_t ID, const std::string& LogoFile) {
  if (ID == 0) return;
  ThreadReportState().RptName = "cyclegatepass";
  PrintWithSql(*this, "Q_INV", kGatePassSql + Digits(ID), &LogoFile);
}

void CRepoter::DecForm(int16_t ID) {
  if (ID == 0) return;
  ThreadReportState().RptName = "decform";
  PrintWithSql(*this, "Q_INV", kInvoiceSql + Digits(ID));
}

void CRepoter::VehSticker(int16_t ID, uint8_t NoofStickers) {
  if (ID == 0) return;
  ThreadReportState().RptName = "vehsticker";
  PrintWithParameters(*this, {{"ID", {ID}}, {"XNO", {NoofStickers}}}, true);
}

void CRepoter::VehSaleLetter(int16_t ID) {
  if (ID == 0) return;
  ThreadReportState().RptName = "vehsaleletter";
  PrintWithSql(*this, "Q_INV", kInvoiceSql + Digits(ID));
}

void CRepoter::CycleSaleLetter(int16_t ID, const std::string& LogoFile) {
  if (ID == 0) return;
  ThreadReportState().RptName = "cyclesaleletter";
  PrintWithSql(*this, "Q_INV", kInvoiceSql + Digits(ID), &LogoFile);
}

void CRepoter::VehForm22(int16_t ID) {
  if (ID == 0) return;
  ThreadReportState().RptName = "form22";
  PrintWithParameters(*this, {{"xid", {ID}}});
}

void CRepoter::VehHSRP(int16_t ID) {
  if (ID == 0) return;
  ThreadReportState().RptName = "hsrp";
  PrintWithParameters(*this, {{"xid", {ID}}});
}

void CRepoter::VehTempCertificate(int16_t Tline, const std::string& A4Single) {
  // The template is chosen, and named, before the guard.
  ThreadReportState().RptName = A4Single == "Y" ? "tempcertsingle" : "tempcert";
  if (Tline == 0) return;
  PrintWithSql(*this, "Q_INV", "SELECT * FROM VU_TEMPNUMBER WHERE TLINE=" + Digits(Tline));
}

}  // namespace vantorel
