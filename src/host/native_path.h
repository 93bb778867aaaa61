// Host paths arrive written the host's way ("C:\App\export.pdf", a template folder ending in a
// backslash). On POSIX a backslash in such a path is taken as a separator when the file is
// opened; the text itself (in the report state, in messages) is never changed.
#ifndef VANTOREL_HOST_NATIVE_PATH_H_
#define VANTOREL_HOST_NATIVE_PATH_H_

#include <string>
#include <string_view>

namespace vantorel {

inline std::string NativePath(std::string_view path) {
  std::string native(path);
#ifndef _WIN32
  for (char& c : native) {
    if (c == '\\') c = '/';
  }
#endif
  return native;
}

}  // namespace vantorel

#endif  // VANTOREL_HOST_NATIVE_PATH_H_
