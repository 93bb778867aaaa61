#include <stdlib.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "com_test_support.h"
#include "component/binary_interface.h"
#include "component/registration.h"
#include "support/test_support.h"
#include "vantorel/crepoter_abi.h"

namespace vantorel {
namespace {

using testing::Bstr;
using ::testing::HasSubstr;
using testing::Ref;
using testing::TakeErrorInfo;

Ref<IClassFactory> Factory() {
  Ref<IClassFactory> factory;
  EXPECT_EQ(DllGetClassObject(CLSID_CRepoter, IID_IClassFactory, factory.out()), S_OK);
  return factory;
}

TEST(ClassFactory, IsHandedOutOnlyForOurClass) {
  void* out = &out;
  EXPECT_EQ(DllGetClassObject(IID_IDispatch, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(DllGetClassObject(CLSID_CRepoter, IID_IDispatch, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(DllGetClassObject(CLSID_CRepoter, IID_IClassFactory, nullptr), E_POINTER);
  Ref<IUnknown> unknown;
  EXPECT_EQ(DllGetClassObject(CLSID_CRepoter, IID_IUnknown, unknown.out()), S_OK);
}

TEST(ClassFactory, CreatesWorkingInstances) {
  Ref<IClassFactory> factory = Factory();
  Ref<_CRepoter> object;
  ASSERT_EQ(factory->lpVtbl->CreateInstance(factory.get(), nullptr, IID__CRepoter, object.out()),
            S_OK);
  const auto name = Bstr(u"challancus");
  EXPECT_EQ(object->lpVtbl->put_RptName(object.get(), name.get()), S_OK);
  BSTR back = nullptr;
  EXPECT_EQ(object->lpVtbl->get_RptName(object.get(), &back), S_OK);
  EXPECT_EQ(BstrView(back), u"challancus");
  SysFreeString(back);
  Ref<_CRepoter> other;
  ASSERT_EQ(factory->lpVtbl->CreateInstance(factory.get(), nullptr, IID_IDispatch, other.out()),
            S_OK);
  EXPECT_NE(other.get(), object.get());
}

TEST(ClassFactory, RefusesAggregationAndOtherInterfaces) {
  Ref<IClassFactory> factory = Factory();
  IUnknown* outer = reinterpret_cast<IUnknown*>(factory.get());
  void* out = &out;
  EXPECT_EQ(factory->lpVtbl->CreateInstance(factory.get(), outer, IID_IUnknown, &out),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(factory->lpVtbl->CreateInstance(factory.get(), nullptr, IID_IClassFactory, &out),
            E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
}

TEST(ClassFactory, CanUnloadOnlyWhenNothingIsInUse) {
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
  Ref<IClassFactory> factory = Factory();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);  // a host holds the factory
  Ref<_CRepoter> object;
  ASSERT_EQ(factory->lpVtbl->CreateInstance(factory.get(), nullptr, IID__CRepoter, object.out()),
            S_OK);
  EXPECT_EQ(factory->lpVtbl->LockServer(factory.get(), TRUE), S_OK);
  factory.Reset();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);  // an object and a lock
  object.Reset();
  EXPECT_EQ(DllCanUnloadNow(), S_FALSE);  // the lock
  Ref<IClassFactory> again = Factory();
  EXPECT_EQ(again->lpVtbl->LockServer(again.get(), FALSE), S_OK);
  again.Reset();
  EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

class SelfRegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ::setenv("VANTOREL_REGISTRY", (dir_.path() / "registry.json").c_str(), 1);
  }
  void TearDown() override { ::unsetenv("VANTOREL_REGISTRY"); }

  testing::TempDir dir_;
};

TEST_F(SelfRegistrationTest, RegistersAndUnregistersThePerUserFile) {
  ASSERT_EQ(DllRegisterServer(), S_OK);
  EXPECT_EQ(LookupLibrary("Vantorel.CRepoter"), LibraryToRegister());
  ASSERT_EQ(DllUnregisterServer(), S_OK);
  EXPECT_EQ(LookupLibrary(VANTOREL_CLSID_TEXT), std::nullopt);
}

TEST_F(SelfRegistrationTest, FailsWithTheSelfRegistrationStatus) {
  const std::string in_the_way = dir_.Write("file", "in the way");
  ::setenv("VANTOREL_REGISTRY", (in_the_way + "/registry.json").c_str(), 1);
  EXPECT_EQ(DllRegisterServer(), SELFREG_E_CLASS);
  const auto info = TakeErrorInfo();
  ASSERT_TRUE(info.has_value());
  EXPECT_THAT(info->description, HasSubstr("registry"));
}

}  // namespace
}  // namespace vantorel
