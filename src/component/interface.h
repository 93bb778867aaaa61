// The interface description of _CRepoter: its 124 entries after the seven dispatch entries (the
// get and put of the twelve properties, then the 100 methods) in the published order, with their
// dispatch identifiers and parameter lists. Late binding, the binary vtable, `vantorel methods`,
// the IDL file and the C header of the binary layout are all made from this one description.
//
// Thread-safety: immutable.
#ifndef VANTOREL_COMPONENT_INTERFACE_H_
#define VANTOREL_COMPONENT_INTERFACE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "vantorel/crepoter.h"
#include "vantorel/variant.h"

namespace vantorel {

using DispId = int32_t;

enum class Passing { kByValue, kByRef, kOptional };  // kOptional: optional, by reference
enum class EntryKind { kPropertyGet, kPropertyPut, kMethod };

struct ParamInfo {
  const char* name;
  VarType type;
  Passing passing;
};

struct EntryInfo {
  DispId dispid;
  const char* name;
  EntryKind kind;
  const ParamInfo* params;
  size_t param_count;
  // Calls the entry with arguments already converted to the parameter types (missing optional
  // strings as empty strings); a property get stores the value in "result".
  void (*invoke)(CRepoter& object, const Variant* args, Variant* result);

  std::span<const ParamInfo> parameters() const { return {params, param_count}; }
};

// The 124 entries, in vtable order.
std::span<const EntryInfo> InterfaceEntries();

// The dispatch identifier of an entry or property named "name", matched without case.
std::optional<DispId> FindDispId(std::string_view name);

// The entry with "dispid" of "kind", or nullptr.
const EntryInfo* FindEntry(DispId dispid, EntryKind kind);

// IDL text of one parameter ("[in] short Cid") and of an entry's whole list, comma separated.
std::string ParamIdl(const ParamInfo& param, EntryKind kind);
std::string ParamListIdl(const EntryInfo& entry);

// The interface as an IDL file: identifiers, the dual interface and the coclass.
std::string InterfaceIdl();

// The C type of a parameter in the binary interface ("short", "BSTR*", ...): by-reference and
// optional parameters and property-get results are pointers.
std::string ParamCType(const ParamInfo& param, EntryKind kind);

// The binary layout of the interface as a C header (include/vantorel/crepoter_abi.h): the table
// of entries with one typed function pointer per entry, in vtable order, the interface and class
// identifiers, and the four exports of the library.
std::string InterfaceCHeader();

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_INTERFACE_H_
