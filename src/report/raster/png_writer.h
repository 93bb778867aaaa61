// PNG pictures of a prepared document's pages at a chosen resolution, on white.
//
// Thread-safety: may run on several threads at once for different documents.
#ifndef VANTOREL_REPORT_RASTER_PNG_WRITER_H_
#define VANTOREL_REPORT_RASTER_PNG_WRITER_H_

#include <cstddef>
#include <string>
#include <vector>

#include "report/document/document.h"

namespace vantorel::report {

// The PNG bytes of page "index" (0-based) at "dpi" dots per inch.
std::string PagePng(const Document& document, size_t index, double dpi);

// Writes every page to "directory" as "<stem>-<n>.png" (n from 1, zero-padded to the width of the
// page count) and returns the file paths. Creates the directory when missing. Each file is
// written through an AtomicFile, so it appears whole or not at all and a device, FIFO, folder or
// symbolic link of that name is refused; throws vantorel::Error when it cannot write.
std::vector<std::string> WritePngs(const Document& document, const std::string& directory,
                                   const std::string& stem, double dpi);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_RASTER_PNG_WRITER_H_
