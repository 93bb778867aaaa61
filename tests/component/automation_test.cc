#include <cstddef>
#include <cstring>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "com_test_support.h"
#include "component/automation_support.h"
#include "vantorel/automation.h"
#include "vantorel/crepoter_abi.h"

namespace vantorel {
namespace {

using testing::Bstr;
using ::testing::HasSubstr;
using testing::OwnedVariant;
using testing::TakeErrorInfo;

constexpr bool k64 = sizeof(void*) == 8;

// The layout the automation standard fixes; a host compiled against it reads these offsets.
static_assert(sizeof(HRESULT) == 4 && sizeof(LONG) == 4 && sizeof(ULONG) == 4);
static_assert(sizeof(OLECHAR) == 2 && sizeof(VARIANT_BOOL) == 2 && sizeof(VARTYPE) == 2);
static_assert(sizeof(DATE) == 8 && sizeof(CY) == 8 && sizeof(DECIMAL) == 16);
static_assert(sizeof(GUID) == 16);
static_assert(sizeof(VARIANT) == (k64 ? 24 : 16));
static_assert(offsetof(VARIANT, n1.n2.n3) == 8);
static_assert(offsetof(DECIMAL, Hi32) == 4 && offsetof(DECIMAL, u2) == 8);
static_assert(sizeof(DISPPARAMS) == (k64 ? 24 : 16));
static_assert(offsetof(DISPPARAMS, cArgs) == 2 * sizeof(void*));
static_assert(sizeof(EXCEPINFO) == (k64 ? 64 : 32));
static_assert(offsetof(EXCEPINFO, scode) == (k64 ? 56 : 28));

TEST(Bstr, HasByteLengthPrefixAndTerminator) {
  const UniqueBstr text = Bstr(u"abc");
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(SysStringLen(text.get()), 3u);
  EXPECT_EQ(SysStringByteLen(text.get()), 6u);
  uint32_t prefix = 0;
  std::memcpy(&prefix, reinterpret_cast<const char*>(text.get()) - 4, 4);
  EXPECT_EQ(prefix, 6u);
  EXPECT_EQ(text.get()[3], 0);
}

TEST(Bstr, NullIsTheEmptyString) {
  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  EXPECT_EQ(SysStringByteLen(nullptr), 0u);
  SysFreeString(nullptr);
  EXPECT_EQ(BstrToUtf8(nullptr), "");
}

TEST(Bstr, KeepsEmbeddedNulAndZeroFillsWithoutSource) {
  const char16_t with_nul[] = {u'a', 0, u'b'};
  const UniqueBstr text(SysAllocStringLen(with_nul, 3));
  EXPECT_EQ(SysStringLen(text.get()), 3u);
  EXPECT_EQ(BstrView(text.get()), std::u16string_view(with_nul, 3));
  const UniqueBstr blank(SysAllocStringLen(nullptr, 2));
  EXPECT_EQ(BstrView(blank.get()), std::u16string(2, u'\0'));
}

TEST(Bstr, RoundTripsDevanagariAndTheRupeeSign) {
  const std::string utf8 = "₹ १,०५,०००.५० — नमस्ते";
  const UniqueBstr text = Bstr(utf8);
  EXPECT_EQ(BstrView(text.get()), u"₹ १,०५,०००.५० — नमस्ते");
  EXPECT_EQ(BstrToUtf8(text.get()), utf8);
}

TEST(Variant, ClearFreesTheStringAndEmpties) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = SysAllocString(u"x");
  EXPECT_EQ(VariantClear(&value), S_OK);
  EXPECT_EQ(V_VT(&value), VT_EMPTY);
}

TEST(Variant, CopyDuplicatesStringsAndKeepsReferencePointers) {
  OwnedVariant source, copy;
  V_VT(source.get()) = VT_BSTR;
  V_BSTR(source.get()) = SysAllocString(u"रिपोर्ट");
  ASSERT_EQ(VariantCopy(copy.get(), source.get()), S_OK);
  EXPECT_EQ(V_VT(copy.get()), VT_BSTR);
  EXPECT_NE(V_BSTR(copy.get()), V_BSTR(source.get()));
  EXPECT_EQ(BstrView(V_BSTR(copy.get())), u"रिपोर्ट");

  SHORT number = 7;
  OwnedVariant by_ref, by_ref_copy;
  V_VT(by_ref.get()) = VT_BYREF | VT_I2;
  V_I2REF(by_ref.get()) = &number;
  ASSERT_EQ(VariantCopy(by_ref_copy.get(), by_ref.get()), S_OK);
  EXPECT_EQ(V_I2REF(by_ref_copy.get()), &number);
}

TEST(Variant, ArraysAreNotSupported) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_ARRAY | VT_I2;
  EXPECT_EQ(VariantClear(&value), DISP_E_BADVARTYPE);
}

