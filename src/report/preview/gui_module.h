// The seam between the engine and its window module, libvantorel-gui.so: the C functions the
// module exports and the loader that finds and opens it. The engine never links GTK; it opens the
// module the first time a window or a desktop message box is wanted.
//
// The module carries its own copy of the drawing, PDF and printing code and sees the caller's
// Document and PreviewSettings by pointer, so loader and module must come from the same build:
// the loader refuses a module whose interface version differs.
//
// Thread-safety: LoadGuiModule may be called from any thread; the module's functions serialise
// themselves, because GTK may be used by one thread at a time only.
#ifndef VANTOREL_REPORT_PREVIEW_GUI_MODULE_H_
#define VANTOREL_REPORT_PREVIEW_GUI_MODULE_H_

#include <cstddef>
#include <cstdlib>
#include <string>

#include "report/document/document.h"
#include "report/preview/preview.h"

// Bumped whenever these functions or Document or PreviewSettings change.
#define VANTOREL_GUI_INTERFACE_VERSION 1

extern "C" {

// VANTOREL_GUI_INTERFACE_VERSION of the build the module comes from.
typedef int (*VantorelGuiInterfaceVersionFn)(void);

// 1 when GTK starts on the display the environment names, 0 otherwise.
typedef int (*VantorelGuiAvailableFn)(void);

// Shows the preview window and returns when it is closed: 0, or an error number (vantorel::errnum)
// with its description in "error" (NUL-terminated, cut to "error_size").
typedef int (*VantorelGuiShowPreviewFn)(const vantorel::report::Document* document,
                                        const vantorel::report::PreviewSettings* settings,
                                        char* error, size_t error_size);

// Shows "text" in a modal dialog with an OK button, with the error icon when "icon" is
// vantorel::MessageIcon::kCritical; returns 1 once it is closed, 0 when there is no display.
typedef int (*VantorelGuiMessageBoxFn)(const char* text, int icon);

// For tests: builds the preview window for "settings" without showing it and writes the names of
// the toolbar's usable controls, comma-separated, to "out" ("first,previous,page,next,…").
// Returns 0, or an error number with the description in "out".
typedef int (*VantorelGuiDescribeToolbarFn)(const vantorel::report::Document* document,
                                            const vantorel::report::PreviewSettings* settings,
                                            char* out, size_t out_size);

// For tests: what the open preview window shows, as "page 2 / 3; zoom 100%; find 0 / 0", or ""
// when no window is open. Safe from any thread: it reads a copy the window keeps up to date.
typedef int (*VantorelGuiStatusFn)(char* out, size_t out_size);

}  // extern "C"

namespace vantorel::report {

inline constexpr const char* kGuiModuleFile = "libvantorel-gui.so";

// The functions of the opened module. The module stays loaded for the life of the process:
// GTK cannot be unloaded.
struct GuiModule {
  std::string path;
  VantorelGuiAvailableFn available = nullptr;
  VantorelGuiShowPreviewFn show_preview = nullptr;
  VantorelGuiMessageBoxFn message_box = nullptr;
  VantorelGuiDescribeToolbarFn describe_toolbar = nullptr;
  VantorelGuiStatusFn status = nullptr;
};

// Finds and opens the module, the first time: the file VANTOREL_GUI_MODULE names, else
// libvantorel-gui.so in the folder of the library or program holding the engine, of the running
// program, of the build tree, of the installed libraries. Throws vantorel::Error listing the
// places looked in when there is none, or saying why it would not load.
const GuiModule& LoadGuiModule();

// True when a display is named by DISPLAY or WAYLAND_DISPLAY.
inline bool DisplayNamed() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

// The error of asking for a window without a display, with what to do instead.
inline std::string NoDisplayMessage() {
  return "No display is available to show the preview. Set RptPDF to write the report to a PDF "
         "file, or RptPrint to send it to the printer, to output it without a window.";
}

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PREVIEW_GUI_MODULE_H_
