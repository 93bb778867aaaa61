// The automation runtime the binary interface needs where the platform has none (BSTRs,
// VARIANTs, per-thread error info), and the conversions at the interface's edge.
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "component/automation_support.h"
#include "unicode/utf8.h"

namespace vantorel {
namespace {

// Decimal and currency values read as doubles: the interface takes none of them exactly.
double DecimalValue(const DECIMAL& value) {
  long double magnitude = static_cast<long double>(value.Hi32) * 18446744073709551616.0L +
                          static_cast<long double>(value.u2.Lo64);
  for (int i = 0; i < value.u.s.scale; ++i) magnitude /= 10;
  return static_cast<double>((value.u.s.sign & DECIMAL_NEG) ? -magnitude : magnitude);
}

double CurrencyValue(const CY& value) { return static_cast<double>(value.int64) / 10000.0; }

Variant Fail(VariantProblem* problem, VariantProblem why) {
  if (problem != nullptr) *problem = why;
  return Variant();
}

// The value "data" points at, read as "type" (a VARTYPE without VT_BYREF); "depth" stops a
// variant that refers to a variant that refers to a variant.
Variant ReadValue(VARTYPE type, const void* data, VariantProblem* problem, int depth) {
  if (data == nullptr) return Fail(problem, VariantProblem::kBadVarType);
  switch (type) {
    case VT_EMPTY:
      return Variant();
    case VT_NULL:
      return Variant::Null();
    case VT_I2:
      return Variant::I2(*static_cast<const SHORT*>(data));
    case VT_I4:
      return Variant::I4(*static_cast<const LONG*>(data));
    case VT_R4:
      return Variant::R8(*static_cast<const FLOAT*>(data));
    case VT_R8:
      return Variant::R8(*static_cast<const DOUBLE*>(data));
    case VT_CY:
      return Variant::R8(CurrencyValue(*static_cast<const CY*>(data)));
    case VT_DATE:
      return Variant::FromDate(Date{*static_cast<const DATE*>(data)});
    case VT_BSTR:
      return Variant::String(BstrToUtf8(*static_cast<const BSTR*>(data)));
    case VT_ERROR:
      return Variant::ErrorValue(*static_cast<const SCODE*>(data));
    case VT_BOOL:
      return Variant::Bool(*static_cast<const VARIANT_BOOL*>(data));
    case VT_DECIMAL:
      return Variant::R8(DecimalValue(*static_cast<const DECIMAL*>(data)));
    case VT_I1:
      return Variant::I2(*static_cast<const signed char*>(data));
    case VT_UI1:
      return Variant::UI1(*static_cast<const BYTE*>(data));
    case VT_UI2:
      return Variant::I4(*static_cast<const USHORT*>(data));
    case VT_UI4:
      return Variant::I8(*static_cast<const ULONG*>(data));
    case VT_I8:
      return Variant::I8(*static_cast<const LONGLONG*>(data));
    case VT_UI8: {
      const ULONGLONG value = *static_cast<const ULONGLONG*>(data);
      if (value > static_cast<ULONGLONG>(std::numeric_limits<int64_t>::max())) {
        return Fail(problem, VariantProblem::kOverflow);
      }
      return Variant::I8(static_cast<int64_t>(value));
    }
    case VT_INT:
      return Variant::I4(*static_cast<const INT*>(data));
    case VT_UINT:
      return Variant::I8(*static_cast<const UINT*>(data));
    case VT_VARIANT:
      if (depth > 0) return Fail(problem, VariantProblem::kBadVarType);
      return ReadValue(V_VT(static_cast<const VARIANT*>(data)) & ~VT_BYREF,
                       V_ISBYREF(static_cast<const VARIANT*>(data))
                           ? V_BYREF(static_cast<const VARIANT*>(data))
                           : &V_UNION(static_cast<const VARIANT*>(data), llVal),
                       problem, depth + 1);
    case VT_DISPATCH:
    case VT_UNKNOWN:
    case VT_RECORD:
      return Fail(problem, VariantProblem::kTypeMismatch);
    default:
      return Fail(problem, VariantProblem::kBadVarType);
  }
}

}  // namespace

std::u16string_view BstrView(BSTR text) {
  if (text == nullptr) return {};
  return std::u16string_view(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
}

std::string BstrToUtf8(BSTR text) { return unicode::Utf16ToUtf8(BstrView(text)); }

std::string OleStrToUtf8(const OLECHAR* text) {
  if (text == nullptr) return {};
  size_t length = 0;
  while (text[length] != 0) ++length;
  return unicode::Utf16ToUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(text), length));
}

