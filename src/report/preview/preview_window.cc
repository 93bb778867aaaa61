// The window module, libvantorel-gui.so: the preview window and the desktop message box in
// GTK 3, behind the C functions gui_module.h declares. The engine opens this module only when a
// window is wanted, so nothing else in Vantorel links GTK. The window shows the pages in a page
// canvas (report/canvas/page_canvas.h) and adds the toolbar, keys, printing, export and finding
// text around it.
//
// GTK may be used by one thread at a time, so every entry point holds one lock for as long as it
// touches GTK; a window's nested main loop runs on the thread that asked for it.
#include <gtk/gtk.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "report/canvas/page_canvas.h"
#include "report/pdf/pdf_writer.h"
#include "report/preview/gui_module.h"
#include "report/preview/view_model.h"
#include "report/print/printer.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

#define VANTOREL_GUI_API extern "C" __attribute__((visibility("default")))

namespace vantorel::report::preview {
namespace {

std::mutex g_gtk_mutex;  // held while GTK is in use

std::mutex g_status_mutex;
std::string g_status;  // guarded by g_status_mutex; what the open window shows, for tests

// Starts GTK on the display the environment names, once; true when it is up. Must be called with
// g_gtk_mutex held.
bool StartGtk() {
  static bool started = false;
  static bool tried = false;
  if (started) return true;
  if (!DisplayNamed()) return false;
  if (!tried) {
    // A library must leave the host's locale alone; our text never goes through the C locale.
    gtk_disable_setlocale();
    tried = true;
  }
  started = gtk_init_check(nullptr, nullptr) != FALSE;
  return started;
}

// Lets GTK finish what is pending (unmapping a closed window, say) before control returns. A
// bounded number of rounds: a source that is always ready must not keep us here.
void Flush() {
  for (int round = 0; round < 100 && gtk_events_pending(); ++round) gtk_main_iteration_do(FALSE);
  if (GdkDisplay* display = gdk_display_get_default()) gdk_display_flush(display);
}

void CopyOut(const std::string& text, char* out, size_t size) {
  if (out == nullptr || size == 0) return;
  const size_t length = std::min(text.size(), size - 1);
  std::memcpy(out, text.data(), length);
  out[length] = '\0';
}

struct MainLoopUnref {
  void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
};
using MainLoop = std::unique_ptr<GMainLoop, MainLoopUnref>;

struct GFree {
  void operator()(char* text) const { g_free(text); }
};
using GText = std::unique_ptr<char, GFree>;

// The toolbar's zoom list: the steps, then the two fitting modes.
constexpr int kFitWidthRow = static_cast<int>(kZoomStepCount);
constexpr int kFitPageRow = kFitWidthRow + 1;

std::string Percent(double zoom) { return std::to_string(std::lround(zoom * 100)) + "%"; }

constexpr const char* kDialogTitle = "Vantorel";

void ShowError(GtkWindow* parent, const std::string& primary, const std::string& detail) {
  GtkWidget* dialog = gtk_message_dialog_new(parent, GTK_DIALOG_MODAL, GTK_MESSAGE_ERROR,
                                             GTK_BUTTONS_OK, "%s", primary.c_str());
  gtk_window_set_title(GTK_WINDOW(dialog), kDialogTitle);
  gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", detail.c_str());
  gtk_dialog_run(GTK_DIALOG(dialog));
  gtk_widget_destroy(dialog);
}

// One preview window over a document the caller keeps alive until the object is gone. The
// GtkWindow owns the widgets; this object owns the GtkWindow until it is destroyed.
class PreviewWindow {
 public:
  PreviewWindow(const Document& document, const PreviewSettings& settings)
      : document_(document), settings_(settings), canvas_(document, canvas::PageFlow::kOnePage) {
    title_ = !settings.title.empty()            ? settings.title
             : !document.metadata.title.empty() ? document.metadata.title
                                                : "Report preview";
    Build();
  }

