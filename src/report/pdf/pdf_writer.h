// The PDF output of a prepared document: fonts embedded and subset with Unicode maps (so text
// extracts correctly, the rupee sign and Devanagari included), each image embedded once per
// document with JPEG bytes kept as they are, and the document's title, author, subject and
// creator in the file's metadata.
//
// Thread-safety: may run on several threads at once for different documents.
#ifndef VANTOREL_REPORT_PDF_PDF_WRITER_H_
#define VANTOREL_REPORT_PDF_PDF_WRITER_H_

#include <string>

#include "report/document/document.h"

namespace vantorel::report {

// Writes "document" to "path" (a host path). The file appears only when complete: it is written
// beside its final name and renamed into place, so a failure never leaves a truncated PDF or
// destroys an earlier one. Throws vantorel::Error naming the path when it cannot be written.
void WritePdf(const Document& document, const std::string& path);

// The PDF as bytes, for spooling to a printer.
std::string PdfBytes(const Document& document);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PDF_PDF_WRITER_H_
