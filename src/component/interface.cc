#include "component/interface.h"

#include <strings.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "component/interface_list.h"
#include "vantorel/identity.h"

namespace vantorel {
namespace {

// How each automation type appears in the C++ signature of CRepoter, and how a converted
// argument is read back out of its variant.
template <VarType T>
struct Cpp;
template <>
struct Cpp<VarType::kI2> {
  using type = int16_t;
  static int16_t From(const Variant& v) { return static_cast<int16_t>(v.integer()); }
  static Variant To(int16_t x) { return Variant::I2(x); }
};
template <>
struct Cpp<VarType::kI4> {
  using type = int32_t;
  static int32_t From(const Variant& v) { return static_cast<int32_t>(v.integer()); }
};
template <>
struct Cpp<VarType::kUI1> {
  using type = uint8_t;
  static uint8_t From(const Variant& v) { return static_cast<uint8_t>(v.integer()); }
  static Variant To(uint8_t x) { return Variant::UI1(x); }
};
template <>
struct Cpp<VarType::kR8> {
  using type = double;
  static double From(const Variant& v) { return v.real(); }
};
template <>
struct Cpp<VarType::kDate> {
  using type = Date;
  static Date From(const Variant& v) { return Date{v.real()}; }
};
template <>
struct Cpp<VarType::kString> {
  using type = const std::string&;
  static const std::string& From(const Variant& v) { return v.text(); }
  static Variant To(std::string x) { return Variant::String(std::move(x)); }
};
template <>
struct Cpp<VarType::kBool> {
  using type = VBool;
  static VBool From(const Variant& v) { return static_cast<VBool>(v.integer()); }
  static Variant To(VBool x) { return Variant::Bool(x); }
};
template <>
struct Cpp<VarType::kVariant> {
  using type = const Variant&;
  static const Variant& From(const Variant& v) { return v; }
};

template <auto Member, VarType... T, size_t... I>
void CallMethod(CRepoter& object, const Variant* args, std::index_sequence<I...>) {
  (object.*Member)(Cpp<T>::From(args[I])...);
}

template <auto Member, VarType... T>
void InvokeMethod(CRepoter& object, const Variant* args, Variant*) {
  CallMethod<Member, T...>(object, args, std::index_sequence_for<decltype(T)...>{});
}

template <auto Getter, VarType T>
void InvokeGet(CRepoter& object, const Variant*, Variant* result) {
  *result = Cpp<T>::To((object.*Getter)());
}

template <auto Setter, VarType T>
void InvokePut(CRepoter& object, const Variant* args, Variant*) {
  if constexpr (T == VarType::kString) {
    (object.*Setter)(args[0].text());
  } else {
    (object.*Setter)(Cpp<T>::From(args[0]));
  }
}

class TableBuilder {
 public:
  template <auto Getter, auto Setter, VarType T>
  void Property(DispId dispid, const char* name) {
    static const ParamInfo get_param[] = {{name, T, Passing::kByRef}};
    static const ParamInfo put_param[] = {{name, T, Passing::kByValue}};
    entries.push_back({dispid, name, EntryKind::kPropertyGet, get_param, 1, &InvokeGet<Getter, T>});
    entries.push_back({dispid, name, EntryKind::kPropertyPut, put_param, 1, &InvokePut<Setter, T>});
  }

  template <auto Member, VarType... T, int... P>
  void Method(DispId dispid, const char* name, ParamSpec<T, P>... params) {
    // The list and the C++ class must agree on every parameter type.
    static_assert(std::is_same_v<decltype(Member), void (CRepoter::*)(typename Cpp<T>::type...)>);
    static const ParamInfo infos[] = {ParamInfo{params.name, T, static_cast<Passing>(P)}...,
                                      ParamInfo{nullptr, VarType::kEmpty, Passing::kByValue}};
    entries.push_back(
        {dispid, name, EntryKind::kMethod, infos, sizeof...(T), &InvokeMethod<Member, T...>});
  }

  std::vector<EntryInfo> entries;
};

// The C spelling of an automation type in the binary interface. LONG, not long: the interface's
// 32-bit integer stays 32 bits where C's long is 64.
const char* CType(VarType type) { return type == VarType::kI4 ? "LONG" : VarTypeName(type); }

// One function pointer of the table, its parameters wrapped at 100 columns under the first.
void AppendCEntry(std::string& text, const std::string& result, const std::string& name,
                  std::vector<std::string> params) {
  constexpr size_t kColumns = 100;
  params.insert(params.begin(), "_CRepoter* This");
  const std::string head = "  " + result + "(STDMETHODCALLTYPE* " + name + ")(";
  std::string line = head;
  for (size_t i = 0; i < params.size(); ++i) {
    const std::string piece = params[i] + (i + 1 < params.size() ? "," : ");");
    if (i > 0) {
      if (line.size() + 1 + piece.size() > kColumns) {
        text += line + "\n";
        line = std::string(head.size(), ' ');
      } else {
        line += ' ';
      }
    }
    line += piece;
  }
  text += line + "\n";
}

std::string Hex(DispId id) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) {
    text += kDigits[(static_cast<uint32_t>(id) >> shift) & 15];
  }
  return text;
}

}  // namespace

