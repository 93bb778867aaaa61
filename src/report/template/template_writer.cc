// Writes the design model as template XML: each element's attributes from its table
// (attributes.h), in the order and spelling the file gave them while their values are unchanged,
// laid out as docs/template-format.md describes.
#include <algorithm>
#include <functional>

#include "report/template/attributes.h"
#include "report/template/template_io.h"

namespace vantorel::report {
namespace {

constexpr size_t kColumns = 100;

std::string Escaped(std::string_view text, bool attribute, char quote) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>' && (attribute || (i >= 2 && text.substr(i - 2, 2) == "]]"))) {
      out += "&gt;";
    } else if (attribute && c == quote) {
      out += quote == '"' ? "&quot;" : "&apos;";
    } else {
      out += c;
    }
  }
  return out;
}

// name="value", or name='value' for a value holding double quotes only (an expression's text).
std::string Attribute(std::string_view name, std::string_view value) {
  const char quote =
      value.find('"') != std::string_view::npos && value.find('\'') == std::string_view::npos ? '\''
                                                                                              : '"';
  return std::string(name) + "=" + quote + Escaped(value, true, quote) + quote;
}

template <typename E>
bool IsDefault(const AttributeSpec<E>& spec, const E& element) {
  if (spec.is_default) return spec.is_default(element);
  return spec.write(element, "pt") == spec.write(E{}, "pt");
}

// The attributes of "element": those the file gave, in its order and, where the value is
// unchanged, its spelling; then those whose value is not the default, in the table's order.
template <typename E>
std::vector<std::string> Attributes(const AttributeTable<E>& table, const E& element,
                                    const Written& written) {
  std::vector<std::string> out;
  std::vector<std::string_view> done;
  for (const WrittenAttribute& given : written.attributes) {
    const auto spec = std::find_if(table.begin(), table.end(),
                                   [&](const AttributeSpec<E>& s) { return given.name == s.name; });
    if (spec == table.end() || std::count(done.begin(), done.end(), given.name)) continue;
    done.push_back(spec->name);
    const std::optional<std::string> value = spec->write(element, given.text);
    if (!value) continue;  // the design no longer holds one
    out.push_back(
        Attribute(spec->name, AttributeKey(*spec, element) == given.key ? given.text : *value));
  }
  for (const AttributeSpec<E>& spec : table) {
    if (std::count(done.begin(), done.end(), spec.name)) continue;
    const std::optional<std::string> value = spec.write(element, "mm");
    if (value && !IsDefault(spec, element)) out.push_back(Attribute(spec.name, *value));
  }
  return out;
}

// One kind of child element: the names it is written as, how many the design holds and how to
// write the n-th.
struct ChildKind {
  std::vector<std::string_view> names;
  size_t count = 0;
  std::function<void(size_t)> write;
  size_t next = 0;
};

// Writes children in the order the file had them; those the file did not have follow the last
// of their kind, or come kind after kind at the end.
void WriteChildren(const std::vector<std::string>& order, std::vector<ChildKind>& kinds) {
  const auto kind_of = [&kinds](const std::string& name) -> ChildKind* {
    for (ChildKind& kind : kinds) {
      if (std::count(kind.names.begin(), kind.names.end(), name)) return &kind;
    }
    return nullptr;
  };
  for (size_t i = 0; i < order.size(); ++i) {
    ChildKind* kind = kind_of(order[i]);
    if (kind == nullptr) continue;
    if (kind->next < kind->count) kind->write(kind->next++);
    const bool last_of_kind =
        std::none_of(order.begin() + static_cast<ptrdiff_t>(i) + 1, order.end(),
                     [&](const std::string& later) { return kind_of(later) == kind; });
    if (last_of_kind) {
      while (kind->next < kind->count) kind->write(kind->next++);
    }
  }
  for (ChildKind& kind : kinds) {
    while (kind.next < kind.count) kind.write(kind.next++);
  }
}

class Writer {
 public:
  explicit Writer(const Template& design) : design_(design) {}

