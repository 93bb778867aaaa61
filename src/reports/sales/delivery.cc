#include "vantorel/crepoter.h"
#include "vantorel/error.h"

namespace vantorel {

void CRepoter::ChallanSub(int16_t, const std::string&) { throw NotImplementedYet("ChallanSub"); }

void CRepoter::ProVisionalRc(int16_t) { throw NotImplementedYet("ProVisionalRc"); }

void CRepoter::VehGatePass(int16_t) { throw NotImplementedYet("VehGatePass"); }

void CRepoter::CycleGatePass(int16_t, const std::string&) { throw NotImplementedYet("CycleGatePass"); }

void CRepoter::DecForm(int16_t) { throw NotImplementedYet("DecForm"); }

void CRepoter::VehSticker(int16_t, uint8_t) { throw NotImplementedYet("VehSticker"); }

void CRepoter::VehSaleLetter(int16_t) { throw NotImplementedYet("VehSaleLetter"); }

void CRepoter::CycleSaleLetter(int16_t, const std::string&) { throw NotImplementedYet("CycleSaleLetter"); }

void CRepoter::VehForm22(int16_t) { throw NotImplementedYet("VehForm22"); }

void CRepoter::VehHSRP(int16_t) { throw NotImplementedYet("VehHSRP"); }

void CRepoter::VehTempCertificate(int16_t, const std::string&) { throw NotImplementedYet("VehTempCertificate"); }

}  // namespace vantorel