std::span<const EntryInfo> InterfaceEntries() {
  static const std::vector<EntryInfo> entries = [] {
    TableBuilder builder;
    VisitInterface(builder);
    return std::move(builder.entries);
  }();
  return entries;
}

std::optional<DispId> FindDispId(std::string_view name) {
  for (const EntryInfo& entry : InterfaceEntries()) {
    if (std::string_view(entry.name).size() == name.size() &&
        ::strncasecmp(entry.name, name.data(), name.size()) == 0) {
      return entry.dispid;
    }
  }
  return std::nullopt;
}

const EntryInfo* FindEntry(DispId dispid, EntryKind kind) {
  for (const EntryInfo& entry : InterfaceEntries()) {
    if (entry.dispid == dispid && entry.kind == kind) return &entry;
  }
  return nullptr;
}

std::string ParamIdl(const ParamInfo& param, EntryKind kind) {
  std::string text;
  if (kind == EntryKind::kPropertyGet) {
    text = "[out, retval] ";
  } else if (param.passing == Passing::kByValue) {
    text = "[in] ";
  } else if (param.passing == Passing::kByRef) {
    text = "[in, out] ";
  } else if (param.type == VarType::kString) {
    text = "[in, out, optional, defaultvalue(\"\")] ";
  } else {
    text = "[in, out, optional] ";
  }
  text += VarTypeName(param.type);
  if (kind == EntryKind::kPropertyGet || param.passing != Passing::kByValue) text += '*';
  text += ' ';
  text += param.name;
  return text;
}

std::string ParamListIdl(const EntryInfo& entry) {
  std::string text;
  for (const ParamInfo& param : entry.parameters()) {
    if (!text.empty()) text += ", ";
    text += ParamIdl(param, entry.kind);
  }
  return text;
}

std::string InterfaceIdl() {
  auto uuid = [](const char* braced) {
    std::string text(braced);
    return text.substr(1, text.size() - 2);
  };
  std::string idl;
  idl += "// Vantorel report-printing component: the dual interface _CRepoter and its class.\n";
  idl += "// Made by `vantorel idl` from the component's interface description; do not edit.\n\n";
  idl += "[\n  uuid(" + uuid(VANTOREL_LIBID_TEXT) + "),\n  version(1.0),\n";
  idl += "  helpstring(\"Vantorel report printing\")\n]\nlibrary " VANTOREL_TYPELIB_NAME "\n{\n";
  idl += "    importlib(\"stdole2.tlb\");\n\n    interface _CRepoter;\n\n";
  idl += "    [\n      odl,\n      uuid(" + uuid(VANTOREL_IID_TEXT) + "),\n      version(1.0),\n";
  idl += "      hidden,\n      dual,\n      nonextensible,\n      oleautomation\n    ]\n";
  idl += "    interface _CRepoter : IDispatch {\n";
  for (const EntryInfo& entry : InterfaceEntries()) {
    idl += "        [id(" + Hex(entry.dispid) + ")";
    if (entry.kind == EntryKind::kPropertyGet) idl += ", propget";
    if (entry.kind == EntryKind::kPropertyPut) idl += ", propput";
    idl += "]\n        HRESULT ";
    idl += entry.name;
    idl += "(" + ParamListIdl(entry) + ");\n";
  }
  idl += "    };\n\n";
  idl += "    [\n      uuid(" + uuid(VANTOREL_CLSID_TEXT) + "),\n      version(1.0)\n    ]\n";
  idl += "    coclass CRepoter {\n        [default] interface _CRepoter;\n    };\n};\n";
  return idl;
}

std::string ParamCType(const ParamInfo& param, EntryKind kind) {
  std::string type = CType(param.type);
  if (kind == EntryKind::kPropertyGet || param.passing != Passing::kByValue) type += '*';
  return type;
}