  ~PreviewWindow() {
    if (window_ != nullptr) gtk_widget_destroy(window_);
    // The job being followed reads the document, which the caller frees once we return.
    if (print_thread_.joinable()) print_thread_.join();
    std::lock_guard lock(print_mutex_);
    if (print_done_source_ != 0) g_source_remove(print_done_source_);
    std::lock_guard status_lock(g_status_mutex);
    g_status.clear();
  }

  PreviewWindow(const PreviewWindow&) = delete;
  PreviewWindow& operator=(const PreviewWindow&) = delete;

  // Shows the window and runs a main loop until it is closed.
  void Run() {
    gtk_widget_show_all(window_);
    if (settings_.maximized) gtk_window_maximize(GTK_WINDOW(window_));
    // The keys act on the page, not on the first entry GTK would give the focus to.
    canvas_.GrabFocus();
    gtk_editable_select_region(GTK_EDITABLE(page_entry_), 0, 0);
    UpdateControls();
    loop_.reset(g_main_loop_new(nullptr, FALSE));
    g_main_loop_run(loop_.get());
    Flush();
  }

  // The names of the toolbar's controls, in order: what a user is offered.
  std::string DescribeToolbar() {
    gtk_widget_show_all(toolbar_);
    std::string names;
    GList* children = gtk_container_get_children(GTK_CONTAINER(toolbar_));
    for (GList* child = children; child != nullptr; child = child->next) {
      GtkWidget* widget = GTK_WIDGET(child->data);
      // Separators and status labels carry no name of their own.
      const char* name = gtk_widget_get_name(widget);
      if (GTK_IS_SEPARATOR_TOOL_ITEM(widget) || !gtk_widget_get_visible(widget) ||
          std::strcmp(name, G_OBJECT_TYPE_NAME(widget)) == 0) {
        continue;
      }
      if (!names.empty()) names += ",";
      names += name;
    }
    g_list_free(children);
    return names;
  }

 private:
  template <typename Handler>
  static void Connect(gpointer instance, const char* signal, Handler handler, gpointer data) {
    g_signal_connect(instance, signal, G_CALLBACK(handler), data);
  }

  GtkToolItem* AddButton(const char* name, const char* icon, const char* label, const char* tooltip,
                         void (*clicked)(GtkToolButton*, gpointer)) {
    GtkToolItem* item =
        gtk_tool_button_new(gtk_image_new_from_icon_name(icon, GTK_ICON_SIZE_LARGE_TOOLBAR), label);
    gtk_widget_set_name(GTK_WIDGET(item), name);
    gtk_tool_item_set_tooltip_text(item, tooltip);
    Connect(item, "clicked", clicked, this);
    gtk_toolbar_insert(GTK_TOOLBAR(toolbar_), item, -1);
    return item;
  }

  // Adds "widget" to the toolbar; "name" null for a status label, which is no control.
  GtkToolItem* AddWidget(const char* name, GtkWidget* widget) {
    GtkToolItem* item = gtk_tool_item_new();
    if (name != nullptr) gtk_widget_set_name(GTK_WIDGET(item), name);
    gtk_container_add(GTK_CONTAINER(item), widget);
    gtk_toolbar_insert(GTK_TOOLBAR(toolbar_), item, -1);
    return item;
  }

  void AddSeparator() {
    gtk_toolbar_insert(GTK_TOOLBAR(toolbar_), gtk_separator_tool_item_new(), -1);
  }

  static PreviewWindow* Self(gpointer data) { return static_cast<PreviewWindow*>(data); }

  void Build() {
    window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(window_), title_.c_str());
    gtk_window_set_default_size(GTK_WINDOW(window_), 1000, 760);
    Connect(
        window_, "destroy", +[](GtkWidget*, gpointer data) { Self(data)->OnDestroyed(); }, this);
    Connect(
        window_, "key-press-event",
        +[](GtkWidget*, GdkEventKey* event, gpointer data) { return Self(data)->OnKey(event); },
        this);

