// The demo dealership's database shared by the test processes of one build: demo_gen writes its
// files (demo.db, data.sql, facts.txt) once, and each database server is loaded with them once
// per start. Each test case runs in a process of its own, so without this every case would make
// the demo and load a server again.
//
// Thread-safety: the functions lock a file, so processes and threads may call them at once.
#ifndef VANTOREL_TESTS_SUPPORT_SHARED_DEMO_H_
#define VANTOREL_TESTS_SUPPORT_SHARED_DEMO_H_

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

namespace vantorel::testing {

// Holds an exclusive lock on "path" (created if need be) for its lifetime.
class FileLock {
 public:
  explicit FileLock(const std::string& path) : fd_(::open(path.c_str(), O_RDWR | O_CREAT, 0644)) {
    if (fd_ < 0 || ::flock(fd_, LOCK_EX) != 0) throw std::runtime_error("cannot lock " + path);
  }
  ~FileLock() {
    if (fd_ >= 0) ::close(fd_);
  }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  int fd_;
};

// Runs "make" once for "folder": under the folder's lock, unless a marker says it ran.
inline void Once(const std::string& folder, const std::string& what,
                 const std::function<void()>& make) {
  std::filesystem::create_directories(folder);
  FileLock lock(folder + "/" + what + ".lock");
  const std::string done = folder + "/" + what + ".done";
  if (std::filesystem::exists(done)) return;
  make();
  std::ofstream(done) << "done\n";
}

// The folder of demo.db, data.sql and facts.txt that "demo_gen" writes, made the first time it
// is asked for after demo_gen was built. A test that changes the database copies demo.db first.
inline std::string SharedDemoFolder(const std::string& demo_gen) {
  const auto stamp = std::filesystem::last_write_time(demo_gen).time_since_epoch().count();
  const std::string folder = std::string(VANTOREL_BUILD_DIR) + "/demo-shared/" +
                             std::to_string(std::filesystem::file_size(demo_gen)) + "-" +
                             std::to_string(stamp);
  Once(folder, "demo", [&] {
    const std::string command = demo_gen + " --sqlite " + folder + "/demo.db --sql " + folder +
                                "/data.sql --facts " + folder + "/facts.txt";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("demo_gen failed");
  });
  return folder;
}

// The folder a server the test fixtures started keeps its data in (the first line of
// "pointer_file", which its script writes), empty when none is running. It goes away with the
// server, so a marker there lasts one start.
inline std::string ServerFolder(const std::string& pointer_file) {
  std::ifstream in(std::string(VANTOREL_BUILD_DIR) + "/" + pointer_file);
  std::string folder;
  std::getline(in, folder);
  return folder;
}

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_SUPPORT_SHARED_DEMO_H_
