// Expanding a template's uses of house-library parts into the objects, queries and variables of
// those parts, with their arguments put in.
#include "report/template/library.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>

#include "report/expr/text_util.h"
#include "report/template/attributes.h"

namespace vantorel::report {

const PartParam* PartSource::FindParam(std::string_view wanted) const {
  for (const PartParam& param : params) {
    if (param.name == wanted) return &param;
  }
  return nullptr;
}

const PartSource* Library::FindPart(std::string_view wanted) const {
  for (const PartSource& part : parts) {
    if (part.name == wanted) return &part;
  }
  return nullptr;
}

namespace {

bool IsNameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// "value" moved by the length "offset" ("+4mm", "-53mm"), written in millimetres; nullopt when
// either is not a length.
std::optional<std::string> Offset(std::string_view value, std::string_view offset) {
  const std::optional<float> base = ParseLength(value);
  const std::optional<float> by = ParseLength(offset.substr(1));
  if (!base || !by || offset.empty()) return std::nullopt;
  const float points = offset[0] == '-' ? *base - *by : *base + *by;
  return FormatLength(points, "mm");
}

std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

// A hint listing the names there are.
std::string Known(const std::vector<std::string>& candidates) {
  std::string known;
  for (const std::string& candidate : candidates) known += (known.empty() ? "" : ", ") + candidate;
  return known.empty() ? std::string() : "known: " + known;
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

bool SameQuery(const Query& a, const Query& b) {
  if (a.sql != b.sql || a.database != b.database || a.params.size() != b.params.size()) {
    return false;
  }
  for (size_t i = 0; i < a.params.size(); ++i) {
    const QueryParam& x = a.params[i];
    const QueryParam& y = b.params[i];
    if (x.name != y.name || x.type != y.type || x.default_value != y.default_value ||
        x.value != y.value) {
      return false;
    }
  }
  return true;
}

// Where a <use> stands: the template, or a part of the library.
struct Place {
  std::string file;
  int line = 0;
};

class Expander {
 public:
  Expander(const Library& library, const Template& design, const std::string& file,
           std::vector<Problem>& problems)
      : library_(library), design_(design), file_(file), problems_(problems) {}

  Template Run() {
    Template out = design_;
    // The library's styles first: the last of a name counts, so the template's own win.
    out.styles.clear();
    for (const Style& style : library_.styles) {
      if (design_.FindStyle(style.name) == nullptr) out.styles.push_back(style);
    }
    out.styles.insert(out.styles.end(), design_.styles.begin(), design_.styles.end());
    out_ = &out;
    for (std::optional<Band>* band : {&out.page_header, &out.page_footer, &out.title, &out.summary,
                                      &out.column_header, &out.column_footer}) {
      if (*band) ExpandBand(**band);
    }
    for (DataBand& data : out.data) ExpandData(data);
    return out;
  }

 private:
  void Add(const Place& place, std::string message, std::string hint = {}) {
    problems_.push_back({place.file, place.line, std::move(message), std::move(hint)});
  }

  void ExpandData(DataBand& data) {
    ExpandBand(data.band);
    if (data.header) ExpandBand(*data.header);
    if (data.footer) ExpandBand(*data.footer);
    for (Group& group : data.groups) {
      if (group.header) ExpandBand(*group.header);
      if (group.footer) ExpandBand(*group.footer);
    }
    for (DataBand& detail : data.details) ExpandData(detail);
  }

  void ExpandBand(Band& band) {
    std::vector<DesignObject> objects;
    for (DesignObject& object : band.objects) {
      if (auto* use = std::get_if<PartUse>(&object)) {
        std::vector<std::string> using_parts;
        Expand(*use, Place{file_, use->line}, use->line, using_parts, objects);
      } else {
        objects.push_back(std::move(object));
      }
    }
    band.objects = std::move(objects);
    for (Band& child : band.children) ExpandBand(child);
  }

  // Appends to "into" the objects of the part "use" places, moved to where it stands. What the
  // part brings is said to stand on "template_line", the line of the template's <use>, so that
  // the compiler's messages about it (a field the arguments name, say) point there.
  void Expand(const PartUse& use, const Place& place, int template_line,
              std::vector<std::string>& using_parts, std::vector<DesignObject>& into) {
    const PartSource* part = library_.FindPart(use.part);
    if (part == nullptr) {
      std::vector<std::string> names;
      for (const PartSource& known : library_.parts) names.push_back(known.name);
      Add(place, "the library " + Quoted(library_.file) + " has no part " + Quoted(use.part),
          Known(names));
      return;
    }
    if (std::count(using_parts.begin(), using_parts.end(), part->name)) {
      std::string cycle;
      for (const std::string& name : using_parts) cycle += name + " → ";
      Add(place, "parts use each other in a cycle: " + cycle + part->name,
          "a part cannot use itself, directly or through another part");
      return;
    }
    if (using_parts.size() >= static_cast<size_t>(kMaxPartNesting)) {
      Add(place, "parts are nested more than " + std::to_string(kMaxPartNesting) + " levels deep");
      return;
    }
    std::map<std::string, std::string> values;
    bool complete = true;
    for (const auto& [name, value] : use.arguments) {
      if (part->FindParam(name) == nullptr) {
        std::vector<std::string> names;
        for (const PartParam& param : part->params) names.push_back(param.name);
        Add(place, "part " + Quoted(part->name) + " has no parameter " + Quoted(name),
            Known(names));
        complete = false;
      }
      values[name] = value;
    }
    for (const PartParam& param : part->params) {
      if (values.count(param.name)) continue;
      if (param.default_value) {
        values[param.name] = *param.default_value;
      } else {
        Add(place, "part " + Quoted(part->name) + " needs the parameter " + Quoted(param.name),
            "give it as an attribute of <use>: " + param.name + "=\"…\"");
        complete = false;
      }
    }
    if (!complete) return;
    const size_t first_problem = problems_.size();
    const std::string xml = PutArguments(*part, values);
    if (problems_.size() > first_problem) return;
    PartBody body = ParsePartBody(xml, library_.file, part->line, library_.styles, problems_);
    for (size_t i = first_problem; i < problems_.size(); ++i) {
      Problem& problem = problems_[i];
      problem.hint += std::string(problem.hint.empty() ? "" : "; ") + "in part " +
                      Quoted(part->name) + " used at " + place.file + ":" +
                      std::to_string(place.line);
    }
    for (Query& query : body.queries) {
      query.line = template_line;
      for (QueryParam& param : query.params) param.line = template_line;
      AddQuery(std::move(query), *part, place);
    }
    for (Variable& variable : body.variables) {
      variable.line = template_line;
      AddVariable(std::move(variable));
    }
    using_parts.push_back(part->name);
    for (DesignObject& object : body.objects) {
      MoveToUse(object, use);
      if (auto* inner = std::get_if<PartUse>(&object)) {
        Expand(*inner, Place{library_.file, inner->line}, template_line, using_parts, into);
      } else {
        std::visit([&](auto& o) { o.line = template_line; }, object);
        into.push_back(std::move(object));
      }
    }
    using_parts.pop_back();
  }

  // Moves "object" to where "use" stands, and prints it only when the use prints.
  static void MoveToUse(DesignObject& object, const PartUse& use) {
    std::visit(
        [&](auto& o) {
          o.box.x += use.box.x;
          o.box.y += use.box.y;
          using T = std::decay_t<decltype(o)>;
          if constexpr (std::is_same_v<T, LineObject>) {
            o.from.x += use.box.x;
            o.from.y += use.box.y;
            o.to.x += use.box.x;
            o.to.y += use.box.y;
          }
          if (!use.print_when.empty()) {
            o.print_when = o.print_when.empty()
                               ? use.print_when
                               : "(" + use.print_when + ") and (" + o.print_when + ")";
          }
        },
        object);
  }

  // The part's XML with each ${name} replaced by its value: escaped, or as it is inside a CDATA
  // section.
  std::string PutArguments(const PartSource& part,
                           const std::map<std::string, std::string>& values) {
    const std::string_view xml = part.xml;
    std::string out;
    bool in_cdata = false;
    size_t i = 0;
    while (i < xml.size()) {
      if (!in_cdata && xml.compare(i, 9, "<![CDATA[") == 0) {
        in_cdata = true;
        out.append(xml.substr(i, 9));
        i += 9;
      } else if (in_cdata && xml.compare(i, 3, "]]>") == 0) {
        in_cdata = false;
        out.append(xml.substr(i, 3));
        i += 3;
      } else if (xml.compare(i, 2, "${") == 0) {
        size_t end = i + 2;
        while (end < xml.size() && IsNameChar(xml[end])) ++end;
        const std::string name(xml.substr(i + 2, end - i - 2));
        const int line =
            part.line + static_cast<int>(std::count(xml.begin(), xml.begin() + i, '\n'));
        const size_t close = xml.find('}', end);
        std::string_view offset;
        if (close != std::string_view::npos && close > end && close - end < 32 &&
            (xml[end] == '+' || xml[end] == '-')) {
          offset = xml.substr(end, close - end);
          end = close;
        }
        if (end >= xml.size() || xml[end] != '}' || name.empty()) {
          Add(Place{library_.file, line}, "\"${\" starts no parameter",
              "write a parameter as ${name}, or a length moved by another as ${width-50mm}");
          out += "${";
          i += 2;
          continue;
        }
        auto value = values.find(name);
        std::optional<std::string> moved;
        if (value != values.end() && !offset.empty()) {
          moved = Offset(value->second, offset);
          if (!moved) {
            Add(Place{library_.file, line},
                "${" + name + std::string(offset) + "} needs a length, and " +
                    Quoted(value->second) + " is not one",
                "give the parameter a length such as 190mm");
            i = end + 1;
            continue;
          }
        }
        if (value == values.end()) {
          Add(Place{library_.file, line},
              "part " + Quoted(part.name) + " uses ${" + name + "} but declares no such parameter",
              "declare it: <param name=\"" + name + "\"/>");
        } else if (in_cdata && value->second.find("]]>") != std::string::npos) {
          Add(Place{library_.file, line},
              "the value of ${" + name + "} cannot stand in a CDATA section: it holds \"]]>\"");
        } else {
          const std::string& put = moved ? *moved : value->second;
          out += in_cdata ? put : Escaped(put);
        }
        i = end + 1;
      } else {
        out += xml[i++];
      }
    }
    return out;
  }

  void AddQuery(Query query, const PartSource& part, const Place& place) {
    for (const Query& existing : design_.queries) {
      if (expr::EqualsIgnoreCase(existing.name, query.name)) {
        Add(Place{file_, existing.line},
            "the template defines the query " + Quoted(query.name) + ", which part " +
                Quoted(part.name) + " brings",
            "drop the template's query and use the part's, or rename it");
        return;
      }
    }
    for (const Query& added : out_->queries) {
      if (!expr::EqualsIgnoreCase(added.name, query.name)) continue;
      if (!SameQuery(added, query)) {
        Add(place,
            "part " + Quoted(part.name) + " is used twice with different arguments for its query " +
                Quoted(query.name),
            "a part that brings a query is used with the same arguments everywhere in a template");
      }
      return;
    }
    out_->queries.push_back(std::move(query));
  }

  void AddVariable(Variable variable) {
    for (const Variable& existing : out_->variables) {
      if (expr::EqualsIgnoreCase(existing.name, variable.name) &&
          expr::EqualsIgnoreCase(existing.category, variable.category)) {
        return;  // the template's own, which the print method sets
      }
    }
    out_->variables.push_back(std::move(variable));
  }

  const Library& library_;
  const Template& design_;
  const std::string& file_;
  std::vector<Problem>& problems_;
  Template* out_ = nullptr;
};

bool UsesParts(const Band& band) {
  return std::any_of(band.objects.begin(), band.objects.end(),
                     [](const DesignObject& o) { return std::holds_alternative<PartUse>(o); }) ||
         std::any_of(band.children.begin(), band.children.end(), UsesParts);
}

bool UsesParts(const DataBand& data) {
  const auto optional_uses = [](const std::optional<Band>& band) {
    return band && UsesParts(*band);
  };
  return UsesParts(data.band) || optional_uses(data.header) || optional_uses(data.footer) ||
         std::any_of(
             data.groups.begin(), data.groups.end(),
             [&](const Group& g) { return optional_uses(g.header) || optional_uses(g.footer); }) ||
         std::any_of(data.details.begin(), data.details.end(),
                     [](const DataBand& d) { return UsesParts(d); });
}

bool UsesParts(const Template& design) {
  for (const std::optional<Band>* band :
       {&design.page_header, &design.page_footer, &design.title, &design.summary,
        &design.column_header, &design.column_footer}) {
    if (*band && UsesParts(**band)) return true;
  }
  return std::any_of(design.data.begin(), design.data.end(),
                     [](const DataBand& d) { return UsesParts(d); });
}

}  // namespace

Template ExpandParts(const Template& design, const std::string& file,
                     std::vector<Problem>& problems) {
  if (design.library.line == 0) {
    if (UsesParts(design)) {
      problems.push_back({file, 0, "the template uses parts but names no library",
                          "add <library file=\"house.xml\"/> after <page>"});
    }
    return design;
  }
  const std::filesystem::path path =
      std::filesystem::path(file).parent_path() / design.library.file;
  std::string xml;
  try {
    xml = ReadTemplateFile(path.string());
  } catch (const TemplateError& error) {
    const std::string why = error.problems().empty() ? "" : ": " + error.problems()[0].message;
    problems.push_back(
        {file, design.library.line,
         "the house library " + Quoted(design.library.file) + " cannot be read" + why,
         "it lives in the template's folder, " +
             (path.parent_path().empty() ? std::string(".") : path.parent_path().string())});
    return design;
  }
  if (xml.size() > kMaxLibraryBytes) {
    problems.push_back({file, design.library.line,
                        "the house library " + Quoted(design.library.file) + " is too large"});
    return design;
  }
  const size_t before = problems.size();
  const Library library = ParseLibrary(xml, path.string(), problems);
  if (problems.size() > before) return design;
  return Expander(library, design, file, problems).Run();
}

}  // namespace vantorel::report
