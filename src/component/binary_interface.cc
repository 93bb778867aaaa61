#include "component/binary_interface.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "component/automation_support.h"
#include "component/dispatch.h"
#include "component/interface.h"
#include "component/interface_list.h"
#include "vantorel/crepoter_abi.h"
#include "vantorel/error.h"

namespace vantorel {
namespace {

constexpr char kSource[] = "Vantorel.CRepoter";

std::atomic<long> g_module_uses{0};

const _CRepoterVtbl& RepoterVtable();
const ISupportErrorInfoVtbl& SupportVtable();

class RepoterObject {
 public:
  explicit RepoterObject(std::unique_ptr<CRepoter> repoter) : repoter_(std::move(repoter)) {
    ModuleAddRef();
  }
  ~RepoterObject() { ModuleRelease(); }
  RepoterObject(const RepoterObject&) = delete;
  RepoterObject& operator=(const RepoterObject&) = delete;

  static RepoterObject& From(_CRepoter* face) {
    return *reinterpret_cast<PrimaryFace*>(face)->self;
  }
  static RepoterObject& From(ISupportErrorInfo* face) {
    return *reinterpret_cast<SupportFace*>(face)->self;
  }

  ULONG AddRef() { return ++refs_; }
  ULONG Release() {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT QueryInterface(const IID& iid, void** out) {
    if (out == nullptr) return E_POINTER;
    if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ||
        IsEqualIID(iid, IID__CRepoter)) {
      *out = &primary_.itf;
    } else if (IsEqualIID(iid, IID_ISupportErrorInfo)) {
      *out = &support_.itf;
    } else {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }

  CRepoter& repoter() { return *repoter_; }

 private:
  // The interface pointers handed out. Each is the first member of its face, so a call's "This"
  // leads back to the object. IUnknown and IDispatch are the first entries of _CRepoter.
  struct PrimaryFace {
    _CRepoter itf;
    RepoterObject* self;
  };
  struct SupportFace {
    ISupportErrorInfo itf;
    RepoterObject* self;
  };

  PrimaryFace primary_{{&RepoterVtable()}, this};
  SupportFace support_{{&SupportVtable()}, this};
  std::atomic<ULONG> refs_{1};
  std::unique_ptr<CRepoter> repoter_;
};

// Sets the thread's error info for a failed call and returns "code".
HRESULT Fail(HRESULT code, std::string_view source, std::string_view description) noexcept {
  try {
    SetThreadErrorInfo(IID__CRepoter, source, description);
  } catch (...) {
    SetErrorInfo(0, nullptr);
  }
  return code;
}

// An error whose number is no failure status still fails the call.
HRESULT FailureCode(const Error& error) {
  const HRESULT code = error.hresult();
  return FAILED(code) ? code : E_FAIL;
}

// Runs "body" on the object behind "This", holding a reference for the call, and turns every
// exception into the call's status result and error info: nothing may cross the boundary.
template <typename Body>
HRESULT Guarded(_CRepoter* This, Body&& body) noexcept {
  if (This == nullptr) return E_POINTER;
  RepoterObject& self = RepoterObject::From(This);
  self.AddRef();
  HRESULT result = S_OK;
  try {
    SetErrorInfo(0, nullptr);
    body(self.repoter());
  } catch (const Error& error) {
    result = Fail(FailureCode(error), error.source(), error.description());
  } catch (const std::bad_alloc&) {
    result = Fail(E_OUTOFMEMORY, kSource, "Out of memory");
  } catch (const std::exception& error) {
    result = Fail(E_FAIL, kSource, error.what());
  } catch (...) {
    result = E_UNEXPECTED;
  }
  self.Release();
  return result;
}

Error NullArgument(const EntryInfo& entry, size_t index) {
  if (entry.kind == EntryKind::kPropertyGet) {
    return Error(E_POINTER, kSource,
                 std::string("The result pointer for ") + entry.name + " is a null pointer");
  }
  return Error(E_POINTER, kSource,
               std::string("Argument ") + entry.params[index].name + " of " + entry.name +
                   " is a null pointer");
}

int32_t DispatchCode(VariantProblem problem) {
  switch (problem) {
    case VariantProblem::kOverflow:
      return disp::kOverflow;
    case VariantProblem::kBadVarType:
      return disp::kBadVarType;
    default:
      return disp::kTypeMismatch;
  }
}

// How each automation type crosses the binary interface, and what CRepoter receives for it.
template <VarType T>
struct Abi;
template <>
struct Abi<VarType::kI2> {
  using type = SHORT;
  static int16_t Read(SHORT value) { return value; }
  static SHORT Write(int16_t value) { return value; }
};
template <>
struct Abi<VarType::kI4> {
  using type = LONG;
  static int32_t Read(LONG value) { return value; }
};
template <>
struct Abi<VarType::kUI1> {
  using type = BYTE;
  static uint8_t Read(BYTE value) { return value; }
  static BYTE Write(uint8_t value) { return value; }
};
template <>
struct Abi<VarType::kR8> {
  using type = DOUBLE;
  static double Read(DOUBLE value) { return value; }
};
template <>
struct Abi<VarType::kDate> {
  using type = DATE;
  static Date Read(DATE value) { return Date{value}; }
};
template <>
struct Abi<VarType::kString> {
  using type = BSTR;
  static std::string Read(BSTR value) { return BstrToUtf8(value); }
  static BSTR Write(const std::string& value) { return NewBstr(value); }
};
template <>
struct Abi<VarType::kBool> {
  using type = VARIANT_BOOL;
  static VBool Read(VARIANT_BOOL value) { return value; }
  static VARIANT_BOOL Write(VBool value) { return value; }
};
template <>
struct Abi<VarType::kVariant> {
  using type = VARIANT;
  static Variant Read(const VARIANT& value) {
    VariantProblem problem;
    Variant converted = FromVariant(value, &problem);
    if (problem != VariantProblem::kNone) {
      throw DispatchError(DispatchCode(problem), "A variant holds a type the interface refuses");
    }
    return converted;
  }
};

// One parameter: by value, by reference (a pointer that must not be null; never written back)
// or optional by reference (a null pointer means omitted).
template <typename Spec>
struct AbiParam;
template <VarType T>
struct AbiParam<ParamSpec<T, 0>> {
  static_assert(T != VarType::kVariant, "variants cross the interface by reference");
  using type = typename Abi<T>::type;
  static auto Read(type value, const EntryInfo&, size_t) { return Abi<T>::Read(value); }
};
template <VarType T>
struct AbiParam<ParamSpec<T, 1>> {
  using type = typename Abi<T>::type*;
  static auto Read(type value, const EntryInfo& entry, size_t index) {
    if (value == nullptr) throw NullArgument(entry, index);
    return Abi<T>::Read(*value);
  }
};
template <VarType T>
struct AbiParam<ParamSpec<T, 2>> {
  static_assert(T == VarType::kString || T == VarType::kVariant,
                "only texts and variants are optional");
  using type = typename Abi<T>::type*;
  static auto Read(type value, const EntryInfo&, size_t) {
    if (value == nullptr) {
      if constexpr (T == VarType::kString) {
        return std::string();
      } else {
        return Variant::Missing();
      }
    }
    return Abi<T>::Read(*value);
  }
};

template <auto Member, typename... Specs>
struct MethodThunk {
  static HRESULT STDMETHODCALLTYPE Call(_CRepoter* This, typename AbiParam<Specs>::type... args) {
    return Guarded(This, [&](CRepoter& object) {
      CallWith(object, std::forward_as_tuple(args...), std::index_sequence_for<Specs...>{});
    });
  }