    toolbar_ = gtk_toolbar_new();
    gtk_toolbar_set_style(GTK_TOOLBAR(toolbar_), GTK_TOOLBAR_ICONS);
    AddPageControls();
    AddSeparator();
    AddZoomControls();
    AddSeparator();
    AddOutputControls();
    if (settings_.allow_find) {
      AddSeparator();
      AddFindControls();
    }
    GtkToolItem* space = gtk_separator_tool_item_new();
    gtk_separator_tool_item_set_draw(GTK_SEPARATOR_TOOL_ITEM(space), FALSE);
    gtk_tool_item_set_expand(space, TRUE);
    gtk_toolbar_insert(GTK_TOOLBAR(toolbar_), space, -1);
    print_status_ = gtk_label_new("");
    AddWidget(nullptr, print_status_);
    AddButton(
        "close", "window-close-symbolic", "Close", "Close (Escape)",
        +[](GtkToolButton*, gpointer data) { Self(data)->Close(); });

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_pack_start(GTK_BOX(box), toolbar_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), canvas_.widget(), TRUE, TRUE, 0);
    gtk_container_add(GTK_CONTAINER(window_), box);
    // The find marks' fill goes under the text so it stays readable, their outline over it.
    canvas_.SetMarks([this](cairo_t* cr, size_t page, canvas::MarkLayer layer) {
      DrawMatches(cr, page, layer == canvas::MarkLayer::kUnderItems);
    });
    canvas_.SetOnChanged([this] { UpdateControls(); });
    SetZoom(ZoomMode::kFixed, 1.0);
  }

