// The papers that leave with a vehicle: the sub-dealer challan, provisional registration,
// gate passes, declaration form, stickers, sale letters, form 22, the HSRP form and temporary
// registration certificates. All refuse only id 0 (a negative one passes).
#include <vector>

#include "reports/print_steps.h"

namespace vantorel {
namespace {

constexpr const char* kGatePassSql =
    "select itype,num,idate,cname,cfname,cadd1,cadd2,cadd3,ccity,cmobile,model,color,chassis,"
    "engine from vu_invoice where id=";
constexpr const char* kInvoiceSql = "SELECT * FROM VU_INVOICE WHERE ID=";

// A document whose SQL the component writes into query "Q_INV", used without a test.
struct QueryTextDocument {
  const char* template_name;
  std::string sql;
  const std::string* logo = nullptr;  // set before the query, when the document has one
  bool named_before_guard = false;
};

void PrintQueryTextDocument(CRepoter& rep, int16_t id, const QueryTextDocument& document) {
  ReportState& state = ThreadReportState();
  if (document.named_before_guard) state.RptName = document.template_name;
  if (id == 0) return;
  state.RptName = document.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  if (document.logo != nullptr) pokes.RequirePicture("logo", *document.logo);
  std::string& sql = PrintSteps::TextBuffer(rep);
  sql = document.sql;
  pokes.RequireQuerySql("Q_INV", sql);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

struct Parameter {
  const char* name;
  engine::ParameterValue value;
};

// A document selected by parameters of query "Q_INV": printed only when the template has that
// query; the parameters themselves are used without a test.
struct ParameterDocument {
  const char* template_name;
  std::vector<Parameter> parameters;
  bool temp_folder_pictures = false;  // stickers find their pictures in the "temp" folder
};

void PrintParameterDocument(CRepoter& rep, int16_t id, const ParameterDocument& document) {
  if (id == 0) return;
  ThreadReportState().RptName = document.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("Q_INV");
  if (document.temp_folder_pictures) pokes.RequirePicture("picpath", TempFolder());
  for (const Parameter& parameter : document.parameters) {
    pokes.RequireParameter(parameter.name, parameter.value);
  }
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

// The only one of these that reads the database: the words of the challan's amount.
void CRepoter::ChallanSub(int16_t ChlId, const std::string& LogoFile) {
  if (ChlId == 0) return;
  ReportState& state = ThreadReportState();
  TemplatePokes pokes(*this);
  std::string& words = PrintSteps::TextBuffer(*this);
  state.RptName = "challansub";
  data::Recordset rs;
  data::OpenRs("select sum(chlamt) from purdata where chlid=" + Digits(ChlId), rs,
               state.DbConnectstring);
  words = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
  if (!pokes.Prepare()) return;
  pokes.RequirePicture("logo", LogoFile);
  pokes.RequireMemo("AMT", "          AMOUNT IN WORDS " + words);
  pokes.RequireQuerySql("q_pm",
                        "select * FROM VU_CHALLAN where id=" + Digits(ChlId) + " order by line");
  pokes.RenderUnlessSkipped();
  CloseIfOpen(rs);
  pokes.Release();
}

void CRepoter::ProVisionalRc(int16_t ID) {
  PrintParameterDocument(*this, ID, {.template_name = "prorc", .parameters = {{"ID", {ID}}}});
}

void CRepoter::VehGatePass(int16_t ID) {
  PrintQueryTextDocument(*this, ID,
                         {.template_name = "vehgatepass", .sql = kGatePassSql + Digits(ID)});
}

void CRepoter::CycleGatePass(int16_t ID, const std::string& LogoFile) {
  PrintQueryTextDocument(
      *this, ID,
      {.template_name = "cyclegatepass", .sql = kGatePassSql + Digits(ID), .logo = &LogoFile});
}

void CRepoter::DecForm(int16_t ID) {
  PrintQueryTextDocument(*this, ID, {.template_name = "decform", .sql = kInvoiceSql + Digits(ID)});
}

void CRepoter::VehSticker(int16_t ID, uint8_t NoofStickers) {
  PrintParameterDocument(*this, ID,
                         {.template_name = "vehsticker",
                          .parameters = {{"ID", {ID}}, {"XNO", {NoofStickers}}},
                          .temp_folder_pictures = true});
}

void CRepoter::VehSaleLetter(int16_t ID) {
  PrintQueryTextDocument(*this, ID,
                         {.template_name = "vehsaleletter", .sql = kInvoiceSql + Digits(ID)});
}

void CRepoter::CycleSaleLetter(int16_t ID, const std::string& LogoFile) {
  PrintQueryTextDocument(
      *this, ID,
      {.template_name = "cyclesaleletter", .sql = kInvoiceSql + Digits(ID), .logo = &LogoFile});
}

void CRepoter::VehForm22(int16_t ID) {
  PrintParameterDocument(*this, ID, {.template_name = "form22", .parameters = {{"xid", {ID}}}});
}

void CRepoter::VehHSRP(int16_t ID) {
  PrintParameterDocument(*this, ID, {.template_name = "hsrp", .parameters = {{"xid", {ID}}}});
}

void CRepoter::VehTempCertificate(int16_t Tline, const std::string& A4Single) {
  // "Y" exactly chooses the single form on A4; the name is set even when the line is refused.
  PrintQueryTextDocument(*this, Tline,
                         {.template_name = A4Single == "Y" ? "tempcertsingle" : "tempcert",
                          .sql = "SELECT * FROM VU_TEMPNUMBER WHERE TLINE=" + Digits(Tline),
                          .named_before_guard = true});
}

}  // namespace vantorel
