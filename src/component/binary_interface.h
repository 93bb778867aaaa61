// The binary interface of CRepoter: a COM-layout object whose table of entries is IUnknown,
// IDispatch and then the 124 entries of _CRepoter in published order (see
// include/vantorel/crepoter_abi.h), plus ISupportErrorInfo. Early-bound hosts call the entries by
// position, late-bound ones through IDispatch; both reach the same CRepoter.
//
// Thread-safety: reference counting is atomic. An object is otherwise used by one thread at a
// time (apartment threading); the report state it prints with is the calling thread's.
#ifndef VANTOREL_COMPONENT_BINARY_INTERFACE_H_
#define VANTOREL_COMPONENT_BINARY_INTERFACE_H_

#include <cstddef>
#include <memory>

#include "vantorel/automation.h"
#include "vantorel/crepoter.h"

namespace vantorel {

// Entries of the table before _CRepoter's own: IUnknown (3) and IDispatch (4).
constexpr size_t kDispatchEntryCount = 7;

// Makes an object around "repoter" and returns its interface "iid" in *out: S_OK, or
// E_NOINTERFACE with *out NULL (and the object gone). Never throws.
HRESULT CreateRepoterObject(std::unique_ptr<CRepoter> repoter, const IID& iid, void** out);

// Module use: live objects, outstanding class-factory references and server locks. The library
// may be unloaded only when nothing uses it.
void ModuleAddRef();
void ModuleRelease();
bool ModuleInUse();

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_BINARY_INTERFACE_H_
