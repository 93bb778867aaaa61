#include <sys/stat.h>

#include <map>
#include <mutex>

#include "host/native_path.h"
#include "report/binding/report_engine.h"
#include "report/template/template_io.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

struct Entry {
  int64_t size = 0;
  int64_t mtime_ns = 0;
  std::shared_ptr<const CompiledReport> report;
};

std::mutex g_mutex;
std::map<std::string, Entry> g_cache;  // guarded by g_mutex

constexpr size_t kMaxEntries = 256;
// A message box or an error text the host shows: the first problems say what is wrong.
constexpr size_t kMostProblemsShown = 20;

}  // namespace

std::shared_ptr<const CompiledReport> LoadCompiledTemplate(const std::string& path) {
  const std::string native = NativePath(path);
  struct stat info;
  if (::stat(native.c_str(), &info) != 0) {
    throw Error(errnum::kFileNotFound, "Vantorel report engine",
                "Cannot load template " + path + ": the file does not exist");
  }
  const int64_t mtime =
      static_cast<int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
  {
    std::lock_guard lock(g_mutex);
    const auto it = g_cache.find(native);
    if (it != g_cache.end() && it->second.size == info.st_size && it->second.mtime_ns == mtime) {
      return it->second.report;
    }
  }
  std::shared_ptr<const CompiledReport> report;
  try {
    report = CompileTemplateFile(path);
  } catch (const TemplateError& error) {
    throw Error(errnum::kEngineFailure, "Vantorel report engine",
                "Cannot load template " + path + ":\n" +
                    FormatProblems(error.problems(), kMostProblemsShown));
  }
  std::lock_guard lock(g_mutex);
  if (g_cache.size() >= kMaxEntries) g_cache.clear();
  g_cache[native] = {info.st_size, mtime, report};
  return report;
}

}  // namespace vantorel::report
