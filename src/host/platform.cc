#include <errno.h>
#include <langinfo.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>

#include "host/date_format.h"
#include "host/messages.h"
#include "host/native_path.h"
#include "host/trace.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

extern char** environ;

namespace vantorel {
namespace {

std::mutex g_mutex;
std::shared_ptr<Platform> g_platform;  // guarded by g_mutex; null means the system platform
MessageBoxHandler g_handler;           // guarded by g_mutex

// Guarded by g_mutex. Made on first use, not as a global, because the preview loader installs it
// from its own static initialiser, which may run before this file's.
MessageBoxHandler& DesktopMessageBox() {
  static MessageBoxHandler handler;
  return handler;
}

std::string OneLine(const std::string& text) {
  std::string line = text;
  for (char& c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  return line;
}

class LinuxPlatform final : public Platform {
 public:
  void ShowMessage(const std::string& text, MessageIcon icon) override {
    MessageBoxHandler handler;
    {
      std::lock_guard lock(g_mutex);
      handler = g_handler;
      if (!handler && DesktopMessageBox() && HasDesktop()) handler = DesktopMessageBox();
    }
    if (handler) {
      handler(text, icon);
      return;
    }
    const std::string line =
        std::string(icon == MessageIcon::kCritical ? "vantorel: error: " : "vantorel: ") +
        OneLine(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
  }

  uint32_t FileAttributes(const std::string& path) override {
    struct stat info;
    if (::stat(NativePath(path).c_str(), &info) != 0) {
      const int error = errno;
      const int32_t number =
          error == ENOENT || error == ENOTDIR ? errnum::kFileNotFound : errnum::kPathFileAccess;
      throw Error(number, "Vantorel.CRepoter", std::string(std::strerror(error)) + ": " + path,
                  error);
    }
    uint32_t attributes = 0;
    if (S_ISDIR(info.st_mode)) attributes |= kAttributeDirectory;
    if (::access(NativePath(path).c_str(), W_OK) != 0) attributes |= kAttributeReadOnly;
    return attributes;
  }

  std::optional<std::string> Environment(std::string_view name) override {
    // An exact match wins; otherwise the first variable whose name matches without case.
    if (const char* exact = std::getenv(std::string(name).c_str())) return std::string(exact);
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
      const char* equals = std::strchr(*entry, '=');
      if (equals == nullptr || static_cast<size_t>(equals - *entry) != name.size()) continue;
      if (::strncasecmp(*entry, name.data(), name.size()) == 0) return std::string(equals + 1);
    }
    return std::nullopt;
  }

  RegionalDateSettings RegionalDates() override {
    // The user's locale from the environment, not the process's C locale a library must not
    // change; the C and POSIX locales and forms with month names fall back to dd/mm/yyyy.
    locale_t locale = ::newlocale(LC_TIME_MASK, "", nullptr);
    if (locale == nullptr) return RegionalDateSettings{};
    std::optional<RegionalDateSettings> settings;
    const char* name = ::nl_langinfo_l(_NL_LOCALE_NAME(LC_TIME), locale);
    const bool plain_c = name == nullptr || std::strcmp(name, "C") == 0 ||
                         std::strcmp(name, "POSIX") == 0 || std::strncmp(name, "C.", 2) == 0;
    if (!plain_c) settings = RegionalFromDateFormat(::nl_langinfo_l(D_FMT, locale));
    ::freelocale(locale);
    return settings.value_or(RegionalDateSettings{});
  }

  Date Today() override {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return Date::FromYmd(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  }

 private:
  static bool HasDesktop() {
    const char* display = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (display != nullptr && *display != '\0') || (wayland != nullptr && *wayland != '\0');
  }
};

}  // namespace

Platform::~Platform() = default;

Date Platform::Now() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  Date::Parts parts = Today().ToParts();
  parts.hour = local.tm_hour;
  parts.minute = local.tm_min;
  parts.second = local.tm_sec;
  return Date::FromParts(parts);
}

std::shared_ptr<Platform> SystemPlatform() {
  static const std::shared_ptr<Platform> system = std::make_shared<LinuxPlatform>();
  return system;
}

std::shared_ptr<Platform> CurrentPlatform() {
  std::lock_guard lock(g_mutex);
  return g_platform ? g_platform : SystemPlatform();
}

void SetPlatform(std::shared_ptr<Platform> platform) {
  std::lock_guard lock(g_mutex);
  g_platform = std::move(platform);
}

void SetMessageBoxHandler(MessageBoxHandler handler) {
  std::lock_guard lock(g_mutex);
  g_handler = std::move(handler);
}

void SetDesktopMessageBox(MessageBoxHandler handler) {
  std::lock_guard lock(g_mutex);
  DesktopMessageBox() = std::move(handler);
}

void ShowMessage(const std::string& text, MessageIcon icon) {
  trace::Event("MessageBox")
      .Text("text", text)
      .Text("icon", icon == MessageIcon::kCritical ? "critical" : "none")
      .Write();
  CurrentPlatform()->ShowMessage(text, icon);
}

}  // namespace vantorel
