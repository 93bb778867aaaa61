#include "component/binary_interface.h"

#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "com_test_support.h"
#include "component/interface.h"
#include "component/interface_list.h"
#include "engine/port.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"
#include "vantorel/crepoter_abi.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel {
namespace {

using testing::Bstr;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::OwnedVariant;
using testing::Ref;
using testing::TakeErrorInfo;

constexpr HRESULT kNotImplemented = static_cast<HRESULT>(0x80004001u);
constexpr HRESULT kPathFileAccess = static_cast<HRESULT>(0x800A004Bu);  // runtime error 75

// Fails every read of AppPath, so SetVars (which reads through the getters) fails too.
class FailingRepoter : public CRepoter {
 public:
  std::string get_AppPath() const override {
    throw Error(errnum::kPathFileAccess, "Vantorel.CRepoter", "AppPath is out of reach (₹)");
  }
};

// Tells when it is destroyed.
class TrackedRepoter : public CRepoter {
 public:
  explicit TrackedRepoter(bool* destroyed) : destroyed_(destroyed) {}
  ~TrackedRepoter() override { *destroyed_ = true; }

 private:
  bool* destroyed_;
};

// An engine that only remembers which templates were loaded and how they were output.
class RecordingEngine final : public engine::Engine {
 public:
  struct Observed {
    std::vector<std::string> loaded;
    std::vector<std::string> outputs;
  };

  std::shared_ptr<engine::ReportObject> CreateReport() override {
    return std::make_shared<Report>(observed_);
  }
  const Observed& observed() const { return *observed_; }

 private:
  class Report final : public engine::ReportObject,
                       public engine::EngineOptions,
                       public engine::PreviewOptions {
   public:
    explicit Report(std::shared_ptr<Observed> observed) : observed_(std::move(observed)) {}
    void LoadTemplate(const std::string& file) override { observed_->loaded.push_back(file); }
    std::shared_ptr<engine::EngineOptions> GetEngineOptions() override {
      return std::make_shared<Report>(observed_);
    }
    std::shared_ptr<engine::PreviewOptions> GetPreviewOptions() override {
      return std::make_shared<Report>(observed_);
    }
    std::shared_ptr<engine::Component> LocateComponent(const std::string&) override {
      return nullptr;
    }
    void SetTemplateVariable(const std::string&, const std::string&, const std::string&) override {}
    void OpenDesigner() override { observed_->outputs.push_back("OpenDesigner"); }
    void ShowPreview() override { observed_->outputs.push_back("ShowPreview"); }
    void PrepareReport(bool) override { observed_->outputs.push_back("PrepareReport"); }
    void PrintPrepared() override { observed_->outputs.push_back("PrintPrepared"); }
    std::shared_ptr<engine::PdfExporter> GetPdfExporter() override { return nullptr; }
    void SetEngineOption(int32_t) override {}
    void SetPreviewOptionA(bool) override {}
    void SetPreviewFeatures(int32_t) override {}
    void SetPreviewOptionB(bool) override {}
    void SetPreviewOptionC(bool) override {}

   private:
    std::shared_ptr<Observed> observed_;
  };

  std::shared_ptr<Observed> observed_ = std::make_shared<Observed>();
};

class BinaryInterfaceTest : public ::testing::Test {
 protected:
  void SetUp() override { SetErrorInfo(0, nullptr); }

  static Ref<_CRepoter> Make(std::unique_ptr<CRepoter> repoter = std::make_unique<CRepoter>()) {
    Ref<_CRepoter> object;
    EXPECT_EQ(CreateRepoterObject(std::move(repoter), IID__CRepoter, object.out()), S_OK);
    return object;
  }

