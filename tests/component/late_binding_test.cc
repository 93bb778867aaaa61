// Late binding: names to identifiers, variant arguments converted as automation converts them,
// omitted optional strings, and the standard errors.
#include "component/dispatch.h"

#include <gtest/gtest.h>

#include "engine/scripted_engine.h"
#include "support/test_support.h"
#include "vantorel/report_state.h"

namespace vantorel {
namespace {

int32_t CodeOf(const std::function<void()>& call, int* argument = nullptr) {
  try {
    call();
  } catch (const DispatchError& error) {
    if (argument != nullptr) *argument = error.argument();
    return error.number();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

class LateBindingTest : public ::testing::Test {
 protected:
  testing::PlatformScope platform_;
  CRepoter rep_{std::make_shared<engine::ScriptedEngine>()};
};

TEST_F(LateBindingTest, PropertiesGetAndPutByName) {
  InvokeByName(rep_, "reportpath", kDispatchPropertyPut, {Variant::String("/r/")});
  EXPECT_EQ(rep_.get_ReportPath(), "/r/");
  EXPECT_EQ(InvokeByName(rep_, "ReportPath", kDispatchPropertyGet, {}), Variant::String("/r/"));
  InvokeByName(rep_, "FirmID", kDispatchPropertyPut, {Variant::String("12")});
  EXPECT_EQ(rep_.get_FirmID(), 12);
  // A boolean variant is stored as it is, non-standard true included; other kinds convert.
  InvokeByName(rep_, "DesigbeMode", kDispatchPropertyPut, {Variant::Bool(1)});
  EXPECT_EQ(InvokeByName(rep_, "DesigbeMode", kDispatchPropertyGet | kDispatchMethod, {}),
            Variant::Bool(1));
  InvokeByName(rep_, "DesigbeMode", kDispatchPropertyPut, {Variant::I4(1)});
  EXPECT_EQ(rep_.get_DesigbeMode(), kTrue);
}

TEST_F(LateBindingTest, MethodsRunWithConvertedArguments) {
  rep_.put_RptName("kept");
  rep_.SetVars();
  InvokeByName(rep_, "SuperReport", kDispatchMethod, {Variant::I4(42)});
  EXPECT_EQ(CurrentReportState().RptName, "42");
}

TEST_F(LateBindingTest, UnknownNameAndIdentifier) {
  EXPECT_EQ(CodeOf([&] { InvokeByName(rep_, "PrintEverything", kDispatchMethod, {}); }),
            disp::kUnknownName);
  EXPECT_EQ(CodeOf([&] { Invoke(rep_, 0x60030002, kDispatchMethod, {}); }), disp::kMemberNotFound);
  EXPECT_EQ(CodeOf([&] { Invoke(rep_, 0x60030042, kDispatchMethod, {}); }), disp::kMemberNotFound);
  EXPECT_EQ(CodeOf([&] { Invoke(rep_, 0x60030043, kDispatchMethod, {}); }), disp::kMemberNotFound);
  // A method is not a property to put.
  EXPECT_EQ(CodeOf([&] { Invoke(rep_, 0x60030001, kDispatchPropertyPut, {Variant::I2(1)}); }),
            disp::kMemberNotFound);
}

TEST_F(LateBindingTest, WrongArgumentCount) {
  EXPECT_EQ(CodeOf([&] { InvokeByName(rep_, "SetVars", kDispatchMethod, {Variant::I2(1)}); }),
            disp::kBadParamCount);
  EXPECT_EQ(CodeOf([&] {
              InvokeByName(rep_, "EnqGroupwise", kDispatchMethod,
                           {Variant::FromDate(Date::FromYmd(2024, 4, 1))});
            }),
            disp::kBadParamCount);
  EXPECT_EQ(CodeOf([&] { InvokeByName(rep_, "LastMsg", kDispatchPropertyGet, {Variant::I2(1)}); }),
            disp::kBadParamCount);
}

TEST_F(LateBindingTest, TypeMismatchNamesTheArgument) {
  int argument = -1;
  EXPECT_EQ(CodeOf(
                [&] {
                  InvokeByName(rep_, "EnqPending", kDispatchMethod,
                               {Variant::String("2024-04-01"), Variant::String("2024-04-30"),
                                Variant::String("many")});
                },
                &argument),
            disp::kTypeMismatch);
  EXPECT_EQ(argument, 2);
  EXPECT_EQ(CodeOf([&] { InvokeByName(rep_, "SuperReport", kDispatchMethod, {Variant::Null()}); }),
            disp::kTypeMismatch);
}

TEST_F(LateBindingTest, OverflowOfSixteenBitIdentifiers) {
  int argument = -1;
  EXPECT_EQ(
      CodeOf([&] { InvokeByName(rep_, "ReceiptPrint", kDispatchMethod, {Variant::I4(40000)}); },
             &argument),
      disp::kOverflow);
  EXPECT_EQ(argument, 0);
}

TEST_F(LateBindingTest, OmittedOptionalStringIsEmptyButRequiredOnesAreNot) {
  // Challan_Customer's LogoFile may be left out; the call reaches the method itself.
  const int32_t code =
      CodeOf([&] { InvokeByName(rep_, "Challan_Customer", kDispatchMethod, {Variant::I2(0)}); });
  EXPECT_NE(code, disp::kBadParamCount);
  EXPECT_NE(code, disp::kParamNotOptional);
  int argument = -1;
  EXPECT_EQ(CodeOf(
                [&] {
                  InvokeByName(rep_, "CycleGatePass", kDispatchMethod,
                               {Variant::I2(1), Variant::Missing()});
                },
                &argument),
            disp::kParamNotOptional);
  EXPECT_EQ(argument, 1);
}

TEST(Conversion, AutomationRules) {
  EXPECT_EQ(ChangeType(Variant::R8(2.5), VarType::kI2), Variant::I2(2));
  EXPECT_EQ(ChangeType(Variant::R8(3.5), VarType::kI2), Variant::I2(4));
  EXPECT_EQ(ChangeType(Variant::R8(-2.5), VarType::kI2), Variant::I2(-2));
  EXPECT_EQ(ChangeType(Variant::String(" 12 "), VarType::kI2), Variant::I2(12));
  EXPECT_EQ(ChangeType(Variant::String("&H1F"), VarType::kI4), Variant::I4(31));
  EXPECT_EQ(ChangeType(Variant::Bool(kTrue), VarType::kI2), Variant::I2(-1));
  EXPECT_EQ(ChangeType(Variant(), VarType::kI2), Variant::I2(0));
  EXPECT_EQ(ChangeType(Variant(), VarType::kString), Variant::String(""));
  EXPECT_EQ(ChangeType(Variant::String("True"), VarType::kBool), Variant::Bool(kTrue));
  EXPECT_EQ(ChangeType(Variant::I2(5), VarType::kBool), Variant::Bool(kTrue));
  EXPECT_EQ(ChangeType(Variant::I2(-5), VarType::kString), Variant::String("-5"));
  EXPECT_EQ(ChangeType(Variant::R8(1250.5), VarType::kString), Variant::String("1250.5"));
  EXPECT_EQ(ChangeType(Variant::Bool(kFalse), VarType::kString), Variant::String("False"));
  EXPECT_EQ(ChangeType(Variant::I2(255), VarType::kUI1), Variant::UI1(255));
  EXPECT_THROW(ChangeType(Variant::I2(256), VarType::kUI1), DispatchError);
  EXPECT_THROW(ChangeType(Variant::I2(-1), VarType::kUI1), DispatchError);
  EXPECT_THROW(ChangeType(Variant::String("12abc"), VarType::kI2), DispatchError);
}

TEST(Conversion, DatesFromTextsAndNumbers) {
  testing::PlatformScope platform;  // regional dd/mm/yyyy with "/"
  EXPECT_EQ(ChangeType(Variant::String("2024-03-31"), VarType::kDate),
            Variant::FromDate(Date::FromYmd(2024, 3, 31)));
  EXPECT_EQ(ChangeType(Variant::String("31/03/2024"), VarType::kDate),
            Variant::FromDate(Date::FromYmd(2024, 3, 31)));
  EXPECT_EQ(ChangeType(Variant::R8(45382), VarType::kDate),
            Variant::FromDate(Date::FromYmd(2024, 3, 31)));
  EXPECT_EQ(ChangeType(Variant::FromDate(Date::FromYmd(2024, 4, 1)), VarType::kString),
            Variant::String("01/04/2024"));
  EXPECT_THROW(ChangeType(Variant::String("31st March"), VarType::kDate), DispatchError);
  EXPECT_THROW(ChangeType(Variant::R8(1e9), VarType::kDate), DispatchError);
  platform->SetRegional({'.', "mm/dd/yyyy"});
  EXPECT_EQ(ChangeType(Variant::String("03.31.2024"), VarType::kDate),
            Variant::FromDate(Date::FromYmd(2024, 3, 31)));
}

}  // namespace
}  // namespace vantorel
