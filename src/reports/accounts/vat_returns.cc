#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::VAT23print(const std::string&, const std::string&, Date, Date) {
  throw NotImplementedYet("VAT23print");
}

void CRepoter::VAT24print(const std::string&, const std::string&, Date, Date) {
  throw NotImplementedYet("VAT24print");
}

void CRepoter::Vat18Print(const std::string&, Date, Date) { throw NotImplementedYet("Vat18Print"); }

void CRepoter::Vat19Print(const std::string&, Date, Date) { throw NotImplementedYet("Vat19Print"); }

void CRepoter::PrintCformList(const std::string&, Date, Date, const std::string&) {
  throw NotImplementedYet("PrintCformList");
}

void CRepoter::PrintVat16(int16_t, int16_t, int16_t) { throw NotImplementedYet("PrintVat16"); }

}  // namespace vantorel
