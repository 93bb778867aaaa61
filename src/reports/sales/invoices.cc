// Vehicle and cycle sale invoices: sixteen forms of one document. Dealer forms accept any
// non-zero id, are named before the amount is read, and put the words in "WAMT" (and "WAMT1" on
// two-in-one forms) and the invoice in "Q_INV"; sub-dealer forms accept only positive ids, are
// named after the read, and use "AMT" and "Q_PM". Each method's row says the rest.
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
  const char* amount_sql = kNetAmount;  // followed by the id
  const char* words_prefix = kIndented;
  bool two_copies = false;               // the words twice, in "WAMT" and "WAMT1"
  const std::string* logo = nullptr;     // picture "logo", when the form has one
  const std::string* qr_code = nullptr;  // picture "qrcode", right after the logo
};

// The words of the invoice's amount, kept in the text buffer.
void ReadAmountInWords(CRepoter& rep, const InvoiceForm& form, int16_t id, data::Recordset& rs) {
  data::OpenRs(form.amount_sql + Digits(id), rs, ThreadReportState().DbConnectstring);
  PrintSteps::TextBuffer(rep) = AmountInWords(data::ToDouble(rs.Fields(0).Value()));
}

// From the prepared template to release: pictures, words, the invoice's query.
void FillAndRender(CRepoter& rep, TemplatePokes& pokes, const InvoiceForm& form, int16_t id,
                   const char* memo, const char* query, data::Recordset& rs) {
  std::string& buffer = PrintSteps::TextBuffer(rep);
  if (form.logo != nullptr) pokes.RequirePicture("logo", *form.logo);
  if (form.qr_code != nullptr) pokes.RequirePicture("qrcode", *form.qr_code);
  const std::string words = form.words_prefix + buffer;
  pokes.RequireMemo(memo, words);
  if (form.two_copies) pokes.RequireMemo("WAMT1", words);
  buffer = "SELECT * FROM VU_INVOICE WHERE ID=" + Digits(id);
  pokes.RequireQuerySql(query, buffer);
  pokes.RenderUnlessSkipped();
  CloseIfOpen(rs);
  pokes.Release();
}

void PrintDealerInvoice(CRepoter& rep, int16_t id, const InvoiceForm& form) {
  if (id == 0) return;
  ThreadReportState().RptName = form.template_name;
  data::Recordset rs;
  ReadAmountInWords(rep, form, id, rs);
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  FillAndRender(rep, pokes, form, id, "WAMT", "Q_INV", rs);
}

void PrintSubDealerInvoice(CRepoter& rep, int16_t id, const InvoiceForm& form) {
  if (!(id > 0)) return;
  data::Recordset rs;
  ReadAmountInWords(rep, form, id, rs);
  ThreadReportState().RptName = form.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  FillAndRender(rep, pokes, form, id, "AMT", "Q_PM", rs);
}

}  // namespace

void CRepoter::VehInvoice2in1(int16_t ID) {
  PrintDealerInvoice(*this, ID, {.template_name = "vehinvoice", .two_copies = true});
}
void CRepoter::VehInvoicewith21(int16_t ID) {
  PrintDealerInvoice(*this, ID, {.template_name = "vehinvoicewith21"});
}
void CRepoter::VehInvoiceSingle(int16_t ID) {
  PrintDealerInvoice(*this, ID, {.template_name = "vehinvoicesingle"});
}
void CRepoter::VehInvoiceHero(int16_t ID) {
  PrintDealerInvoice(*this, ID, {.template_name = "vehinvoicehero", .words_prefix = kRupees});
}
void CRepoter::VehInvoiceHeroSubdealer(int16_t ID) {
  PrintDealerInvoice(*this, ID,
                     {.template_name = "vehinvoiceherosubdealer", .words_prefix = kRupees});
}
void CRepoter::GSTVehInvoiceSingle(int16_t ID, const std::string& LogoFile) {
  PrintDealerInvoice(
      *this, ID,
      {.template_name = "gstvehinvoicesingle", .amount_sql = kNetLessSubsidy, .logo = &LogoFile});
}
void CRepoter::CycleInvoice(int16_t ID, const std::string& LogoFile) {
  PrintDealerInvoice(*this, ID, {.template_name = "cycleinvoice", .logo = &LogoFile});
}
void CRepoter::GSTVehInvoiceHero(int16_t ID) {
  PrintDealerInvoice(*this, ID, {.template_name = "gstvehinvoicehero", .words_prefix = kRupees});
}
void CRepoter::GSTVehInvoiceHeroSubdealer(int16_t ID) {
  PrintDealerInvoice(*this, ID,
                     {.template_name = "gstvehinvoiceherosubdealer", .words_prefix = kRupees});
}
void CRepoter::GSTVehInvoice2in1(int16_t ID, const std::string& LogoFile) {
  PrintDealerInvoice(*this, ID,
                     {.template_name = "gstvehinvoice", .two_copies = true, .logo = &LogoFile});
}
void CRepoter::GSTVehInvoicewith21(int16_t ID, const std::string& LogoFile) {
  PrintDealerInvoice(*this, ID, {.template_name = "gstvehinvoicewith21", .logo = &LogoFile});
}
void CRepoter::VehInvoiceSubDealer(int16_t ID) {
  PrintSubDealerInvoice(*this, ID, {.template_name = "vehinvoicesub"});
}
void CRepoter::GSTVehInvoiceSubDealer(int16_t ID, const std::string& LogoFile) {
  PrintSubDealerInvoice(*this, ID, {.template_name = "gstvehinvoicesub", .logo = &LogoFile});
}
void CRepoter::CycleInvoiceSubDealer(int16_t ID, const std::string& LogoFile) {
  PrintSubDealerInvoice(*this, ID, {.template_name = "cycleinvoicesub", .logo = &LogoFile});
}
void CRepoter::VehSubDealerPackingList(int16_t ID) {
  PrintSubDealerInvoice(*this, ID, {.template_name = "vehsubpackinglist"});
}
void CRepoter::EInvoiceVehicle(int16_t ID, const std::string& LogoFile, const std::string& QrFile) {
  PrintSubDealerInvoice(
      *this, ID, {.template_name = "einvoicevehicle", .logo = &LogoFile, .qr_code = &QrFile});
}

}  // namespace vantorel
