/* The automation binary types the component's interface is made of, laid out exactly as the
 * automation standard lays them out on Windows, so hosts written against that standard bind to
 * the component unchanged: status results, 16-bit strings with a length prefix (BSTR), 16-bit
 * booleans, dates, variants, dispatch parameters, exception information, and the IUnknown,
 * IDispatch, IClassFactory, IErrorInfo and ISupportErrorInfo interfaces as C structs whose first
 * member points at a table of function pointers.
 *
 * On Windows the system headers provide all of this (in their C view) and the Sys*, Variant* and
 * error-info functions are the system's. Elsewhere this header defines the types and the
 * component's library exports the functions. Variant fields are reached through the V_* macros
 * (V_VT, V_BSTR, V_I2REF, ...), which work with both.
 *
 * Thread-safety: the BSTR and VARIANT functions are thread-safe on distinct values. Error info is
 * kept per thread: SetErrorInfo and GetErrorInfo act on the calling thread's. */
#ifndef VANTOREL_AUTOMATION_H_
#define VANTOREL_AUTOMATION_H_

/* Constants in a header cannot all be used by every file that includes it. */
#if defined(__GNUC__)
#define VANTOREL_MAYBE_UNUSED __attribute__((unused))
#else
#define VANTOREL_MAYBE_UNUSED
#endif

#if defined(_WIN32)

/* The C view of the interfaces (lpVtbl structs) in C++ too, as on every other platform. */
#ifndef CINTERFACE
#define CINTERFACE
#endif
#ifndef COBJMACROS
#define COBJMACROS
#endif
#include <windows.h>

#include <oaidl.h>
#include <olectl.h>

#else /* !_WIN32 */

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#include "vantorel/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The calling conventions of the standard: __stdcall on 32-bit Windows, the platform's own C
 * convention here. */
#define STDMETHODCALLTYPE
#define STDAPICALLTYPE
#define WINAPI

typedef int32_t HRESULT;
typedef int32_t SCODE;
typedef int32_t LONG; /* 32 bits, as on Windows, even where C's long is 64 */
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef uint16_t WORD;
typedef uint16_t USHORT;
typedef int16_t SHORT;
typedef uint8_t BYTE;
typedef int32_t INT;
typedef uint32_t UINT;
typedef int32_t BOOL;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef float FLOAT;
typedef double DOUBLE;
typedef char CHAR;
typedef void* PVOID;
typedef DWORD LCID;
typedef LONG DISPID;
typedef LONG MEMBERID;
typedef unsigned short VARTYPE;

/* UTF-16 code units. */
typedef char16_t OLECHAR;
typedef OLECHAR* LPOLESTR;
typedef const OLECHAR* LPCOLESTR;

/* A BSTR points at the first of its 16-bit characters. The four bytes before it hold the length
 * in bytes (without the terminator); a 16-bit NUL follows the text. NULL is the empty string.
 * Allocate with SysAllocString*, free with SysFreeString. */
typedef OLECHAR* BSTR;

/* True is all bits set. */
typedef int16_t VARIANT_BOOL;
#define VARIANT_TRUE ((VARIANT_BOOL)-1)
#define VARIANT_FALSE ((VARIANT_BOOL)0)

/* Days since 30 December 1899; the fraction is the time of day. */
typedef double DATE;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef struct _GUID { /* NOLINT(bugprone-reserved-identifier): the standard's tag */
  uint32_t Data1;
  uint16_t Data2;
  uint16_t Data3;
  uint8_t Data4[8];
} GUID;
typedef GUID IID;
typedef GUID CLSID;

/* References to identifiers: pointers in C, references in C++, the same in the binary. */
#ifdef __cplusplus
typedef const GUID& REFGUID;
typedef const IID& REFIID;
typedef const CLSID& REFCLSID;
#else
typedef const GUID* REFGUID;
typedef const IID* REFIID;
typedef const CLSID* REFCLSID;
#endif

/* Currency: a 64-bit integer scaled by 10,000. */
typedef union tagCY {
  struct {
    ULONG Lo;
    LONG Hi;
  } s;
  LONGLONG int64;
} CY;