  std::string Run() {
    out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const Written& written = design_.written;
    Leading(written, 0);
    Open(0, "report", Attributes(ReportAttributes(), design_, written), false);
    out_ += '\n';
    const bool has_info = !design_.info.title.empty() || !design_.info.author.empty() ||
                          !design_.info.subject.empty() || In(written, "info");
    const CopySetup& copies = design_.copies;
    const bool has_copies = copies.line != 0 || copies.count > 1 || copies.per_sheet > 1 ||
                            !copies.labels.empty() || In(written, "copies");
    std::vector<ChildKind> kinds;
    kinds.push_back({{"info"}, has_info ? 1u : 0u, [&](size_t) {
                       Empty(1, "info", InfoAttributes(), design_.info, design_.info_written);
                     }});
    kinds.push_back({{"page"}, design_.has_page ? 1u : 0u, [&](size_t) {
                       Empty(1, "page", PageAttributes(), design_.page, design_.page_written);
                     }});
    kinds.push_back({{"copies"}, has_copies ? 1u : 0u, [&](size_t) { Copies(1); }});
    kinds.push_back({{"library"},
                     design_.library.line != 0 || !design_.library.file.empty() ? 1u : 0u,
                     [&](size_t) {
                       Empty(1, "library", LibraryAttributes(), design_.library,
                             design_.library.written);
                     }});
    kinds.push_back({{"database"}, design_.databases.size(), [&](size_t i) {
                       const Database& database = design_.databases[i];
                       Empty(1, "database", DatabaseAttributes(), database, database.written);
                     }});
    kinds.push_back(
        {{"query"}, design_.queries.size(), [&](size_t i) { WriteQuery(1, design_.queries[i]); }});
    kinds.push_back({{"variable"}, design_.variables.size(), [&](size_t i) {
                       const Variable& variable = design_.variables[i];
                       Empty(1, "variable", VariableAttributes(), variable, variable.written);
                     }});
    kinds.push_back({{"style"}, design_.styles.size(), [&](size_t i) {
                       const Style& style = design_.styles[i];
                       Empty(1, "style", StyleAttributes(), style, style.written);
                     }});
    const std::pair<const std::optional<Band>*, BandKind> singles[] = {
        {&design_.page_header, BandKind::kPageHeader},
        {&design_.page_footer, BandKind::kPageFooter},
        {&design_.column_header, BandKind::kColumnHeader},
        {&design_.column_footer, BandKind::kColumnFooter},
        {&design_.title, BandKind::kTitle}};
    for (const auto& single : singles) {
      // Named, not a structured binding: clang before 16 cannot capture those.
      const std::optional<Band>* slot = single.first;
      kinds.push_back({{BandElementName(single.second)}, *slot ? 1u : 0u, [this, slot](size_t) {
                         WriteBand(1, **slot);
                       }});
    }
    kinds.push_back(
        {{"data"}, design_.data.size(), [&](size_t i) { WriteData(1, design_.data[i]); }});
    kinds.push_back(
        {{"summary"}, design_.summary ? 1u : 0u, [&](size_t) { WriteBand(1, *design_.summary); }});
    WriteChildren(written.order, kinds);
    Close(0, "report", written);
    return std::move(out_);
  }

 private:
  static bool In(const Written& written, std::string_view name) {
    return std::count(written.order.begin(), written.order.end(), name) > 0;
  }

  static std::string Indent(int depth) { return std::string(static_cast<size_t>(depth) * 2, ' '); }

  void Notes(const std::vector<Note>& notes, int depth) {
    for (const Note& note : notes) {
      if (note.blank_line_before) out_ += '\n';
      out_ += Indent(depth) + "<!--" + note.text + "-->\n";
    }
  }

  void Leading(const Written& written, int depth) {
    Notes(written.notes, depth);
    if (written.blank_line_before) out_ += '\n';
  }

  // The start tag, its attributes filling lines of up to 100 columns and continuing under the
  // first; "empty" closes it with "/>".
  void Open(int depth, std::string_view tag, const std::vector<std::string>& attributes,
            bool empty) {
    std::string line = Indent(depth) + "<" + std::string(tag);
    const size_t align = line.size() + 1;
    for (size_t i = 0; i < attributes.size(); ++i) {
      const size_t tail = i + 1 == attributes.size() ? (empty ? 2 : 1) : 0;
      if (i > 0 && line.size() + 1 + attributes[i].size() + tail > kColumns) {
        out_ += line + '\n';
        line = std::string(align - 1, ' ');
      }
      line += ' ' + attributes[i];
    }
    out_ += line + (empty ? "/>" : ">");
  }

  void Close(int depth, std::string_view tag, const Written& written) {
    Notes(written.closing_notes, depth + 1);
    out_ += Indent(depth) + "</" + std::string(tag) + ">\n";
  }

