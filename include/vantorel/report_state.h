// The report state: the copy of the host's properties that print methods work from. There is one
// per thread, shared by every CRepoter used on that thread; SetVars fills it.
#ifndef VANTOREL_REPORT_STATE_H_
#define VANTOREL_REPORT_STATE_H_

#include <cstdint>
#include <string>

#include "vantorel/export.h"
#include "vantorel/types.h"

namespace vantorel {

struct ReportState {
  std::string ReportPath;
  std::string RptName;  // overwritten by every print method with its template name
  VBool RptPrint = kFalse;
  VBool Export = kFalse;
  std::string DbConnectstring;
  std::string DbTConnectstring;
  VBool DesigbeMode = kFalse;
  uint8_t FirmID = 0;
  std::string AppPath;
  VBool RptPDF = kFalse;
  std::string PDFPath;  // filled with the default PDF file name when empty at PDF output

  friend bool operator==(const ReportState&, const ReportState&) = default;
};

// A copy of the calling thread's report state, for hosts and tests that want to see it.
VANTOREL_EXPORT ReportState CurrentReportState();

}  // namespace vantorel

#endif  // VANTOREL_REPORT_STATE_H_
