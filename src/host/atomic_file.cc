#include "host/atomic_file.h"

#include <fcntl.h>
#include <limits.h>
#include <sched.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

#include "vantorel/error.h"

namespace vantorel {
namespace {

// The temporary files being written, kept where a signal handler can read them without locks or
// allocation: a fixed table of slots, each owned by one AtomicFile at a time. A slot's name and
// folder are written while it is kFilling and read only while it is kArmed or kRemoving.
enum SlotState : int { kFree, kFilling, kArmed, kRemoving, kRemoved };

struct PendingSlot {
  std::atomic<int> state{kFree};
  int folder_fd = -1;
  char name[NAME_MAX + 1] = {};
};

static_assert(std::atomic<int>::is_always_lock_free, "signal handlers need lock-free atomics");

constexpr int kSlots = 64;
PendingSlot g_pending[kSlots];

// Returns the slot now holding "name" in "folder_fd", or -1 when every slot is taken (the file
// is then still removed on every failure, only not by a signal handler).
int Arm(int folder_fd, const std::string& name) {
  if (name.size() > NAME_MAX) return -1;
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (!g_pending[i].state.compare_exchange_strong(expected, kFilling,
                                                    std::memory_order_acquire)) {
      continue;
    }
    g_pending[i].folder_fd = folder_fd;
    std::memcpy(g_pending[i].name, name.c_str(), name.size() + 1);
    g_pending[i].state.store(kArmed, std::memory_order_release);
    return i;
  }
  return -1;
}

void Disarm(int slot) {
  if (slot < 0) return;
  std::atomic<int>& state = g_pending[slot].state;
  int expected = kArmed;
  while (!state.compare_exchange_weak(expected, kFree, std::memory_order_acq_rel)) {
    if (expected == kRemoved) {
      state.store(kFree, std::memory_order_release);
      return;
    }
    // Another thread's handler is unlinking this file; it is done in a moment.
    if (expected == kRemoving) sched_yield();
    expected = kArmed;
  }
}

const char* Kind(mode_t mode) {
  if (S_ISLNK(mode)) return "a symbolic link";
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISCHR(mode)) return "a character device";
  if (S_ISBLK(mode)) return "a block device";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISSOCK(mode)) return "a socket";
  return "an unknown kind of file";
}

// Twelve letters or digits from the kernel's random source: 60 bits, so the name cannot be
// guessed ahead of time. O_EXCL keeps a guessed name harmless anyway; this keeps it unlikely.
std::string RandomSuffix() {
  static constexpr char kAlphabet[] = "abcdefghijklmnopqrstuvwxyz234567";
  unsigned char bytes[12];
  size_t filled = 0;
  while (filled < sizeof bytes) {
    const ssize_t n = getrandom(bytes + filled, sizeof bytes - filled, 0);
    if (n > 0) {
      filled += static_cast<size_t>(n);
    } else if (n < 0 && errno != EINTR) {
      // No random source at all (a very old kernel): the clock still varies from try to try.
      const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
      for (size_t i = filled; i < sizeof bytes; ++i) {
        bytes[i] = static_cast<unsigned char>((now >> (i % 8 * 8)) ^ (getpid() >> i));
      }
      filled = sizeof bytes;
    }
  }
  std::string suffix;
  for (unsigned char byte : bytes) suffix += kAlphabet[byte % 32];
  return suffix;
}

}  // namespace

std::string TemporaryName(std::string_view name, std::string_view random, size_t name_max) {
  const size_t extra = random.size() + 6;  // ".", ".", ".tmp"
  size_t keep = name.size();
  if (keep + extra > name_max) {
    keep = name_max > extra ? name_max - extra : 0;
    // Never cut a UTF-8 character in two.
    while (keep > 0 && (static_cast<unsigned char>(name[keep]) & 0xC0) == 0x80) --keep;
  }
  std::string temporary = ".";
  temporary += name.substr(0, keep);
  temporary += '.';
  temporary += random;
  temporary += ".tmp";
  return temporary;
}

void RemovePendingTemporaryFiles() noexcept {
  for (PendingSlot& slot : g_pending) {
    int expected = kArmed;
    if (!slot.state.compare_exchange_strong(expected, kRemoving, std::memory_order_acquire)) {
      continue;
    }
    const int saved = errno;  // a handler must leave errno as it found it
    unlinkat(slot.folder_fd, slot.name, 0);
    errno = saved;
    slot.state.store(kRemoved, std::memory_order_release);
  }
}

AtomicFile::AtomicFile(const std::string& path, const std::string& shown_as,
                       const AtomicFileOptions& options)
    : path_(path), shown_as_(shown_as.empty() ? path : shown_as), options_(options) {
  try {
    Open();
  } catch (...) {
    Discard();
    throw;
  }
}

