// The one error type of the component: an error number, the source that raised it and a
// description. Inside the component a failure travels as this exception until the interface
// boundary turns it into a call's error result (HRESULT plus error info) or, in the C++ API,
// the host catches it.
//
// Thread-safety: a plain value; safe to copy between threads.
#ifndef VANTOREL_ERROR_H_
#define VANTOREL_ERROR_H_

#include <cstdint>
#include <stdexcept>
#include <string>

#include "vantorel/export.h"

namespace vantorel {

// Error numbers the component raises. Small numbers are the runtime errors hosts know by number;
// the data layer reports driver failures with the COM status codes of the failing operation.
namespace errnum {
constexpr int32_t kOverflow = 6;
constexpr int32_t kTypeMismatch = 13;
constexpr int32_t kFileNotFound = 53;
constexpr int32_t kPathFileAccess = 75;
constexpr int32_t kObjectNotSet = 91;
constexpr int32_t kInvalidUseOfNull = 94;
constexpr int32_t kInvalidProcedureCall = 5;
constexpr int32_t kNoCurrentRecord = 3021;
constexpr int32_t kItemNotFound = 3265;
constexpr int32_t kObjectClosed = 3704;
constexpr int32_t kConnectionInvalid = 3709;
constexpr int32_t kUnspecified = -2147467259;           // 0x80004005
constexpr int32_t kNotImplemented = -2147467263;        // 0x80004001
constexpr int32_t kCommandError = -2147217900;          // 0x80040E14, bad SQL
constexpr int32_t kAuthenticationFailed = -2147217843;  // 0x80040E4D
constexpr int32_t kEngineFailure = -2147221504;  // 0x80040000, report engine operation failed
}  // namespace errnum

class VANTOREL_EXPORT Error : public std::runtime_error {
 public:
  // "number" is one of errnum or a status code; "system_code" is the driver's or the operating
  // system's own code for the failure, 0 when there is none.
  Error(int32_t number, std::string source, std::string description, int64_t system_code = 0);

  int32_t number() const { return number_; }
  const std::string& source() const { return source_; }
  const std::string& description() const { return description_; }
  int64_t system_code() const { return system_code_; }

  // The status code a binary host sees: runtime error numbers (below 65536) become
  // 0x800A0000 | number, anything else is already a status code.
  int32_t hresult() const;

 private:
  int32_t number_;
  std::string source_;
  std::string description_;
  int64_t system_code_;
};

}  // namespace vantorel

#endif  // VANTOREL_ERROR_H_
