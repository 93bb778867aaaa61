// Printing a prepared document through CUPS: the document is spooled as PDF to the default
// queue or a named one, and the job is followed until the printer has taken it. A job that
// stops or aborts is an error, and it is cancelled so it does not print later by surprise.
//
// Thread-safety: may run on several threads at once for different documents.
#ifndef VANTOREL_REPORT_PRINT_PRINTER_H_
#define VANTOREL_REPORT_PRINT_PRINTER_H_

#include <string>

#include "report/document/document.h"

namespace vantorel::report {

struct PrintOptions {
  // The CUPS queue. Default: empty, the default queue (lpoptions / CUPS default destination).
  std::string queue;
  // The job's title. Default: empty, the document's title.
  std::string title;
  // Default: 1.
  int copies = 1;
  // How long to wait for the job to complete before giving up (the job is then cancelled).
  // Default: 120 seconds.
  int timeout_seconds = 120;
};

// Prints "document" and returns once the job has completed. Throws vantorel::Error naming the
// queue and the job's state: no default queue, unknown queue, the queue refusing jobs, a stopped,
// aborted or cancelled job, a timeout.
void PrintDocument(const Document& document, const PrintOptions& options);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PRINT_PRINTER_H_
