#include "vantorel/error.h"

#include <utility>

namespace vantorel {

Error::Error(int32_t number, std::string source, std::string description, int64_t system_code)
    : std::runtime_error(description),
      number_(number),
      source_(std::move(source)),
      description_(std::move(description)),
      system_code_(system_code) {}

int32_t Error::hresult() const {
  if (number_ > 0 && number_ < 65536) {
    return static_cast<int32_t>(0x800A0000u | static_cast<uint32_t>(number_));
  }
  return number_;
}

}  // namespace vantorel
