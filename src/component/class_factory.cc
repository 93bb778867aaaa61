// The class factory of CRepoter and the four exports of an in-process server.
#include <exception>
#include <memory>
#include <new>

#include "component/automation_support.h"
#include "component/binary_interface.h"
#include "component/registration.h"
#include "vantorel/crepoter.h"
#include "vantorel/crepoter_abi.h"
#include "vantorel/error.h"

namespace vantorel {
namespace {

// One factory serves every host; its references count as module use, so the library is not
// unloaded while a host holds it.
HRESULT STDMETHODCALLTYPE FactoryQueryInterface(IClassFactory* This, REFIID riid, void** out);

ULONG STDMETHODCALLTYPE FactoryAddRef(IClassFactory*) {
  ModuleAddRef();
  return 2;
}

ULONG STDMETHODCALLTYPE FactoryRelease(IClassFactory*) {
  ModuleRelease();
  return 1;
}

HRESULT STDMETHODCALLTYPE CreateInstance(IClassFactory*, IUnknown* outer, REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (outer != nullptr) return CLASS_E_NOAGGREGATION;
  std::unique_ptr<CRepoter> repoter;
  try {
    repoter = std::make_unique<CRepoter>();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
  return CreateRepoterObject(std::move(repoter), riid, out);
}

HRESULT STDMETHODCALLTYPE LockServer(IClassFactory*, BOOL lock) {
  if (lock) {
    ModuleAddRef();
  } else {
    ModuleRelease();
  }
  return S_OK;
}

constexpr IClassFactoryVtbl kFactoryVtbl = {&FactoryQueryInterface, &FactoryAddRef, &FactoryRelease,
                                            &CreateInstance, &LockServer};
IClassFactory g_factory = {&kFactoryVtbl};

HRESULT STDMETHODCALLTYPE FactoryQueryInterface(IClassFactory* This, REFIID riid, void** out) {
  if (out == nullptr) return E_POINTER;
  if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
    FactoryAddRef(This);
    *out = This;
    return S_OK;
  }
  *out = nullptr;
  return E_NOINTERFACE;
}

HRESULT RegistrationFailure(const char* what) noexcept {
  try {
    SetThreadErrorInfo(IID__CRepoter, "Vantorel.CRepoter", what);
  } catch (...) {
    SetErrorInfo(0, nullptr);
  }
  return SELFREG_E_CLASS;
}

}  // namespace
}  // namespace vantorel

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  if (!IsEqualCLSID(rclsid, CLSID_CRepoter)) return CLASS_E_CLASSNOTAVAILABLE;
  return vantorel::FactoryQueryInterface(&vantorel::g_factory, riid, ppv);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow(void) { return vantorel::ModuleInUse() ? S_FALSE : S_OK; }

HRESULT STDAPICALLTYPE DllRegisterServer(void) {
  try {
    vantorel::Register(vantorel::RegistryScope::kUser);
    return S_OK;
  } catch (const vantorel::Error& error) {
    return vantorel::RegistrationFailure(error.description().c_str());
  } catch (const std::exception& error) {
    return vantorel::RegistrationFailure(error.what());
  } catch (...) {
    return SELFREG_E_CLASS;
  }
}

HRESULT STDAPICALLTYPE DllUnregisterServer(void) {
  try {
    vantorel::Unregister(vantorel::RegistryScope::kUser);
    return S_OK;
  } catch (const vantorel::Error& error) {
    return vantorel::RegistrationFailure(error.description().c_str());
  } catch (const std::exception& error) {
    return vantorel::RegistrationFailure(error.what());
  } catch (...) {
    return SELFREG_E_CLASS;
  }
}

}  // extern "C"
