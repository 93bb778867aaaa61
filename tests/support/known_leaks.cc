// Leaks the sanitizer runs must not blame on us. Pango loads fontconfig's default configuration
// once per process (in a thread of its own, whatever configuration we give our font maps), and
// fontconfig 2.14 loses a few hundred bytes parsing the system's configuration files. Its frames
// cannot be unwound past the library, so the whole library is named.
#include <sanitizer/lsan_interface.h>

extern "C" __attribute__((visibility("default"), used)) const char* __lsan_default_suppressions() {
  return "leak:libfontconfig.so\n";
}
