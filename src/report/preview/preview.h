// The preview window: pages of a prepared document on screen, with page navigation, zoom and
// fit, printing, export to PDF (only when allowed), and finding text; returns when the user
// closes it. The window lives in a separately loaded module (libvantorel-gui.so), so the engine
// itself never links GTK and works on machines without a desktop.
//
// Thread-safety: call from one thread at a time; the window runs its own main loop on the
// calling thread.
#ifndef VANTOREL_REPORT_PREVIEW_PREVIEW_H_
#define VANTOREL_REPORT_PREVIEW_PREVIEW_H_

#include <string>

#include "report/document/document.h"

namespace vantorel::report {

struct PreviewSettings {
  std::string title;          // window title. Default: the document's title
  bool allow_export = false;  // offer "Export to PDF…". Default: false
  bool allow_print = true;    // offer "Print…". Default: true
  bool allow_find = true;     // offer finding text. Default: true
  bool maximized = false;     // open maximised. Default: false
  std::string printer;        // the queue "Print…" uses. Default: empty, the default queue
};

// Shows "document" and returns when the window is closed. Throws vantorel::Error when there is
// no display (with what to do instead: write a PDF or print) or the window module cannot load.
void ShowPreview(const Document& document, const PreviewSettings& settings);

// True when a display is available and the window module loads.
bool PreviewAvailable();

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PREVIEW_PREVIEW_H_