std::string InterfaceCHeader() {
  std::string text;
  text +=
      "/* The binary layout of _CRepoter, the dual interface of " VANTOREL_PROGID
      ": the table\n"
      " * of entries an early-bound host calls by position (the seven entries of IDispatch, then\n"
      " * the get and put of each property, then the methods, in the order they were published),\n"
      " * the identifiers of the interface, the class and the type library, and the four exports\n"
      " * of the component's library. The comment before each entry is its dispatch identifier.\n"
      " *\n"
      " * Made from the component's interface description; do not edit. */\n"
      "#ifndef VANTOREL_CREPOTER_ABI_H_\n"
      "#define VANTOREL_CREPOTER_ABI_H_\n\n"
      "/* clang-format off */\n\n"
      "#include \"vantorel/automation.h\"\n"
      "#include \"vantorel/export.h\"\n"
      "#include \"vantorel/identity.h\"\n\n"
      "#ifdef __cplusplus\n"
      "extern \"C\" {\n"
      "#endif\n\n"
      "/* The names are the interface's published ones, leading underscore and all. */\n"
      "/* NOLINTBEGIN(bugprone-reserved-identifier) */\n"
      "typedef struct _CRepoter _CRepoter;\n\n"
      "typedef struct _CRepoterVtbl {\n"
      "  /* IUnknown */\n";
  AppendCEntry(text, "HRESULT", "QueryInterface", {"REFIID riid", "void** ppvObject"});
  AppendCEntry(text, "ULONG", "AddRef", {});
  AppendCEntry(text, "ULONG", "Release", {});
  text += "  /* IDispatch */\n";
  AppendCEntry(text, "HRESULT", "GetTypeInfoCount", {"UINT* pctinfo"});
  AppendCEntry(text, "HRESULT", "GetTypeInfo", {"UINT iTInfo", "LCID lcid", "ITypeInfo** ppTInfo"});
  AppendCEntry(
      text, "HRESULT", "GetIDsOfNames",
      {"REFIID riid", "LPOLESTR* rgszNames", "UINT cNames", "LCID lcid", "DISPID* rgDispId"});
  AppendCEntry(
      text, "HRESULT", "Invoke",
      {"DISPID dispIdMember", "REFIID riid", "LCID lcid", "WORD wFlags", "DISPPARAMS* pDispParams",
       "VARIANT* pVarResult", "EXCEPINFO* pExcepInfo", "UINT* puArgErr"});
  text += "  /* _CRepoter */\n";
  for (const EntryInfo& entry : InterfaceEntries()) {
    std::vector<std::string> params;
    for (const ParamInfo& param : entry.parameters()) {
      params.push_back(ParamCType(param, entry.kind) + " " + param.name);
    }
    std::string name = entry.kind == EntryKind::kPropertyGet   ? "get_"
                       : entry.kind == EntryKind::kPropertyPut ? "put_"
                                                               : "";
    name += entry.name;
    text += "  /* " + Hex(entry.dispid) + " */\n";
    AppendCEntry(text, "HRESULT", name, params);
  }
  text +=
      "} _CRepoterVtbl;\n\n"
      "struct _CRepoter {\n"
      "  const _CRepoterVtbl* lpVtbl;\n"
      "};\n\n"
      "static const IID IID__CRepoter VANTOREL_MAYBE_UNUSED = VANTOREL_IID_INIT;\n"
      "static const CLSID CLSID_CRepoter VANTOREL_MAYBE_UNUSED = VANTOREL_CLSID_INIT;\n"
      "static const GUID LIBID_Vantorel VANTOREL_MAYBE_UNUSED = VANTOREL_LIBID_INIT;\n"
      "/* NOLINTEND(bugprone-reserved-identifier) */\n\n"
      "/* The exports of the component's library, as a host that loads it finds them. */\n"
      "typedef HRESULT(STDAPICALLTYPE* PFN_DllGetClassObject)(REFCLSID rclsid, REFIID riid,\n"
      "                                                      void** ppv);\n"
      "typedef HRESULT(STDAPICALLTYPE* PFN_DllCanUnloadNow)(void);\n"
      "typedef HRESULT(STDAPICALLTYPE* PFN_DllRegisterServer)(void);\n"
      "typedef HRESULT(STDAPICALLTYPE* PFN_DllUnregisterServer)(void);\n\n"
      "#if !defined(_WIN32)\n"
      "VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid,\n"
      "                                                         void** ppv);\n"
      "VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllCanUnloadNow(void);\n"
      "VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllRegisterServer(void);\n"
      "VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllUnregisterServer(void);\n"
      "#endif\n\n"
      "#ifdef __cplusplus\n"
      "} /* extern \"C\" */\n"
      "#endif\n\n"
      "/* clang-format on */\n\n"
      "#endif /* VANTOREL_CREPOTER_ABI_H_ */\n";
  return text;
}

}  // namespace vantorel