TEST(Variant, FromVariantReadsEveryTypeTheInterfaceCanTake) {
  SHORT number = -12;
  BSTR text = SysAllocString(u"नमस्ते");
  VARIANT inner;
  VariantInit(&inner);
  V_VT(&inner) = VT_R8;
  V_R8(&inner) = 2.5;

  VARIANT v;
  VariantInit(&v);
  const auto check = [&](const Variant& expected) {
    VariantProblem problem;
    EXPECT_EQ(FromVariant(v, &problem), expected) << "vt " << V_VT(&v);
    EXPECT_EQ(problem, VariantProblem::kNone);
  };
  V_VT(&v) = VT_EMPTY;
  check(Variant());
  V_VT(&v) = VT_NULL;
  check(Variant::Null());
  V_VT(&v) = VT_I2;
  V_I2(&v) = -5;
  check(Variant::I2(-5));
  V_VT(&v) = VT_I4;
  V_I4(&v) = 70000;
  check(Variant::I4(70000));
  V_VT(&v) = VT_UI1;
  V_UI1(&v) = 200;
  check(Variant::UI1(200));
  V_VT(&v) = VT_R4;
  V_R4(&v) = 1.5f;
  check(Variant::R8(1.5));
  V_VT(&v) = VT_DATE;
  V_DATE(&v) = 45382.0;
  check(Variant::FromDate(Date{45382.0}));
  V_VT(&v) = VT_BOOL;
  V_BOOL(&v) = VARIANT_TRUE;
  check(Variant::Bool(-1));
  V_VT(&v) = VT_BSTR;
  V_BSTR(&v) = text;
  check(Variant::String("नमस्ते"));
  V_VT(&v) = VT_ERROR;
  V_ERROR(&v) = DISP_E_PARAMNOTFOUND;
  check(Variant::Missing());
  V_VT(&v) = VT_CY;
  V_CY(&v).int64 = 1234567;  // 123.4567
  check(Variant::R8(123.4567));
  V_VT(&v) = VT_BYREF | VT_I2;
  V_I2REF(&v) = &number;
  check(Variant::I2(-12));
  V_VT(&v) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&v) = &inner;
  check(Variant::R8(2.5));
  V_VT(&v) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&v) = &text;
  check(Variant::String("नमस्ते"));

  VARIANT decimal;
  VariantInit(&decimal);
  V_DECIMAL(&decimal).u.s.scale = 2;
  V_DECIMAL(&decimal).u.s.sign = DECIMAL_NEG;
  V_DECIMAL(&decimal).u2.Lo64 = 10550;
  V_VT(&decimal) = VT_DECIMAL;  // the type code shares its place with wReserved
  EXPECT_EQ(FromVariant(decimal, nullptr), Variant::R8(-105.5));
  SysFreeString(text);
}

