#include "host/recording_platform.h"

#include <strings.h>

namespace vantorel {

void RecordingPlatform::ShowMessage(const std::string& text, MessageIcon icon) {
  std::lock_guard lock(mutex_);
  messages_.push_back({text, icon});
}

uint32_t RecordingPlatform::FileAttributes(const std::string& path) {
  return SystemPlatform()->FileAttributes(path);
}

std::optional<std::string> RecordingPlatform::Environment(std::string_view name) {
  std::lock_guard lock(mutex_);
  for (const auto& [key, value] : environment_) {
    if (key.size() == name.size() && ::strncasecmp(key.data(), name.data(), key.size()) == 0) {
      return value;
    }
  }
  return std::nullopt;
}

RegionalDateSettings RecordingPlatform::RegionalDates() {
  std::lock_guard lock(mutex_);
  return regional_;
}

Date RecordingPlatform::Today() {
  std::lock_guard lock(mutex_);
  return today_;
}

Date RecordingPlatform::Now() {
  std::lock_guard lock(mutex_);
  Date::Parts parts = today_.ToParts();
  parts.hour = hour_;
  parts.minute = minute_;
  return Date::FromParts(parts);
}

std::vector<RecordingPlatform::Message> RecordingPlatform::messages() const {
  std::lock_guard lock(mutex_);
  return messages_;
}

void RecordingPlatform::ClearMessages() {
  std::lock_guard lock(mutex_);
  messages_.clear();
}

void RecordingPlatform::SetEnvironment(std::string name, std::string value) {
  std::lock_guard lock(mutex_);
  environment_[std::move(name)] = std::move(value);
}

void RecordingPlatform::SetRegional(RegionalDateSettings regional) {
  std::lock_guard lock(mutex_);
  regional_ = std::move(regional);
}

void RecordingPlatform::SetToday(Date today) {
  std::lock_guard lock(mutex_);
  today_ = today;
}

void RecordingPlatform::SetTimeOfDay(int hour, int minute) {
  std::lock_guard lock(mutex_);
  hour_ = hour;
  minute_ = minute;
}

}  // namespace vantorel
