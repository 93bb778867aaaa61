// Vehicle and cycle sale invoices: sixteen forms of one document. They differ only in what the
// table below says — template, amount query, words memo and prefix, query, pictures — and in
// whether they are dealer forms (any non-zero id; the template is named before the amount is
// read) or sub-dealer forms (positive ids only; named after the read).
#include "reports/print_steps.h"

namespace vantorel {
namespace {

constexpr const char* kNetAmount = "select sum(netprice) from purdata where invid=";
constexpr const char* kNetLessSubsidy =
    "select sum(netprice-coalesce(subsidyamt,0)) from purdata where invid=";
constexpr const char* kIndented = "          AMOUNT IN WORDS ";  // ten blanks
constexpr const char* kRupees = "Rupees ";

struct InvoiceForm {
  const char* template_name;
  const char* amount_sql;
  const char* words_prefix;
  const char* memo;   // "WAMT" on dealer forms, "AMT" on sub-dealer forms
  bool second_copy;   // two-in-one forms print the words twice, "WAMT1" too
  const char* query;  // "Q_INV" or "Q_PM"
  bool logo;
  bool qr_code;
};

constexpr InvoiceForm kVehInvoice2in1{"vehinvoice", kNetAmount, kIndented, "WAMT",
                                      true,         "Q_INV",    false,     false};
constexpr InvoiceForm kVehInvoicewith21{
    "vehinvoicewith21", kNetAmount, kIndented, "WAMT", false, "Q_INV", false, false};
constexpr InvoiceForm kVehInvoiceSingle{
    "vehinvoicesingle", kNetAmount, kIndented, "WAMT", false, "Q_INV", false, false};
constexpr InvoiceForm kVehInvoiceHero{"vehinvoicehero", kNetAmount, kRupees, "WAMT", false,
                                      "Q_INV",          false,      false};
constexpr InvoiceForm kVehInvoiceHeroSubdealer{
    "vehinvoiceherosubdealer", kNetAmount, kRupees, "WAMT", false, "Q_INV", false, false};
constexpr InvoiceForm kGSTVehInvoiceSingle{
    "gstvehinvoicesingle", kNetLessSubsidy, kIndented, "WAMT", false, "Q_INV", true, false};
constexpr InvoiceForm kCycleInvoice{"cycleinvoice", kNetAmount, kIndented, "WAMT",
                                    false,          "Q_INV",    true,      false};
constexpr InvoiceForm kGSTVehInvoiceHero{
    "gstvehinvoicehero", kNetAmount, kRupees, "WAMT", false, "Q_INV", false, false};
constexpr InvoiceForm kGSTVehInvoiceHeroSubdealer{
    "gstvehinvoiceherosubdealer", kNetAmount, kRupees, "WAMT", false, "Q_INV", false, false};
constexpr InvoiceForm kGSTVehInvoice2in1{"gstvehinvoice", kNetAmount, kIndented, "WAMT", true,
                                         "Q_INV",         true,       false};
constexpr InvoiceForm kGSTVehInvoicewith21{
    "gstvehinvoicewith21", kNetAmount, kIndented, "WAMT", false, "Q_INV", true, false};
constexpr InvoiceForm kVehInvoiceSubDealer{"vehinvoicesub", kNetAmount, kIndented, "AMT",
                                           false,           "Q_PM",     false,     false};
constexpr InvoiceForm kGSTVehInvoiceSubDealer{
    "gstvehinvoicesub", kNetAmount, kIndented, "AMT", false, "Q_PM", true, false};
constexpr InvoiceForm kCycleInvoiceSubDealer{
    "cycleinvoicesub", kNetAmount, kIndented, "AMT", false, "Q_PM", true, false};
constexpr InvoiceForm kVehSubDealerPackingList{
    "vehsubpackinglist", kNetAmount, kIndented, "AMT", false, "Q_PM", false, false};
constexpr InvoiceForm kEInvoiceVehicle{
    "einvoicevehicle", kNetAmount, kIndented, "AMT", false, "Q_PM", true, true};

// The words of the invoice's amount, kept in the text buffer.
void ReadAmountInWords(CRepoter& rep, const InvoiceForm& form, int16_t id, data::Recordset& rs) {
  data::OpenRs(form.amount_sql + Digits(id), rs, ThreadReportState().DbConnectstring);
  PrintSteps::TextBuffer(rep) = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
}

// From prepared template to release: pictures, words, the invoice's query.
void FillAndRender(CRepoter& rep, const InvoiceForm& form, int16_t id, const std::string& logo,
                   const std::string& qr_code, data::Recordset& rs) {
  engine::ReportRun& run = PrintSteps::Run(rep);
  std::string& buffer = PrintSteps::TextBuffer(rep);
  if (form.logo) SetPicture(run, "logo", logo);
  if (form.qr_code) SetPicture(run, "qrcode", qr_code);
  const std::string words = form.words_prefix + buffer;
  run.memo = run.LocateMemo(form.memo);
  run.memo.SetMemoText(words);
  run.memo = {};
  if (form.second_copy) {
    run.memo = run.LocateMemo("WAMT1");
    run.memo.SetMemoText(words);
    run.memo = {};
  }
  run.query = run.LocateQuery(form.query);
  buffer = "SELECT * FROM VU_INVOICE WHERE ID=" + Digits(id);
  run.query.SetQueryText(buffer);
  run.database = {};
  run.query = {};
  PrintSteps::Render(rep);
  CloseIfOpen(rs);
  PrintSteps::Release(rep);
}

void DealerInvoice(CRepoter& rep, const InvoiceForm& form, int16_t id,
                   const std::string& logo = {}) {
  if (id == 0) return;
  ThreadReportState().RptName = form.template_name;
  data::Recordset rs;
  ReadAmountInWords(rep, form, id, rs);
  if (!PrintSteps::Prepare(rep)) return;
  FillAndRender(rep, form, id, logo, {}, rs);
}

void SubDealerInvoice(CRepoter& rep, const InvoiceForm& form, int16_t id,
                      const std::string& logo = {}, const std::string& qr_code = {}) {
  if (!(id > 0)) return;
  data::Recordset rs;
  ReadAmountInWords(rep, form, id, rs);
  ThreadReportState().RptName = form.template_name;
  if (!PrintSteps::Prepare(rep)) return;
  FillAndRender(rep, form, id, logo, qr_code, rs);
}

}  // namespace

void CRepoter::VehInvoice2in1(int16_t ID) { DealerInvoice(*this, kVehInvoice2in1, ID); }
void CRepoter::VehInvoicewith21(int16_t ID) { DealerInvoice(*this, kVehInvoicewith21, ID); }
void CRepoter::VehInvoiceSingle(int16_t ID) { DealerInvoice(*this, kVehInvoiceSingle, ID); }
void CRepoter::VehInvoiceHero(int16_t ID) { DealerInvoice(*this, kVehInvoiceHero, ID); }
void CRepoter::VehInvoiceHeroSubdealer(int16_t ID) {
  DealerInvoice(*this, kVehInvoiceHeroSubdealer, ID);
}
void CRepoter::GSTVehInvoiceSingle(int16_t ID, const std::string& LogoFile) {
  DealerInvoice(*this, kGSTVehInvoiceSingle, ID, LogoFile);
}
void CRepoter::CycleInvoice(int16_t ID, const std::string& LogoFile) {
  DealerInvoice(*this, kCycleInvoice, ID, LogoFile);
}
void CRepoter::GSTVehInvoiceHero(int16_t ID) { DealerInvoice(*this, kGSTVehInvoiceHero, ID); }
void CRepoter::GSTVehInvoiceHeroSubdealer(int16_t ID) {
  DealerInvoice(*this, kGSTVehInvoiceHeroSubdealer, ID);
}
void CRepoter::GSTVehInvoice2in1(int16_t ID, const std::string& LogoFile) {
  DealerInvoice(*this, kGSTVehInvoice2in1, ID, LogoFile);
}
void CRepoter::GSTVehInvoicewith21(int16_t ID, const std::string& LogoFile) {
  DealerInvoice(*this, kGSTVehInvoicewith21, ID, LogoFile);
}
void CRepoter::VehInvoiceSubDealer(int16_t ID) {
  SubDealerInvoice(*this, kVehInvoiceSubDealer, ID);
}
void CRepoter::GSTVehInvoiceSubDealer(int16_t ID, const std::string& LogoFile) {
  SubDealerInvoice(*this, kGSTVehInvoiceSubDealer, ID, LogoFile);
}
void CRepoter::CycleInvoiceSubDealer(int16_t ID, const std::string& LogoFile) {
  SubDealerInvoice(*this, kCycleInvoiceSubDealer, ID, LogoFile);
}
void CRepoter::VehSubDealerPackingList(int16_t ID) {
  SubDealerInvoice(*this, kVehSubDealerPackingList, ID);
}
void CRepoter::EInvoiceVehicle(int16_t ID, const std::string& LogoFile, const std::string& QrFile) {
  SubDealerInvoice(*this, kEInvoiceVehicle, ID, LogoFile, QrFile);
}

}  // namespace vantorel
