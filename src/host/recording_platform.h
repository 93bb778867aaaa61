// A platform double for tests: records message boxes instead of showing them and answers file,
// environment, regional and clock questions from what the test set up.
//
// Thread-safety: all members may be called from any thread.
#ifndef VANTOREL_HOST_RECORDING_PLATFORM_H_
#define VANTOREL_HOST_RECORDING_PLATFORM_H_

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "vantorel/platform.h"

namespace vantorel {

class RecordingPlatform final : public Platform {
 public:
  struct Message {
    std::string text;
    MessageIcon icon;
    friend bool operator==(const Message&, const Message&) = default;
  };

  // Files come from the real file system, so tests can use real template folders.
  void ShowMessage(const std::string& text, MessageIcon icon) override;
  uint32_t FileAttributes(const std::string& path) override;
  std::optional<std::string> Environment(std::string_view name) override;
  RegionalDateSettings RegionalDates() override;
  Date Today() override;
  // Today() at the time of day the test set (10:30 unless it set one).
  Date Now() override;

  std::vector<Message> messages() const;
  void ClearMessages();
  // Environment variables the double knows; any other name is unset.
  void SetEnvironment(std::string name, std::string value);
  void SetRegional(RegionalDateSettings regional);
  void SetToday(Date today);
  void SetTimeOfDay(int hour, int minute);

 private:
  mutable std::mutex mutex_;
  std::vector<Message> messages_;
  std::map<std::string, std::string> environment_;
  RegionalDateSettings regional_;
  Date today_ = Date::FromYmd(2024, 3, 31);
  int hour_ = 10;
  int minute_ = 30;
};

}  // namespace vantorel

#endif  // VANTOREL_HOST_RECORDING_PLATFORM_H_
