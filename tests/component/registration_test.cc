#include "component/registration.h"

#include <stdlib.h>

#include <atomic>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/test_support.h"
#include "vantorel/error.h"
#include "vantorel/identity.h"

namespace vantorel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// The other component's entries a shared registry file may hold.
const char kForeign[] = R"({
  "format": 1,
  "classes": {"{11111111-2222-3333-4444-555555555555}": {"progid": "Other.Thing",
                                                        "library": "/opt/other/libother.so"}},
  "progids": {"Other.Thing": {"clsid": "{11111111-2222-3333-4444-555555555555}"}},
  "typelibs": {"{66666666-7777-8888-9999-000000000000}": {"name": "Other", "version": "2.1"}},
  "interfaces": {},
  "comment": "kept as it is"
})";

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

class RegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    file_ = dir_.path() / "user" / "registry.json";
    ::setenv("VANTOREL_REGISTRY", file_.c_str(), 1);
    ::setenv("VANTOREL_SYSTEM_REGISTRY", (dir_.path() / "system" / "registry.json").c_str(), 1);
  }
  void TearDown() override {
    ::unsetenv("VANTOREL_REGISTRY");
    ::unsetenv("VANTOREL_SYSTEM_REGISTRY");
  }

  json Document() const { return json::parse(ReadFile(file_)); }
  void WriteForeign() const {
    fs::create_directories(file_.parent_path());
    std::ofstream(file_) << kForeign;
  }

  testing::TempDir dir_;
  fs::path file_;
};

TEST(RegistryPath, FollowsTheEnvironment) {
  ::unsetenv("VANTOREL_REGISTRY");
  ::unsetenv("VANTOREL_SYSTEM_REGISTRY");
  ::setenv("HOME", "/home/dealer", 1);
  ::unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(RegistryPath(RegistryScope::kUser), "/home/dealer/.config/vantorel/registry.json");
  ::setenv("XDG_CONFIG_HOME", "relative/ignored", 1);
  EXPECT_EQ(RegistryPath(RegistryScope::kUser), "/home/dealer/.config/vantorel/registry.json");
  ::setenv("XDG_CONFIG_HOME", "/srv/config", 1);
  EXPECT_EQ(RegistryPath(RegistryScope::kUser), "/srv/config/vantorel/registry.json");
  ::setenv("VANTOREL_REGISTRY", "/tmp/elsewhere.json", 1);
  EXPECT_EQ(RegistryPath(RegistryScope::kUser), "/tmp/elsewhere.json");
  EXPECT_EQ(RegistryPath(RegistryScope::kSystem), "/etc/vantorel/registry.json");
  ::setenv("VANTOREL_SYSTEM_REGISTRY", "/stage/etc/vantorel/registry.json", 1);
  EXPECT_EQ(RegistryPath(RegistryScope::kSystem), "/stage/etc/vantorel/registry.json");
}

TEST(ComponentLibraryPath, IsAnAbsolutePathToAFile) {
  const std::string path = ComponentLibraryPath();
  EXPECT_EQ(path.front(), '/');
  EXPECT_TRUE(fs::is_regular_file(path)) << path;
}

TEST(LibraryToRegister, FromAStaticProgramIsTheSharedLibraryOrTheProgram) {
  const fs::path library = LibraryToRegister();
  EXPECT_TRUE(library.filename() == "libvantorel.so.1" || fs::equivalent(library, "/proc/self/exe"))
      << library;
}

TEST_F(RegistrationTest, RegisterWritesTheClassProgIdInterfaceAndTypeLibrary) {
  Register(RegistryScope::kUser);
  const json document = Document();
  const json& entry = document["classes"][VANTOREL_CLSID_TEXT];
  EXPECT_EQ(entry["progid"], "Vantorel.CRepoter");
  EXPECT_EQ(entry["library"], LibraryToRegister());
  EXPECT_EQ(entry["threading_model"], "Apartment");
  EXPECT_EQ(entry["typelib"], VANTOREL_LIBID_TEXT);
  EXPECT_EQ(entry["version"], "1.0");
  EXPECT_EQ(document["progids"]["Vantorel.CRepoter"]["clsid"], VANTOREL_CLSID_TEXT);
  EXPECT_EQ(document["interfaces"][VANTOREL_IID_TEXT]["name"], "_CRepoter");
  EXPECT_EQ(document["typelibs"][VANTOREL_LIBID_TEXT]["name"], "Vantorel");
  EXPECT_EQ(document["typelibs"][VANTOREL_LIBID_TEXT]["version"], "1.0");
  EXPECT_EQ(document["format"], 1);
}

TEST_F(RegistrationTest, RegisterIsIdempotent) {
  Register(RegistryScope::kUser);
  const std::string first = ReadFile(file_);
  Register(RegistryScope::kUser);
  EXPECT_EQ(ReadFile(file_), first);
}