  void AddPageControls() {
    first_ = AddButton(
        "first", "go-first-symbolic", "First", "First page (Home)",
        +[](GtkToolButton*, gpointer data) { Self(data)->GoTo(0); });
    previous_ = AddButton(
        "previous", "go-previous-symbolic", "Previous", "Previous page (Page Up)",
        +[](GtkToolButton*, gpointer data) { Self(data)->Step(-1); });
    page_entry_ = gtk_entry_new();
    gtk_entry_set_width_chars(GTK_ENTRY(page_entry_), 4);
    gtk_entry_set_alignment(GTK_ENTRY(page_entry_), 1);
    gtk_widget_set_tooltip_text(page_entry_, "Page number: type one and press Enter");
    Connect(
        page_entry_, "activate", +[](GtkEntry*, gpointer data) { Self(data)->OnPageTyped(); },
        this);
    page_count_ = gtk_label_new("");
    GtkWidget* page_box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6);
    gtk_box_pack_start(GTK_BOX(page_box), page_entry_, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(page_box), page_count_, FALSE, FALSE, 0);
    gtk_widget_set_valign(page_box, GTK_ALIGN_CENTER);
    AddWidget("page", page_box);
    next_ = AddButton(
        "next", "go-next-symbolic", "Next", "Next page (Page Down)",
        +[](GtkToolButton*, gpointer data) { Self(data)->Step(1); });
    last_ = AddButton(
        "last", "go-last-symbolic", "Last", "Last page (End)",
        +[](GtkToolButton*, gpointer data) { Self(data)->GoToLast(); });
  }

  void AddZoomControls() {
    zoom_out_ = AddButton(
        "zoom-out", "zoom-out-symbolic", "Zoom out", "Zoom out (-)",
        +[](GtkToolButton*, gpointer data) { Self(data)->ZoomBy(-1); });
    zoom_combo_ = gtk_combo_box_text_new();
    for (double step : kZoomSteps) {
      gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(zoom_combo_), Percent(step).c_str());
    }
    gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(zoom_combo_), "Fit width");
    gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(zoom_combo_), "Fit page");
    gtk_widget_set_tooltip_text(zoom_combo_, "Zoom");
    gtk_widget_set_valign(zoom_combo_, GTK_ALIGN_CENTER);
    Connect(
        zoom_combo_, "changed", +[](GtkComboBox*, gpointer data) { Self(data)->OnZoomChosen(); },
        this);
    AddWidget("zoom", zoom_combo_);
    zoom_in_ = AddButton(
        "zoom-in", "zoom-in-symbolic", "Zoom in", "Zoom in (+)",
        +[](GtkToolButton*, gpointer data) { Self(data)->ZoomBy(1); });
  }

  void AddOutputControls() {
    if (settings_.allow_print) {
      print_ = AddButton(
          "print", "document-print-symbolic", "Print…", "Print (Ctrl+P)",
          +[](GtkToolButton*, gpointer data) { Self(data)->Print(); });
    }
    if (settings_.allow_export) {
      AddButton(
          "export", "document-save-as-symbolic", "Export to PDF…", "Export to PDF…",
          +[](GtkToolButton*, gpointer data) { Self(data)->Export(); });
    }
  }

  void AddFindControls() {
    find_entry_ = gtk_search_entry_new();
    gtk_entry_set_width_chars(GTK_ENTRY(find_entry_), 18);
    gtk_entry_set_placeholder_text(GTK_ENTRY(find_entry_), "Find");
    gtk_widget_set_tooltip_text(find_entry_,
                                "Find text (Ctrl+F); Enter: next match, Shift+Enter: previous");
    gtk_widget_set_valign(find_entry_, GTK_ALIGN_CENTER);
    Connect(
        find_entry_, "search-changed",
        +[](GtkSearchEntry*, gpointer data) { Self(data)->OnFindChanged(); }, this);
    Connect(
        find_entry_, "activate", +[](GtkEntry*, gpointer data) { Self(data)->FindStep(1); }, this);
    AddWidget("find", find_entry_);
    find_previous_ = AddButton(
        "find-previous", "go-up-symbolic", "Previous match", "Previous match (Shift+Enter)",
        +[](GtkToolButton*, gpointer data) { Self(data)->FindStep(-1); });
    find_next_ = AddButton(
        "find-next", "go-down-symbolic", "Next match", "Next match (Enter)",
        +[](GtkToolButton*, gpointer data) { Self(data)->FindStep(1); });
    find_status_ = gtk_label_new("");
    gtk_label_set_width_chars(GTK_LABEL(find_status_), 10);
    AddWidget(nullptr, find_status_);
  }

  size_t PageCount() const { return document_.pages.size(); }

  void OnDestroyed() {
    window_ = nullptr;
    if (loop_ != nullptr) g_main_loop_quit(loop_.get());
  }

  void Close() {
    if (window_ != nullptr) gtk_widget_destroy(window_);
  }

  void GoTo(size_t page) {
    if (window_ == nullptr || PageCount() == 0) return;
    canvas_.ShowPage(page);
  }

  void Step(int delta) {
    const size_t page = canvas_.page();
    if (delta < 0 && page == 0) return;
    GoTo(delta < 0 ? page - 1 : page + 1);
  }

  void GoToLast() {
    if (PageCount() > 0) GoTo(PageCount() - 1);
  }

  void OnPageTyped() {
    const char* text = gtk_entry_get_text(GTK_ENTRY(page_entry_));
    char* end = nullptr;
    const long number = std::strtol(text, &end, 10);
    if (end != text && number >= 1) {
      GoTo(static_cast<size_t>(number) - 1);
    } else {
      UpdateControls();  // put the current number back
    }
    canvas_.GrabFocus();
  }

  void SetZoom(ZoomMode mode, double zoom) {
    if (window_ != nullptr) canvas_.SetZoom(mode, zoom);
  }

  void ZoomBy(int direction) {
    if (window_ != nullptr) canvas_.ZoomBy(direction);
  }

  void OnZoomChosen() {
    if (updating_) return;
    const int row = gtk_combo_box_get_active(GTK_COMBO_BOX(zoom_combo_));
    if (row == kFitWidthRow) {
      SetZoom(ZoomMode::kFitWidth, canvas_.zoom());
    } else if (row == kFitPageRow) {
      SetZoom(ZoomMode::kFitPage, canvas_.zoom());
    } else if (row >= 0 && row < kFitWidthRow) {
      SetZoom(ZoomMode::kFixed, kZoomSteps[row]);
    }
  }

  // Marks the find matches of page "page", the current one stronger: their fill, or their
  // outline.
  void DrawMatches(cairo_t* cr, size_t page, bool fill) const {
    for (size_t i = 0; i < matches_.size(); ++i) {
      const Match& match = matches_[i];
      if (match.page != page) continue;
      const bool current = i == current_match_;
      cairo_rectangle(cr, match.box.x, match.box.y, match.box.width, match.box.height);
      if (fill) {
        cairo_set_source_rgba(cr, 1.0, current ? 0.6 : 0.85, 0.0, current ? 0.55 : 0.35);
        cairo_fill(cr);
      } else {
        cairo_set_source_rgba(cr, 0.9, 0.45, 0.0, current ? 1.0 : 0.6);
        cairo_set_line_width(cr, current ? 1.5 : 0.75);
        cairo_stroke(cr);
      }
    }
  }

  void OnFindChanged() {
    matches_ = FindText(document_, gtk_entry_get_text(GTK_ENTRY(find_entry_)));
    current_match_ = FirstMatchFrom(matches_, canvas_.page());
    ShowCurrentMatch();
  }

  void FindStep(int direction) {
    if (matches_.empty()) {
      OnFindChanged();
      return;
    }
    const size_t count = matches_.size();
    current_match_ = (current_match_ + count + (direction < 0 ? count - 1 : 1)) % count;
    ShowCurrentMatch();
  }

  void ShowCurrentMatch() {
    GtkStyleContext* style = gtk_widget_get_style_context(find_entry_);
    const bool missing = matches_.empty() && gtk_entry_get_text_length(GTK_ENTRY(find_entry_)) > 0;
    if (missing) {
      gtk_style_context_add_class(style, GTK_STYLE_CLASS_ERROR);
    } else {
      gtk_style_context_remove_class(style, GTK_STYLE_CLASS_ERROR);
    }
    if (!matches_.empty() && matches_[current_match_].page != canvas_.page()) {
      GoTo(matches_[current_match_].page);
    } else {
      canvas_.Redraw();
      UpdateControls();
    }
    if (matches_.empty()) return;
    // Scroll the match into view when the page is larger than the window.
    const Match& match = matches_[current_match_];
    canvas_.ScrollIntoView(match.page, match.box);
  }

  void Print() {
    if (print_ == nullptr || print_thread_.joinable()) return;
    gtk_widget_set_sensitive(GTK_WIDGET(print_), FALSE);
    gtk_label_set_text(GTK_LABEL(print_status_), "Printing…");
    PrintOptions options;
    options.queue = settings_.printer;
    options.title = title_;
    // The job is followed until the printer has it, which can take a while: off this thread, so
    // the window stays responsive. The outcome comes back through the main loop.
    print_thread_ = std::thread([this, options] {
      std::string error;
      try {
        PrintDocument(document_, options);
      } catch (const Error& failure) {
        error = failure.description();
      } catch (const std::exception& failure) {
        error = failure.what();
      }
      std::lock_guard lock(print_mutex_);
      print_error_ = error;
      print_done_source_ = g_idle_add(
          +[](gpointer data) {
            Self(data)->OnPrinted();
            return gboolean{G_SOURCE_REMOVE};
          },
          this);
    });
  }

  void OnPrinted() {
    std::string error;
    {
      std::lock_guard lock(print_mutex_);
      print_done_source_ = 0;
      error = print_error_;
    }
    print_thread_.join();
    if (window_ == nullptr) return;
    gtk_widget_set_sensitive(GTK_WIDGET(print_), TRUE);
    gtk_label_set_text(GTK_LABEL(print_status_), error.empty() ? "Printed." : "");
    if (!error.empty()) ShowError(GTK_WINDOW(window_), "The report could not be printed.", error);
  }

  void Export() {
    GtkWidget* dialog = gtk_file_chooser_dialog_new(
        "Export to PDF", GTK_WINDOW(window_), GTK_FILE_CHOOSER_ACTION_SAVE, "_Cancel",
        GTK_RESPONSE_CANCEL, "_Export", GTK_RESPONSE_ACCEPT, nullptr);
    GtkFileChooser* chooser = GTK_FILE_CHOOSER(dialog);
    gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
    std::string name = title_;
    std::replace(name.begin(), name.end(), '/', '-');
    gtk_file_chooser_set_current_name(chooser, (name + ".pdf").c_str());
    GtkFileFilter* filter = gtk_file_filter_new();
    gtk_file_filter_set_name(filter, "PDF files");
    gtk_file_filter_add_pattern(filter, "*.pdf");
    gtk_file_filter_add_pattern(filter, "*.PDF");
    gtk_file_chooser_add_filter(chooser, filter);
    std::string path;
    if (gtk_dialog_run(GTK_DIALOG(dialog)) == GTK_RESPONSE_ACCEPT) {
      GText file(gtk_file_chooser_get_filename(chooser));
      if (file != nullptr) path = file.get();
    }
    gtk_widget_destroy(dialog);
    if (path.empty()) return;
    if (path.find('.', path.find_last_of('/') + 1) == std::string::npos) path += ".pdf";
    try {
      WritePdf(document_, path);
      gtk_label_set_text(GTK_LABEL(print_status_), "Exported.");
    } catch (const Error& failure) {
      ShowError(GTK_WINDOW(window_), "The PDF could not be written.", failure.description());
    } catch (const std::exception& failure) {
      ShowError(GTK_WINDOW(window_), "The PDF could not be written.", failure.what());
    }
  }

  static bool IsKey(const GdkEventKey* event, std::initializer_list<guint> keys) {
    return std::find(keys.begin(), keys.end(), event->keyval) != keys.end();
  }

  gboolean OnKey(GdkEventKey* event) {
    const bool control = (event->state & GDK_CONTROL_MASK) != 0;
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(window_));
    if (IsKey(event, {GDK_KEY_Escape}) || (control && IsKey(event, {GDK_KEY_w, GDK_KEY_W}))) {
      Close();
    } else if (control && IsKey(event, {GDK_KEY_p, GDK_KEY_P})) {
      Print();
    } else if (control && IsKey(event, {GDK_KEY_f, GDK_KEY_F})) {
      if (find_entry_ == nullptr) return FALSE;
      gtk_widget_grab_focus(find_entry_);
    } else if (IsKey(event, {GDK_KEY_Page_Down, GDK_KEY_KP_Page_Down})) {
      Step(1);
    } else if (IsKey(event, {GDK_KEY_Page_Up, GDK_KEY_KP_Page_Up})) {
      Step(-1);
    } else if (focus != nullptr && focus == find_entry_ && event->keyval == GDK_KEY_Return &&
               (event->state & GDK_SHIFT_MASK) != 0) {
      FindStep(-1);
    } else if (focus != nullptr && GTK_IS_ENTRY(focus) && !control) {
      return FALSE;  // keys that edit text belong to the entry
    } else {
      return OnPageKey(event, control);
    }
    return TRUE;
  }

  // The keys that move about the page and zoom, when no entry wants them.
  gboolean OnPageKey(const GdkEventKey* event, bool control) {
    if (IsKey(event, {GDK_KEY_Home, GDK_KEY_KP_Home})) {
      GoTo(0);
    } else if (IsKey(event, {GDK_KEY_End, GDK_KEY_KP_End})) {
      GoToLast();
    } else if (IsKey(event, {GDK_KEY_plus, GDK_KEY_equal, GDK_KEY_KP_Add})) {
      ZoomBy(1);
    } else if (IsKey(event, {GDK_KEY_minus, GDK_KEY_KP_Subtract})) {
      ZoomBy(-1);
    } else if (control && IsKey(event, {GDK_KEY_0, GDK_KEY_KP_0})) {
      SetZoom(ZoomMode::kFixed, 1.0);
    } else {
      return FALSE;
    }
    return TRUE;
  }

  // Brings the toolbar in line with the page, the zoom and the find results.
  void UpdateControls() {
    if (window_ == nullptr) return;
    updating_ = true;
    const size_t count = PageCount();
    const size_t page = canvas_.page();
    const size_t shown = count == 0 ? 0 : page + 1;
    gtk_entry_set_text(GTK_ENTRY(page_entry_), std::to_string(shown).c_str());
    gtk_label_set_text(GTK_LABEL(page_count_), ("/ " + std::to_string(count)).c_str());
    const double zoom = canvas_.zoom();
    gtk_widget_set_sensitive(GTK_WIDGET(first_), page > 0);
    gtk_widget_set_sensitive(GTK_WIDGET(previous_), page > 0);
    gtk_widget_set_sensitive(GTK_WIDGET(next_), page + 1 < count);
    gtk_widget_set_sensitive(GTK_WIDGET(last_), page + 1 < count);
    gtk_widget_set_sensitive(GTK_WIDGET(zoom_out_), zoom > kZoomSteps[0] + 1e-6);
    gtk_widget_set_sensitive(GTK_WIDGET(zoom_in_), zoom < kZoomSteps[kZoomStepCount - 1] - 1e-6);
    int row = -1;
    if (canvas_.zoom_mode() == ZoomMode::kFitWidth) row = kFitWidthRow;
    if (canvas_.zoom_mode() == ZoomMode::kFitPage) row = kFitPageRow;
    for (size_t i = 0; row < 0 && i < kZoomStepCount; ++i) {
      if (std::fabs(kZoomSteps[i] - zoom) < 1e-6) row = static_cast<int>(i);
    }
    gtk_combo_box_set_active(GTK_COMBO_BOX(zoom_combo_), row);
    std::string found = "0 / 0";
    if (find_entry_ != nullptr) {
      const bool searching = gtk_entry_get_text_length(GTK_ENTRY(find_entry_)) > 0;
      if (!matches_.empty()) {
        found = std::to_string(current_match_ + 1) + " / " + std::to_string(matches_.size());
      }
      gtk_label_set_text(GTK_LABEL(find_status_), !searching         ? ""
                                                  : matches_.empty() ? "No matches"
                                                                     : found.c_str());
      gtk_widget_set_sensitive(GTK_WIDGET(find_previous_), matches_.size() > 1);
      gtk_widget_set_sensitive(GTK_WIDGET(find_next_), matches_.size() > 1);
    }
    updating_ = false;

    std::lock_guard lock(g_status_mutex);
    g_status = "page " + std::string(gtk_entry_get_text(GTK_ENTRY(page_entry_))) + " " +
               gtk_label_get_text(GTK_LABEL(page_count_)) + "; zoom " + Percent(zoom) + "; find " +
               found;
  }

  const Document& document_;
  const PreviewSettings settings_;
  std::string title_;

  GtkWidget* window_ = nullptr;  // null once destroyed
  GtkWidget* toolbar_ = nullptr;
  GtkToolItem* first_ = nullptr;
  GtkToolItem* previous_ = nullptr;
  GtkToolItem* next_ = nullptr;
  GtkToolItem* last_ = nullptr;
  GtkWidget* page_entry_ = nullptr;
  GtkWidget* page_count_ = nullptr;
  GtkToolItem* zoom_out_ = nullptr;
  GtkToolItem* zoom_in_ = nullptr;
  GtkWidget* zoom_combo_ = nullptr;
  GtkToolItem* print_ = nullptr;     // null unless printing is allowed
  GtkWidget* find_entry_ = nullptr;  // null unless finding is allowed
  GtkToolItem* find_previous_ = nullptr;
  GtkToolItem* find_next_ = nullptr;
  GtkWidget* find_status_ = nullptr;
  GtkWidget* print_status_ = nullptr;
  canvas::PageCanvas canvas_;  // the pages, zoomed and scrolled
  MainLoop loop_;

  bool updating_ = false;  // set while UpdateControls sets widgets, so their signals are ignored
  std::vector<Match> matches_;
  size_t current_match_ = 0;

  std::thread print_thread_;
  std::mutex print_mutex_;
  std::string print_error_;      // guarded by print_mutex_
  guint print_done_source_ = 0;  // guarded by print_mutex_; the pending OnPrinted call
};

