#include "engine/port.h"

#include <mutex>

#include "vantorel/error.h"

namespace vantorel::engine {
namespace {

// Before a report engine registers itself there is none: creating a report fails.
class NoEngine final : public Engine {
 public:
  std::shared_ptr<ReportObject> CreateReport() override {
    throw Error(errnum::kEngineFailure, "Vantorel.CRepoter",
                "No report engine is available in this build");
  }
};

std::shared_ptr<Engine> NoEngineFactory() { return std::make_shared<NoEngine>(); }

std::mutex g_mutex;
std::shared_ptr<Engine> (*g_factory)() = nullptr;            // guarded by g_mutex
std::shared_ptr<Engine> (*g_built_in)() = &NoEngineFactory;  // guarded by g_mutex

}  // namespace

const char* KindName(ComponentKind kind) {
  switch (kind) {
    case ComponentKind::kMemo:
      return "memo";
    case ComponentKind::kQuery:
      return "query";
    case ComponentKind::kDatabase:
      return "database";
    case ComponentKind::kOther:
      break;
  }
  return "component";
}

int ParameterValue::TypeCode() const {
  static constexpr int kCodes[] = {2, 3, 17, 5, 7, 8};
  return kCodes[value.index()];
}

std::shared_ptr<Engine> DefaultEngine() {
  std::shared_ptr<Engine> (*factory)() = nullptr;
  {
    std::lock_guard lock(g_mutex);
    factory = g_factory != nullptr ? g_factory : g_built_in;
  }
  return factory();
}

void SetDefaultEngineFactory(std::shared_ptr<Engine> (*factory)()) {
  std::lock_guard lock(g_mutex);
  g_factory = factory;
}

void SetBuiltInEngineFactory(std::shared_ptr<Engine> (*factory)()) {
  std::lock_guard lock(g_mutex);
  g_built_in = factory != nullptr ? factory : &NoEngineFactory;
}

}  // namespace vantorel::engine