  static Ref<IDispatch> Dispatch(const Ref<_CRepoter>& object) {
    Ref<IDispatch> dispatch;
    EXPECT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_IDispatch, dispatch.out()), S_OK);
    return dispatch;
  }

  // IDispatch::Invoke with "args" in parameter order (reversed here into rgvarg).
  static HRESULT Invoke(IDispatch* dispatch, DISPID id, WORD flags, std::vector<VARIANT> args,
                        VARIANT* result = nullptr, EXCEPINFO* info = nullptr,
                        UINT* arg_err = nullptr) {
    std::vector<VARIANT> reversed(args.rbegin(), args.rend());
    DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    return dispatch->lpVtbl->Invoke(dispatch, id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                                    result, info, arg_err);
  }

  testing::PlatformScope platform_;  // message boxes are recorded, not shown
};

VARIANT I2(SHORT value) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_I2;
  V_I2(&v) = value;
  return v;
}

VARIANT I4(LONG value) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_I4;
  V_I4(&v) = value;
  return v;
}

// A VT_BSTR that borrows "text"; the caller keeps it alive.
VARIANT Text(BSTR text) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_BSTR;
  V_BSTR(&v) = text;
  return v;
}

std::string ReadBstr(HRESULT (*get)(_CRepoter*, BSTR*), _CRepoter* object) {
  BSTR text = nullptr;
  EXPECT_EQ(get(object, &text), S_OK);
  std::string utf8 = BstrToUtf8(text);
  SysFreeString(text);
  return utf8;
}

TEST(Vtable, IsIDispatchThenTheEntriesInPublishedOrder) {
  EXPECT_EQ(sizeof(_CRepoterVtbl),
            (kDispatchEntryCount + InterfaceEntries().size()) * sizeof(void*));
  EXPECT_EQ(InterfaceEntries().size(), 124u);
  EXPECT_EQ(offsetof(_CRepoterVtbl, Invoke), 6 * sizeof(void*));
  EXPECT_EQ(offsetof(_CRepoterVtbl, get_LastMsg), 7 * sizeof(void*));
  EXPECT_EQ(offsetof(_CRepoterVtbl, put_PDFPath), 30 * sizeof(void*));
  EXPECT_EQ(offsetof(_CRepoterVtbl, SetVars), 31 * sizeof(void*));
  EXPECT_EQ(offsetof(_CRepoterVtbl, Apro_WsPrintPurRet), 130 * sizeof(void*));
}

// The C types of the binary interface, written out again here on purpose: a thunk with another
// signature than the published header would not match these.
template <VarType T>
struct CType;
template <>
struct CType<VarType::kI2> {
  using type = SHORT;
};
template <>
struct CType<VarType::kI4> {
  using type = LONG;
};
template <>
struct CType<VarType::kUI1> {
  using type = BYTE;
};
template <>
struct CType<VarType::kR8> {
  using type = DOUBLE;
};
template <>
struct CType<VarType::kDate> {
  using type = DATE;
};
template <>
struct CType<VarType::kString> {
  using type = BSTR;
};
template <>
struct CType<VarType::kBool> {
  using type = VARIANT_BOOL;
};
template <>
struct CType<VarType::kVariant> {
  using type = VARIANT;
};

template <typename Spec>
struct Arg;
template <VarType T>
struct Arg<ParamSpec<T, 0>> {
  using type = typename CType<T>::type;
  static type Make() { return type{}; }
};
template <VarType T>
struct Arg<ParamSpec<T, 1>> {
  using type = typename CType<T>::type*;
  static type Make() {
    static typename CType<T>::type value{};
    return &value;
  }
};
template <VarType T>
struct Arg<ParamSpec<T, 2>> {
  using type = typename CType<T>::type*;
  static type Make() { return nullptr; }  // omitted
};

// Calls every method entry by its position with zero arguments. A method that is not built yet
// names itself in its error, which shows the entry reached the right method.
class EveryMethodCaller {
 public:
  explicit EveryMethodCaller(_CRepoter* object) : object_(object) {}

  template <auto Getter, auto Setter, VarType T>
  void Property(DispId, const char*) {
    index_ += 2;
  }

