// The three private steps every print method is made of: PrepareTemplate checks and loads the
// template named by the report state and binds its connections; RenderReport turns the output
// flags into the designer, the printer, a PDF file or the preview; ReleaseRun drops the run's
// references.
//
// Thread-safety: they work on the calling thread's report state and one instance's run.
#ifndef VANTOREL_ENGINE_STEPS_H_
#define VANTOREL_ENGINE_STEPS_H_

#include <string>

#include "engine/run.h"
#include "vantorel/report_state.h"

namespace vantorel::engine {

// Writes "text" into the instance's LastMsg, traced.
void SetLastMsg(std::string& last_msg, const std::string& text);

// Loads ReportPath + RptName + ".fr3" into a fresh report object, sets the engine and preview
// options and points the template's "DMSDB" and "temp" connections at the state's connection
// strings, writing its progress into "last_msg" before each step. Failures are shown in a message
// box and give false; "last_msg" then names the step that failed.
bool PrepareTemplate(ReportRun& run, const ReportState& state, std::string& last_msg);

// Designer first when DesigbeMode is exactly true; then print when RptPrint is exactly true, else
// export to PDFPath (AppPath + "\export.pdf" when empty, written back into "state") when RptPDF
// is exactly true, else preview. Engine failures are thrown.
void RenderReport(ReportRun& run, ReportState& state);

void ReleaseRun(ReportRun& run);

}  // namespace vantorel::engine

#endif  // VANTOREL_ENGINE_STEPS_H_
