// One way to write a file: it appears at its path complete or not at all, and nothing else is
// ever written through that path. The bytes go to a temporary file beside the target, created
// with an unpredictable name and without following links; it is synced and renamed over the
// target only when the target is a regular file or absent, then the folder is synced. A device,
// a FIFO, a folder or a symbolic link at the target is refused. The temporary file is removed on
// every failure, and a program can remove the ones still being written when a signal ends it.
//
// Thread-safety: an AtomicFile is used by one thread at a time; any number may be open at once
// on different threads. RemovePendingTemporaryFiles may run at any time, in a signal handler too.
#ifndef VANTOREL_HOST_ATOMIC_FILE_H_
#define VANTOREL_HOST_ATOMIC_FILE_H_

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vantorel {

struct AtomicFileOptions {
  // The source of the errors raised, as vantorel::Error names it. Default: "Vantorel".
  std::string source = "Vantorel";

  // Permission bits of the file written. Default: those of the file it replaces, or 0666 less
  // the umask for a new file.
  std::optional<mode_t> mode;
};

class AtomicFile {
 public:
  // Opens a temporary file for "path" (a native path). "shown_as" is the path as the caller
  // knows it, for error texts; empty means "path". Throws vantorel::Error (75, "Cannot write
  // <shown_as>: …") when the folder cannot be written or the target is not a regular file.
  AtomicFile(const std::string& path, const std::string& shown_as,
             const AtomicFileOptions& options = {});

  // Removes the temporary file unless Commit succeeded.
  ~AtomicFile();

  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  // Appends "size" bytes. A failure is kept, later writes are ignored, and Commit raises it, so
  // this can be called from a C callback that must not throw.
  void Write(const void* data, size_t size) noexcept;
  void Write(std::string_view bytes) noexcept { Write(bytes.data(), bytes.size()); }

  // True while no write has failed.
  bool ok() const { return error_ == 0; }

  // Syncs the file, renames it over the target (checked again to be a regular file or absent)
  // and syncs the folder. Throws vantorel::Error on the first failure, which leaves the target
  // as it was and removes the temporary file.
  void Commit();

  // The temporary file's name inside the target's folder, for tests.
  const std::string& temporary_name() const { return temporary_; }

 private:
  void Open();
  [[noreturn]] void Fail(int error) const;
  [[noreturn]] void Refuse(mode_t mode) const;
  void Discard() noexcept;

  std::string path_, shown_as_, name_, temporary_;
  AtomicFileOptions options_;
  int folder_fd_ = -1;
  int fd_ = -1;
  int slot_ = -1;  // this file's entry among the pending temporary files, -1 when none
  int error_ = 0;  // the first write error
  bool committed_ = false;
};

// Removes every temporary file an AtomicFile of this process is still writing. Async-signal-safe
// and allocation-free, for a program's SIGTERM and SIGINT handlers; the library itself installs
// no signal handler. Files whose writers raced this call may be left behind, never a target.
void RemovePendingTemporaryFiles() noexcept;

// The longest temporary name for a target named "name" in a folder allowing "name_max" bytes:
// "." + stem + "." + random + ".tmp", the stem shortened (at a character boundary) to fit.
std::string TemporaryName(std::string_view name, std::string_view random, size_t name_max);

}  // namespace vantorel

#endif  // VANTOREL_HOST_ATOMIC_FILE_H_
