// Invoices of parts sold over the counter, in their forms, and the e-invoice of a warranty or
// other claim: the workshop invoice again, always with "RUPEES : " before the words (the maker's
// counter form too).
#include "reports/workshop/workshop_invoice.h"

namespace vantorel {

void CRepoter::w_counterprint(int16_t ma_id, const std::string& ma_rv, double Amt) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "w_counterprint"});
}

void CRepoter::w_counterprinthero(int16_t ma_id, const std::string& ma_rv, double Amt) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "w_counterprinthero"});
}

void CRepoter::w_gstcounterprinthero(int16_t ma_id, const std::string& ma_rv, double Amt) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "w_gstcounterprinthero"});
}

void CRepoter::custom_w_counterprint(int16_t ma_id, const std::string& ma_rv, double Amt) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "custom_w_counterprint"});
}

// The logo is taken and not used: the form prints none.
void CRepoter::w_gstcounterprint(int16_t ma_id, const std::string& ma_rv, double Amt,
                                 const Variant& /*LogoFile*/) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "w_gstcounterprint"});
}

void CRepoter::Apro_counterprint(int16_t ma_id, const std::string& ma_rv, double Amt,
                                 const std::string& LogoFile, VBool WithoutMrp) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt,
                       {.template_name = WithoutMrp != 0 ? "counterprint_wmrp" : "counterprint",
                        .logo_after_words = &LogoFile});
}

// A claim is named by its document and where it comes from; both must be given.
void CRepoter::EInvoiceClaim(int16_t DocID, const std::string& DocFrom, double Amt,
                             const std::string& LogoFile, const std::string& QrFile) {
  if (DocFrom.empty()) return;
  PrintWorkshopInvoice(*this, DocID, DocFrom, Amt,
                       {.template_name = "einvoiceclaim",
                        .id_parameter = "docid",
                        .text_parameter = "docfrom",
                        .logo = &LogoFile,
                        .qr_code = &QrFile});
}

}  // namespace vantorel
