#include "report/pdf/pdf_file.h"

#include <zlib.h>

#include <cmath>
#include <cstdio>

#include "unicode/utf8.h"
#include "vantorel/error.h"

namespace vantorel::report::pdf {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

void AppendUnit(std::string& out, uint32_t unit) {
  for (int shift = 12; shift >= 0; shift -= 4) out += kHex[(unit >> shift) & 0xF];
}

}  // namespace

void AppendNumber(std::string& out, double value) {
  if (!std::isfinite(value)) value = 0;
  value = std::fmax(-1e12, std::fmin(1e12, value));
  auto thousandths = static_cast<int64_t>(std::llround(value * 1000));
  if (thousandths < 0) {
    out += '-';
    thousandths = -thousandths;
  }
  char digits[24];
  int n = 0;
  int64_t whole = thousandths / 1000;
  do {
    digits[n++] = static_cast<char>('0' + whole % 10);
    whole /= 10;
  } while (whole > 0);
  while (n > 0) out += digits[--n];
  int fraction = static_cast<int>(thousandths % 1000);
  if (fraction == 0) return;
  out += '.';
  for (int scale = 100; scale > 0 && fraction > 0; scale /= 10) {
    out += static_cast<char>('0' + fraction / scale);
    fraction %= scale;
  }
}

std::u32string DecodeUtf8(std::string_view text) {
  std::u32string out;
  for (size_t at = 0; at < text.size();) {
    const int32_t code = unicode::NextCodePoint(text, at);
    out += code < 0 ? unicode::kReplacement : static_cast<char32_t>(code);
  }
  return out;
}

void AppendUtf16Hex(std::string& out, std::string_view text) {
  for (const char16_t unit : unicode::Utf8ToUtf16(text)) AppendUnit(out, unit);
}

void AppendTextString(std::string& out, std::string_view text) {
  bool plain = true;
  for (const char c : text) plain = plain && c >= 0x20 && c < 0x7F;
  if (!plain) {
    out += "<FEFF";
    AppendUtf16Hex(out, text);
    out += '>';
    return;
  }
  out += '(';
  for (const char c : text) {
    if (c == '(' || c == ')' || c == '\\') out += '\\';
    out += c;
  }
  out += ')';
}

std::string Deflate(std::string_view bytes) {
  // The last of zlib's fast levels: it costs what level 1 does on a report's streams (repetitive
  // text) and writes a twentieth less; the lazy-matching levels above it cost four times as much
  // (a 230-page stock valuation: +4 % instructions for 7 % fewer bytes).
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string out(size, '\0');
  const int status =
      compress2(reinterpret_cast<Bytef*>(out.data()), &size,
                reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()), 3);
  if (status != Z_OK) {
    throw Error(errnum::kEngineFailure, "Vantorel.Pdf", "Cannot compress a PDF stream");
  }
  out.resize(size);
  return out;
}

PdfFile::PdfFile(Sink sink) : sink_(std::move(sink)) {
  // The second line's high bytes tell transfer programs the file is binary.
  Put("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n");
}

uint32_t PdfFile::Reserve() {
  offsets_.push_back(0);
  return static_cast<uint32_t>(offsets_.size());
}

void PdfFile::Put(std::string_view bytes) {
  sink_(bytes.data(), bytes.size());
  offset_ += bytes.size();
}

void PdfFile::Begin(uint32_t id) {
  offsets_.at(id - 1) = offset_;
  char head[32];
  const int n = std::snprintf(head, sizeof head, "%u 0 obj\n", id);
  Put({head, static_cast<size_t>(n)});
}

void PdfFile::WriteObject(uint32_t id, std::string_view body) {
  Begin(id);
  Put(body);
  Put("\nendobj\n");
}

void PdfFile::WriteStream(uint32_t id, std::string_view dictionary, std::string_view data,
                          bool compress) {
  std::string packed;
  if (compress) packed = Deflate(data);
  const std::string_view body = compress ? std::string_view(packed) : data;
  Begin(id);
  scratch_.assign("<<");
  scratch_ += dictionary;
  scratch_ += "/Length ";
  scratch_ += std::to_string(body.size());
  if (compress) scratch_ += "/Filter/FlateDecode";
  scratch_ += ">>\nstream\n";
  Put(scratch_);
  Put(body);
  Put("\nendstream\nendobj\n");
}

void PdfFile::Finish(uint32_t root, uint32_t info) {
  const uint64_t xref = offset_;
  scratch_.assign("xref\n0 ");
  scratch_ += std::to_string(offsets_.size() + 1);
  scratch_ += "\n0000000000 65535 f \n";
  char entry[24];
  for (const uint64_t at : offsets_) {
    std::snprintf(entry, sizeof entry, "%010llu 00000 n \n", static_cast<unsigned long long>(at));
    scratch_ += entry;
  }
  scratch_ += "trailer\n<</Size " + std::to_string(offsets_.size() + 1) + "/Root " +
              std::to_string(root) + " 0 R/Info " + std::to_string(info) + " 0 R>>\nstartxref\n" +
              std::to_string(xref) + "\n%%EOF\n";
  Put(scratch_);
}

}  // namespace vantorel::report::pdf
