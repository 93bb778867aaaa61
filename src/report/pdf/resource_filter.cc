#include "report/pdf/resource_filter.h"

#include <cctype>
#include <set>
#include <string_view>

namespace vantorel::report {
namespace {

constexpr std::string_view kOpening = "/XObject <<";
// A dictionary longer than this is not one Cairo wrote: passed on untouched.
constexpr size_t kLongest = 1 << 20;

bool IsBlank(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

// Blanks every "/name N G R" entry already seen earlier in "entries" (the text between "<<"
// and ">>").
void BlankRepeats(std::string& entries) {
  std::set<std::string> seen;
  size_t at = 0;
  while ((at = entries.find('/', at)) != std::string::npos) {
    size_t end = at + 1;
    // "/name N G R": the fourth token is the "R".
    int tokens = 0;
    size_t cursor = at;
    while (cursor < entries.size() && tokens < 3) {
      while (cursor < entries.size() && !IsBlank(entries[cursor])) ++cursor;
      while (cursor < entries.size() && IsBlank(entries[cursor])) ++cursor;
      ++tokens;
    }
    if (tokens < 3 || cursor >= entries.size() || entries[cursor] != 'R') {
      at = end;
      continue;
    }
    end = cursor + 1;
    std::string key;
    for (size_t i = at; i < end; ++i) {
      if (!IsBlank(entries[i])) {
        key += entries[i];
      } else if (key.back() != ' ') {
        key += ' ';
      }
    }
    if (!seen.insert(key).second) {
      for (size_t i = at; i < end; ++i) entries[i] = ' ';
    }
    at = end;
  }
}

}  // namespace

cairo_status_t ResourceFilter::Write(void* closure, const unsigned char* data,
                                     unsigned int length) {
  return static_cast<ResourceFilter*>(closure)->Take(data, length);
}

cairo_status_t ResourceFilter::Pass(const std::string& bytes) {
  if (bytes.empty()) return CAIRO_STATUS_SUCCESS;
  return next_(closure_, reinterpret_cast<const unsigned char*>(bytes.data()),
               static_cast<unsigned int>(bytes.size()));
}

cairo_status_t ResourceFilter::Take(const unsigned char* data, unsigned int length) {
  const char* bytes = reinterpret_cast<const char*>(data);
  size_t passed = 0;  // bytes of this chunk before "passed" have gone on or into held_
  for (size_t i = 0; i < length; ++i) {
    const char c = bytes[i];
    if (!in_dictionary_) {
      matched_ = c == kOpening[matched_] ? matched_ + 1 : (c == kOpening[0] ? 1 : 0);
      if (matched_ == kOpening.size()) {
        // Everything up to and including "<<" goes on; the entries are held back.
        matched_ = 0;
        in_dictionary_ = true;
        const cairo_status_t status = Pass(std::string(bytes + passed, i + 1 - passed));
        if (status != CAIRO_STATUS_SUCCESS) return status;
        passed = i + 1;
      }
      continue;
    }
    held_ += c;
    passed = i + 1;
    const bool closed = held_.size() >= 2 && held_.compare(held_.size() - 2, 2, ">>") == 0;
    if (closed || held_.size() > kLongest) {
      if (closed) BlankRepeats(held_);
      in_dictionary_ = false;
      const cairo_status_t status = Pass(held_);
      held_.clear();
      if (status != CAIRO_STATUS_SUCCESS) return status;
    }
  }
  if (in_dictionary_) return CAIRO_STATUS_SUCCESS;
  return Pass(std::string(bytes + passed, length - passed));
}

cairo_status_t ResourceFilter::Flush() {
  const cairo_status_t status = Pass(held_);
  held_.clear();
  in_dictionary_ = false;
  return status;
}

}  // namespace vantorel::report
