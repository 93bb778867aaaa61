#include "report/canvas/page_canvas.h"

#include <cmath>
#include <utility>
#include <vector>

#include "report/render/draw_page.h"

namespace vantorel::report::canvas {
namespace {

constexpr double kShadow = 4;  // pixels the page's shadow is offset by

std::vector<SizeF> PageSizes(const Document& document) {
  std::vector<SizeF> sizes;
  sizes.reserve(document.pages.size());
  for (const Page& page : document.pages) sizes.push_back(page.size);
  return sizes;
}

template <typename Handler>
void Connect(gpointer instance, const char* signal, Handler handler, gpointer data) {
  g_signal_connect(instance, signal, G_CALLBACK(handler), data);
}

PageCanvas* Self(gpointer data) { return static_cast<PageCanvas*>(data); }

}  // namespace

PageCanvas::PageCanvas(const Document& document, PageFlow flow)
    : document_(document), view_(PageSizes(document), flow) {
  Build();
}

PageCanvas::~PageCanvas() {
  if (relayout_source_ != 0) g_source_remove(relayout_source_);
  // The widgets may outlive the canvas in a window that is still open: they must not call it.
  for (gpointer object : {static_cast<gpointer>(scrolled_), static_cast<gpointer>(area_),
                          static_cast<gpointer>(horizontal_), static_cast<gpointer>(vertical_)}) {
    g_signal_handlers_disconnect_by_data(object, this);
    g_object_unref(object);
  }
}

void PageCanvas::Build() {
  area_ = gtk_drawing_area_new();
  g_object_ref(area_);
  gtk_widget_set_can_focus(area_, TRUE);
  Connect(
      area_, "draw",
      +[](GtkWidget*, cairo_t* cr, gpointer data) {
        Self(data)->Draw(cr);
        return gboolean{FALSE};
      },
      this);
  // The viewport has told the adjustments the new size by the time it allocates the page area:
  // the moment a scroll position beyond the old size can be reached.
  Connect(
      area_, "size-allocate",
      +[](GtkWidget*, GdkRectangle*, gpointer data) {
        if (Self(data)->pending_scroll_) Self(data)->ApplyScroll();
      },
      this);

  scrolled_ = gtk_scrolled_window_new(nullptr, nullptr);
  g_object_ref_sink(scrolled_);
  gtk_container_add(GTK_CONTAINER(scrolled_), area_);
  gtk_widget_set_vexpand(scrolled_, TRUE);
  Connect(
      scrolled_, "destroy", +[](GtkWidget*, gpointer data) { Self(data)->OnDestroyed(); }, this);
  Connect(
      scrolled_, "size-allocate",
      +[](GtkWidget*, GdkRectangle* size, gpointer data) {
        Self(data)->OnViewResized(size->width, size->height);
      },
      this);
  gtk_widget_add_events(scrolled_, GDK_SCROLL_MASK);
  Connect(
      scrolled_, "scroll-event",
      +[](GtkWidget*, GdkEventScroll* event, gpointer data) { return Self(data)->OnScroll(event); },
      this);

  horizontal_ = gtk_scrolled_window_get_hadjustment(GTK_SCROLLED_WINDOW(scrolled_));
  vertical_ = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scrolled_));
  for (GtkAdjustment* adjustment : {horizontal_, vertical_}) {
    g_object_ref(adjustment);
    Connect(
        adjustment, "value-changed",
        +[](GtkAdjustment*, gpointer data) { Self(data)->OnScrolled(); }, this);
  }
  Relayout();
}

void PageCanvas::ShowPage(size_t page) {
  view_.ShowPage(page);
  Relayout();
}

void PageCanvas::SetZoom(ZoomMode mode, double zoom) {
  view_.SetZoom(mode, zoom);
  Relayout();
}

void PageCanvas::ZoomBy(int direction) {
  view_.ZoomBy(direction);
  Relayout();
}

void PageCanvas::ScrollIntoView(size_t page, RectF box) {
  const size_t shown = view_.page();
  view_.ScrollIntoView(page, box);
  if (view_.page() != shown) {
    Relayout();
  } else {
    pending_scroll_ = true;
    ApplyScroll();
  }
}

void PageCanvas::GrabFocus() {
  if (!destroyed_) gtk_widget_grab_focus(area_);
}

void PageCanvas::SetMarks(PageMarks marks) {
  marks_ = std::move(marks);
  Redraw();
}

void PageCanvas::Redraw() {
  if (!destroyed_) gtk_widget_queue_draw(area_);
}

void PageCanvas::SetOnChanged(std::function<void()> changed) { changed_ = std::move(changed); }

