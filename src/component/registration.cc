#include "component/registration.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pwd.h>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <system_error>

#include "host/atomic_file.h"
#include "vantorel/error.h"
#include "vantorel/identity.h"

namespace vantorel {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr char kSource[] = "Vantorel.CRepoter";
constexpr char kVersion[] = "1.0";
constexpr int kFormat = 1;
constexpr char kSoname[] = "libvantorel.so.1";  // the shared library's SOVERSION is 1

[[noreturn]] void Fail(const std::string& what, const fs::path& path, int error) {
  throw Error(errnum::kPathFileAccess, kSource,
              what + " " + path.string() + ": " + std::strerror(error), error);
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

std::string HomeDirectory() {
  std::string home = Environment("HOME");
  if (!home.empty()) return home;
  struct passwd entry;
  struct passwd* found = nullptr;
  char buffer[4096];
  if (::getpwuid_r(::getuid(), &entry, buffer, sizeof buffer, &found) == 0 && found != nullptr &&
      found->pw_dir != nullptr) {
    return found->pw_dir;
  }
  throw Error(errnum::kPathFileAccess, kSource,
              "Cannot find the home folder for the per-user registry file");
}

bool SameText(std::string_view a, std::string_view b) {
  return a.size() == b.size() && ::strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// The key of "object" equal to "key" without regard to case, or end().
json::iterator FindKey(json& object, std::string_view key) {
  for (auto it = object.begin(); it != object.end(); ++it) {
    if (SameText(it.key(), key)) return it;
  }
  return object.end();
}

void EraseKey(json& document, const char* section, std::string_view key) {
  auto found = document.find(section);
  if (found == document.end() || !found->is_object()) return;
  for (auto it = FindKey(*found, key); it != found->end(); it = FindKey(*found, key)) {
    found->erase(it);
  }
}

json ReadRegistry(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    const int error = errno;
    if (error == ENOENT) return json::object();
    Fail("Cannot read the registry file", path, error);
  }
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (text.find_first_not_of(" \t\r\n") == std::string::npos) return json::object();
  json document = json::parse(text, nullptr, false);
  if (document.is_discarded() || !document.is_object()) {
    // Never overwrite what we cannot read: it may hold other components' entries.
    throw Error(errnum::kPathFileAccess, kSource,
                "The registry file " + path.string() + " is not a JSON object; fix or remove it");
  }
  return document;
}

// Writes "document" to "path" through a temporary file in the same folder renamed over it, so
// readers see the old file or the new one, never a part.
void WriteRegistry(const fs::path& path, const json& document) {
  // Readable by every user whatever the umask: the machine-wide file serves them all.
  AtomicFile file(path.string(), "the registry file " + path.string(),
                  {.source = kSource, .mode = 0644});
  file.Write(document.dump(2, ' ', false, json::error_handler_t::replace) + "\n");
  file.Commit();
}

// Holds an exclusive lock on a folder while one registry file in it is read and rewritten.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : fd_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (fd_ < 0) Fail("Cannot open the registry folder", folder, errno);
    while (::flock(fd_, LOCK_EX) != 0) {
      if (errno != EINTR) {
        const int error = errno;
        ::close(fd_);
        Fail("Cannot lock the registry folder", folder, error);
      }
    }
  }
  ~FolderLock() { ::close(fd_); }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int fd_;
};

// Applies "change" to the registry file of "scope" under the folder lock. When "create" is
// false a missing file stays missing.
void Update(RegistryScope scope, bool create, const std::function<void(json&)>& change) {
  const fs::path path = RegistryPath(scope);
  const fs::path folder = path.parent_path().empty() ? fs::path(".") : path.parent_path();
  if (create) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) Fail("Cannot create the registry folder", folder, error.value());
  } else if (!fs::exists(folder)) {
    return;
  }
  FolderLock lock(folder);
  if (!create && !fs::exists(path)) return;
  json document = ReadRegistry(path);
  const json before = document;
  change(document);
  if (document != before || !fs::exists(path)) WriteRegistry(path, document);
}

json& Section(json& document, const char* name) {
  json& section = document[name];
  if (!section.is_object()) section = json::object();
  return section;
}

// The IDL file installed next to the library, if there is one.
std::optional<std::string> InstalledIdl(const fs::path& library) {
  const fs::path folder = library.parent_path();
  for (const fs::path& candidate :
       {folder / "../share/vantorel/vantorel.idl", folder / "../../share/vantorel/vantorel.idl"}) {
    std::error_code error;
    if (fs::is_regular_file(candidate, error)) return candidate.lexically_normal().string();
  }
  return std::nullopt;
}

std::optional<std::string> LookupIn(const fs::path& path, std::string_view key) {
  json document;
  try {
    document = ReadRegistry(path);
  } catch (const Error&) {
    return std::nullopt;
  }
  std::string clsid(key);
  if (key.empty() || key.front() != '{') {
    auto progids = document.find("progids");
    if (progids == document.end() || !progids->is_object()) return std::nullopt;
    const auto progid = FindKey(*progids, key);
    if (progid == progids->end() || !progid->is_object()) return std::nullopt;
    const auto target = progid->find("clsid");
    if (target == progid->end() || !target->is_string()) return std::nullopt;
    clsid = target->get<std::string>();
  }
  auto classes = document.find("classes");
  if (classes == document.end() || !classes->is_object()) return std::nullopt;
  const auto entry = FindKey(*classes, clsid);
  if (entry == classes->end() || !entry->is_object()) return std::nullopt;
  const auto library = entry->find("library");
  if (library == entry->end() || !library->is_string()) return std::nullopt;
  return library->get<std::string>();
}

}  // namespace

