// The plain C interface: a handle around one CRepoter, late binding by name with typed values.
#include "vantorel/vantorel.h"

#include <exception>
#include <new>
#include <string>
#include <vector>

#include "component/conversion.h"
#include "component/dispatch.h"
#include "host/atomic_file.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

struct vantorel_repoter {
  vantorel::CRepoter object;
  std::string text;  // the last string handed out
  int32_t error_number = 0;
  std::string error_text;
};

namespace vantorel {
namespace {

constexpr int32_t kPointer = static_cast<int32_t>(0x80004003u);      // E_POINTER
constexpr int32_t kInvalidArg = static_cast<int32_t>(0x80070057u);   // E_INVALIDARG
constexpr int32_t kOutOfMemory = static_cast<int32_t>(0x8007000Eu);  // E_OUTOFMEMORY
constexpr int32_t kFail = static_cast<int32_t>(0x80004005u);         // E_FAIL
constexpr int32_t kUnexpected = static_cast<int32_t>(0x8000FFFFu);   // E_UNEXPECTED

Variant FromValue(const vantorel_value& value, int position) {
  switch (value.type) {
    case VANTOREL_EMPTY:
      return Variant();
    case VANTOREL_I2:
      return Variant::I2(value.i2);
    case VANTOREL_I4:
      return Variant::I4(value.i4);
    case VANTOREL_UI1:
      return Variant::UI1(value.ui1);
    case VANTOREL_R8:
      return Variant::R8(value.r8);
    case VANTOREL_DATE:
      return Variant::FromDate(Date{value.date});
    case VANTOREL_STRING:
      return Variant::String(value.str != nullptr ? value.str : "");
    case VANTOREL_BOOL:
      return Variant::Bool(value.boolean);
    case VANTOREL_MISSING:
      return Variant::Missing();
    default:
      throw DispatchError(
          disp::kBadVarType,
          "Value type " + std::to_string(value.type) + " is not a vantorel_value type", position);
  }
}

void ToValue(const Variant& value, vantorel_repoter& r, vantorel_value* out) {
  *out = vantorel_value{};
  switch (value.type()) {
    case VarType::kI2:
      out->type = VANTOREL_I2;
      out->i2 = static_cast<int16_t>(value.integer());
      break;
    case VarType::kI4:
      out->type = VANTOREL_I4;
      out->i4 = static_cast<int32_t>(value.integer());
      break;
    case VarType::kUI1:
      out->type = VANTOREL_UI1;
      out->ui1 = static_cast<uint8_t>(value.integer());
      break;
    case VarType::kR8:
      out->type = VANTOREL_R8;
      out->r8 = value.real();
      break;
    case VarType::kDate:
      out->type = VANTOREL_DATE;
      out->date = value.real();
      break;
    case VarType::kString:
      r.text = value.text();
      out->type = VANTOREL_STRING;
      out->str = r.text.c_str();
      break;
    case VarType::kBool:
      out->type = VANTOREL_BOOL;
      out->boolean = static_cast<int16_t>(value.integer());
      break;
    default:
      out->type = VANTOREL_EMPTY;
      break;
  }
}

int32_t Failed(vantorel_repoter& r, int32_t number, int32_t status, std::string text) noexcept {
  r.error_number = number;
  try {
    r.error_text = std::move(text);
  } catch (...) {
    r.error_text.clear();
  }
  return status;
}

// Runs "body" for handle "r", recording the outcome as its last error.
template <typename Body>
int32_t Guarded(vantorel_repoter* r, Body&& body) noexcept {
  if (r == nullptr) return kPointer;
  try {
    r->error_number = 0;
    r->error_text.clear();
    body(*r);
    return 0;
  } catch (const Error& error) {
    const int32_t status = error.hresult() < 0 ? error.hresult() : kFail;
    return Failed(*r, error.number(), status, error.description());
  } catch (const std::bad_alloc&) {
    return Failed(*r, kOutOfMemory, kOutOfMemory, "Out of memory");
  } catch (const std::exception& error) {
    return Failed(*r, kFail, kFail, error.what());
  } catch (...) {
    return Failed(*r, kUnexpected, kUnexpected, "Unexpected failure");
  }
}

Error NullArgument(const char* what) {
  return Error(kPointer, "Vantorel.CRepoter", std::string(what) + " is a null pointer");
}

}  // namespace
}  // namespace vantorel

extern "C" {

vantorel_repoter* vantorel_create(void) {
  try {
    return new vantorel_repoter();
  } catch (...) {
    return nullptr;
  }
}

void vantorel_destroy(vantorel_repoter* r) { delete r; }

int32_t vantorel_set_property(vantorel_repoter* r, const char* name, const vantorel_value* value) {
  return vantorel::Guarded(r, [&](vantorel_repoter& handle) {
    if (name == nullptr) throw vantorel::NullArgument("The property name");
    if (value == nullptr) throw vantorel::NullArgument("The value");
    vantorel::InvokeByName(handle.object, name, vantorel::kDispatchPropertyPut,
                           {vantorel::FromValue(*value, 0)});
  });
}

int32_t vantorel_get_property(vantorel_repoter* r, const char* name, vantorel_value* out) {
  return vantorel::Guarded(r, [&](vantorel_repoter& handle) {
    if (name == nullptr) throw vantorel::NullArgument("The property name");
    if (out == nullptr) throw vantorel::NullArgument("The result");
    *out = vantorel_value{};
    const vantorel::Variant value =
        vantorel::InvokeByName(handle.object, name, vantorel::kDispatchPropertyGet, {});
    vantorel::ToValue(value, handle, out);
  });
}

int32_t vantorel_invoke(vantorel_repoter* r, const char* method, const vantorel_value* args,
                        int nargs) {
  return vantorel::Guarded(r, [&](vantorel_repoter& handle) {
    if (method == nullptr) throw vantorel::NullArgument("The method name");
    if (nargs < 0) {
      throw vantorel::Error(vantorel::kInvalidArg, "Vantorel.CRepoter",
                            "The argument count is negative");
    }
    if (nargs > 0 && args == nullptr) throw vantorel::NullArgument("The argument array");
    std::vector<vantorel::Variant> converted;
    converted.reserve(static_cast<size_t>(nargs));
    for (int i = 0; i < nargs; ++i) converted.push_back(vantorel::FromValue(args[i], i));
    vantorel::InvokeByName(handle.object, method, vantorel::kDispatchMethod, converted);
  });
}

int32_t vantorel_last_error_number(const vantorel_repoter* r) {
  return r != nullptr ? r->error_number : 0;
}

const char* vantorel_last_error_text(const vantorel_repoter* r) {
  return r != nullptr ? r->error_text.c_str() : "";
}

void vantorel_set_message_box_handler(void (*handler)(void* user, const char* text, int icon),
                                      void* user) {
  try {
    if (handler == nullptr) {
      vantorel::SetMessageBoxHandler(nullptr);
      return;
    }
    vantorel::SetMessageBoxHandler(
        [handler, user](const std::string& text, vantorel::MessageIcon icon) {
          handler(user, text.c_str(), static_cast<int>(icon));
        });
  } catch (...) {
    // Only memory can run out here; the previous handler then stays.
  }
}

void vantorel_remove_pending_files(void) { vantorel::RemovePendingTemporaryFiles(); }

}  // extern "C"