TEST(Variant, FromVariantTellsWhyItCannotRead) {
  struct Case {
    VARTYPE type;
    VariantProblem problem;
  };
  const Case cases[] = {
      {VT_DISPATCH, VariantProblem::kTypeMismatch},
      {VT_ARRAY | VT_I2, VariantProblem::kTypeMismatch},
      {VT_UI8, VariantProblem::kOverflow},
      {0x7F, VariantProblem::kBadVarType},
      {VT_VARIANT, VariantProblem::kBadVarType},  // only by reference
  };
  for (const Case& c : cases) {
    VARIANT v;
    VariantInit(&v);
    V_VT(&v) = c.type;
    V_UI8(&v) = ~0ull;
    if (c.type == VT_DISPATCH) V_DISPATCH(&v) = nullptr;
    VariantProblem problem;
    EXPECT_EQ(FromVariant(v, &problem), Variant()) << c.type;
    EXPECT_EQ(problem, c.problem) << c.type;
  }
}

TEST(Variant, ToVariantWritesTheAutomationTypes) {
  OwnedVariant out;
  ToVariant(Variant::String("₹"), out.get());
  EXPECT_EQ(V_VT(out.get()), VT_BSTR);
  EXPECT_EQ(BstrView(V_BSTR(out.get())), u"₹");
  VariantClear(out.get());
  ToVariant(Variant::Bool(-1), out.get());
  EXPECT_EQ(V_VT(out.get()), VT_BOOL);
  EXPECT_EQ(V_BOOL(out.get()), VARIANT_TRUE);
  ToVariant(Variant::UI1(9), out.get());
  EXPECT_EQ(V_VT(out.get()), VT_UI1);
  EXPECT_EQ(V_UI1(out.get()), 9);
  ToVariant(Variant::FromDate(Date{1.25}), out.get());
  EXPECT_EQ(V_VT(out.get()), VT_DATE);
  EXPECT_EQ(V_DATE(out.get()), 1.25);
}

TEST(ErrorInfo, IsTakenOnceFromTheThread) {
  SetThreadErrorInfo(IID__CRepoter, "Vantorel.CRepoter", "Amount ₹ is wrong");
  const auto info = TakeErrorInfo();
  ASSERT_TRUE(info.has_value());
  EXPECT_TRUE(IsEqualGUID(info->guid, IID__CRepoter));
  EXPECT_EQ(info->source, "Vantorel.CRepoter");
  EXPECT_EQ(info->description, "Amount ₹ is wrong");
  IErrorInfo* none = reinterpret_cast<IErrorInfo*>(1);
  EXPECT_EQ(GetErrorInfo(0, &none), S_FALSE);
  EXPECT_EQ(none, nullptr);
}

TEST(ErrorInfo, BelongsToTheThreadThatSetIt) {
  SetThreadErrorInfo(IID__CRepoter, "here", "main thread");
  bool other_has_one = true;
  std::thread([&] { other_has_one = TakeErrorInfo().has_value(); }).join();
  EXPECT_FALSE(other_has_one);
  EXPECT_THAT(TakeErrorInfo()->description, HasSubstr("main thread"));
}

TEST(ErrorInfo, SetNullClears) {
  SetThreadErrorInfo(IID__CRepoter, "a", "b");
  EXPECT_EQ(SetErrorInfo(0, nullptr), S_OK);
  EXPECT_FALSE(TakeErrorInfo().has_value());
}

TEST(ErrorInfo, AnswersQueryInterfaceForItsInterfaces) {
  SetThreadErrorInfo(IID__CRepoter, "a", "b");
  testing::Ref<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.put()), S_OK);
  testing::Ref<IUnknown> unknown;
  EXPECT_EQ(info->lpVtbl->QueryInterface(info.get(), IID_IUnknown, unknown.out()), S_OK);
  testing::Ref<IUnknown> dispatch;
  EXPECT_EQ(info->lpVtbl->QueryInterface(info.get(), IID_IDispatch, dispatch.out()), E_NOINTERFACE);
  EXPECT_FALSE(dispatch);
}

}  // namespace
}  // namespace vantorel
