#include "component/dispatch.h"

#include <string>

namespace vantorel {

const EntryInfo& ResolveEntry(DispId dispid, uint16_t flags) {
  const EntryInfo* entry = nullptr;
  if (flags & kDispatchPropertyPut) {
    entry = FindEntry(dispid, EntryKind::kPropertyPut);
  } else {
    if (flags & kDispatchMethod) entry = FindEntry(dispid, EntryKind::kMethod);
    if (entry == nullptr && (flags & kDispatchPropertyGet)) {
      entry = FindEntry(dispid, EntryKind::kPropertyGet);
    }
  }
  if (entry == nullptr) {
    throw DispatchError(disp::kMemberNotFound,
                        "Member not found: no entry has dispatch identifier " +
                            std::to_string(static_cast<uint32_t>(dispid)));
  }
  return *entry;
}

Variant Invoke(CRepoter& object, DispId dispid, uint16_t flags, const std::vector<Variant>& args) {
  const EntryInfo& entry = ResolveEntry(dispid, flags);
  const std::span<const ParamInfo> params =
      entry.kind == EntryKind::kPropertyGet ? std::span<const ParamInfo>() : entry.parameters();
  if (args.size() > params.size()) {
    throw DispatchError(disp::kBadParamCount,
                        std::string("Wrong number of arguments for ") + entry.name);
  }
  std::vector<Variant> converted;
  converted.reserve(params.size());
  for (size_t i = 0; i < params.size(); ++i) {
    const ParamInfo& param = params[i];
    const bool omitted = i >= args.size() || args[i].IsMissing();
    if (omitted) {
      if (param.passing != Passing::kOptional) {
        if (i >= args.size()) {
          throw DispatchError(disp::kBadParamCount,
                              std::string("Wrong number of arguments for ") + entry.name);
        }
        throw DispatchError(disp::kParamNotOptional,
                            std::string("Argument ") + param.name + " is not optional",
                            static_cast<int>(i));
      }
      converted.push_back(param.type == VarType::kString ? Variant::String("")
                                                         : Variant::Missing());
    } else {
      converted.push_back(ChangeType(args[i], param.type, static_cast<int>(i)));
    }
  }
  Variant result;
  entry.invoke(object, converted.data(), &result);
  return result;
}

Variant InvokeByName(CRepoter& object, std::string_view name, uint16_t flags,
                     const std::vector<Variant>& args) {
  const std::optional<DispId> dispid = FindDispId(name);
  if (!dispid) {
    throw DispatchError(disp::kUnknownName, "Unknown name: " + std::string(name));
  }
  return Invoke(object, *dispid, flags, args);
}

}  // namespace vantorel