/* A 96-bit integer with a sign and a decimal scale. */
typedef struct tagDEC {
  USHORT wReserved;
  union {
    struct {
      BYTE scale;
      BYTE sign; /* 0x80 when negative */
    } s;
    USHORT signscale;
  } u;
  ULONG Hi32;
  union {
    struct {
      ULONG Lo32;
      ULONG Mid32;
    } s2;
    ULONGLONG Lo64;
  } u2;
} DECIMAL;
#define DECIMAL_NEG ((BYTE)0x80)

typedef struct IUnknown IUnknown;
typedef struct IDispatch IDispatch;
typedef struct IClassFactory IClassFactory;
typedef struct IErrorInfo IErrorInfo;
typedef struct ISupportErrorInfo ISupportErrorInfo;
typedef struct ITypeInfo ITypeInfo;     /* not provided: the component has no type information */
typedef struct IRecordInfo IRecordInfo; /* not provided */
typedef struct tagSAFEARRAY SAFEARRAY;  /* not provided */

typedef struct tagVARIANT VARIANT;
typedef VARIANT VARIANTARG;

/* The union names n1, n2, n3 are those of the standard's named-union form; use the V_* macros
 * below rather than spelling them out. */
struct tagVARIANT {
  union {
    struct {
      VARTYPE vt;
      WORD wReserved1;
      WORD wReserved2;
      WORD wReserved3;
      union {
        LONGLONG llVal;
        LONG lVal;
        BYTE bVal;
        SHORT iVal;
        FLOAT fltVal;
        DOUBLE dblVal;
        VARIANT_BOOL boolVal;
        SCODE scode;
        CY cyVal;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        BYTE* pbVal;
        SHORT* piVal;
        LONG* plVal;
        LONGLONG* pllVal;
        FLOAT* pfltVal;
        DOUBLE* pdblVal;
        VARIANT_BOOL* pboolVal;
        SCODE* pscode;
        CY* pcyVal;
        DATE* pdate;
        BSTR* pbstrVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        PVOID byref;
        CHAR cVal;
        USHORT uiVal;
        ULONG ulVal;
        ULONGLONG ullVal;
        INT intVal;
        UINT uintVal;
        DECIMAL* pdecVal;
        CHAR* pcVal;
        USHORT* puiVal;
        ULONG* pulVal;
        ULONGLONG* pullVal;
        INT* pintVal;
        UINT* puintVal;
        struct {
          PVOID pvRecord;
          IRecordInfo* pRecInfo;
        } brecVal;
      } n3;
    } n2;
    DECIMAL decVal;
  } n1;
};

#define V_VT(X) ((X)->n1.n2.vt)
#define V_ISBYREF(X) (V_VT(X) & VT_BYREF)
#define V_UNION(X, Y) ((X)->n1.n2.n3.Y)
#define V_I1(X) V_UNION(X, cVal)
#define V_UI1(X) V_UNION(X, bVal)
#define V_UI1REF(X) V_UNION(X, pbVal)
#define V_I2(X) V_UNION(X, iVal)
#define V_I2REF(X) V_UNION(X, piVal)
#define V_UI2(X) V_UNION(X, uiVal)
#define V_I4(X) V_UNION(X, lVal)
#define V_I4REF(X) V_UNION(X, plVal)
#define V_UI4(X) V_UNION(X, ulVal)
#define V_I8(X) V_UNION(X, llVal)
#define V_UI8(X) V_UNION(X, ullVal)
#define V_INT(X) V_UNION(X, intVal)
#define V_UINT(X) V_UNION(X, uintVal)
#define V_R4(X) V_UNION(X, fltVal)
#define V_R8(X) V_UNION(X, dblVal)
#define V_R8REF(X) V_UNION(X, pdblVal)
#define V_CY(X) V_UNION(X, cyVal)
#define V_DATE(X) V_UNION(X, date)
#define V_DATEREF(X) V_UNION(X, pdate)
#define V_BSTR(X) V_UNION(X, bstrVal)
#define V_BSTRREF(X) V_UNION(X, pbstrVal)
#define V_BOOL(X) V_UNION(X, boolVal)
#define V_BOOLREF(X) V_UNION(X, pboolVal)
#define V_ERROR(X) V_UNION(X, scode)
#define V_UNKNOWN(X) V_UNION(X, punkVal)
#define V_DISPATCH(X) V_UNION(X, pdispVal)
#define V_VARIANTREF(X) V_UNION(X, pvarVal)
#define V_BYREF(X) V_UNION(X, byref)
#define V_DECIMAL(X) ((X)->n1.decVal)