// Runs "body", turning an exception into its error number and description.
template <typename Body>
int Guarded(char* error, size_t error_size, Body body) {
  try {
    body();
    return 0;
  } catch (const Error& failure) {
    CopyOut(failure.description(), error, error_size);
    return failure.number() != 0 ? failure.number() : errnum::kEngineFailure;
  } catch (const std::exception& failure) {
    CopyOut(std::string("The preview window failed: ") + failure.what(), error, error_size);
    return errnum::kEngineFailure;
  }
}

[[noreturn]] void NoDisplay() {
  throw Error(errnum::kEngineFailure, "Vantorel report engine", NoDisplayMessage());
}

}  // namespace
}  // namespace vantorel::report::preview

using vantorel::report::Document;
using vantorel::report::PreviewSettings;
namespace preview = vantorel::report::preview;

VANTOREL_GUI_API int vantorel_gui_interface_version(void) { return VANTOREL_GUI_INTERFACE_VERSION; }

VANTOREL_GUI_API int vantorel_gui_available(void) {
  std::lock_guard lock(preview::g_gtk_mutex);
  return preview::StartGtk() ? 1 : 0;
}

VANTOREL_GUI_API int vantorel_gui_show_preview(const Document* document,
                                               const PreviewSettings* settings, char* error,
                                               size_t error_size) {
  return preview::Guarded(error, error_size, [&] {
    std::lock_guard lock(preview::g_gtk_mutex);
    if (!preview::StartGtk()) preview::NoDisplay();
    preview::PreviewWindow window(*document, *settings);
    window.Run();
  });
}

