// The bytes of a PDF file: numbered objects written one after another to a sink, their offsets
// kept for the cross-reference table, streams compressed with Flate, and numbers written in the
// short fixed form PDF readers expect. Knows nothing of pages or fonts.
//
// Thread-safety: one PdfFile per file being written.
#ifndef VANTOREL_REPORT_PDF_PDF_FILE_H_
#define VANTOREL_REPORT_PDF_PDF_FILE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vantorel::report::pdf {

// Appends "value" with at most three decimals and no trailing zeros ("12.5", "-0.333", "7").
// Values beyond ±10^12 are clamped: no page coordinate is that large.
void AppendNumber(std::string& out, double value);

// Appends "text" as a PDF text string: a literal string when it is printable ASCII, else
// UTF-16BE with a byte order mark in hex. Invalid UTF-8 bytes become U+FFFD.
void AppendTextString(std::string& out, std::string_view text);

// Appends "text" as UTF-16BE hex digits, without brackets or byte order mark.
void AppendUtf16Hex(std::string& out, std::string_view text);

// The code points of "text"; invalid UTF-8 bytes become U+FFFD.
std::u32string DecodeUtf8(std::string_view text);

// Deflates "bytes" (zlib format, as FlateDecode reads it).
std::string Deflate(std::string_view bytes);

class PdfFile {
 public:
  using Sink = std::function<void(const char* data, size_t size)>;

  // Writes the header at once.
  explicit PdfFile(Sink sink);

  // A number for an object written later.
  uint32_t Reserve();

  // Writes object "id" (from Reserve) with "body" (a dictionary, array or other value).
  void WriteObject(uint32_t id, std::string_view body);

  // Writes a stream object: "dictionary" holds the entries besides /Length and /Filter, without
  // its brackets. "compress" deflates "data" first and adds /Filter /FlateDecode.
  void WriteStream(uint32_t id, std::string_view dictionary, std::string_view data,
                   bool compress = true);

  // Writes the cross-reference table and trailer naming "root" and "info". Every reserved object
  // must have been written.
  void Finish(uint32_t root, uint32_t info);

 private:
  void Put(std::string_view bytes);
  void Begin(uint32_t id);

  Sink sink_;
  uint64_t offset_ = 0;
  std::vector<uint64_t> offsets_;  // by object number - 1; 0 until written
  std::string scratch_;
};

}  // namespace vantorel::report::pdf

#endif  // VANTOREL_REPORT_PDF_PDF_FILE_H_
