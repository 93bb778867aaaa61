// What the component needs of the platform: message boxes, file attributes, environment
// variables, regional date settings, today's date and the time of day. The system implementation is
// used unless a host or a test installs its own, so tests pin the clock, the locale and the answers
// of message boxes.
//
// Thread-safety: SetPlatform and SetMessageBoxHandler may be called from any thread; the platform
// in use is kept alive by every caller that holds it. Implementations must be thread-safe.
#ifndef VANTOREL_PLATFORM_H_
#define VANTOREL_PLATFORM_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "vantorel/export.h"
#include "vantorel/types.h"

namespace vantorel {

// The icon of a modal message box with one OK button.
enum class MessageIcon { kNone = 0, kCritical = 16 };

// File attribute bits, as the automation runtime reports them.
constexpr uint32_t kAttributeReadOnly = 1;
constexpr uint32_t kAttributeDirectory = 16;

// The user's regional date settings. "short_date" is a picture in the d/m/y language of the date
// formatter ("dd/mm/yyyy"), where "/" stands for "separator".
struct RegionalDateSettings {
  char separator = '/';
  std::string short_date = "dd/mm/yyyy";
  friend bool operator==(const RegionalDateSettings&, const RegionalDateSettings&) = default;
};

class VANTOREL_EXPORT Platform {
 public:
  virtual ~Platform();

  // Shows "text" in a modal box with an OK button and returns when the user has closed it.
  virtual void ShowMessage(const std::string& text, MessageIcon icon) = 0;

  // Attribute bits of "path" (a host path; backslashes count as separators). Throws an Error with
  // number 53 and the platform's file-not-found description when nothing is there.
  virtual uint32_t FileAttributes(const std::string& path) = 0;

  // The value of the environment variable "name", matched without regard to case as the host's
  // own platform does; nullopt when it is not set.
  virtual std::optional<std::string> Environment(std::string_view name) = 0;

  virtual RegionalDateSettings RegionalDates() = 0;

  virtual Date Today() = 0;

  // The date and time of day now, for the [Now] and [Time] of a print run. Default: Today() at
  // the system clock's local time of day, so a platform written without it keeps working.
  virtual Date Now();
};

// The system's own platform, whatever is installed.
VANTOREL_EXPORT std::shared_ptr<Platform> SystemPlatform();

// The platform in use: the system's, unless SetPlatform installed another.
VANTOREL_EXPORT std::shared_ptr<Platform> CurrentPlatform();

// Installs "platform" for every thread; nullptr restores the system platform.
VANTOREL_EXPORT void SetPlatform(std::shared_ptr<Platform> platform);

// Replaces how the system platform shows message boxes. Default: a dialog when a desktop session
// is there and a graphical front end has been initialised, otherwise one line on stderr. An empty
// handler restores the default.
using MessageBoxHandler = std::function<void(const std::string& text, MessageIcon icon)>;
VANTOREL_EXPORT void SetMessageBoxHandler(MessageBoxHandler handler);

}  // namespace vantorel

#endif  // VANTOREL_PLATFORM_H_
