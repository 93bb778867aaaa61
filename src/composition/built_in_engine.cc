// The one place that composes the component with an engine: the libraries (static and shared)
// build it in, and the component prints with our report engine unless told otherwise.
#include "component/built_in_engine.h"

#include "report/binding/report_engine.h"

namespace vantorel {

std::shared_ptr<engine::Engine> MakeBuiltInEngine() { return report::MakeReportEngine(); }

}  // namespace vantorel