enum VARENUM {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6,
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_DISPATCH = 9,
  VT_ERROR = 10,
  VT_BOOL = 11,
  VT_VARIANT = 12,
  VT_UNKNOWN = 13,
  VT_DECIMAL = 14,
  VT_I1 = 16,
  VT_UI1 = 17,
  VT_UI2 = 18,
  VT_UI4 = 19,
  VT_I8 = 20,
  VT_UI8 = 21,
  VT_INT = 22,
  VT_UINT = 23,
  VT_VOID = 24,
  VT_HRESULT = 25,
  VT_RECORD = 36,
  VT_ARRAY = 0x2000,
  VT_BYREF = 0x4000,
  VT_TYPEMASK = 0x0FFF
};

typedef struct tagDISPPARAMS {
  VARIANTARG* rgvarg; /* the arguments, last one first */
  DISPID* rgdispidNamedArgs;
  UINT cArgs;
  UINT cNamedArgs;
} DISPPARAMS;

typedef struct tagEXCEPINFO {
  WORD wCode;
  WORD wReserved;
  BSTR bstrSource;
  BSTR bstrDescription;
  BSTR bstrHelpFile;
  DWORD dwHelpContext;
  PVOID pvReserved;
  HRESULT(STDMETHODCALLTYPE* pfnDeferredFillIn)(struct tagEXCEPINFO*);
  SCODE scode;
} EXCEPINFO;

#define DISPATCH_METHOD 0x1
#define DISPATCH_PROPERTYGET 0x2
#define DISPATCH_PROPERTYPUT 0x4
#define DISPATCH_PROPERTYPUTREF 0x8

#define DISPID_UNKNOWN ((DISPID)-1)
#define DISPID_VALUE ((DISPID)0)
#define DISPID_PROPERTYPUT ((DISPID)-3)

#define LOCALE_SYSTEM_DEFAULT ((LCID)0x0800)
#define LOCALE_USER_DEFAULT ((LCID)0x0400)

#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)

#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001u)
#define E_NOINTERFACE ((HRESULT)0x80004002u)
#define E_POINTER ((HRESULT)0x80004003u)
#define E_ABORT ((HRESULT)0x80004004u)
#define E_FAIL ((HRESULT)0x80004005u)
#define E_UNEXPECTED ((HRESULT)0x8000FFFFu)
#define E_OUTOFMEMORY ((HRESULT)0x8007000Eu)
#define E_INVALIDARG ((HRESULT)0x80070057u)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110u)
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111u)
#define SELFREG_E_TYPELIB ((HRESULT)0x80040200u)
#define SELFREG_E_CLASS ((HRESULT)0x80040201u)
#define DISP_E_UNKNOWNINTERFACE ((HRESULT)0x80020001u)
#define DISP_E_MEMBERNOTFOUND ((HRESULT)0x80020003u)
#define DISP_E_PARAMNOTFOUND ((HRESULT)0x80020004u)
#define DISP_E_TYPEMISMATCH ((HRESULT)0x80020005u)
#define DISP_E_UNKNOWNNAME ((HRESULT)0x80020006u)
#define DISP_E_NONAMEDARGS ((HRESULT)0x80020007u)
#define DISP_E_BADVARTYPE ((HRESULT)0x80020008u)
#define DISP_E_EXCEPTION ((HRESULT)0x80020009u)
#define DISP_E_OVERFLOW ((HRESULT)0x8002000Au)
#define DISP_E_BADINDEX ((HRESULT)0x8002000Bu)
#define DISP_E_UNKNOWNLCID ((HRESULT)0x8002000Cu)
#define DISP_E_ARRAYISLOCKED ((HRESULT)0x8002000Du)
#define DISP_E_BADPARAMCOUNT ((HRESULT)0x8002000Eu)
#define DISP_E_PARAMNOTOPTIONAL ((HRESULT)0x8002000Fu)

