#include "report/pdf/pdf_writer.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <utility>

#include "host/atomic_file.h"
#include "host/native_path.h"
#include "report/pdf/pdf_file.h"
#include "report/pdf/pdf_painter.h"
#include "report/render/draw_page.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kSource[] = "Vantorel.Pdf";
constexpr SizeF kA4 = {595.28f, 841.89f};

SizeF PageSize(const Page& page) {
  return page.size.width > 0 && page.size.height > 0 ? page.size : kA4;
}

std::string CreationDate() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  gmtime_r(&now, &utc);
  char date[32];
  std::strftime(date, sizeof date, "D:%Y%m%d%H%M%SZ", &utc);
  return date;
}

// Writes every page of "document" to "sink": each page's content as it is drawn, the pictures
// as they are first shown, the fonts subset to what the pages showed at the end.
void Render(const Document& document, const pdf::PdfFile::Sink& sink) {
  pdf::PdfFile file(sink);
  const uint32_t catalog = file.Reserve();
  const uint32_t pages = file.Reserve();
  const uint32_t info = file.Reserve();
  pdf::PdfResources resources(file);
  std::string kids;
  size_t count = 0;
  const auto write_page = [&](const Page* page) {
    const SizeF size = page != nullptr ? PageSize(*page) : kA4;
    pdf::PdfPainter painter(resources, size.height);
    // A PDF needs a page; an empty document prints as one blank A4 sheet.
    if (page != nullptr) DrawPage(painter, document, *page);
    const uint32_t content = file.Reserve();
    const uint32_t id = file.Reserve();
    file.WriteStream(content, "", painter.content());
    std::string dict = "<</Type/Page/Parent " + std::to_string(pages) + " 0 R/MediaBox[0 0 ";
    pdf::AppendNumber(dict, size.width);
    dict += ' ';
    pdf::AppendNumber(dict, size.height);
    dict +=
        "]/Resources<<" + painter.Resources() + ">>/Contents " + std::to_string(content) + " 0 R>>";
    file.WriteObject(id, dict);
    kids += std::to_string(id) + " 0 R ";
    ++count;
  };
  if (document.pages.empty()) write_page(nullptr);
  for (const Page& page : document.pages) write_page(&page);
  resources.WriteAll();
  file.WriteObject(pages, "<</Type/Pages/Kids[" + kids + "]/Count " + std::to_string(count) + ">>");
  file.WriteObject(catalog, "<</Type/Catalog/Pages " + std::to_string(pages) + " 0 R>>");

  const Metadata& meta = document.metadata;
  std::string dict = "<</Producer(Vantorel)";
  const std::pair<const char*, const std::string*> fields[] = {{"/Title", &meta.title},
                                                               {"/Author", &meta.author},
                                                               {"/Subject", &meta.subject},
                                                               {"/Creator", &meta.creator}};
  for (const auto& [key, value] : fields) {
    if (value->empty()) continue;
    dict += key;
    pdf::AppendTextString(dict, *value);
  }
  dict += "/CreationDate(" + CreationDate() + ")>>";
  file.WriteObject(info, dict);
  file.Finish(catalog, info);
}

[[noreturn]] void CannotWrite(const std::string& path, const std::string& reason, int error = 0) {
  throw Error(errnum::kPathFileAccess, kSource, "Cannot write " + path + ": " + reason, error);
}

}  // namespace

std::string PdfBytes(const Document& document) {
  std::string bytes;
  Render(document, [&](const char* data, size_t size) { bytes.append(data, size); });
  return bytes;
}

void WritePdf(const Document& document, const std::string& path) {
  AtomicFile file(NativePath(path), path, {.source = kSource});
  // A write error is kept by the file and raised by Commit; later writes are skipped.
  Render(document, [&](const char* data, size_t size) { file.Write(data, size); });
  file.Commit();
}

void StreamPdf(const Document& document, int fd, const std::string& name) {
  int error = 0;  // the first write error, if any
  Render(document, [&](const char* data, size_t size) {
    while (size > 0 && error == 0) {
      const ssize_t written = write(fd, data, size);
      if (written < 0) {
        if (errno != EINTR) error = errno;
        continue;
      }
      data += written;
      size -= static_cast<size_t>(written);
    }
  });
  if (error != 0) CannotWrite(name, std::strerror(error), error);
}

}  // namespace vantorel::report