BSTR NewBstr(std::string_view utf8) {
  const std::u16string wide = unicode::Utf8ToUtf16(utf8);
  if (wide.size() > std::numeric_limits<UINT>::max() / 4) throw std::bad_alloc();
  BSTR text = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(wide.data()),
                                static_cast<UINT>(wide.size()));
  if (text == nullptr) throw std::bad_alloc();
  return text;
}

Variant FromVariant(const VARIANT& value, VariantProblem* problem) {
  if (problem != nullptr) *problem = VariantProblem::kNone;
  const VARTYPE type = V_VT(&value);
  if (type & VT_ARRAY) return Fail(problem, VariantProblem::kTypeMismatch);
  if (type & VT_BYREF) return ReadValue(type & ~VT_BYREF, V_BYREF(&value), problem, 0);
  if (type == VT_VARIANT) return Fail(problem, VariantProblem::kBadVarType);
  if (type == VT_DECIMAL) return Variant::R8(DecimalValue(V_DECIMAL(&value)));
  return ReadValue(type, &V_UNION(&value, llVal), problem, 0);
}

void ToVariant(const Variant& value, VARIANT* out) {
  VariantInit(out);
  switch (value.type()) {
    case VarType::kEmpty:
      break;
    case VarType::kNull:
      V_VT(out) = VT_NULL;
      break;
    case VarType::kI2:
      V_VT(out) = VT_I2;
      V_I2(out) = static_cast<SHORT>(value.integer());
      break;
    case VarType::kI4:
      V_VT(out) = VT_I4;
      V_I4(out) = static_cast<LONG>(value.integer());
      break;
    case VarType::kI8:
      V_VT(out) = VT_I8;
      V_I8(out) = value.integer();
      break;
    case VarType::kUI1:
      V_VT(out) = VT_UI1;
      V_UI1(out) = static_cast<BYTE>(value.integer());
      break;
    case VarType::kR8:
      V_VT(out) = VT_R8;
      V_R8(out) = value.real();
      break;
    case VarType::kDate:
      V_VT(out) = VT_DATE;
      V_DATE(out) = value.real();
      break;
    case VarType::kString:
      V_BSTR(out) = NewBstr(value.text());
      V_VT(out) = VT_BSTR;
      break;
    case VarType::kBool:
      V_VT(out) = VT_BOOL;
      V_BOOL(out) = static_cast<VARIANT_BOOL>(value.integer());
      break;
    case VarType::kError:
      V_VT(out) = VT_ERROR;
      V_ERROR(out) = static_cast<SCODE>(value.integer());
      break;
    case VarType::kVariant:
      break;
  }
}

#if !defined(_WIN32)

namespace {

// The error info of one failed call; immutable once made.
class ErrorInfoObject {
 public:
  ErrorInfoObject(const IID& iid, std::string_view source, std::string_view description)
      : iid_(iid), source_(NewBstr(source)), description_(NewBstr(description)) {}
  ErrorInfoObject(const ErrorInfoObject&) = delete;
  ErrorInfoObject& operator=(const ErrorInfoObject&) = delete;

  IErrorInfo* face() { return &face_.itf; }

 private:
  // The interface pointer handed out, and the object behind it.
  struct Face {
    IErrorInfo itf;
    ErrorInfoObject* self;
  };

  static ErrorInfoObject* Self(IErrorInfo* face) { return reinterpret_cast<Face*>(face)->self; }