void PageCanvas::OnViewResized(int width, int height) {
  if (width == view_.view_width() && height == view_.view_height()) return;
  const size_t shown = view_.page();
  view_.Resize(width, height);
  if (view_.zoom_mode() == ZoomMode::kFixed) {
    // GTK keeps its scroll position within the new size itself; only the page shown can change.
    if (view_.page() != shown && changed_) changed_();
    return;
  }
  // Resizing the page from inside GTK's allocation pass would nest layouts: do it just after.
  if (relayout_source_ == 0) {
    relayout_source_ = g_idle_add(
        +[](gpointer data) {
          Self(data)->relayout_source_ = 0;
          Self(data)->Relayout();
          return gboolean{G_SOURCE_REMOVE};
        },
        this);
  }
}

gboolean PageCanvas::OnScroll(GdkEventScroll* event) {
  if ((event->state & GDK_CONTROL_MASK) == 0) return FALSE;  // the scrolled window scrolls
  double dx = 0, dy = 0;
  if (event->direction == GDK_SCROLL_UP) dy = -1;
  if (event->direction == GDK_SCROLL_DOWN) dy = 1;
  if (event->direction == GDK_SCROLL_SMOOTH) {
    gdk_event_get_scroll_deltas(reinterpret_cast<GdkEvent*>(event), &dx, &dy);
  }
  if (dy == 0) return TRUE;
  // The pointer's place in the view: the event's own coordinates are relative to whichever
  // window received it, the screen's are not.
  double x = 0, y = 0;
  GtkWidget* viewport = gtk_bin_get_child(GTK_BIN(scrolled_));
  if (GTK_IS_VIEWPORT(viewport)) {
    int origin_x = 0, origin_y = 0;
    gdk_window_get_origin(gtk_viewport_get_view_window(GTK_VIEWPORT(viewport)), &origin_x,
                          &origin_y);
    x = event->x_root - origin_x;
    y = event->y_root - origin_y;
  }
  view_.ZoomBy(dy < 0 ? 1 : -1, x, y);
  Relayout();
  return TRUE;
}

void PageCanvas::OnScrolled() {
  if (applying_scroll_ || destroyed_) return;
  // The user scrolled, or GTK clamped the position to a new size: either way, it is where the
  // view is now.
  pending_scroll_ = false;
  const size_t shown = view_.page();
  view_.ScrollTo(gtk_adjustment_get_value(horizontal_), gtk_adjustment_get_value(vertical_));
  if (view_.page() != shown && changed_) changed_();
}

void PageCanvas::OnDestroyed() { destroyed_ = true; }

void PageCanvas::Relayout() {
  if (destroyed_) return;
  if (view_.page_count() > 0) {
    gtk_widget_set_size_request(area_, static_cast<int>(view_.content_width()),
                                static_cast<int>(view_.content_height()));
  }
  pending_scroll_ = true;
  ApplyScroll();
  gtk_widget_queue_draw(area_);
  if (changed_) changed_();
}

void PageCanvas::ApplyScroll() {
  if (destroyed_) return;
  applying_scroll_ = true;
  gtk_adjustment_set_value(horizontal_, view_.scroll_x());
  gtk_adjustment_set_value(vertical_, view_.scroll_y());
  applying_scroll_ = false;
  // Until the adjustments know the new size they clamp a position beyond the old one; the page
  // area's next allocation tries again.
  pending_scroll_ = std::fabs(gtk_adjustment_get_value(horizontal_) - view_.scroll_x()) > 0.5 ||
                    std::fabs(gtk_adjustment_get_value(vertical_) - view_.scroll_y()) > 0.5;
}

void PageCanvas::Draw(cairo_t* cr) {
  const double width = gtk_widget_get_allocated_width(area_);
  const double height = gtk_widget_get_allocated_height(area_);
  cairo_set_source_rgb(cr, 0.56, 0.57, 0.58);
  cairo_rectangle(cr, 0, 0, width, height);
  cairo_fill(cr);
  double left = 0, top = 0, right = 0, bottom = 0;
  cairo_clip_extents(cr, &left, &top, &right, &bottom);
  const auto [first, end] = view_.PagesInRows(top, bottom + kShadow);
  for (size_t page = first; page < end; ++page) DrawPageAt(cr, page);
}

void PageCanvas::DrawPageAt(cairo_t* cr, size_t index) {
  const Page& page = document_.pages[index];
  const PixelRect place = view_.PageRect(index);
  cairo_set_source_rgba(cr, 0, 0, 0, 0.35);
  cairo_rectangle(cr, place.x + kShadow, place.y + kShadow, place.width, place.height);
  cairo_fill(cr);
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_rectangle(cr, place.x, place.y, place.width, place.height);
  cairo_fill(cr);

  cairo_save(cr);
  cairo_translate(cr, place.x, place.y);
  cairo_scale(cr, view_.scale(), view_.scale());
  cairo_rectangle(cr, 0, 0, page.size.width, page.size.height);
  cairo_clip(cr);
  if (marks_) marks_(cr, index, MarkLayer::kUnderItems);
  DrawPage(cr, document_, page);
  if (marks_) marks_(cr, index, MarkLayer::kOverItems);
  cairo_restore(cr);
}

}  // namespace vantorel::report::canvas
