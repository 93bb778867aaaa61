#include "report/preview/preview.h"

#include <dlfcn.h>

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "host/messages.h"
#include "report/preview/gui_module.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSource = "Vantorel report engine";

[[noreturn]] void Fail(const std::string& description) {
  throw Error(errnum::kEngineFailure, kSource, description);
}

std::string FolderOf(const std::string& file) {
  std::error_code error;
  const fs::path path = fs::weakly_canonical(fs::path(file), error);
  return (error ? fs::path(file) : path).parent_path().string();
}

// The folders that may hold the module, in the order they are tried, without repeats.
std::vector<std::string> ModuleFolders() {
  std::vector<std::string> folders;
  auto add = [&folders](const std::string& folder) {
    if (folder.empty()) return;
    for (const std::string& known : folders) {
      if (known == folder) return;
    }
    folders.push_back(folder);
  };
  // The engine's own file: libvantorel.so for hosts, the program itself when linked statically.
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&LoadGuiModule), &info) != 0 && info.dli_fname != nullptr &&
      *info.dli_fname != '\0') {
    add(FolderOf(info.dli_fname));
  }
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (!error) add(program.parent_path().string());
#ifdef VANTOREL_GUI_BUILD_DIR
  add(VANTOREL_GUI_BUILD_DIR);
#endif
#ifdef VANTOREL_GUI_INSTALL_DIR
  add(VANTOREL_GUI_INSTALL_DIR);
#endif
  return folders;
}

// The module file to open: the one VANTOREL_GUI_MODULE names (a file, or a folder holding it),
// else the first of ModuleFolders() that has it.
std::string FindModule() {
  if (const char* named = std::getenv("VANTOREL_GUI_MODULE"); named != nullptr && *named != '\0') {
    std::error_code error;
    fs::path path(named);
    if (fs::is_directory(path, error)) path /= kGuiModuleFile;
    if (!fs::exists(path, error)) {
      Fail("VANTOREL_GUI_MODULE names " + path.string() +
           ", which does not exist. Point it at libvantorel-gui.so or unset it.");
    }
    return path.string();
  }
  const std::vector<std::string> folders = ModuleFolders();
  std::string looked;
  for (const std::string& folder : folders) {
    const fs::path path = fs::path(folder) / kGuiModuleFile;
    std::error_code error;
    if (fs::exists(path, error)) return path.string();
    looked += (looked.empty() ? "" : ", ") + folder;
  }
  Fail(std::string("The preview window needs ") + kGuiModuleFile +
       ", which was not found (looked in " + looked +
       "). Install it beside libvantorel.so or set VANTOREL_GUI_MODULE to its path; or set "
       "RptPDF or RptPrint to output the report without a window.");
}

template <typename Function>
Function Symbol(void* handle, const std::string& path, const char* name) {
  void* symbol = dlsym(handle, name);
  if (symbol == nullptr) Fail(path + " is not a Vantorel window module: it lacks " + name + ".");
  return reinterpret_cast<Function>(symbol);
}

GuiModule OpenModule() {
  GuiModule module;
  module.path = FindModule();
  // Local binding: the module's own copy of the engine code must not stand in for the host's.
  void* handle = dlopen(module.path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    const char* why = dlerror();
    Fail("The preview window module " + module.path +
         " could not be loaded: " + (why != nullptr ? why : "unknown error") +
         ". Check that GTK 3 is installed (libgtk-3-0).");
  }
  const auto version =
      Symbol<VantorelGuiInterfaceVersionFn>(handle, module.path, "vantorel_gui_interface_version");
  if (version() != VANTOREL_GUI_INTERFACE_VERSION) {
    dlclose(handle);
    Fail("The preview window module " + module.path + " belongs to another Vantorel version " +
         "(interface " + std::to_string(version()) + ", this engine needs " +
         std::to_string(VANTOREL_GUI_INTERFACE_VERSION) + "). Install the matching one.");
  }
  module.available = Symbol<VantorelGuiAvailableFn>(handle, module.path, "vantorel_gui_available");
  module.show_preview =
      Symbol<VantorelGuiShowPreviewFn>(handle, module.path, "vantorel_gui_show_preview");
  module.message_box =
      Symbol<VantorelGuiMessageBoxFn>(handle, module.path, "vantorel_gui_message_box");
  module.describe_toolbar =
      Symbol<VantorelGuiDescribeToolbarFn>(handle, module.path, "vantorel_gui_describe_toolbar");
  module.status = Symbol<VantorelGuiStatusFn>(handle, module.path, "vantorel_gui_status");
  return module;
}

// A desktop message box from the window module. When no dialog can be shown after all (no
// module, or GTK cannot open the display), the platform's own line on stderr takes over, for
// this message and the rest of the process.
void DesktopMessageBox(const std::string& text, MessageIcon icon) {
  try {
    if (LoadGuiModule().message_box(text.c_str(), static_cast<int>(icon)) == 1) return;
  } catch (const Error&) {
  }
  SetDesktopMessageBox(nullptr);
  SystemPlatform()->ShowMessage(text, icon);
}

// Offers the dialog as soon as the engine is loaded; the module itself is opened only when a
// message is shown while a display is there.
struct DesktopMessageBoxInstaller {
  DesktopMessageBoxInstaller() { SetDesktopMessageBox(DesktopMessageBox); }
} const desktop_message_box_installer;

}  // namespace

const GuiModule& LoadGuiModule() {
  static std::mutex mutex;
  static std::optional<GuiModule> module;  // guarded by mutex; set once, never changed
  std::lock_guard lock(mutex);
  if (!module) module = OpenModule();
  return *module;
}

void ShowPreview(const Document& document, const PreviewSettings& settings) {
  if (!DisplayNamed()) Fail(NoDisplayMessage());
  const GuiModule& gui = LoadGuiModule();
  std::string error(4096, '\0');
  const int number = gui.show_preview(&document, &settings, error.data(), error.size());
  if (number != 0) throw Error(number, kSource, error.c_str());
}

bool PreviewAvailable() {
  if (!DisplayNamed()) return false;
  try {
    return LoadGuiModule().available() == 1;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace vantorel::report
