#include "support/test_support.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

namespace vantorel::testing {

TempDir::TempDir() {
  std::random_device random;
  const auto base = std::filesystem::temp_directory_path();
  for (;;) {
    path_ = base / ("vantorel-test-" + std::to_string(random()));
    if (std::filesystem::create_directory(path_)) break;
  }
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TempDir::Write(const std::string& name, const std::string& content) const {
  const auto file = path_ / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
  return file.string();
}

TraceCapture::TraceCapture() : file_((dir_.path() / "trace.jsonl").string()) {
  if (const char* previous = std::getenv("VANTOREL_TRACE")) {
    previous_ = previous;
    had_previous_ = true;
  }
  ::setenv("VANTOREL_TRACE", file_.c_str(), 1);
}

TraceCapture::~TraceCapture() {
  if (had_previous_) {
    ::setenv("VANTOREL_TRACE", previous_.c_str(), 1);
  } else {
    ::unsetenv("VANTOREL_TRACE");
  }
}

std::vector<nlohmann::json> TraceCapture::Events() const {
  std::vector<nlohmann::json> events;
  std::ifstream in(file_);
  std::string line;
  while (std::getline(in, line)) events.push_back(nlohmann::json::parse(line));
  return events;
}

std::vector<std::string> TraceCapture::Ops() const {
  std::vector<std::string> ops;
  for (const auto& event : Events()) ops.push_back(event.at("op").get<std::string>());
  return ops;
}

void TraceCapture::Clear() const { std::ofstream(file_, std::ios::trunc); }

PlatformScope::PlatformScope() : platform_(std::make_shared<RecordingPlatform>()) {
  SetPlatform(platform_);
}

PlatformScope::~PlatformScope() { SetPlatform(nullptr); }

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  return content.str();
}

}  // namespace vantorel::testing
