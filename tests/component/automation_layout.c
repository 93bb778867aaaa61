/* The automation types and the table of _CRepoter as a C compiler lays them out: the sizes and
 * offsets the automation standard fixes, which hosts written in any language rely on. Checked at
 * compile time; the program only reports success. */
#include <stddef.h>
#include <stdio.h>

#include "vantorel/automation.h"
#include "vantorel/crepoter_abi.h"
#include "vantorel/vantorel.h"

#define POINTER ((size_t)sizeof(void*))
#define IS_64 (sizeof(void*) == 8)

_Static_assert(sizeof(HRESULT) == 4, "HRESULT is 32 bits");
_Static_assert(sizeof(LONG) == 4 && sizeof(ULONG) == 4 && sizeof(DWORD) == 4,
               "LONG, ULONG and DWORD are 32 bits even on LP64");
_Static_assert(sizeof(WORD) == 2 && sizeof(VARTYPE) == 2, "WORD and VARTYPE are 16 bits");
_Static_assert(sizeof(OLECHAR) == 2, "OLECHAR is a UTF-16 code unit");
_Static_assert(sizeof(VARIANT_BOOL) == 2, "VARIANT_BOOL is 16 bits");
_Static_assert(sizeof(DATE) == 8, "DATE is a double");
_Static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data4) == 8, "GUID layout");
_Static_assert(sizeof(CY) == 8, "CY is 64 bits");
_Static_assert(sizeof(DECIMAL) == 16, "DECIMAL is 16 bytes");
_Static_assert(offsetof(DECIMAL, Hi32) == 4 && offsetof(DECIMAL, u2) == 8, "DECIMAL layout");

_Static_assert(sizeof(VARIANT) == (IS_64 ? 24 : 16), "VARIANT: 24 bytes on 64-bit, 16 on 32");
_Static_assert(offsetof(VARIANT, n1.n2.vt) == 0, "vt first");
_Static_assert(offsetof(VARIANT, n1.n2.n3) == 8, "the value after vt and three reserved words");
_Static_assert(offsetof(VARIANT, n1.n2.n3.brecVal.pRecInfo) == 8 + POINTER,
               "a record is two pointers");
_Static_assert(offsetof(VARIANT, n1.decVal) == 0, "a decimal overlays the whole variant");

_Static_assert(sizeof(DISPPARAMS) == (IS_64 ? 24 : 16), "DISPPARAMS size");
_Static_assert(offsetof(DISPPARAMS, rgdispidNamedArgs) == POINTER, "DISPPARAMS layout");
_Static_assert(offsetof(DISPPARAMS, cArgs) == 2 * POINTER, "DISPPARAMS layout");
_Static_assert(offsetof(DISPPARAMS, cNamedArgs) == 2 * POINTER + 4, "DISPPARAMS layout");

_Static_assert(sizeof(EXCEPINFO) == (IS_64 ? 64 : 32), "EXCEPINFO size");
_Static_assert(offsetof(EXCEPINFO, bstrSource) == (IS_64 ? 8 : 4), "EXCEPINFO layout");
_Static_assert(offsetof(EXCEPINFO, dwHelpContext) == (IS_64 ? 32 : 16), "EXCEPINFO layout");
_Static_assert(offsetof(EXCEPINFO, scode) == (IS_64 ? 56 : 28), "EXCEPINFO layout");

_Static_assert(sizeof(IUnknownVtbl) == 3 * POINTER, "IUnknown has three entries");
_Static_assert(sizeof(IDispatchVtbl) == 7 * POINTER, "IDispatch has seven entries");
_Static_assert(offsetof(IDispatchVtbl, Invoke) == 6 * POINTER, "Invoke is the seventh");
_Static_assert(sizeof(IClassFactoryVtbl) == 5 * POINTER, "IClassFactory has five entries");
_Static_assert(sizeof(IErrorInfoVtbl) == 8 * POINTER, "IErrorInfo has eight entries");
_Static_assert(sizeof(ISupportErrorInfoVtbl) == 4 * POINTER, "ISupportErrorInfo has four");

_Static_assert(sizeof(_CRepoterVtbl) == 131 * POINTER, "IDispatch and 124 entries");
_Static_assert(offsetof(_CRepoterVtbl, Invoke) == offsetof(IDispatchVtbl, Invoke),
               "_CRepoter begins with IDispatch");
_Static_assert(offsetof(_CRepoterVtbl, get_LastMsg) == 7 * POINTER, "the first property");
_Static_assert(offsetof(_CRepoterVtbl, put_PDFPath) == 30 * POINTER, "the last property");
_Static_assert(offsetof(_CRepoterVtbl, SetVars) == 31 * POINTER, "the first method");
_Static_assert(offsetof(_CRepoterVtbl, Challan_Customer) == 33 * POINTER, "the third method");
_Static_assert(offsetof(_CRepoterVtbl, QuotePrint) == 96 * POINTER, "after WS_TOPLIST");
_Static_assert(offsetof(_CRepoterVtbl, Apro_WsPrintPurRet) == 130 * POINTER, "the last entry");

_Static_assert(VT_BYREF == 0x4000 && VT_BSTR == 8 && VT_BOOL == 11 && VT_UI1 == 17,
               "VARTYPE codes");
_Static_assert(DISPID_PROPERTYPUT == -3 && DISPID_UNKNOWN == -1, "special dispatch identifiers");
_Static_assert((int)VANTOREL_STRING == (int)VT_BSTR && (int)VANTOREL_I2 == (int)VT_I2 &&
                   (int)VANTOREL_BOOL == (int)VT_BOOL && (int)VANTOREL_UI1 == (int)VT_UI1,
               "the C interface's value types are the automation codes");

int main(void) {
  if (FAILED(S_FALSE) || SUCCEEDED(E_FAIL) || E_FAIL != (HRESULT)0x80004005u) {
    fprintf(stderr, "status code macros are wrong\n");
    return 1;
  }
  if (!IsEqualGUID(&IID_IUnknown, &IID_IUnknown) || IsEqualGUID(&IID_IUnknown, &IID_IDispatch)) {
    fprintf(stderr, "IsEqualGUID is wrong\n");
    return 1;
  }
  puts("automation layout ok");
  return 0;
}