  template <typename Tuple, size_t... I>
  static void CallWith(CRepoter& object, Tuple&& args, std::index_sequence<I...>) {
    (object.*Member)(AbiParam<Specs>::Read(std::get<I>(args), *entry, I)...);
  }

  static inline const EntryInfo* entry = nullptr;  // set when the table is built
};

template <auto Getter, auto Setter, VarType T>
struct PropertyThunks {
  static HRESULT STDMETHODCALLTYPE Get(_CRepoter* This, typename Abi<T>::type* out) {
    return Guarded(This, [&](CRepoter& object) {
      if (out == nullptr) throw NullArgument(*get_entry, 0);
      *out = {};
      *out = Abi<T>::Write((object.*Getter)());
    });
  }

  static HRESULT STDMETHODCALLTYPE Put(_CRepoter* This, typename Abi<T>::type value) {
    return Guarded(This, [&](CRepoter& object) { (object.*Setter)(Abi<T>::Read(value)); });
  }

  static inline const EntryInfo* get_entry = nullptr;  // set when the table is built
};

HRESULT STDMETHODCALLTYPE QueryInterface(_CRepoter* This, REFIID riid, void** out) {
  if (This == nullptr) return E_POINTER;
  return RepoterObject::From(This).QueryInterface(riid, out);
}

ULONG STDMETHODCALLTYPE AddRef(_CRepoter* This) { return RepoterObject::From(This).AddRef(); }

ULONG STDMETHODCALLTYPE Release(_CRepoter* This) { return RepoterObject::From(This).Release(); }

HRESULT STDMETHODCALLTYPE GetTypeInfoCount(_CRepoter*, UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 0;
  return S_OK;
}

// There is no type information to hand out: the IDL file (docs/vantorel.idl) describes the
// interface, and Linux has no type library service to load it into.
HRESULT STDMETHODCALLTYPE GetTypeInfo(_CRepoter*, UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return E_NOTIMPL;
}

// Interface names are ASCII, and hosts may spell them in any case.
bool SameName(const char* name, const std::string& text) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::strlen(name) == text.size() &&
         std::equal(text.begin(), text.end(), name,
                    [&](char a, char b) { return lower(a) == lower(b); });
}

HRESULT STDMETHODCALLTYPE GetIDsOfNames(_CRepoter* This, REFIID riid, LPOLESTR* names, UINT count,
                                        LCID, DISPID* ids) {
  if (This == nullptr) return E_POINTER;
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  try {
    std::fill(ids, ids + count, DISPID_UNKNOWN);
    const std::optional<DispId> dispid = FindDispId(OleStrToUtf8(names[0]));
    if (!dispid) return DISP_E_UNKNOWNNAME;
    ids[0] = *dispid;
    // Further names are parameters of the method, numbered from 0 as named arguments are.
    const EntryInfo* method = FindEntry(*dispid, EntryKind::kMethod);
    HRESULT result = S_OK;
    for (UINT i = 1; i < count; ++i) {
      const std::string name = OleStrToUtf8(names[i]);
      for (size_t k = 0; method != nullptr && k < method->param_count; ++k) {
        if (SameName(method->params[k].name, name)) ids[i] = static_cast<DISPID>(k);
      }
      if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
    }
    return result;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// A named argument that names no parameter: reported with its own index in rgvarg.
struct NamedArgumentError {
  HRESULT code;
  UINT index;
};

// The arguments of "params" in parameter order, omitted ones missing. "source" gets the rgvarg
// index each parameter's argument came from, -1 where there is none.
std::vector<Variant> BindArguments(const EntryInfo& entry, const DISPPARAMS& params,
                                   std::vector<int>& source) {
  const UINT count = params.cArgs;
  const UINT named = params.cNamedArgs;
  const auto read = [&](UINT index, size_t position) {
    VariantProblem problem;
    Variant value = FromVariant(params.rgvarg[index], &problem);
    if (problem != VariantProblem::kNone) {
      throw DispatchError(DispatchCode(problem),
                          std::string("Argument ") + entry.params[position].name + " of " +
                              entry.name + " holds a type the interface does not take",
                          static_cast<int>(position));
    }
    return value;
  };
  const auto wrong_count = [&] {
    return DispatchError(disp::kBadParamCount,
                         std::string("Wrong number of arguments for ") + entry.name);
  };

  if (entry.kind == EntryKind::kPropertyPut) {
    // The value is the argument named DISPID_PROPERTYPUT, or the only one.
    for (UINT i = 0; i < named; ++i) {
      if (params.rgdispidNamedArgs[i] != DISPID_PROPERTYPUT) {
        throw NamedArgumentError{DISP_E_PARAMNOTFOUND, i};
      }
    }
    if (count != 1) throw wrong_count();
    source = {0};
    return {read(0, 0)};
  }
  if (named > 0 && (entry.kind == EntryKind::kPropertyGet || entry.param_count == 0)) {
    throw NamedArgumentError{DISP_E_NONAMEDARGS, 0};
  }
  if (entry.kind == EntryKind::kPropertyGet) {
    if (count != 0) throw wrong_count();
    return {};
  }

  // rgvarg holds the named arguments first, then the positional ones last to first.
  const size_t positional = count - named;
  size_t size = positional;
  for (UINT i = 0; i < named; ++i) {
    const DISPID position = params.rgdispidNamedArgs[i];
    if (position < 0 || static_cast<size_t>(position) < positional ||
        static_cast<size_t>(position) >= entry.param_count) {
      throw NamedArgumentError{DISP_E_PARAMNOTFOUND, i};
    }
    size = std::max(size, static_cast<size_t>(position) + 1);
  }
  if (size > entry.param_count) throw wrong_count();
  source.assign(size, -1);
  std::vector<Variant> args(size, Variant::Missing());
  for (size_t j = 0; j < positional; ++j) {
    const UINT index = count - 1 - static_cast<UINT>(j);
    source[j] = static_cast<int>(index);
    args[j] = read(index, j);
  }
  for (UINT i = 0; i < named; ++i) {
    const auto position = static_cast<size_t>(params.rgdispidNamedArgs[i]);
    if (source[position] != -1) throw NamedArgumentError{DISP_E_PARAMNOTFOUND, i};
    source[position] = static_cast<int>(i);
    args[position] = read(i, position);
  }
  return args;
}

// A failure of the method itself: reported in "info" when the caller gave one (the call then
// returns DISP_E_EXCEPTION, as automation expects), and as the thread's error info.
HRESULT Exception(EXCEPINFO* info, HRESULT code, std::string_view source,
                  std::string_view description) noexcept {
  Fail(code, source, description);
  if (info == nullptr) return code;
  std::memset(info, 0, sizeof *info);
  info->scode = code;
  try {
    info->bstrSource = NewBstr(source);
    info->bstrDescription = NewBstr(description);
  } catch (...) {
    // The status code alone still tells the caller what happened.
  }
  return DISP_E_EXCEPTION;
}

HRESULT InvokeBound(CRepoter& object, DISPID member, WORD flags, const DISPPARAMS& params,
                    VARIANT* result, EXCEPINFO* info, UINT* arg_err) noexcept {
  std::vector<int> source;
  try {
    SetErrorInfo(0, nullptr);
    const EntryInfo& entry = ResolveEntry(member, flags);
    const std::vector<Variant> args = BindArguments(entry, params, source);
    const Variant value = vantorel::Invoke(object, member, flags, args);
    if (result != nullptr && entry.kind == EntryKind::kPropertyGet) ToVariant(value, result);
    return S_OK;
  } catch (const NamedArgumentError& error) {
    if (arg_err != nullptr) *arg_err = error.index;
    return error.code;
  } catch (const DispatchError& error) {
    const int position = error.argument();
    if (arg_err != nullptr && position >= 0 && static_cast<size_t>(position) < source.size() &&
        source[position] >= 0) {
      *arg_err = static_cast<UINT>(source[position]);
    }
    return Fail(error.hresult(), error.source(), error.description());
  } catch (const Error& error) {
    return Exception(info, FailureCode(error), error.source(), error.description());
  } catch (const std::bad_alloc&) {
    return Fail(E_OUTOFMEMORY, kSource, "Out of memory");
  } catch (const std::exception& error) {
    return Exception(info, E_FAIL, kSource, error.what());
  } catch (...) {
    return E_UNEXPECTED;
  }
}

HRESULT STDMETHODCALLTYPE Invoke(_CRepoter* This, DISPID member, REFIID riid, LCID, WORD flags,
                                 DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                                 UINT* arg_err) {
  if (This == nullptr) return E_POINTER;
  if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (params == nullptr || params->cNamedArgs > params->cArgs ||
      (params->cArgs > 0 && params->rgvarg == nullptr) ||
      (params->cNamedArgs > 0 && params->rgdispidNamedArgs == nullptr)) {
    return E_INVALIDARG;
  }
  if (result != nullptr) VariantInit(result);
  RepoterObject& self = RepoterObject::From(This);
  self.AddRef();
  const HRESULT status = InvokeBound(self.repoter(), member, flags, *params, result, info, arg_err);
  self.Release();
  return status;
}

HRESULT STDMETHODCALLTYPE SupportQueryInterface(ISupportErrorInfo* This, REFIID riid, void** out) {
  return RepoterObject::From(This).QueryInterface(riid, out);
}

ULONG STDMETHODCALLTYPE SupportAddRef(ISupportErrorInfo* This) {
  return RepoterObject::From(This).AddRef();
}

ULONG STDMETHODCALLTYPE SupportRelease(ISupportErrorInfo* This) {
  return RepoterObject::From(This).Release();
}

HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(ISupportErrorInfo*, REFIID riid) {
  return IsEqualIID(riid, IID__CRepoter) ? S_OK : S_FALSE;
}

using Slot = void (*)();

// Collects one thunk per entry in the order VisitInterface gives them, which is the table order.
class VtableBuilder {
 public:
  template <auto Getter, auto Setter, VarType T>
  void Property(DispId, const char*) {
    using Thunks = PropertyThunks<Getter, Setter, T>;
    Thunks::get_entry = Add(reinterpret_cast<Slot>(&Thunks::Get));
    Add(reinterpret_cast<Slot>(&Thunks::Put));
  }

  template <auto Member, typename... Specs>
  void Method(DispId, const char*, Specs...) {
    using Thunk = MethodThunk<Member, Specs...>;
    Thunk::entry = Add(reinterpret_cast<Slot>(&Thunk::Call));
  }

  const std::vector<Slot>& slots() const { return slots_; }

 private:
  const EntryInfo* Add(Slot slot) {
    slots_.push_back(slot);
    const auto entries = InterfaceEntries();
    return slots_.size() <= entries.size() ? &entries[slots_.size() - 1] : nullptr;
  }

  std::vector<Slot> slots_;
};

static_assert(offsetof(_CRepoterVtbl, get_LastMsg) == kDispatchEntryCount * sizeof(Slot));
static_assert(sizeof(_CRepoterVtbl) % sizeof(Slot) == 0);

_CRepoterVtbl BuildVtable() {
  _CRepoterVtbl table{};
  table.QueryInterface = &QueryInterface;
  table.AddRef = &AddRef;
  table.Release = &Release;
  table.GetTypeInfoCount = &GetTypeInfoCount;
  table.GetTypeInfo = &GetTypeInfo;
  table.GetIDsOfNames = &GetIDsOfNames;
  table.Invoke = &Invoke;
  VtableBuilder builder;
  VisitInterface(builder);
  // The C header is made from the same description; a table of another size means it is stale.
  constexpr size_t kEntries = sizeof(_CRepoterVtbl) / sizeof(Slot) - kDispatchEntryCount;
  if (builder.slots().size() != kEntries || InterfaceEntries().size() != kEntries) std::abort();
  std::memcpy(reinterpret_cast<unsigned char*>(&table) + offsetof(_CRepoterVtbl, get_LastMsg),
              builder.slots().data(), kEntries * sizeof(Slot));
  return table;
}

const _CRepoterVtbl& RepoterVtable() {
  static const _CRepoterVtbl table = BuildVtable();
  return table;
}

const ISupportErrorInfoVtbl& SupportVtable() {
  static constexpr ISupportErrorInfoVtbl table = {&SupportQueryInterface, &SupportAddRef,
                                                  &SupportRelease, &InterfaceSupportsErrorInfo};
  return table;
}

}  // namespace

HRESULT CreateRepoterObject(std::unique_ptr<CRepoter> repoter, const IID& iid, void** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (!repoter) return E_INVALIDARG;
  RepoterObject* object = nullptr;
  try {
    object = new RepoterObject(std::move(repoter));
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  const HRESULT result = object->QueryInterface(iid, out);
  object->Release();
  return result;
}

void ModuleAddRef() { ++g_module_uses; }

void ModuleRelease() { --g_module_uses; }

bool ModuleInUse() { return g_module_uses.load() != 0; }

}  // namespace vantorel
