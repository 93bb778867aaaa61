#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::VehInvoice2in1(int16_t) { throw NotImplementedYet("VehInvoice2in1"); }

void CRepoter::VehInvoicewith21(int16_t) { throw NotImplementedYet("VehInvoicewith21"); }

void CRepoter::VehInvoiceSingle(int16_t) { throw NotImplementedYet("VehInvoiceSingle"); }

void CRepoter::VehInvoiceHero(int16_t) { throw NotImplementedYet("VehInvoiceHero"); }

void CRepoter::VehInvoiceHeroSubdealer(int16_t) { throw NotImplementedYet("VehInvoiceHeroSubdealer"); }

void CRepoter::GSTVehInvoiceSingle(int16_t, const std::string&) { throw NotImplementedYet("GSTVehInvoiceSingle"); }

void CRepoter::CycleInvoice(int16_t, const std::string&) { throw NotImplementedYet("CycleInvoice"); }

void CRepoter::GSTVehInvoiceHero(int16_t) { throw NotImplementedYet("GSTVehInvoiceHero"); }

void CRepoter::GSTVehInvoiceHeroSubdealer(int16_t) { throw NotImplementedYet("GSTVehInvoiceHeroSubdealer"); }

void CRepoter::GSTVehInvoice2in1(int16_t, const std::string&) { throw NotImplementedYet("GSTVehInvoice2in1"); }

void CRepoter::GSTVehInvoicewith21(int16_t, const std::string&) { throw NotImplementedYet("GSTVehInvoicewith21"); }

void CRepoter::VehInvoiceSubDealer(int16_t) { throw NotImplementedYet("VehInvoiceSubDealer"); }

void CRepoter::GSTVehInvoiceSubDealer(int16_t, const std::string&) { throw NotImplementedYet("GSTVehInvoiceSubDealer"); }

void CRepoter::CycleInvoiceSubDealer(int16_t, const std::string&) { throw NotImplementedYet("CycleInvoiceSubDealer"); }

void CRepoter::VehSubDealerPackingList(int16_t) { throw NotImplementedYet("VehSubDealerPackingList"); }

void CRepoter::EInvoiceVehicle(int16_t, const std::string&, const std::string&) { throw NotImplementedYet("EInvoiceVehicle"); }

}  // namespace vantorel
