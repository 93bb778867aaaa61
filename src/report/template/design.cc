#include "report/template/design.h"

#include <algorithm>

namespace vantorel::report {

void Written::Forget(std::string_view name) {
  std::erase_if(attributes, [name](const WrittenAttribute& a) { return a.name == name; });
}

const std::string* PartUse::Argument(std::string_view wanted) const {
  for (const auto& argument : arguments) {
    if (argument.first == wanted) return &argument.second;
  }
  return nullptr;
}

const Style* LibraryRef::FindStyle(std::string_view wanted) const {
  const auto found = std::find_if(styles.begin(), styles.end(),
                                  [wanted](const Style& style) { return style.name == wanted; });
  return found == styles.end() ? nullptr : &*found;
}

const Style* Template::FindStyle(std::string_view wanted) const {
  // A style defined twice is a problem of its own; until it is fixed the last one counts.
  const auto found = std::find_if(styles.rbegin(), styles.rend(),
                                  [wanted](const Style& style) { return style.name == wanted; });
  return found == styles.rend() ? nullptr : &*found;
}

}  // namespace vantorel::report