  static HRESULT STDMETHODCALLTYPE QueryInterface(IErrorInfo* This, REFIID riid, void** out) {
    if (out == nullptr) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IErrorInfo)) {
      AddRef(This);
      *out = This;
      return S_OK;
    }
    *out = nullptr;
    return E_NOINTERFACE;
  }
  static ULONG STDMETHODCALLTYPE AddRef(IErrorInfo* This) { return ++Self(This)->refs_; }
  static ULONG STDMETHODCALLTYPE Release(IErrorInfo* This) {
    ErrorInfoObject* self = Self(This);
    const ULONG left = --self->refs_;
    if (left == 0) delete self;
    return left;
  }
  static HRESULT STDMETHODCALLTYPE GetGUID(IErrorInfo* This, GUID* out) {
    if (out == nullptr) return E_POINTER;
    *out = Self(This)->iid_;
    return S_OK;
  }
  static HRESULT Copy(BSTR text, BSTR* out) {
    if (out == nullptr) return E_POINTER;
    *out = SysAllocStringLen(text, SysStringLen(text));
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
  }
  static HRESULT STDMETHODCALLTYPE GetSource(IErrorInfo* This, BSTR* out) {
    return Copy(Self(This)->source_.get(), out);
  }
  static HRESULT STDMETHODCALLTYPE GetDescription(IErrorInfo* This, BSTR* out) {
    return Copy(Self(This)->description_.get(), out);
  }
  static HRESULT STDMETHODCALLTYPE GetHelpFile(IErrorInfo*, BSTR* out) {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return S_OK;
  }
  static HRESULT STDMETHODCALLTYPE GetHelpContext(IErrorInfo*, DWORD* out) {
    if (out == nullptr) return E_POINTER;
    *out = 0;
    return S_OK;
  }

  static constexpr IErrorInfoVtbl kVtbl = {&QueryInterface, &AddRef,        &Release,
                                           &GetGUID,        &GetSource,     &GetDescription,
                                           &GetHelpFile,    &GetHelpContext};

  Face face_{{&kVtbl}, this};
  std::atomic<ULONG> refs_{1};
  IID iid_;
  UniqueBstr source_;
  UniqueBstr description_;
};

// The calling thread's error info; released when the thread ends.
struct ThreadErrorSlot {
  ThreadErrorSlot() = default;
  ThreadErrorSlot(const ThreadErrorSlot&) = delete;
  ThreadErrorSlot& operator=(const ThreadErrorSlot&) = delete;
  ~ThreadErrorSlot() {
    if (info != nullptr) info->lpVtbl->Release(info);
  }
  IErrorInfo* info = nullptr;
};

ThreadErrorSlot& ErrorSlot() {
  thread_local ThreadErrorSlot slot;
  return slot;
}

// Room for the length prefix before the characters.
constexpr size_t kPrefix = sizeof(uint32_t);

}  // namespace

void SetThreadErrorInfo(const IID& iid, std::string_view source, std::string_view description) {
  auto* info = new ErrorInfoObject(iid, source, description);
  SetErrorInfo(0, info->face());
  info->face()->lpVtbl->Release(info->face());
}

}  // namespace vantorel

using vantorel::kPrefix;

