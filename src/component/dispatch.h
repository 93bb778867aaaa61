// Late binding: calls an entry of _CRepoter by dispatch identifier with variant arguments,
// converting them as automation does and failing with the automation status codes.
//
// Thread-safety: as the CRepoter called.
#ifndef VANTOREL_COMPONENT_DISPATCH_H_
#define VANTOREL_COMPONENT_DISPATCH_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "component/conversion.h"
#include "component/interface.h"

namespace vantorel {

// Invoke flags, as automation defines them; a host may combine method and property get.
constexpr uint16_t kDispatchMethod = 1;
constexpr uint16_t kDispatchPropertyGet = 2;
constexpr uint16_t kDispatchPropertyPut = 4;

// The entry "dispid" resolves to under "flags", or throws DispatchError (member not found).
const EntryInfo& ResolveEntry(DispId dispid, uint16_t flags);

// Calls "dispid" with "args" in parameter order (first parameter first). Omitted trailing
// optional arguments, and arguments that are Variant::Missing(), reach the method as empty
// strings (or a missing variant). Binding failures throw DispatchError; a failure of the method
// itself is its own Error. A property get returns the value; everything else returns empty.
Variant Invoke(CRepoter& object, DispId dispid, uint16_t flags, const std::vector<Variant>& args);

// Invoke by name (matched without case); an unknown name throws DispatchError (unknown name).
Variant InvokeByName(CRepoter& object, std::string_view name, uint16_t flags,
                     const std::vector<Variant>& args);

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_DISPATCH_H_
