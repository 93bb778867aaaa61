// The support trace: with the environment variable VANTOREL_TRACE set to a file path, every
// engine-port call, message box, OpenRs and LastMsg write appends one JSON object per line to that
// file, in call order. docs/trace.md lists the events and their fields.
//
// Thread-safety: each event is appended with one write, so lines of different threads never mix.
#ifndef VANTOREL_HOST_TRACE_H_
#define VANTOREL_HOST_TRACE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace vantorel::trace {

// True when VANTOREL_TRACE names a file; callers may skip building events otherwise.
bool Enabled();

// One trace line under construction: {"op":…, fields in the order added}.
class Event {
 public:
  explicit Event(std::string_view op);
  Event& Text(std::string_view key, std::string_view value);
  Event& Number(std::string_view key, int64_t value);
  Event& Real(std::string_view key, double value);
  Event& Flag(std::string_view key, bool value);
  // Appends the line to the trace file; does nothing when tracing is off. A trace file that
  // cannot be written never fails the call being traced.
  void Write();

 private:
  void Key(std::string_view key);
  std::string line_;
};

// JSON string literal for "text" (quotes included), escaping what JSON requires.
std::string Quote(std::string_view text);

}  // namespace vantorel::trace

#endif  // VANTOREL_HOST_TRACE_H_
