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

// Writes "document" to "path" (a host path) through an AtomicFile: the file appears only when
// complete, a failure never leaves a truncated PDF or destroys an earlier one, and a device, FIFO,
// folder or symbolic link at "path" is refused. Throws vantorel::Error naming the path when it
// cannot be written.
void WritePdf(const Document& document, const std::string& path);

// Writes "document" to the open descriptor "fd" as it is made (standard output, a pipe), without
// closing it. "name" names the stream in errors.
void StreamPdf(const Document& document, int fd, const std::string& name);

// The PDF as bytes, for spooling to a printer.
std::string PdfBytes(const Document& document);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PDF_PDF_WRITER_H_
