// What the binary interface needs at its edge: text between UTF-8 (inside) and the UTF-16 of
// BSTRs (outside), automation VARIANTs to and from vantorel::Variant, and the thread's error info.
//
// Thread-safety: pure functions, except the error info, which is the calling thread's own.
#ifndef VANTOREL_COMPONENT_AUTOMATION_SUPPORT_H_
#define VANTOREL_COMPONENT_AUTOMATION_SUPPORT_H_

#include <memory>
#include <string>
#include <string_view>

#include "vantorel/automation.h"
#include "vantorel/variant.h"

namespace vantorel {

// The characters of "text" (NULL is empty).
std::u16string_view BstrView(BSTR text);
std::string BstrToUtf8(BSTR text);
// The characters up to the terminating NUL of "text" (NULL is empty).
std::string OleStrToUtf8(const OLECHAR* text);
// A new BSTR the caller frees with SysFreeString; throws std::bad_alloc when memory runs out.
BSTR NewBstr(std::string_view utf8);

// Frees a BSTR when it goes out of scope.
struct BstrDeleter {
  void operator()(OLECHAR* text) const { SysFreeString(text); }
};
using UniqueBstr = std::unique_ptr<OLECHAR, BstrDeleter>;

// Why a VARIANT has no vantorel::Variant: a type automation defines but the interface does not
// take (an object, an array), or a type code that means nothing.
enum class VariantProblem { kNone, kTypeMismatch, kBadVarType, kOverflow };

// "value" as a vantorel::Variant. By-reference variants are read through their pointer (once);
// VT_ERROR stays an error value, so DISP_E_PARAMNOTFOUND reads as Variant::Missing(). Numeric
// types the interface does not use are widened (VT_R4 to R8, VT_I1 to I2, VT_UI2 and VT_INT to
// I4, VT_UI4, VT_UINT and VT_UI8 to I8; currency and decimal to R8). "problem" (optional) tells
// why the result is empty when it cannot be read.
Variant FromVariant(const VARIANT& value, VariantProblem* problem);

// "value" written into "out" (which must hold nothing that needs freeing): VT_EMPTY, VT_NULL,
// VT_ERROR, VT_I2, VT_I4, VT_I8, VT_UI1, VT_R8, VT_DATE, VT_BSTR (new) or VT_BOOL. Throws
// std::bad_alloc.
void ToVariant(const Variant& value, VARIANT* out);

// Replaces the calling thread's error info with a new one for interface "iid".
void SetThreadErrorInfo(const IID& iid, std::string_view source, std::string_view description);

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_AUTOMATION_SUPPORT_H_
