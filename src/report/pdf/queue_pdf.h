// The PDF a print queue is sent, made by Cairo. A queue's filters turn a PDF into PostScript and
// back; Cairo's simple TrueType subsets, whose codes are the characters themselves, keep the
// text through that, where the composite fonts of our own PDF output come out without their
// Unicode map. Printing is paced by the printer, not by this, so it keeps the slower writer.
//
// Thread-safety: may run on several threads at once for different documents.
#ifndef VANTOREL_REPORT_PDF_QUEUE_PDF_H_
#define VANTOREL_REPORT_PDF_QUEUE_PDF_H_

#include <string>

#include "report/document/document.h"

namespace vantorel::report {

// "document" as PDF bytes for a print queue. Throws vantorel::Error when Cairo fails.
std::string QueuePdfBytes(const Document& document);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PDF_QUEUE_PDF_H_
