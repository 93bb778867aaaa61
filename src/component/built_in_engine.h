// The engine a CRepoter prints with when no host or test has installed a default
// (engine::SetDefaultEngineFactory). The component only declares it: the library that links the
// component with a report engine defines it (src/composition/), so the component knows engines
// only through the port.
//
// Thread-safety: each call makes a new engine.
#ifndef VANTOREL_COMPONENT_BUILT_IN_ENGINE_H_
#define VANTOREL_COMPONENT_BUILT_IN_ENGINE_H_

#include <memory>

#include "engine/port.h"

namespace vantorel {

std::shared_ptr<engine::Engine> MakeBuiltInEngine();

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_BUILT_IN_ENGINE_H_
