#include "vantorel/variant.h"

#include <utility>

namespace vantorel {
namespace {
constexpr int32_t kParamNotFound = static_cast<int32_t>(0x80020004u);
}

const char* VarTypeName(VarType type) {
  switch (type) {
    case VarType::kEmpty:
      return "empty";
    case VarType::kNull:
      return "null";
    case VarType::kI2:
      return "short";
    case VarType::kI4:
      return "long";
    case VarType::kR8:
      return "double";
    case VarType::kDate:
      return "DATE";
    case VarType::kString:
      return "BSTR";
    case VarType::kError:
      return "SCODE";
    case VarType::kBool:
      return "VARIANT_BOOL";
    case VarType::kVariant:
      return "VARIANT";
    case VarType::kUI1:
      return "unsigned char";
    case VarType::kI8:
      return "hyper";
  }
  return "?";
}

Variant Variant::Null() {
  Variant v;
  v.type_ = VarType::kNull;
  return v;
}

Variant Variant::Missing() { return ErrorValue(kParamNotFound); }

Variant Variant::ErrorValue(int32_t scode) {
  Variant v;
  v.type_ = VarType::kError;
  v.integer_ = scode;
  return v;
}

bool Variant::IsMissing() const { return type_ == VarType::kError && integer_ == kParamNotFound; }

Variant Variant::I2(int16_t value) {
  Variant v;
  v.type_ = VarType::kI2;
  v.integer_ = value;
  return v;
}

Variant Variant::I4(int32_t value) {
  Variant v;
  v.type_ = VarType::kI4;
  v.integer_ = value;
  return v;
}

Variant Variant::I8(int64_t value) {
  Variant v;
  v.type_ = VarType::kI8;
  v.integer_ = value;
  return v;
}

Variant Variant::UI1(uint8_t value) {
  Variant v;
  v.type_ = VarType::kUI1;
  v.integer_ = value;
  return v;
}

Variant Variant::R8(double value) {
  Variant v;
  v.type_ = VarType::kR8;
  v.real_ = value;
  return v;
}

Variant Variant::FromDate(Date value) {
  Variant v;
  v.type_ = VarType::kDate;
  v.real_ = value.serial;
  return v;
}

Variant Variant::String(std::string utf8) {
  Variant v;
  v.type_ = VarType::kString;
  v.text_ = std::move(utf8);
  return v;
}

Variant Variant::Bool(VBool value) {
  Variant v;
  v.type_ = VarType::kBool;
  v.integer_ = value;
  return v;
}

}  // namespace vantorel