  template <auto Member, typename... Specs>
  void Method(DispId, const char* name, Specs...) {
    using Entry = HRESULT (*)(_CRepoter*, typename Arg<Specs>::type...);
    const auto slots = reinterpret_cast<void (*const*)()>(object_->lpVtbl);
    const auto entry = reinterpret_cast<Entry>(slots[index_++]);
    ++called_;
    if (SUCCEEDED(entry(object_, Arg<Specs>::Make()...))) return;
    const auto info = TakeErrorInfo();
    if (info && info->description.find("not implemented yet") != std::string::npos) {
      if (info->description.find(name) == std::string::npos) {
        misrouted_.push_back(std::string(name) + " reached: " + info->description);
      }
    }
  }

  int called() const { return called_; }
  const std::vector<std::string>& misrouted() const { return misrouted_; }

 private:
  _CRepoter* object_;
  size_t index_ = kDispatchEntryCount;
  int called_ = 0;
  std::vector<std::string> misrouted_;
};

TEST_F(BinaryInterfaceTest, EveryMethodEntryReachesItsOwnMethod) {
  Ref<_CRepoter> object = Make();
  EveryMethodCaller caller(object.get());
  VisitInterface(caller);
  EXPECT_EQ(caller.called(), 100);
  EXPECT_THAT(caller.misrouted(), ElementsAre());
}

TEST_F(BinaryInterfaceTest, FreshPropertiesAreEmptyFalseAndZero) {
  Ref<_CRepoter> object = Make();
  const _CRepoterVtbl* vt = object->lpVtbl;
  EXPECT_EQ(ReadBstr(vt->get_LastMsg, object.get()), "");
  EXPECT_EQ(ReadBstr(vt->get_PDFPath, object.get()), "");
  VARIANT_BOOL flag = 5;
  EXPECT_EQ(vt->get_RptPDF(object.get(), &flag), S_OK);
  EXPECT_EQ(flag, VARIANT_FALSE);
  unsigned char firm = 5;
  EXPECT_EQ(vt->get_FirmID(object.get(), &firm), S_OK);
  EXPECT_EQ(firm, 0);
}

TEST_F(BinaryInterfaceTest, PropertiesRoundTripThroughTheVtable) {
  Ref<_CRepoter> object = Make();
  const _CRepoterVtbl* vt = object->lpVtbl;
  const auto path = Bstr(u"D:\\रिपोर्ट\\₹\\");
  EXPECT_EQ(vt->put_ReportPath(object.get(), path.get()), S_OK);
  EXPECT_EQ(ReadBstr(vt->get_ReportPath, object.get()), "D:\\रिपोर्ट\\₹\\");
  EXPECT_EQ(vt->put_DesigbeMode(object.get(), 1), S_OK);  // not the standard true: kept as given
  VARIANT_BOOL mode = 0;
  EXPECT_EQ(vt->get_DesigbeMode(object.get(), &mode), S_OK);
  EXPECT_EQ(mode, 1);
  EXPECT_EQ(vt->put_FirmID(object.get(), 200), S_OK);
  unsigned char firm = 0;
  EXPECT_EQ(vt->get_FirmID(object.get(), &firm), S_OK);
  EXPECT_EQ(firm, 200);
  EXPECT_EQ(vt->put_RptName(object.get(), nullptr), S_OK);  // a null BSTR is the empty text
  EXPECT_EQ(ReadBstr(vt->get_RptName, object.get()), "");
}

TEST_F(BinaryInterfaceTest, NullResultPointerFailsWithErrorInfo) {
  Ref<_CRepoter> object = Make();
  EXPECT_EQ(object->lpVtbl->get_LastMsg(object.get(), nullptr), E_POINTER);
  const auto info = TakeErrorInfo();
  ASSERT_TRUE(info.has_value());
  EXPECT_THAT(info->description, HasSubstr("LastMsg"));
}

TEST_F(BinaryInterfaceTest, NullByReferenceArgumentFailsNamingIt) {
  Ref<_CRepoter> object = Make();
  const auto rv = Bstr(u"R");
  BSTR rv_text = rv.get();
  double amount = 1;
  EXPECT_EQ(object->lpVtbl->w_jobinvPrint(object.get(), nullptr, &rv_text, &amount), E_POINTER);
  EXPECT_THAT(TakeErrorInfo()->description, HasSubstr("ma_id of w_jobinvPrint"));
}