  template <typename E>
  void Empty(int depth, std::string_view tag, const AttributeTable<E>& table, const E& element,
             const Written& written) {
    Leading(written, depth);
    Open(depth, tag, Attributes(table, element, written), true);
    out_ += '\n';
  }

  void Copies(int depth) {
    const CopySetup& copies = design_.copies;
    Leading(copies.written, depth);
    const std::vector<std::string> attributes =
        Attributes(CopiesAttributes(), copies, copies.written);
    if (copies.labels.empty() && copies.written.closing_notes.empty()) {
      Open(depth, "copies", attributes, true);
      out_ += '\n';
      return;
    }
    Open(depth, "copies", attributes, false);
    out_ += '\n';
    for (size_t i = 0; i < copies.labels.size(); ++i) {
      const Written written =
          i < copies.labels_written.size() ? copies.labels_written[i] : Written{};
      Empty(depth + 1, "copy", CopyAttributes(), CopyLabel{copies.labels[i]}, written);
    }
    Close(depth, "copies", copies.written);
  }

  void WriteQuery(int depth, const Query& query) {
    Leading(query.written, depth);
    Open(depth, "query", Attributes(QueryAttributes(), query, query.written), false);
    out_ += '\n';
    std::vector<ChildKind> kinds;
    kinds.push_back({{"sql"}, 1, [&](size_t) {
                       Leading(query.sql_written, depth + 1);
                       out_ += Indent(depth + 1) + "<sql>" +
                               Content(query.sql, query.sql_written.cdata, false) + "</sql>\n";
                     }});
    kinds.push_back({{"param"}, query.params.size(), [&](size_t i) {
                       const QueryParam& param = query.params[i];
                       Empty(depth + 1, "param", ParamAttributes(), param, param.written);
                     }});
    WriteChildren(query.written.order, kinds);
    Close(depth, "query", query.written);
  }

  // A text as element content: a CDATA section if it was one (and can be), markup as it is for
  // a rich text outside its [expressions], otherwise escaped.
  static std::string Content(std::string_view text, bool cdata, bool rich) {
    if (cdata && text.find("]]>") == std::string_view::npos) {
      return "<![CDATA[" + std::string(text) + "]]>";
    }
    if (!rich) return Escaped(text, false, 0);
    std::string out;
    size_t copied = 0;
    for (const auto& [begin, end] : ExpressionSpans(text)) {
      out.append(text.substr(copied, begin - copied));
      out += Escaped(text.substr(begin, end - begin), false, 0);
      copied = end;
    }
    out.append(text.substr(copied));
    return out;
  }

  bool IsRich(const TextObject& text) const {
    if (text.style.rich) return *text.style.rich;
    std::string_view name = text.style_name;
    for (int depth = 0; !name.empty() && depth < 16; ++depth) {
      const Style* style = design_.FindStyle(name);
      if (style == nullptr) style = design_.library.FindStyle(name);
      if (style == nullptr) break;
      if (style->spec.rich) return *style->spec.rich;
      name = style->spec.based_on;
    }
    return false;
  }

  void WriteObject(int depth, const DesignObject& object) {
    std::visit(
        [&](const auto& o) {
          using T = std::decay_t<decltype(o)>;
          if constexpr (std::is_same_v<T, TextObject>) {
            Leading(o.written, depth);
            Open(depth, "text", Attributes(TextAttributes(), o, o.written), o.text.empty());
            if (!o.text.empty()) {
              out_ += Content(o.text, o.written.cdata, IsRich(o)) + "</text>";
            }
            out_ += '\n';
          } else if constexpr (std::is_same_v<T, PictureObject>) {
            Empty(depth, "picture", PictureAttributes(), o, o.written);
          } else if constexpr (std::is_same_v<T, BarcodeObject>) {
            Empty(depth, "barcode", BarcodeAttributes(), o, o.written);
          } else if constexpr (std::is_same_v<T, PartUse>) {
            Leading(o.written, depth);
            Open(depth, "use", UseAttributeList(o), true);
            out_ += '\n';
          } else if constexpr (std::is_same_v<T, LineObject>) {
            Empty(depth, "line", LineAttributes(), o, o.written);
          } else {
            Empty(depth, "rect", RectAttributes(), o, o.written);
          }
        },
        object);
  }