VANTOREL_GUI_API int vantorel_gui_message_box(const char* text, int icon) {
  std::lock_guard lock(preview::g_gtk_mutex);
  if (!preview::StartGtk()) return 0;
  const bool critical = icon == static_cast<int>(vantorel::MessageIcon::kCritical);
  GtkWidget* dialog = gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL,
                                             critical ? GTK_MESSAGE_ERROR : GTK_MESSAGE_OTHER,
                                             GTK_BUTTONS_OK, "%s", text);
  gtk_window_set_title(GTK_WINDOW(dialog), preview::kDialogTitle);
  gtk_window_set_keep_above(GTK_WINDOW(dialog), TRUE);
  if (critical) {
    // GTK 3 message dialogs show no icon unless given one; the replacement API is GTK 4's.
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    GtkWidget* image = gtk_image_new_from_icon_name("dialog-error", GTK_ICON_SIZE_DIALOG);
    gtk_message_dialog_set_image(GTK_MESSAGE_DIALOG(dialog), image);
    gtk_widget_show(image);
    G_GNUC_END_IGNORE_DEPRECATIONS
  }
  gtk_dialog_run(GTK_DIALOG(dialog));
  gtk_widget_destroy(dialog);
  preview::Flush();
  return 1;
}

VANTOREL_GUI_API int vantorel_gui_describe_toolbar(const Document* document,
                                                   const PreviewSettings* settings, char* out,
                                                   size_t out_size) {
  return preview::Guarded(out, out_size, [&] {
    std::lock_guard lock(preview::g_gtk_mutex);
    if (!preview::StartGtk()) preview::NoDisplay();
    preview::PreviewWindow window(*document, *settings);
    preview::CopyOut(window.DescribeToolbar(), out, out_size);
  });
}

VANTOREL_GUI_API int vantorel_gui_status(char* out, size_t out_size) {
  std::lock_guard lock(preview::g_status_mutex);
  preview::CopyOut(preview::g_status, out, out_size);
  return 0;
}