TEST_F(BinaryInterfaceTest, ByReferenceArgumentsAreNotWrittenBack) {
  Ref<_CRepoter> object = Make();
  SHORT id = 42;
  const auto rv = Bstr(u"R");
  BSTR rv_text = rv.get();
  double amount = 1050.5;
  VARIANT_BOOL dn = VARIANT_TRUE;
  object->lpVtbl->Apro_WsPrintPurRet(object.get(), &id, &amount, &dn, &rv_text);
  EXPECT_EQ(id, 42);
  EXPECT_EQ(rv_text, rv.get());
  EXPECT_EQ(BstrView(rv_text), u"R");
  EXPECT_EQ(amount, 1050.5);
  EXPECT_EQ(dn, VARIANT_TRUE);
}

TEST_F(BinaryInterfaceTest, FailedCallLeavesErrorInfoForTheThread) {
  Ref<_CRepoter> object = Make(std::make_unique<FailingRepoter>());
  EXPECT_EQ(object->lpVtbl->SetVars(object.get()), kPathFileAccess);
  const auto info = TakeErrorInfo();
  ASSERT_TRUE(info.has_value());
  EXPECT_TRUE(IsEqualGUID(info->guid, IID__CRepoter));
  EXPECT_EQ(info->source, "Vantorel.CRepoter");
  EXPECT_EQ(info->description, "AppPath is out of reach (₹)");
}

TEST_F(BinaryInterfaceTest, SuccessfulCallClearsOldErrorInfo) {
  Ref<_CRepoter> object = Make();
  SetThreadErrorInfo(IID__CRepoter, "old", "old");
  EXPECT_EQ(object->lpVtbl->put_FirmID(object.get(), 1), S_OK);
  EXPECT_FALSE(TakeErrorInfo().has_value());
}

TEST_F(BinaryInterfaceTest, SupportsErrorInfoForItsOwnInterface) {
  Ref<_CRepoter> object = Make();
  Ref<ISupportErrorInfo> support;
  ASSERT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_ISupportErrorInfo, support.out()),
            S_OK);
  EXPECT_EQ(support->lpVtbl->InterfaceSupportsErrorInfo(support.get(), IID__CRepoter), S_OK);
  EXPECT_EQ(support->lpVtbl->InterfaceSupportsErrorInfo(support.get(), IID_IClassFactory), S_FALSE);
}

TEST_F(BinaryInterfaceTest, EarlyBoundSuperReportPrintsThroughTheEngine) {
  const testing::TempDir dir;
  const std::string folder = dir.folder();
  dir.Write("probe.fr3", "template");
  auto engine = std::make_shared<RecordingEngine>();
  Ref<_CRepoter> object = Make(std::make_unique<CRepoter>(engine));
  const auto path = Bstr(folder);
  ASSERT_EQ(object->lpVtbl->put_ReportPath(object.get(), path.get()), S_OK);
  ASSERT_EQ(object->lpVtbl->SetVars(object.get()), S_OK);
  const auto name = Bstr(u"probe");
  EXPECT_EQ(object->lpVtbl->SuperReport(object.get(), name.get()), S_OK);
  EXPECT_THAT(engine->observed().loaded, ElementsAre(folder + "probe.fr3"));
  EXPECT_THAT(engine->observed().outputs, ElementsAre("ShowPreview"));
  EXPECT_EQ(object->lpVtbl->SuperReport(object.get(), nullptr), S_OK);  // empty: nothing
  EXPECT_EQ(engine->observed().loaded.size(), 1u);
}