extern "C" {

BSTR WINAPI SysAllocString(const OLECHAR* psz) {
  if (psz == nullptr) return nullptr;
  UINT length = 0;
  while (psz[length] != 0) ++length;
  return SysAllocStringLen(psz, length);
}

BSTR WINAPI SysAllocStringLen(const OLECHAR* strIn, UINT ui) {
  // The byte length must fit the 32-bit prefix.
  if (ui > (std::numeric_limits<uint32_t>::max() - kPrefix - sizeof(OLECHAR)) / sizeof(OLECHAR)) {
    return nullptr;
  }
  const size_t bytes = static_cast<size_t>(ui) * sizeof(OLECHAR);
  auto* block = static_cast<unsigned char*>(std::malloc(kPrefix + bytes + sizeof(OLECHAR)));
  if (block == nullptr) return nullptr;
  const auto byte_length = static_cast<uint32_t>(bytes);
  std::memcpy(block, &byte_length, kPrefix);
  BSTR text = reinterpret_cast<BSTR>(block + kPrefix);
  if (strIn != nullptr) {
    std::memcpy(text, strIn, bytes);
  } else {
    std::memset(text, 0, bytes);
  }
  text[ui] = 0;
  return text;
}

void WINAPI SysFreeString(BSTR bstrString) {
  if (bstrString != nullptr) std::free(reinterpret_cast<unsigned char*>(bstrString) - kPrefix);
}

UINT WINAPI SysStringByteLen(BSTR bstr) {
  if (bstr == nullptr) return 0;
  uint32_t byte_length = 0;
  std::memcpy(&byte_length, reinterpret_cast<unsigned char*>(bstr) - kPrefix, kPrefix);
  return byte_length;
}

UINT WINAPI SysStringLen(BSTR pbstr) {
  return SysStringByteLen(pbstr) / static_cast<UINT>(sizeof(OLECHAR));
}

void WINAPI VariantInit(VARIANTARG* pvarg) {
  if (pvarg == nullptr) return;
  V_VT(pvarg) = VT_EMPTY;
  pvarg->n1.n2.wReserved1 = pvarg->n1.n2.wReserved2 = pvarg->n1.n2.wReserved3 = 0;
}

HRESULT WINAPI VariantClear(VARIANTARG* pvarg) {
  if (pvarg == nullptr) return E_INVALIDARG;
  const VARTYPE type = V_VT(pvarg);
  if (!(type & VT_BYREF)) {
    if ((type & VT_ARRAY) || type == VT_RECORD) return DISP_E_BADVARTYPE;
    if (type == VT_BSTR) {
      SysFreeString(V_BSTR(pvarg));
    } else if (type == VT_UNKNOWN || type == VT_DISPATCH) {
      IUnknown* object = V_UNKNOWN(pvarg);
      if (object != nullptr) object->lpVtbl->Release(object);
    }
  }
  VariantInit(pvarg);
  return S_OK;
}

HRESULT WINAPI VariantCopy(VARIANTARG* pvargDest, const VARIANTARG* pvargSrc) {
  if (pvargDest == nullptr || pvargSrc == nullptr) return E_INVALIDARG;
  if (pvargDest == pvargSrc) return S_OK;
  const VARTYPE type = V_VT(pvargSrc);
  if (!(type & VT_BYREF) && ((type & VT_ARRAY) || type == VT_RECORD)) return DISP_E_BADVARTYPE;
  const HRESULT cleared = VariantClear(pvargDest);
  if (FAILED(cleared)) return cleared;
  if (type == VT_BSTR) {
    BSTR copy = nullptr;
    if (V_BSTR(pvargSrc) != nullptr) {
      copy = SysAllocStringLen(V_BSTR(pvargSrc), SysStringLen(V_BSTR(pvargSrc)));
      if (copy == nullptr) return E_OUTOFMEMORY;
    }
    *pvargDest = *pvargSrc;
    V_BSTR(pvargDest) = copy;
    return S_OK;
  }
  *pvargDest = *pvargSrc;
  if (type == VT_UNKNOWN || type == VT_DISPATCH) {
    IUnknown* object = V_UNKNOWN(pvargDest);
    if (object != nullptr) object->lpVtbl->AddRef(object);
  }
  return S_OK;
}

HRESULT WINAPI GetErrorInfo(ULONG dwReserved, IErrorInfo** pperrinfo) {
  if (pperrinfo == nullptr) return E_INVALIDARG;
  *pperrinfo = nullptr;
  if (dwReserved != 0) return E_INVALIDARG;
  vantorel::ThreadErrorSlot& slot = vantorel::ErrorSlot();
  *pperrinfo = slot.info;
  slot.info = nullptr;
  return *pperrinfo != nullptr ? S_OK : S_FALSE;
}

HRESULT WINAPI SetErrorInfo(ULONG dwReserved, IErrorInfo* perrinfo) {
  if (dwReserved != 0) return E_INVALIDARG;
  vantorel::ThreadErrorSlot& slot = vantorel::ErrorSlot();
  if (perrinfo != nullptr) perrinfo->lpVtbl->AddRef(perrinfo);
  IErrorInfo* previous = slot.info;
  slot.info = perrinfo;
  if (previous != nullptr) previous->lpVtbl->Release(previous);
  return S_OK;
}

}  // extern "C"

#else  // _WIN32

void SetThreadErrorInfo(const IID& iid, std::string_view source, std::string_view description) {
  ICreateErrorInfo* create = nullptr;
  if (FAILED(CreateErrorInfo(&create))) return;
  UniqueBstr source_text(NewBstr(source));
  UniqueBstr description_text(NewBstr(description));
  create->lpVtbl->SetGUID(create, iid);
  create->lpVtbl->SetSource(create, source_text.get());
  create->lpVtbl->SetDescription(create, description_text.get());
  IErrorInfo* info = nullptr;
  if (SUCCEEDED(create->lpVtbl->QueryInterface(create, IID_IErrorInfo, (void**)&info))) {
    SetErrorInfo(0, info);
    info->lpVtbl->Release(info);
  }
  create->lpVtbl->Release(create);
}

}  // namespace vantorel

#endif  // _WIN32
