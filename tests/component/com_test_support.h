// Small helpers for tests of the binary interface: owned BSTRs, interface references that
// release themselves, and the calling thread's error info read back as UTF-8.
#ifndef VANTOREL_TESTS_COMPONENT_COM_TEST_SUPPORT_H_
#define VANTOREL_TESTS_COMPONENT_COM_TEST_SUPPORT_H_

#include <optional>
#include <string>
#include <utility>

#include "component/automation_support.h"
#include "vantorel/automation.h"

namespace vantorel::testing {

inline UniqueBstr Bstr(const char16_t* text) { return UniqueBstr(SysAllocString(text)); }
inline UniqueBstr Bstr(const std::string& utf8) { return UniqueBstr(NewBstr(utf8)); }

// A reference on an interface, released when it goes out of scope.
template <typename T>
class Ref {
 public:
  Ref() = default;
  explicit Ref(T* pointer) : pointer_(pointer) {}
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  Ref(Ref&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ~Ref() { Reset(); }

  void Reset() {
    if (pointer_ != nullptr) pointer_->lpVtbl->Release(pointer_);
    pointer_ = nullptr;
  }
  T* get() const { return pointer_; }
  T* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  // For out parameters: releases what is held first.
  void** out() {
    Reset();
    return reinterpret_cast<void**>(&pointer_);
  }
  T** put() {
    Reset();
    return &pointer_;
  }

 private:
  T* pointer_ = nullptr;
};

struct TakenErrorInfo {
  GUID guid;
  std::string source;
  std::string description;
};

// Takes the calling thread's error info; nullopt when there is none.
inline std::optional<TakenErrorInfo> TakeErrorInfo() {
  Ref<IErrorInfo> info;
  if (GetErrorInfo(0, info.put()) != S_OK) return std::nullopt;
  TakenErrorInfo taken{};
  info->lpVtbl->GetGUID(info.get(), &taken.guid);
  BSTR text = nullptr;
  if (info->lpVtbl->GetSource(info.get(), &text) == S_OK) {
    taken.source = BstrToUtf8(text);
    SysFreeString(text);
  }
  if (info->lpVtbl->GetDescription(info.get(), &text) == S_OK) {
    taken.description = BstrToUtf8(text);
    SysFreeString(text);
  }
  return taken;
}

// A VARIANT that clears itself.
class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&value_); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
  ~OwnedVariant() { VariantClear(&value_); }
  VARIANT* get() { return &value_; }
  VARIANT* operator->() { return &value_; }

 private:
  VARIANT value_;
};

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_COMPONENT_COM_TEST_SUPPORT_H_
