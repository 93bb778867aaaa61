#include "report/pdf/pdf_writer.h"

#include <cairo-pdf.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/native_path.h"
#include "report/pdf/resource_filter.h"
#include "report/render/draw_page.h"
#include "report/text/handles.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kSource[] = "Vantorel.Pdf";
constexpr SizeF kA4 = {595.28f, 841.89f};

cairo_status_t AppendToString(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

struct FileSink {
  int fd = -1;
  int error = 0;  // the first write error, if any
};

cairo_status_t WriteToFile(void* closure, const unsigned char* data, unsigned int length) {
  auto* sink = static_cast<FileSink*>(closure);
  while (length > 0 && sink->error == 0) {
    const ssize_t written = write(sink->fd, data, length);
    if (written < 0) {
      if (errno == EINTR) continue;
      sink->error = errno;
      break;
    }
    data += written;
    length -= static_cast<unsigned int>(written);
  }
  return sink->error == 0 ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

SizeF PageSize(const Page& page) {
  return page.size.width > 0 && page.size.height > 0 ? page.size : kA4;
}

// Draws every page through "write"; returns Cairo's final status.
cairo_status_t Render(const Document& document, cairo_write_func_t write, void* closure) {
  const SizeF first = document.pages.empty() ? kA4 : PageSize(document.pages.front());
  ResourceFilter filter(write, closure);
  SurfacePtr surface(cairo_pdf_surface_create_for_stream(&ResourceFilter::Write, &filter,
                                                         first.width, first.height));
  const Metadata& meta = document.metadata;
  const std::pair<cairo_pdf_metadata_t, const std::string*> fields[] = {
      {CAIRO_PDF_METADATA_TITLE, &meta.title},
      {CAIRO_PDF_METADATA_AUTHOR, &meta.author},
      {CAIRO_PDF_METADATA_SUBJECT, &meta.subject},
      {CAIRO_PDF_METADATA_CREATOR, &meta.creator}};
  for (const auto& [field, value] : fields) {
    if (!value->empty()) cairo_pdf_surface_set_metadata(surface.get(), field, value->c_str());
  }
  {
    CairoPtr cr(cairo_create(surface.get()));
    if (document.pages.empty()) {
      // A PDF needs a page; an empty document prints as one blank A4 sheet.
      cairo_show_page(cr.get());
    }
    for (const Page& page : document.pages) {
      const SizeF size = PageSize(page);
      cairo_pdf_surface_set_size(surface.get(), size.width, size.height);
      DrawPage(cr.get(), document, page);
      cairo_show_page(cr.get());
    }
    const cairo_status_t status = cairo_status(cr.get());
    if (status != CAIRO_STATUS_SUCCESS) return status;
  }
  cairo_surface_finish(surface.get());
  const cairo_status_t status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return status;
  return filter.Flush();
}

[[noreturn]] void CannotWrite(const std::string& path, const std::string& reason, int error = 0) {
  throw Error(errnum::kPathFileAccess, kSource, "Cannot write " + path + ": " + reason, error);
}

}  // namespace

std::string PdfBytes(const Document& document) {
  std::string bytes;
  const cairo_status_t status = Render(document, AppendToString, &bytes);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw Error(errnum::kEngineFailure, kSource,
                std::string("Cannot make the PDF: ") + cairo_status_to_string(status));
  }
  return bytes;
}

void WritePdf(const Document& document, const std::string& path) {
  const std::string native = NativePath(path);
  // Written beside its final name (same file system, so the rename is atomic) and renamed only
  // when complete and on disk.
  const std::string temporary = native + ".tmp-" + std::to_string(getpid());
  FileSink sink;
  sink.fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (sink.fd < 0) {
    const int error = errno;
    CannotWrite(path, std::strerror(error), error);
  }
  cairo_status_t status;
  try {
    status = Render(document, WriteToFile, &sink);
  } catch (...) {
    close(sink.fd);
    unlink(temporary.c_str());
    throw;
  }
  int error = sink.error;
  if (error == 0 && fsync(sink.fd) != 0) error = errno;
  if (close(sink.fd) != 0 && error == 0) error = errno;
  if (error == 0 && status == CAIRO_STATUS_SUCCESS &&
      rename(temporary.c_str(), native.c_str()) != 0) {
    error = errno;
  }
  if (error != 0 || status != CAIRO_STATUS_SUCCESS) {
    unlink(temporary.c_str());
    CannotWrite(path, error != 0 ? std::strerror(error) : cairo_status_to_string(status), error);
  }
  // The rename itself reaches the disk with the folder; failing here loses nothing written.
  const size_t slash = native.find_last_of('/');
  const std::string folder =
      slash == std::string::npos ? "." : native.substr(0, std::max<size_t>(slash, 1));
  const int folder_fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder_fd >= 0) {
    fsync(folder_fd);
    close(folder_fd);
  }
}

}  // namespace vantorel::report
