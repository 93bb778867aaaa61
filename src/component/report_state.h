// The calling thread's report state, which print methods read and write.
#ifndef VANTOREL_COMPONENT_REPORT_STATE_H_
#define VANTOREL_COMPONENT_REPORT_STATE_H_

#include "vantorel/report_state.h"

namespace vantorel {

// This thread's report state: empty on a thread's first use, kept until the thread ends.
ReportState& ThreadReportState();

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_REPORT_STATE_H_
