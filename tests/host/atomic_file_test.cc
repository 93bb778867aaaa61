#include "host/atomic_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "vantorel/error.h"

namespace vantorel {
namespace {

namespace fs = std::filesystem;

// Every name in "folder".
std::set<std::string> Names(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.insert(entry.path().filename().string());
  }
  return names;
}

struct stat LinkStat(const fs::path& path) {
  struct stat info {};
  EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
  return info;
}

void WriteWhole(const fs::path& path, const std::string& bytes,
                const AtomicFileOptions& options = {}) {
  AtomicFile file(path.string(), "", options);
  file.Write(bytes);
  file.Commit();
}

// Expects constructing or committing an AtomicFile for "path" to fail with a refusal naming it.
void ExpectRefused(const fs::path& path, const std::string& kind) {
  try {
    WriteWhole(path, "new bytes");
    FAIL() << "expected " << path << " to be refused";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kPathFileAccess);
    EXPECT_EQ(error.description(),
              "Cannot write " + path.string() + ": it is not a regular file but " + kind);
  }
}

// Sets the umask for its lifetime.
class UmaskScope {
 public:
  explicit UmaskScope(mode_t mask) : previous_(::umask(mask)) {}
  ~UmaskScope() { ::umask(previous_); }

 private:
  mode_t previous_;
};

class AtomicFileTest : public ::testing::Test {
 protected:
  testing::TempDir dir_;
  fs::path target_ = dir_.path() / "invoice.pdf";
};

TEST_F(AtomicFileTest, NewFileAppearsOnlyOnCommit) {
  AtomicFile file(target_.string(), "");
  file.Write("%PDF-1.7");
  EXPECT_FALSE(fs::exists(target_));
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{file.temporary_name()});
  file.Commit();
  EXPECT_EQ(testing::ReadFile(target_.string()), "%PDF-1.7");
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{"invoice.pdf"});
}

TEST_F(AtomicFileTest, TemporaryFileIsAPlainFileBesideTheTargetWithAnUnguessableName) {
  AtomicFile first(target_.string(), "");
  AtomicFile second(target_.string(), "");
  EXPECT_NE(first.temporary_name(), second.temporary_name());
  for (const AtomicFile* file : {&first, &second}) {
    const std::string& name = file->temporary_name();
    ASSERT_EQ(name.size(), std::string(".invoice.pdf.").size() + 12 + 4) << name;
    EXPECT_EQ(name.rfind(".invoice.pdf.", 0), 0u) << name;
    EXPECT_EQ(name.substr(name.size() - 4), ".tmp") << name;
    const struct stat info = LinkStat(dir_.path() / name);
    EXPECT_TRUE(S_ISREG(info.st_mode)) << name;
    EXPECT_EQ(info.st_nlink, 1u) << name;
  }
}

TEST_F(AtomicFileTest, NewFileGetsTheUsualPermissionsLessTheUmask) {
  const UmaskScope umask(027);
  WriteWhole(target_, "x");
  EXPECT_EQ(LinkStat(target_).st_mode & 07777, 0640u);
}

TEST_F(AtomicFileTest, ReplacedFileKeepsItsPermissions) {
  WriteWhole(target_, "old");
  ASSERT_EQ(::chmod(target_.c_str(), 0600), 0);
  const ino_t before = LinkStat(target_).st_ino;
  WriteWhole(target_, "new");
  const struct stat after = LinkStat(target_);
  EXPECT_EQ(after.st_mode & 07777, 0600u);
  EXPECT_NE(after.st_ino, before) << "renamed into place, not rewritten in place";
  EXPECT_EQ(testing::ReadFile(target_.string()), "new");
}

TEST_F(AtomicFileTest, ChosenPermissionsWinOverTheUmaskAndTheOldFile) {
  const UmaskScope umask(077);
  WriteWhole(target_, "old");
  WriteWhole(target_, "new", {.mode = 0644});
  EXPECT_EQ(LinkStat(target_).st_mode & 07777, 0644u);
}

