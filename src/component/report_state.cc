#include "component/report_state.h"

namespace vantorel {

ReportState& ThreadReportState() {
  // One state per thread: instances on a thread share it and never see another thread's.
  thread_local ReportState state;
  return state;
}

ReportState CurrentReportState() { return ThreadReportState(); }

}  // namespace vantorel
