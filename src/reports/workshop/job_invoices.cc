#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::w_jobcardprint(int16_t, const std::string&) {
  throw NotImplementedYet("w_jobcardprint");
}

void CRepoter::w_jobinvPrint(int16_t, const std::string&, double) {
  throw NotImplementedYet("w_jobinvPrint");
}

void CRepoter::w_jobinvPrintHero(int16_t, const std::string&, double, VBool) {
  throw NotImplementedYet("w_jobinvPrintHero");
}

void CRepoter::custom_w_jobinvPrint(int16_t, const std::string&, double) {
  throw NotImplementedYet("custom_w_jobinvPrint");
}

void CRepoter::w_proinvoicePrint(int16_t) { throw NotImplementedYet("w_proinvoicePrint"); }

void CRepoter::w_gstjobinvPrint(int16_t, const std::string&, double, const std::string&) {
  throw NotImplementedYet("w_gstjobinvPrint");
}

void CRepoter::Apro_jobinvPrint(int16_t, const std::string&, double, const std::string&, VBool) {
  throw NotImplementedYet("Apro_jobinvPrint");
}

void CRepoter::EInvoiceService(int16_t, const std::string&, double, const std::string&,
                               const std::string&) {
  throw NotImplementedYet("EInvoiceService");
}

}  // namespace vantorel
