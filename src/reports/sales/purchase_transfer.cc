#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::VehPurBill(int16_t) { throw NotImplementedYet("VehPurBill"); }

void CRepoter::VehPurBillGST(int16_t) { throw NotImplementedYet("VehPurBillGST"); }

void CRepoter::VinTrf(int16_t) { throw NotImplementedYet("VinTrf"); }

void CRepoter::VehBtPrint(int16_t) { throw NotImplementedYet("VehBtPrint"); }

}  // namespace vantorel