TEST_F(RegistrationTest, RegisterKeepsOtherEntries) {
  WriteForeign();
  Register(RegistryScope::kUser);
  const json document = Document();
  const json foreign = json::parse(kForeign);
  EXPECT_EQ(document["classes"]["{11111111-2222-3333-4444-555555555555}"],
            foreign["classes"]["{11111111-2222-3333-4444-555555555555}"]);
  EXPECT_EQ(document["progids"]["Other.Thing"], foreign["progids"]["Other.Thing"]);
  EXPECT_EQ(document["typelibs"]["{66666666-7777-8888-9999-000000000000}"]["name"], "Other");
  EXPECT_EQ(document["comment"], "kept as it is");
  EXPECT_TRUE(document["classes"].contains(VANTOREL_CLSID_TEXT));
}

TEST_F(RegistrationTest, RegisterReplacesOurEntryWrittenInAnotherCase) {
  fs::create_directories(file_.parent_path());
  std::string clsid = VANTOREL_CLSID_TEXT;
  for (char& c : clsid) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  std::ofstream(file_) << json{{"classes", {{clsid, {{"library", "/old/libvantorel.so"}}}}}};
  Register(RegistryScope::kUser);
  const json document = Document();
  EXPECT_FALSE(document["classes"].contains(clsid));
  EXPECT_EQ(document["classes"].size(), 1u);
}

TEST_F(RegistrationTest, UnregisterRemovesOnlyOurEntries) {
  WriteForeign();
  Register(RegistryScope::kUser);
  Unregister(RegistryScope::kUser);
  EXPECT_EQ(Document(), json::parse(kForeign));
}

TEST_F(RegistrationTest, UnregisterLeavesOurProgIdWhenItNamesAnotherClass) {
  fs::create_directories(file_.parent_path());
  const json taken = {{"progids", {{"Vantorel.CRepoter", {{"clsid", "{0-other}"}}}}}};
  std::ofstream(file_) << taken;
  Unregister(RegistryScope::kUser);
  EXPECT_EQ(Document(), taken);
}

TEST_F(RegistrationTest, UnregisterWithoutAFileCreatesNothing) {
  Unregister(RegistryScope::kUser);
  EXPECT_FALSE(fs::exists(file_));
  EXPECT_FALSE(fs::exists(file_.parent_path()));
}

TEST_F(RegistrationTest, DamagedFileIsLeftAloneAndReported) {
  fs::create_directories(file_.parent_path());
  std::ofstream(file_) << "{ \"classes\": ";
  EXPECT_THROW(Register(RegistryScope::kUser), Error);
  EXPECT_THROW(Unregister(RegistryScope::kUser), Error);
  EXPECT_EQ(ReadFile(file_), "{ \"classes\": ");
}

TEST_F(RegistrationTest, WritesAreAtomicAndLeaveNoTemporaryFiles) {
  WriteForeign();
  std::atomic<bool> done{false};
  std::atomic<int> unreadable{0};
  std::thread reader([&] {
    while (!done) {
      if (json::parse(ReadFile(file_), nullptr, false).is_discarded()) ++unreadable;
    }
  });
  std::thread writer([] {
    for (int i = 0; i < 100; ++i) {
      Register(RegistryScope::kUser);
      Unregister(RegistryScope::kUser);
    }
  });
  for (int i = 0; i < 100; ++i) Register(RegistryScope::kUser);
  writer.join();
  done = true;
  reader.join();
  EXPECT_EQ(unreadable, 0);
  int files = 0;
  for (const auto& entry : fs::directory_iterator(file_.parent_path())) {
    ++files;
    EXPECT_EQ(entry.path().filename(), "registry.json");
  }
  EXPECT_EQ(files, 1);
}

TEST_F(RegistrationTest, LookupFindsTheLibraryByProgIdOrClassIdentifier) {
  EXPECT_EQ(LookupLibrary("Vantorel.CRepoter"), std::nullopt);
  Register(RegistryScope::kUser);
  const std::string library = LibraryToRegister();
  EXPECT_EQ(LookupLibrary("vantorel.crepoter"), library);
  EXPECT_EQ(LookupLibrary("{4147de95-3106-42fb-b4ed-74a90ffaa307}"), library);
  EXPECT_EQ(LookupLibrary("Other.Thing"), std::nullopt);
}

TEST_F(RegistrationTest, LookupFallsBackToTheSystemFile) {
  Register(RegistryScope::kSystem);
  EXPECT_FALSE(fs::exists(file_));
  EXPECT_EQ(LookupLibrary("Vantorel.CRepoter"), LibraryToRegister());
  WriteForeign();  // a per-user file without our class does not hide the system one
  EXPECT_EQ(LookupLibrary("Vantorel.CRepoter"), LibraryToRegister());
}

}  // namespace
}  // namespace vantorel
