// The papers of one repair job: the job card, the proforma invoice, and the job (service)
// invoice in its forms — plain, the maker's "hero" forms, custom, the form the host names, with
// or without MRP, and the service e-invoice. Each row below is one form of the workshop invoice.
#include "reports/workshop/workshop_invoice.h"

namespace vantorel {

void CRepoter::w_jobcardprint(int16_t job_srl, const std::string& LogoFile) {
  PrintIdDocument(*this, job_srl,
                  {.template_name = "w_jobcardprint",
                   .id_accepted = job_srl > 0,
                   .parameter = "job_srl",
                   .logo = &LogoFile});
}

void CRepoter::w_proinvoicePrint(int16_t job_srl) {
  PrintIdDocument(*this, job_srl,
                  {.template_name = "w_proinvoice",
                   .id_accepted = job_srl > 0,
                   .query = "job",
                   .parameter = "job_srl"});
}

void CRepoter::w_jobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "w_jobinvprint"});
}

// The maker's form alone writes "Rs. " before the words.
void CRepoter::w_jobinvPrintHero(int16_t ma_id, const std::string& ma_rv, double Amt,
                                 VBool IsIGST) {
  PrintWorkshopInvoice(
      *this, ma_id, ma_rv, Amt,
      {.template_name = IsIGST != 0 ? "w_jobinvprintheroigst" : "w_jobinvprinthero",
       .words_prefix = "Rs. "});
}

void CRepoter::custom_w_jobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = "custom_w_jobinvprint"});
}

// The host names the template; without a name nothing is printed.
void CRepoter::w_gstjobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt,
                                const std::string& mRPT) {
  if (mRPT.empty()) return;
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt, {.template_name = mRPT.c_str()});
}

void CRepoter::Apro_jobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt,
                                const std::string& LogoFile, VBool WithoutMrp) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt,
                       {.template_name = WithoutMrp != 0 ? "jobinvprint_wmrp" : "jobinvprint",
                        .logo_after_words = &LogoFile});
}

void CRepoter::EInvoiceService(int16_t ma_id, const std::string& ma_rv, double Amt,
                               const std::string& LogoFile, const std::string& QrFile) {
  PrintWorkshopInvoice(*this, ma_id, ma_rv, Amt,
                       {.template_name = "einvoiceservice", .logo = &LogoFile, .qr_code = &QrFile});
}

}  // namespace vantorel
