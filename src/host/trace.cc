#include "host/trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>

namespace vantorel::trace {

bool Enabled() {
  const char* path = std::getenv("VANTOREL_TRACE");
  return path != nullptr && *path != '\0';
}

std::string Quote(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  out += '"';
  for (unsigned char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (c < 0x20) {
          static constexpr char kHex[] = "0123456789abcdef";
          out += "\\u00";
          out += kHex[c >> 4];
          out += kHex[c & 15];
        } else {
          out += static_cast<char>(c);
        }
    }
  }
  out += '"';
  return out;
}

Event::Event(std::string_view op) {
  line_ = "{\"op\":";
  line_ += Quote(op);
}

void Event::Key(std::string_view key) {
  line_ += ',';
  line_ += Quote(key);
  line_ += ':';
}

Event& Event::Text(std::string_view key, std::string_view value) {
  Key(key);
  line_ += Quote(value);
  return *this;
}

Event& Event::Number(std::string_view key, int64_t value) {
  Key(key);
  char buffer[24];
  line_.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
  return *this;
}

Event& Event::Real(std::string_view key, double value) {
  Key(key);
  char buffer[32];
  line_.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
  return *this;
}

Event& Event::Flag(std::string_view key, bool value) {
  Key(key);
  line_ += value ? "true" : "false";
  return *this;
}

void Event::Write() {
  const char* path = std::getenv("VANTOREL_TRACE");
  if (path == nullptr || *path == '\0') return;
  line_ += "}\n";
  const int fd = ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) return;
  const ssize_t written = ::write(fd, line_.data(), line_.size());
  (void)written;
  ::close(fd);
}

}  // namespace vantorel::trace