TEST_F(AtomicFileTest, SymbolicLinkAtTheTargetIsRefusedAndItsFileKept) {
  const std::string victim = dir_.Write("victim.txt", "precious");
  fs::create_symlink(victim, target_);
  ExpectRefused(target_, "a symbolic link");
  EXPECT_TRUE(fs::is_symlink(target_));
  EXPECT_EQ(testing::ReadFile(victim), "precious");
  EXPECT_EQ(Names(dir_.path()), (std::set<std::string>{"invoice.pdf", "victim.txt"}));
}

TEST_F(AtomicFileTest, DanglingSymbolicLinkIsRefusedAndNothingCreated) {
  fs::create_symlink(dir_.path() / "elsewhere.pdf", target_);
  ExpectRefused(target_, "a symbolic link");
  EXPECT_FALSE(fs::exists(dir_.path() / "elsewhere.pdf"));
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{"invoice.pdf"});
}

TEST_F(AtomicFileTest, FifoAtTheTargetIsRefused) {
  ASSERT_EQ(::mkfifo(target_.c_str(), 0600), 0);
  ExpectRefused(target_, "a FIFO");
  EXPECT_TRUE(S_ISFIFO(LinkStat(target_).st_mode));
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{"invoice.pdf"});
}

TEST_F(AtomicFileTest, DeviceIsRefusedAndStaysADevice) {
  ExpectRefused("/dev/null", "a character device");
  EXPECT_TRUE(S_ISCHR(LinkStat("/dev/null").st_mode));
}

TEST_F(AtomicFileTest, FolderIsRefused) {
  fs::create_directory(target_);
  ExpectRefused(target_, "a folder");
  EXPECT_TRUE(fs::is_directory(target_));
}

TEST_F(AtomicFileTest, SymbolicLinkPlantedWhileWritingIsRefusedAtCommit) {
  const std::string victim = dir_.Write("victim.txt", "precious");
  {
    AtomicFile file(target_.string(), "");
    file.Write("new bytes");
    fs::create_symlink(victim, target_);
    try {
      file.Commit();
      FAIL() << "expected the symbolic link to be refused";
    } catch (const Error& error) {
      EXPECT_NE(error.description().find("is not a regular file but a symbolic link"),
                std::string::npos)
          << error.description();
    }
  }
  EXPECT_TRUE(fs::is_symlink(target_));
  EXPECT_EQ(testing::ReadFile(victim), "precious");
  EXPECT_EQ(Names(dir_.path()), (std::set<std::string>{"invoice.pdf", "victim.txt"}));
}

TEST_F(AtomicFileTest, FileAppearingWhileWritingIsReplacedWhenRegular) {
  AtomicFile file(target_.string(), "");
  file.Write("new");
  dir_.Write("invoice.pdf", "written meanwhile");
  file.Commit();
  EXPECT_EQ(testing::ReadFile(target_.string()), "new");
}

TEST_F(AtomicFileTest, AbandonedFileLeavesNothing) {
  WriteWhole(target_, "old");
  {
    AtomicFile file(target_.string(), "");
    file.Write("half of it");
  }
  EXPECT_EQ(testing::ReadFile(target_.string()), "old");
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{"invoice.pdf"});
}

TEST_F(AtomicFileTest, WriteErrorIsRaisedAtCommitAndLeavesNothing) {
  // The file size limit makes the write fail with EFBIG instead of a signal.
  struct sigaction ignore = {}, previous;
  ignore.sa_handler = SIG_IGN;
  ASSERT_EQ(::sigaction(SIGXFSZ, &ignore, &previous), 0);
  struct rlimit old_limit;
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old_limit), 0);
  struct rlimit small = old_limit;
  small.rlim_cur = 16;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  {
    AtomicFile file(target_.string(), "the export");
    file.Write(std::string(100, 'x'));
    EXPECT_FALSE(file.ok());
    try {
      file.Commit();
      ADD_FAILURE() << "expected a write error";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), errnum::kPathFileAccess);
      EXPECT_EQ(error.system_code(), EFBIG);
      EXPECT_EQ(error.description(), "Cannot write the export: File too large");
    }
  }
  ::setrlimit(RLIMIT_FSIZE, &old_limit);
  ::sigaction(SIGXFSZ, &previous, nullptr);
  EXPECT_TRUE(Names(dir_.path()).empty());
}

