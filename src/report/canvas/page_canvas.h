// A GTK widget that shows the pages of a prepared document: drawn by DrawPage, white with a
// shadow on a grey background, at a zoom (steps, fitting the width or the page, Ctrl + mouse
// wheel around the pointer) and scrolled. The preview window shows its document in one, and
// the designer can show the page it edits in one; whatever such a window offers around it
// (toolbars, keys, marks on the page) is that window's, through the calls below.
//
// The arithmetic of zoom and scrolling is CanvasView's (canvas_view.h); this class hands it
// GTK's sizes and scroll positions and draws what it says.
//
// Thread-safety: GTK's. Use from the thread that runs GTK's main loop.
#ifndef VANTOREL_REPORT_CANVAS_PAGE_CANVAS_H_
#define VANTOREL_REPORT_CANVAS_PAGE_CANVAS_H_

#include <cairo.h>
#include <gtk/gtk.h>

#include <cstddef>
#include <functional>
#include <optional>

#include "report/canvas/canvas_view.h"
#include "report/canvas/zoom.h"
#include "report/document/document.h"

namespace vantorel::report::canvas {

// Where a window's marks go: under a page's items (a highlight the text stays readable over)
// or over them (an outline, a selection's handles).
enum class MarkLayer { kUnderItems, kOverItems };

// Paints a window's marks on page "page" in "layer". "cr" is in page points, clipped to the
// page.
using PageMarks = std::function<void(cairo_t* cr, size_t page, MarkLayer layer)>;

class PageCanvas {
 public:
  // A canvas over "document", which the caller keeps alive and unchanged while the canvas
  // exists, in "flow", at 100%, showing the first page. GTK must have been started.
  explicit PageCanvas(const Document& document, PageFlow flow = PageFlow::kOnePage);
  ~PageCanvas();

  PageCanvas(const PageCanvas&) = delete;
  PageCanvas& operator=(const PageCanvas&) = delete;

  // The widget to put into a window (a GtkScrolledWindow). The canvas holds a reference to it,
  // so it stays valid until the canvas is gone, even once its window has been destroyed.
  GtkWidget* widget() const { return scrolled_; }

  // Where everything is, as the canvas last laid it out.
  const CanvasView& view() const { return view_; }
  size_t page() const { return view_.page(); }
  size_t page_count() const { return view_.page_count(); }
  double zoom() const { return view_.zoom(); }
  ZoomMode zoom_mode() const { return view_.zoom_mode(); }

  // Shows page "page" (the last one when past it) from its top.
  void ShowPage(size_t page);

  // Zooms to "zoom" (kFixed) or to fit (kFitWidth, kFitPage: "zoom" is ignored, and the zoom
  // follows the widget's size from now on), keeping the view's top left corner in place.
  void SetZoom(ZoomMode mode, double zoom = 1.0);

  // One zoom step in ("direction" > 0) or out, keeping the view's top left corner in place.
  void ZoomBy(int direction);

  // Scrolls "box" (points) of page "page" into view; see CanvasView::ScrollIntoView.
  void ScrollIntoView(size_t page, RectF box);

  // The page and point under widget pixel ("x", "y"), or nothing over the background.
  std::optional<PagePoint> PageAt(double x, double y) const { return view_.PageAt(x, y); }

  // Gives the page the keyboard focus, so a window's keys act on it rather than on an entry.
  void GrabFocus();

  // Paints "marks" on every page from now on; empty for none.
  void SetMarks(PageMarks marks);

  // Repaints, for when what the marks paint has changed.
  void Redraw();

  // Calls "changed" whenever the canvas is laid out anew (zoom, page, a fitting zoom following
  // the widget's size) and whenever scrolling changes the page shown.
  void SetOnChanged(std::function<void()> changed);

 private:
  void Build();
  void OnViewResized(int width, int height);
  gboolean OnScroll(GdkEventScroll* event);
  void OnScrolled();
  void OnDestroyed();
  // Gives GTK the content's size and the scroll position, repaints and reports the change.
  void Relayout();
  // Moves GTK's scroll position to the view's; "pending_scroll_" while GTK cannot yet reach it.
  void ApplyScroll();
  void Draw(cairo_t* cr);
  void DrawPageAt(cairo_t* cr, size_t page);

  const Document& document_;
  CanvasView view_;
  PageMarks marks_;
  std::function<void()> changed_;

  GtkWidget* scrolled_ = nullptr;  // referenced until the canvas is gone
  GtkWidget* area_ = nullptr;      // likewise
  GtkAdjustment* horizontal_ = nullptr;
  GtkAdjustment* vertical_ = nullptr;
  bool destroyed_ = false;        // the widget has been destroyed with its window
  guint relayout_source_ = 0;     // a pending Relayout after the widget was resized
  bool applying_scroll_ = false;  // set while ApplyScroll moves the adjustments
  bool pending_scroll_ = false;   // the view's scroll position still has to reach GTK
};

}  // namespace vantorel::report::canvas

#endif  // VANTOREL_REPORT_CANVAS_PAGE_CANVAS_H_