/* The tables of entries, wrapped as the standard's headers wrap them. */
/* clang-format off */
typedef struct IUnknownVtbl {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(IUnknown* This, REFIID riid, void** ppvObject);
  ULONG(STDMETHODCALLTYPE* AddRef)(IUnknown* This);
  ULONG(STDMETHODCALLTYPE* Release)(IUnknown* This);
} IUnknownVtbl;
struct IUnknown {
  const IUnknownVtbl* lpVtbl;
};

typedef struct IDispatchVtbl {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(IDispatch* This, REFIID riid, void** ppvObject);
  ULONG(STDMETHODCALLTYPE* AddRef)(IDispatch* This);
  ULONG(STDMETHODCALLTYPE* Release)(IDispatch* This);
  HRESULT(STDMETHODCALLTYPE* GetTypeInfoCount)(IDispatch* This, UINT* pctinfo);
  HRESULT(STDMETHODCALLTYPE* GetTypeInfo)(IDispatch* This, UINT iTInfo, LCID lcid,
                                          ITypeInfo** ppTInfo);
  HRESULT(STDMETHODCALLTYPE* GetIDsOfNames)(IDispatch* This, REFIID riid, LPOLESTR* rgszNames,
                                            UINT cNames, LCID lcid, DISPID* rgDispId);
  HRESULT(STDMETHODCALLTYPE* Invoke)(IDispatch* This, DISPID dispIdMember, REFIID riid, LCID lcid,
                                     WORD wFlags, DISPPARAMS* pDispParams, VARIANT* pVarResult,
                                     EXCEPINFO* pExcepInfo, UINT* puArgErr);
} IDispatchVtbl;
struct IDispatch {
  const IDispatchVtbl* lpVtbl;
};

typedef struct IClassFactoryVtbl {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(IClassFactory* This, REFIID riid, void** ppvObject);
  ULONG(STDMETHODCALLTYPE* AddRef)(IClassFactory* This);
  ULONG(STDMETHODCALLTYPE* Release)(IClassFactory* This);
  HRESULT(STDMETHODCALLTYPE* CreateInstance)(IClassFactory* This, IUnknown* pUnkOuter,
                                             REFIID riid, void** ppvObject);
  HRESULT(STDMETHODCALLTYPE* LockServer)(IClassFactory* This, BOOL fLock);
} IClassFactoryVtbl;
struct IClassFactory {
  const IClassFactoryVtbl* lpVtbl;
};

typedef struct IErrorInfoVtbl {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(IErrorInfo* This, REFIID riid, void** ppvObject);
  ULONG(STDMETHODCALLTYPE* AddRef)(IErrorInfo* This);
  ULONG(STDMETHODCALLTYPE* Release)(IErrorInfo* This);
  HRESULT(STDMETHODCALLTYPE* GetGUID)(IErrorInfo* This, GUID* pGUID);
  HRESULT(STDMETHODCALLTYPE* GetSource)(IErrorInfo* This, BSTR* pBstrSource);
  HRESULT(STDMETHODCALLTYPE* GetDescription)(IErrorInfo* This, BSTR* pBstrDescription);
  HRESULT(STDMETHODCALLTYPE* GetHelpFile)(IErrorInfo* This, BSTR* pBstrHelpFile);
  HRESULT(STDMETHODCALLTYPE* GetHelpContext)(IErrorInfo* This, DWORD* pdwHelpContext);
} IErrorInfoVtbl;
struct IErrorInfo {
  const IErrorInfoVtbl* lpVtbl;
};