TEST_F(AtomicFileTest, MissingFolderNamesThePath) {
  try {
    WriteWhole(dir_.path() / "no-such-folder" / "x.pdf", "x");
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Cannot write " +
                                       (dir_.path() / "no-such-folder/x.pdf").string() +
                                       ": No such file or directory");
    EXPECT_EQ(error.system_code(), ENOENT);
  }
}

TEST_F(AtomicFileTest, LongestFileNameWorks) {
  const long name_max = ::pathconf(dir_.path().c_str(), _PC_NAME_MAX);
  ASSERT_GT(name_max, 20);
  const std::string name(static_cast<size_t>(name_max) - 4, 'n');
  WriteWhole(dir_.path() / (name + ".pdf"), "x");
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{name + ".pdf"});
  EXPECT_THROW(WriteWhole(dir_.path() / (name + "x.pdf"), "x"), Error) << "one byte too long";
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{name + ".pdf"});
}

TEST(TemporaryName, ShortensTheStemToFitAtACharacterBoundary) {
  EXPECT_EQ(TemporaryName("a.pdf", "r4nd0m", 255), ".a.pdf.r4nd0m.tmp");
  EXPECT_EQ(TemporaryName(std::string(255, 'a'), "r4nd0m", 255),
            "." + std::string(243, 'a') + ".r4nd0m.tmp");
  // Devanagari letters are three bytes each: the stem ends before a cut letter.
  std::string devanagari;
  for (int i = 0; i < 85; ++i) devanagari += "क";
  const std::string name = TemporaryName(devanagari, "r4nd0m7", 255);
  EXPECT_LE(name.size(), 255u);
  EXPECT_EQ(name, "." + devanagari.substr(0, 240) + ".r4nd0m7.tmp");
}

TEST_F(AtomicFileTest, PendingTemporaryFilesAreRemovedOnRequest) {
  WriteWhole(target_, "old");
  {
    AtomicFile file(target_.string(), "");
    file.Write("new");
    AtomicFile other((dir_.path() / "other.pdf").string(), "");
    RemovePendingTemporaryFiles();
    EXPECT_EQ(Names(dir_.path()), std::set<std::string>{"invoice.pdf"});
    EXPECT_THROW(file.Commit(), Error) << "its temporary file is gone";
  }
  EXPECT_EQ(testing::ReadFile(target_.string()), "old");
  // The slots are free again: a later file is written and committed as usual.
  WriteWhole(target_, "newer");
  RemovePendingTemporaryFiles();
  EXPECT_EQ(testing::ReadFile(target_.string()), "newer");
}

TEST_F(AtomicFileTest, MoreFilesAtOnceThanPendingSlotsStillWork) {
  std::vector<std::unique_ptr<AtomicFile>> files;
  for (int i = 0; i < 100; ++i) {
    files.push_back(std::make_unique<AtomicFile>((dir_.path() / std::to_string(i)).string(), ""));
    files.back()->Write(std::to_string(i));
  }
  for (auto& file : files) file->Commit();
  files.clear();
  EXPECT_EQ(Names(dir_.path()).size(), 100u);
  EXPECT_EQ(testing::ReadFile((dir_.path() / "99").string()), "99");
}

TEST_F(AtomicFileTest, HundredsOfWritesLeaveNoStrayFiles) {
  for (int i = 0; i < 200; ++i) WriteWhole(target_, std::to_string(i));
  EXPECT_EQ(Names(dir_.path()), std::set<std::string>{"invoice.pdf"});
  EXPECT_TRUE(S_ISREG(LinkStat(target_).st_mode));
  EXPECT_EQ(testing::ReadFile(target_.string()), "199");
}

}  // namespace
}  // namespace vantorel
