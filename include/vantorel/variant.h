// An automation variant as late binding passes it: one value of one of the automation types the
// interface uses, or empty, null or missing (an omitted optional argument).
//
// Thread-safety: a plain value.
#ifndef VANTOREL_VARIANT_H_
#define VANTOREL_VARIANT_H_

#include <cstdint>
#include <string>

#include "vantorel/export.h"
#include "vantorel/types.h"

namespace vantorel {

// Automation type codes (the VARTYPE numbers).
enum class VarType : uint16_t {
  kEmpty = 0,
  kNull = 1,
  kI2 = 2,
  kI4 = 3,
  kR8 = 5,
  kDate = 7,
  kString = 8,
  kError = 10,
  kBool = 11,
  kVariant = 12,
  kUI1 = 17,
  kI8 = 20,
};

// The name of a type code as the interface description writes it ("short", "BSTR", …).
VANTOREL_EXPORT const char* VarTypeName(VarType type);

class VANTOREL_EXPORT Variant {
 public:
  Variant() = default;  // empty

  static Variant Null();
  // An omitted optional argument (an error value of "parameter not found").
  static Variant Missing();
  static Variant ErrorValue(int32_t scode);
  static Variant I2(int16_t value);
  static Variant I4(int32_t value);
  static Variant I8(int64_t value);
  static Variant UI1(uint8_t value);
  static Variant R8(double value);
  static Variant FromDate(Date value);
  static Variant String(std::string utf8);
  static Variant Bool(VBool value);

  VarType type() const { return type_; }
  bool IsMissing() const;

  // The stored value of an integer, boolean or error variant.
  int64_t integer() const { return integer_; }
  // The stored value of a double or date variant.
  double real() const { return real_; }
  // The stored text of a string variant, UTF-8.
  const std::string& text() const { return text_; }

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  VarType type_ = VarType::kEmpty;
  int64_t integer_ = 0;
  double real_ = 0;
  std::string text_;
};

}  // namespace vantorel

#endif  // VANTOREL_VARIANT_H_