typedef struct ISupportErrorInfoVtbl {
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(ISupportErrorInfo* This, REFIID riid,
                                             void** ppvObject);
  ULONG(STDMETHODCALLTYPE* AddRef)(ISupportErrorInfo* This);
  ULONG(STDMETHODCALLTYPE* Release)(ISupportErrorInfo* This);
  HRESULT(STDMETHODCALLTYPE* InterfaceSupportsErrorInfo)(ISupportErrorInfo* This, REFIID riid);
} ISupportErrorInfoVtbl;
struct ISupportErrorInfo {
  const ISupportErrorInfoVtbl* lpVtbl;
};
/* clang-format on */

/* The standard interface identifiers. Each file that includes this header has its own copy;
 * compare identifiers by value (IsEqualGUID), never by address. */
static const IID IID_NULL VANTOREL_MAYBE_UNUSED = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
static const IID IID_IUnknown VANTOREL_MAYBE_UNUSED = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const IID IID_IDispatch VANTOREL_MAYBE_UNUSED = {
    0x00020400, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const IID IID_IClassFactory VANTOREL_MAYBE_UNUSED = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const IID IID_IErrorInfo VANTOREL_MAYBE_UNUSED = {
    0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
static const IID IID_ISupportErrorInfo VANTOREL_MAYBE_UNUSED = {
    0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

static inline int VantorelGuidEqual(const GUID* a, const GUID* b) {
  int i;
  if (a->Data1 != b->Data1 || a->Data2 != b->Data2 || a->Data3 != b->Data3) return 0;
  for (i = 0; i < 8; ++i) {
    if (a->Data4[i] != b->Data4[i]) return 0;
  }
  return 1;
}
#ifdef __cplusplus
#define IsEqualGUID(a, b) VantorelGuidEqual(&(a), &(b))
#else
#define IsEqualGUID(a, b) VantorelGuidEqual((a), (b))
#endif
#define IsEqualIID(a, b) IsEqualGUID(a, b)
#define IsEqualCLSID(a, b) IsEqualGUID(a, b)

/* A new BSTR holding the NUL-terminated "psz"; NULL when "psz" is NULL or memory ran out. */
VANTOREL_EXPORT BSTR WINAPI SysAllocString(const OLECHAR* psz);
/* A new BSTR of "ui" characters copied from "strIn", or zero-filled when "strIn" is NULL. */
VANTOREL_EXPORT BSTR WINAPI SysAllocStringLen(const OLECHAR* strIn, UINT ui);
/* Frees "bstrString"; NULL is allowed. */
VANTOREL_EXPORT void WINAPI SysFreeString(BSTR bstrString);
/* The length in characters, 0 for NULL. */
VANTOREL_EXPORT UINT WINAPI SysStringLen(BSTR pbstr);
/* The length in bytes, 0 for NULL. */
VANTOREL_EXPORT UINT WINAPI SysStringByteLen(BSTR bstr);

/* Makes "pvarg" VT_EMPTY without looking at what it held. */
VANTOREL_EXPORT void WINAPI VariantInit(VARIANTARG* pvarg);
/* Frees what "pvarg" owns (a BSTR; a reference on an interface) and makes it VT_EMPTY. Arrays
 * and records are not supported here: DISP_E_BADVARTYPE, and "pvarg" is left as it was. */
VANTOREL_EXPORT HRESULT WINAPI VariantClear(VARIANTARG* pvarg);
/* Clears "pvargDest" and makes it a copy of "pvargSrc": a new BSTR, a new reference on an
 * interface; a VT_BYREF variant is copied as the same pointer. */
VANTOREL_EXPORT HRESULT WINAPI VariantCopy(VARIANTARG* pvargDest, const VARIANTARG* pvargSrc);

/* Takes the calling thread's error info: *pperrinfo gets it (the caller releases it) and the
 * thread's is cleared. S_FALSE with *pperrinfo NULL when there is none. "dwReserved" is 0. */
VANTOREL_EXPORT HRESULT WINAPI GetErrorInfo(ULONG dwReserved, IErrorInfo** pperrinfo);
/* Replaces the calling thread's error info with "perrinfo" (a reference is taken; NULL clears). */
VANTOREL_EXPORT HRESULT WINAPI SetErrorInfo(ULONG dwReserved, IErrorInfo* perrinfo);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* _WIN32 */

#endif /* VANTOREL_AUTOMATION_H_ */
