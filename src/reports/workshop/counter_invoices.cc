#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::w_counterprint(int16_t, const std::string&, double) {
  throw NotImplementedYet("w_counterprint");
}

void CRepoter::w_counterprinthero(int16_t, const std::string&, double) {
  throw NotImplementedYet("w_counterprinthero");
}

void CRepoter::w_gstcounterprinthero(int16_t, const std::string&, double) {
  throw NotImplementedYet("w_gstcounterprinthero");
}

void CRepoter::custom_w_counterprint(int16_t, const std::string&, double) {
  throw NotImplementedYet("custom_w_counterprint");
}

void CRepoter::w_gstcounterprint(int16_t, const std::string&, double, const Variant&) {
  throw NotImplementedYet("w_gstcounterprint");
}

void CRepoter::Apro_counterprint(int16_t, const std::string&, double, const std::string&, VBool) {
  throw NotImplementedYet("Apro_counterprint");
}

void CRepoter::EInvoiceClaim(int16_t, const std::string&, double, const std::string&,
                             const std::string&) {
  throw NotImplementedYet("EInvoiceClaim");
}

}  // namespace vantorel