TEST_F(BinaryInterfaceTest, QueryInterfaceKeepsOneIdentity) {
  Ref<_CRepoter> object = Make();
  Ref<IUnknown> unknown;
  Ref<IDispatch> dispatch;
  Ref<ISupportErrorInfo> support;
  ASSERT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_IUnknown, unknown.out()), S_OK);
  ASSERT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_IDispatch, dispatch.out()), S_OK);
  ASSERT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_ISupportErrorInfo, support.out()),
            S_OK);
  EXPECT_EQ(static_cast<void*>(unknown.get()), static_cast<void*>(object.get()));
  EXPECT_EQ(static_cast<void*>(dispatch.get()), static_cast<void*>(object.get()));
  EXPECT_NE(static_cast<void*>(support.get()), static_cast<void*>(object.get()));
  Ref<IUnknown> again;
  ASSERT_EQ(support->lpVtbl->QueryInterface(support.get(), IID_IUnknown, again.out()), S_OK);
  EXPECT_EQ(again.get(), unknown.get());
}

TEST_F(BinaryInterfaceTest, QueryInterfaceRefusesOtherInterfaces) {
  Ref<_CRepoter> object = Make();
  void* out = &out;
  EXPECT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_IClassFactory, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(object->lpVtbl->QueryInterface(object.get(), IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(BinaryInterfaceTest, LastReleaseDestroysTheComponent) {
  bool destroyed = false;
  _CRepoter* object = nullptr;
  ASSERT_EQ(CreateRepoterObject(std::make_unique<TrackedRepoter>(&destroyed), IID__CRepoter,
                                reinterpret_cast<void**>(&object)),
            S_OK);
  EXPECT_TRUE(ModuleInUse());
  EXPECT_EQ(object->lpVtbl->AddRef(object), 2u);
  EXPECT_EQ(object->lpVtbl->Release(object), 1u);
  EXPECT_FALSE(destroyed);
  EXPECT_EQ(object->lpVtbl->Release(object), 0u);
  EXPECT_TRUE(destroyed);
  EXPECT_FALSE(ModuleInUse());
}

TEST_F(BinaryInterfaceTest, ReferenceCountingIsThreadSafe) {
  bool destroyed = false;
  _CRepoter* object = nullptr;
  ASSERT_EQ(CreateRepoterObject(std::make_unique<TrackedRepoter>(&destroyed), IID_IUnknown,
                                reinterpret_cast<void**>(&object)),
            S_OK);
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([object] {
      for (int i = 0; i < 20000; ++i) {
        object->lpVtbl->AddRef(object);
        object->lpVtbl->Release(object);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(destroyed);
  EXPECT_EQ(object->lpVtbl->Release(object), 0u);
  EXPECT_TRUE(destroyed);
}

TEST_F(BinaryInterfaceTest, HasNoTypeInformation) {
  Ref<_CRepoter> object = Make();
  UINT count = 9;
  EXPECT_EQ(object->lpVtbl->GetTypeInfoCount(object.get(), &count), S_OK);
  EXPECT_EQ(count, 0u);
  ITypeInfo* info = reinterpret_cast<ITypeInfo*>(&count);
  EXPECT_EQ(object->lpVtbl->GetTypeInfo(object.get(), 0, LOCALE_USER_DEFAULT, &info), E_NOTIMPL);
  EXPECT_EQ(info, nullptr);
}

TEST_F(BinaryInterfaceTest, GetIDsOfNamesIgnoresCase) {
  Ref<_CRepoter> object = Make();
  struct Case {
    const char16_t* name;
    DISPID id;
  };
  const Case cases[] = {{u"challan_customer", 0x60030003}, {u"QUOTEPRINT", 0x60030044},
                        {u"lastmsg", 0x40030000},          {u"PdfPath", 0x40030012},
                        {u"SetVars", 0x60030000},          {u"apro_wsprintpurret", 0x60030066}};
  for (const Case& c : cases) {
    OLECHAR* names[] = {const_cast<OLECHAR*>(c.name)};
    DISPID id = 0;
    EXPECT_EQ(
        object->lpVtbl->GetIDsOfNames(object.get(), IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id),
        S_OK);
    EXPECT_EQ(id, c.id);
  }
}

TEST_F(BinaryInterfaceTest, GetIDsOfNamesNumbersParameters) {
  Ref<_CRepoter> object = Make();
  OLECHAR* names[] = {const_cast<OLECHAR*>(u"w_jobinvPrint"), const_cast<OLECHAR*>(u"AMT"),
                      const_cast<OLECHAR*>(u"ma_id")};
  DISPID ids[3] = {};
  EXPECT_EQ(object->lpVtbl->GetIDsOfNames(object.get(), IID_NULL, names, 3, 0, ids), S_OK);
  EXPECT_THAT(ids, ElementsAre(0x60030027, 2, 0));
}

TEST_F(BinaryInterfaceTest, GetIDsOfNamesMarksUnknownNames) {
  Ref<_CRepoter> object = Make();
  OLECHAR* names[] = {const_cast<OLECHAR*>(u"ReceiptPrint"), const_cast<OLECHAR*>(u"Nope")};
  DISPID ids[2] = {};
  EXPECT_EQ(object->lpVtbl->GetIDsOfNames(object.get(), IID_NULL, names, 2, 0, ids),
            DISP_E_UNKNOWNNAME);
  EXPECT_THAT(ids, ElementsAre(0x60030004, DISPID_UNKNOWN));
  OLECHAR* unknown[] = {const_cast<OLECHAR*>(u"PrintEverything"), const_cast<OLECHAR*>(u"Id")};
  EXPECT_EQ(object->lpVtbl->GetIDsOfNames(object.get(), IID_NULL, unknown, 2, 0, ids),
            DISP_E_UNKNOWNNAME);
  EXPECT_THAT(ids, ElementsAre(DISPID_UNKNOWN, DISPID_UNKNOWN));
  EXPECT_EQ(object->lpVtbl->GetIDsOfNames(object.get(), IID_IDispatch, names, 1, 0, ids),
            DISP_E_UNKNOWNINTERFACE);
}

TEST_F(BinaryInterfaceTest, UnusedDispatchIdentifiersAreNotMembers) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  for (const DISPID id : {0x60030002, 0x60030042, 0x60030043, 0x40030001, 0x60030067}) {
    EXPECT_EQ(Invoke(dispatch.get(), id, DISPATCH_METHOD, {}), DISP_E_MEMBERNOTFOUND) << id;
  }
}

TEST_F(BinaryInterfaceTest, InvokePutsWithTheNamedPropertyPutArgumentAndGets) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  const auto path = Bstr(u"/srv/रिपोर्ट/");
  VARIANT value = Text(path.get());
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS params{&value, &named, 1, 1};
  ASSERT_EQ(dispatch->lpVtbl->Invoke(dispatch.get(), 0x40030008, IID_NULL, 0, DISPATCH_PROPERTYPUT,
                                     &params, nullptr, nullptr, nullptr),
            S_OK);
  OwnedVariant result;
  ASSERT_EQ(Invoke(dispatch.get(), 0x40030008, DISPATCH_PROPERTYGET, {}, result.get()), S_OK);
  EXPECT_EQ(V_VT(result.get()), VT_BSTR);
  EXPECT_EQ(BstrToUtf8(V_BSTR(result.get())), "/srv/रिपोर्ट/");

  // Numbers convert as automation converts them: 3.5 rounds to even.
  VARIANT firm;
  VariantInit(&firm);
  V_VT(&firm) = VT_R8;
  V_R8(&firm) = 3.5;
  DISPPARAMS firm_params{&firm, &named, 1, 1};
  ASSERT_EQ(dispatch->lpVtbl->Invoke(dispatch.get(), 0x4003000F, IID_NULL, 0, DISPATCH_PROPERTYPUT,
                                     &firm_params, nullptr, nullptr, nullptr),
            S_OK);
  OwnedVariant firm_result;
  ASSERT_EQ(Invoke(dispatch.get(), 0x4003000F, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {},
                   firm_result.get()),
            S_OK);
  EXPECT_EQ(V_VT(firm_result.get()), VT_UI1);
  EXPECT_EQ(V_UI1(firm_result.get()), 4);

  OwnedVariant export_result;
  ASSERT_EQ(Invoke(dispatch.get(), 0x4003000A, DISPATCH_PROPERTYGET, {}, export_result.get()),
            S_OK);
  EXPECT_EQ(V_VT(export_result.get()), VT_BOOL);
  EXPECT_EQ(V_BOOL(export_result.get()), VARIANT_FALSE);
}

TEST_F(BinaryInterfaceTest, InvokeReadsByReferenceVariants) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  BSTR name = SysAllocString(u"challancus");
  VARIANT by_ref;
  VariantInit(&by_ref);
  V_VT(&by_ref) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&by_ref) = &name;
  ASSERT_EQ(Invoke(dispatch.get(), 0x40030009, DISPATCH_PROPERTYPUT, {by_ref}), S_OK);
  EXPECT_EQ(ReadBstr(object->lpVtbl->get_RptName, object.get()), "challancus");
  EXPECT_EQ(BstrView(name), u"challancus");  // not written back

  VARIANT inner = I4(7);
  VARIANT outer;
  VariantInit(&outer);
  V_VT(&outer) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&outer) = &inner;
  ASSERT_EQ(Invoke(dispatch.get(), 0x4003000F, DISPATCH_PROPERTYPUT, {outer}), S_OK);
  unsigned char firm = 0;
  object->lpVtbl->get_FirmID(object.get(), &firm);
  EXPECT_EQ(firm, 7);
  SysFreeString(name);
}

TEST_F(BinaryInterfaceTest, InvokeChecksTheArgumentCount) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  EXPECT_EQ(Invoke(dispatch.get(), 0x60030004, DISPATCH_METHOD, {}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Invoke(dispatch.get(), 0x60030004, DISPATCH_METHOD, {I2(1), I2(2)}),
            DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(Invoke(dispatch.get(), 0x40030000, DISPATCH_PROPERTYGET, {I2(1)}),
            DISP_E_BADPARAMCOUNT);
}

TEST_F(BinaryInterfaceTest, InvokeReportsTheArgumentOfATypeMismatch) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  const auto many = Bstr(u"many");
  UINT arg_err = 99;
  // VehSticker(ID, NoofStickers): rgvarg holds NoofStickers first.
  EXPECT_EQ(Invoke(dispatch.get(), 0x60030017, DISPATCH_METHOD, {I2(5), Text(many.get())}, nullptr,
                   nullptr, &arg_err),
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(arg_err, 0u);
  EXPECT_EQ(Invoke(dispatch.get(), 0x60030017, DISPATCH_METHOD, {Text(many.get()), I2(5)}, nullptr,
                   nullptr, &arg_err),
            DISP_E_TYPEMISMATCH);
  EXPECT_EQ(arg_err, 1u);
}

TEST_F(BinaryInterfaceTest, InvokeReportsOverflow) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  UINT arg_err = 99;
  EXPECT_EQ(Invoke(dispatch.get(), 0x60030017, DISPATCH_METHOD, {I2(5), I4(300)}, nullptr, nullptr,
                   &arg_err),
            DISP_E_OVERFLOW);
  EXPECT_EQ(arg_err, 0u);
  EXPECT_EQ(
      Invoke(dispatch.get(), 0x60030004, DISPATCH_METHOD, {I4(40000)}, nullptr, nullptr, &arg_err),
      DISP_E_OVERFLOW);
  EXPECT_EQ(arg_err, 0u);
}

TEST_F(BinaryInterfaceTest, InvokeRefusesAnExplicitlyMissingRequiredArgument) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  VARIANT missing;
  VariantInit(&missing);
  V_VT(&missing) = VT_ERROR;
  V_ERROR(&missing) = DISP_E_PARAMNOTFOUND;
  UINT arg_err = 99;
  EXPECT_EQ(
      Invoke(dispatch.get(), 0x60030004, DISPATCH_METHOD, {missing}, nullptr, nullptr, &arg_err),
      DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(arg_err, 0u);
}

TEST_F(BinaryInterfaceTest, InvokeBindsNamedArguments) {
  const testing::TempDir dir;
  const std::string folder = dir.folder();
  dir.Write("probe.fr3", "template");
  auto engine = std::make_shared<RecordingEngine>();
  Ref<_CRepoter> object = Make(std::make_unique<CRepoter>(engine));
  Ref<IDispatch> dispatch = Dispatch(object);
  const auto path = Bstr(folder);
  ASSERT_EQ(object->lpVtbl->put_ReportPath(object.get(), path.get()), S_OK);
  ASSERT_EQ(object->lpVtbl->SetVars(object.get()), S_OK);

  const auto name = Bstr(u"probe");
  VARIANT arg = Text(name.get());
  DISPID position = 0;  // RptName
  DISPPARAMS params{&arg, &position, 1, 1};
  EXPECT_EQ(dispatch->lpVtbl->Invoke(dispatch.get(), 0x60030001, IID_NULL, 0, DISPATCH_METHOD,
                                     &params, nullptr, nullptr, nullptr),
            S_OK);
  EXPECT_THAT(engine->observed().loaded, ElementsAre(folder + "probe.fr3"));

  DISPID wrong = 1;
  DISPPARAMS wrong_params{&arg, &wrong, 1, 1};
  UINT arg_err = 99;
  EXPECT_EQ(dispatch->lpVtbl->Invoke(dispatch.get(), 0x60030001, IID_NULL, 0, DISPATCH_METHOD,
                                     &wrong_params, nullptr, nullptr, &arg_err),
            DISP_E_PARAMNOTFOUND);
  EXPECT_EQ(arg_err, 0u);
  EXPECT_EQ(dispatch->lpVtbl->Invoke(dispatch.get(), 0x40030000, IID_NULL, 0, DISPATCH_PROPERTYGET,
                                     &params, nullptr, nullptr, nullptr),
            DISP_E_NONAMEDARGS);
}

TEST_F(BinaryInterfaceTest, InvokeTurnsAMethodFailureIntoAnException) {
  Ref<_CRepoter> object = Make(std::make_unique<FailingRepoter>());
  Ref<IDispatch> dispatch = Dispatch(object);
  EXCEPINFO info{};
  EXPECT_EQ(Invoke(dispatch.get(), 0x60030000, DISPATCH_METHOD, {}, nullptr, &info),
            DISP_E_EXCEPTION);
  EXPECT_EQ(info.scode, kPathFileAccess);
  EXPECT_EQ(BstrToUtf8(info.bstrSource), "Vantorel.CRepoter");
  EXPECT_EQ(BstrToUtf8(info.bstrDescription), "AppPath is out of reach (₹)");
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  SysFreeString(info.bstrHelpFile);
  EXPECT_EQ(TakeErrorInfo()->description, "AppPath is out of reach (₹)");

  // Without an EXCEPINFO the call returns the failure's own status.
  EXPECT_EQ(Invoke(dispatch.get(), 0x40030010, DISPATCH_PROPERTYGET, {}), kPathFileAccess);
}

TEST_F(BinaryInterfaceTest, InvokeReachesAMethodNotBuiltYetByIdentifier) {
  Ref<_CRepoter> object = Make();
  Ref<IDispatch> dispatch = Dispatch(object);
  const auto logo = Bstr(u"");
  EXCEPINFO info{};
  VARIANT dn;
  VariantInit(&dn);
  V_VT(&dn) = VT_BOOL;
  V_BOOL(&dn) = VARIANT_FALSE;
  VARIANT amount;
  VariantInit(&amount);
  V_VT(&amount) = VT_R8;
  V_R8(&amount) = 0;
  const HRESULT result = Invoke(dispatch.get(), 0x60030066, DISPATCH_METHOD,
                                {I2(0), amount, dn, Text(logo.get())}, nullptr, &info);
  if (result == DISP_E_EXCEPTION) {
    EXPECT_EQ(info.scode, kNotImplemented);
    EXPECT_THAT(BstrToUtf8(info.bstrDescription), HasSubstr("Apro_WsPrintPurRet"));
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrDescription);
  } else {
    EXPECT_EQ(result, S_OK);  // once built, id 0 is guarded and does nothing
  }
}

}  // namespace
}  // namespace vantorel
