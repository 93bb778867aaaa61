// Conversion of variant arguments to the types of the interface's parameters, the way automation
// converts them for a late-bound call: numbers round half to even into integers, texts are read
// as numbers or dates, booleans are -1 and 0, and a value out of range or of no convertible kind
// fails with the automation status code of that failure.
//
// Thread-safety: pure functions (date texts are read with the platform's regional settings).
#ifndef VANTOREL_COMPONENT_CONVERSION_H_
#define VANTOREL_COMPONENT_CONVERSION_H_

#include <cstdint>

#include "vantorel/error.h"
#include "vantorel/variant.h"

namespace vantorel {

// Automation status codes of late binding.
namespace disp {
constexpr int32_t kMemberNotFound = static_cast<int32_t>(0x80020003u);
constexpr int32_t kParamNotFound = static_cast<int32_t>(0x80020004u);
constexpr int32_t kTypeMismatch = static_cast<int32_t>(0x80020005u);
constexpr int32_t kUnknownName = static_cast<int32_t>(0x80020006u);
constexpr int32_t kNoNamedArgs = static_cast<int32_t>(0x80020007u);
constexpr int32_t kBadVarType = static_cast<int32_t>(0x80020008u);
constexpr int32_t kException = static_cast<int32_t>(0x80020009u);
constexpr int32_t kOverflow = static_cast<int32_t>(0x8002000Au);
constexpr int32_t kBadParamCount = static_cast<int32_t>(0x8002000Eu);
constexpr int32_t kParamNotOptional = static_cast<int32_t>(0x8002000Fu);
}  // namespace disp

// A late-binding failure: one of the disp codes, and the argument it concerns (its position in
// the parameter list, first parameter 0), or -1.
class DispatchError : public Error {
 public:
  DispatchError(int32_t code, std::string description, int argument = -1);
  int argument() const { return argument_; }

 private:
  int argument_;
};

// "value" converted to "type" (kVariant keeps it as it is). Throws DispatchError with
// disp::kTypeMismatch or disp::kOverflow; "argument" is reported with it.
Variant ChangeType(const Variant& value, VarType type, int argument = -1);

// Round half to even, as automation rounds a double into an integer.
double RoundHalfEven(double value);

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_CONVERSION_H_
