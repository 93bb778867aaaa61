// Shared helpers for tests: temporary folders, the support trace read back as JSON, and a
// recording platform installed for the test's duration.
#ifndef VANTOREL_TESTS_SUPPORT_TEST_SUPPORT_H_
#define VANTOREL_TESTS_SUPPORT_TEST_SUPPORT_H_

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "host/recording_platform.h"

namespace vantorel::testing {

// A fresh folder under the system's temporary folder, removed with everything in it at the end.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The folder as a host writes a report folder: with a trailing separator.
  std::string folder() const { return path_.string() + "/"; }
  // Writes "content" to "name" inside the folder and returns its full path.
  std::string Write(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path path_;
};

// Points VANTOREL_TRACE at a file of its own for its lifetime and reads the events back.
class TraceCapture {
 public:
  TraceCapture();
  ~TraceCapture();
  std::vector<nlohmann::json> Events() const;
  // The "op" of every event, in order.
  std::vector<std::string> Ops() const;
  void Clear() const;

 private:
  TempDir dir_;
  std::string file_;
  std::string previous_;
  bool had_previous_ = false;
};

// Installs a RecordingPlatform for its lifetime.
class PlatformScope {
 public:
  PlatformScope();
  ~PlatformScope();
  RecordingPlatform& operator*() const { return *platform_; }
  RecordingPlatform* operator->() const { return platform_.get(); }

 private:
  std::shared_ptr<RecordingPlatform> platform_;
};

std::string ReadFile(const std::string& path);

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_SUPPORT_TEST_SUPPORT_H_