  // The attributes of a <use>: its own and its arguments, in the order the file gave them; then
  // those it did not give.
  static std::vector<std::string> UseAttributeList(const PartUse& use) {
    const AttributeTable<PartUse>& table = UseAttributes();
    std::vector<std::string> out;
    std::vector<std::string_view> done;
    for (const WrittenAttribute& given : use.written.attributes) {
      if (std::count(done.begin(), done.end(), given.name)) continue;
      done.push_back(given.name);
      const auto spec =
          std::find_if(table.begin(), table.end(),
                       [&](const AttributeSpec<PartUse>& s) { return given.name == s.name; });
      if (spec != table.end()) {
        const std::optional<std::string> value = spec->write(use, given.text);
        if (!value) continue;
        out.push_back(
            Attribute(spec->name, AttributeKey(*spec, use) == given.key ? given.text : *value));
      } else if (const std::string* value = use.Argument(given.name)) {
        out.push_back(Attribute(given.name, *value));
      }
    }
    for (const AttributeSpec<PartUse>& spec : table) {
      if (std::count(done.begin(), done.end(), spec.name)) continue;
      const std::optional<std::string> value = spec.write(use, "mm");
      if (value && !IsDefault(spec, use)) out.push_back(Attribute(spec.name, *value));
    }
    for (const auto& [name, value] : use.arguments) {
      if (!std::count(done.begin(), done.end(), name)) out.push_back(Attribute(name, value));
    }
    return out;
  }

  // The objects and child bands of "band", with "more" (a data band's headers, footers, groups
  // and details) among them.
  void BandContent(int depth, const Band& band, const Written& written,
                   std::vector<ChildKind> more = {}) {
    more.insert(more.begin(), ChildKind{{"text", "picture", "barcode", "line", "rect", "use"},
                                        band.objects.size(),
                                        [&](size_t i) { WriteObject(depth, band.objects[i]); }});
    more.push_back(
        {{"child"}, band.children.size(), [&](size_t i) { WriteBand(depth, band.children[i]); }});
    WriteChildren(written.order, more);
  }

  static bool HasContent(const Band& band, const Written& written) {
    return !band.objects.empty() || !band.children.empty() || !written.closing_notes.empty();
  }

  void WriteBand(int depth, const Band& band) {
    const char* tag = BandElementName(band.kind);
    Leading(band.written, depth);
    const bool empty = !HasContent(band, band.written);
    Open(depth, tag, Attributes(BandAttributes(), band, band.written), empty);
    out_ += '\n';
    if (empty) return;
    BandContent(depth + 1, band, band.written);
    Close(depth, tag, band.written);
  }

  void WriteData(int depth, const DataBand& data) {
    const Written& written = data.band.written;
    Leading(written, depth);
    const bool empty = !HasContent(data.band, written) && !data.header && !data.footer &&
                       data.groups.empty() && data.details.empty();
    Open(depth, "data", Attributes(DataAttributes(), data, written), empty);
    out_ += '\n';
    if (empty) return;
    std::vector<ChildKind> more;
    more.push_back(
        {{"header"}, data.header ? 1u : 0u, [&](size_t) { WriteBand(depth + 1, *data.header); }});
    more.push_back(
        {{"group"}, data.groups.size(), [&](size_t i) { WriteGroup(depth + 1, data.groups[i]); }});
    more.push_back(
        {{"data"}, data.details.size(), [&](size_t i) { WriteData(depth + 1, data.details[i]); }});
    more.push_back(
        {{"footer"}, data.footer ? 1u : 0u, [&](size_t) { WriteBand(depth + 1, *data.footer); }});
    BandContent(depth + 1, data.band, written, std::move(more));
    Close(depth, "data", written);
  }

  void WriteGroup(int depth, const Group& group) {
    Leading(group.written, depth);
    const bool empty = !group.header && !group.footer && group.written.closing_notes.empty();
    Open(depth, "group", Attributes(GroupAttributes(), group, group.written), empty);
    out_ += '\n';
    if (empty) return;
    std::vector<ChildKind> kinds;
    kinds.push_back(
        {{"header"}, group.header ? 1u : 0u, [&](size_t) { WriteBand(depth + 1, *group.header); }});
    kinds.push_back(
        {{"footer"}, group.footer ? 1u : 0u, [&](size_t) { WriteBand(depth + 1, *group.footer); }});
    WriteChildren(group.written.order, kinds);
    Close(depth, "group", group.written);
  }

  const Template& design_;
  std::string out_;
};

}  // namespace

std::string WriteTemplate(const Template& design) { return Writer(design).Run(); }

}  // namespace vantorel::report