std::string RegistryPath(RegistryScope scope) {
  if (scope == RegistryScope::kSystem) {
    std::string staged = Environment("VANTOREL_SYSTEM_REGISTRY");
    return staged.empty() ? "/etc/vantorel/registry.json" : staged;
  }
  std::string explicit_path = Environment("VANTOREL_REGISTRY");
  if (!explicit_path.empty()) return explicit_path;
  // The XDG rules: a relative XDG_CONFIG_HOME is ignored.
  const std::string config = Environment("XDG_CONFIG_HOME");
  const fs::path base = !config.empty() && config.front() == '/'
                            ? fs::path(config)
                            : fs::path(HomeDirectory()) / ".config";
  return (base / "vantorel" / "registry.json").string();
}

std::string ComponentLibraryPath() {
  static const char anchor = 0;
  Dl_info info{};
  std::string file;
  if (::dladdr(&anchor, &info) != 0 && info.dli_fname != nullptr) file = info.dli_fname;
  std::error_code error;
  if (file.empty() || file.find('/') == std::string::npos) {
    // The main program: dladdr names it as it was started, if at all.
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    if (!error) return self.string();
  }
  const fs::path absolute = fs::absolute(file, error);
  return error ? file : absolute.lexically_normal().string();
}

std::string LibraryToRegister() {
  std::string own = ComponentLibraryPath();
  std::error_code error;
  if (!fs::equivalent(own, "/proc/self/exe", error)) return own;
  // A program with the component linked in: hosts need the shared library instead.
  void* handle = ::dlopen(kSoname, RTLD_LAZY | RTLD_LOCAL);
  if (handle == nullptr) return own;
  std::string shared;
  Dl_info info{};
  void* symbol = ::dlsym(handle, "DllGetClassObject");
  if (symbol != nullptr && ::dladdr(symbol, &info) != 0 && info.dli_fname != nullptr) {
    const fs::path absolute = fs::absolute(info.dli_fname, error);
    if (!error) shared = absolute.lexically_normal().string();
  }
  ::dlclose(handle);
  return shared.empty() ? own : shared;
}

void Register(RegistryScope scope) {
  const std::string library = LibraryToRegister();
  Update(scope, true, [&](json& document) {
    if (!document.contains("format")) document["format"] = kFormat;
    json entry = {{"name", "CRepoter"},
                  {"progid", VANTOREL_PROGID},
                  {"library", library},
                  {"threading_model", "Apartment"},
                  {"typelib", VANTOREL_LIBID_TEXT},
                  {"version", kVersion}};
    EraseKey(document, "classes", VANTOREL_CLSID_TEXT);
    Section(document, "classes")[VANTOREL_CLSID_TEXT] = std::move(entry);
    EraseKey(document, "progids", VANTOREL_PROGID);
    Section(document, "progids")[VANTOREL_PROGID] = {{"clsid", VANTOREL_CLSID_TEXT}};
    EraseKey(document, "interfaces", VANTOREL_IID_TEXT);
    Section(document, "interfaces")[VANTOREL_IID_TEXT] = {{"name", "_CRepoter"},
                                                          {"typelib", VANTOREL_LIBID_TEXT}};
    json typelib = {{"name", VANTOREL_TYPELIB_NAME}, {"version", kVersion}, {"library", library}};
    if (const auto idl = InstalledIdl(library)) typelib["idl"] = *idl;
    EraseKey(document, "typelibs", VANTOREL_LIBID_TEXT);
    Section(document, "typelibs")[VANTOREL_LIBID_TEXT] = std::move(typelib);
  });
}

void Unregister(RegistryScope scope) {
  Update(scope, false, [](json& document) {
    EraseKey(document, "classes", VANTOREL_CLSID_TEXT);
    EraseKey(document, "interfaces", VANTOREL_IID_TEXT);
    EraseKey(document, "typelibs", VANTOREL_LIBID_TEXT);
    // The programmatic identifier goes only while it still names our class.
    auto progids = document.find("progids");
    if (progids == document.end() || !progids->is_object()) return;
    const auto progid = FindKey(*progids, VANTOREL_PROGID);
    if (progid == progids->end()) return;
    const auto clsid = progid->is_object() ? progid->find("clsid") : progid->end();
    if (clsid != progid->end() && clsid->is_string() &&
        SameText(clsid->get<std::string>(), VANTOREL_CLSID_TEXT)) {
      progids->erase(progid);
    }
  });
}

std::optional<std::string> LookupLibrary(std::string_view progid_or_clsid) {
  for (const RegistryScope scope : {RegistryScope::kUser, RegistryScope::kSystem}) {
    std::string path;
    try {
      path = RegistryPath(scope);
    } catch (const Error&) {
      continue;
    }
    if (auto library = LookupIn(path, progid_or_clsid)) return library;
  }
  return std::nullopt;
}

}  // namespace vantorel