void AtomicFile::Open() {
  const size_t slash = path_.find_last_of('/');
  const std::string folder = slash == std::string::npos ? "."
                             : slash == 0               ? "/"
                                                        : path_.substr(0, slash);
  name_ = slash == std::string::npos ? path_ : path_.substr(slash + 1);
  if (name_.empty() || name_ == "." || name_ == "..") Refuse(S_IFDIR);
  folder_fd_ = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder_fd_ < 0) Fail(errno);

  struct stat target;
  const bool replacing = fstatat(folder_fd_, name_.c_str(), &target, AT_SYMLINK_NOFOLLOW) == 0;
  if (!replacing && errno != ENOENT) Fail(errno);
  if (replacing && !S_ISREG(target.st_mode)) Refuse(target.st_mode);

  const long name_max = fpathconf(folder_fd_, _PC_NAME_MAX);
  for (int attempt = 0; fd_ < 0; ++attempt) {
    temporary_ = TemporaryName(name_, RandomSuffix(), name_max > 0 ? name_max : NAME_MAX);
    // Armed before it exists, so that no moment is left where a signal would miss it.
    slot_ = Arm(folder_fd_, temporary_);
    fd_ = openat(folder_fd_, temporary_.c_str(),
                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd_ >= 0) break;
    const int error = errno;
    Disarm(slot_);
    slot_ = -1;
    temporary_.clear();
    if (error != EEXIST || attempt == 16) Fail(error);
  }

  std::optional<mode_t> mode = options_.mode;
  if (replacing) {
    // Ours when we may: a file root replaces for a user stays the user's. A failure to change
    // the owner only leaves the file ours.
    if (target.st_uid != geteuid() || target.st_gid != getegid()) {
      [[maybe_unused]] const int ignored = fchown(fd_, target.st_uid, target.st_gid);
    }
    if (!mode) mode = target.st_mode & 0777;
  }
  if (mode && fchmod(fd_, *mode) != 0) Fail(errno);
}

AtomicFile::~AtomicFile() { Discard(); }

void AtomicFile::Write(const void* data, size_t size) noexcept {
  const char* bytes = static_cast<const char*>(data);
  while (size > 0 && error_ == 0) {
    const ssize_t written = write(fd_, bytes, size);
    if (written < 0) {
      if (errno != EINTR) error_ = errno;
      continue;
    }
    bytes += written;
    size -= static_cast<size_t>(written);
  }
}

void AtomicFile::Commit() {
  if (fd_ < 0 || committed_) Fail(EBADF);
  if (error_ != 0) Fail(error_);
  if (fsync(fd_) != 0) Fail(errno);
  const int fd = fd_;
  fd_ = -1;
  if (close(fd) != 0) Fail(errno);

  // Checked again: something may have been put at the target while we wrote. Where the target
  // is absent it must stay so until the rename, or the rename is refused and checked once more.
  for (int attempt = 0;; ++attempt) {
    struct stat target;
    if (fstatat(folder_fd_, name_.c_str(), &target, AT_SYMLINK_NOFOLLOW) == 0) {
      if (!S_ISREG(target.st_mode)) Refuse(target.st_mode);
      if (renameat(folder_fd_, temporary_.c_str(), folder_fd_, name_.c_str()) != 0) Fail(errno);
      break;
    }
    if (errno != ENOENT) Fail(errno);
    if (renameat2(folder_fd_, temporary_.c_str(), folder_fd_, name_.c_str(), RENAME_NOREPLACE) ==
        0) {
      break;
    }
    if (errno == EINVAL || errno == ENOSYS) {
      // A file system without RENAME_NOREPLACE: the check just made is the last one.
      if (renameat(folder_fd_, temporary_.c_str(), folder_fd_, name_.c_str()) != 0) Fail(errno);
      break;
    }
    if (errno != EEXIST || attempt == 3) Fail(errno);
  }
  committed_ = true;
  Disarm(slot_);
  slot_ = -1;
  // The rename reaches the disk with the folder; failing here loses nothing already written.
  fsync(folder_fd_);
  close(folder_fd_);
  folder_fd_ = -1;
}

void AtomicFile::Fail(int error) const {
  throw Error(errnum::kPathFileAccess, options_.source,
              "Cannot write " + shown_as_ + ": " + std::strerror(error), error);
}

void AtomicFile::Refuse(mode_t mode) const {
  throw Error(errnum::kPathFileAccess, options_.source,
              "Cannot write " + shown_as_ + ": it is not a regular file but " + Kind(mode));
}

void AtomicFile::Discard() noexcept {
  if (fd_ >= 0) {
    close(fd_);
    fd_ = -1;
  }
  if (!committed_ && !temporary_.empty() && folder_fd_ >= 0) {
    unlinkat(folder_fd_, temporary_.c_str(), 0);
  }
  Disarm(slot_);
  slot_ = -1;
  if (folder_fd_ >= 0) {
    close(folder_fd_);
    folder_fd_ = -1;
  }
}

}  // namespace vantorel
