// vantorel: the command-line face of the component. Each subcommand is a thin layer over the
// library: list the interface, spell amounts, call a print method as a host would, register the
// component.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "component/dispatch.h"
#include "component/interface.h"
#include "component/registration.h"
#include "host/atomic_file.h"
#include "host/native_path.h"
#include "report/binding/report_engine.h"
#include "report/compile/compiled_report.h"
#include "report/compile/house_rules.h"
#include "report/pdf/pdf_writer.h"
#include "report/preview/preview.h"
#include "report/print/printer.h"
#include "report/raster/png_writer.h"
#include "report/template/template_io.h"
#include "template_contracts.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"
#include "vantorel/report_state.h"
#include "words/amount_in_words.h"

namespace vantorel {
namespace {

constexpr int kUsageError = 2;

int Methods() {
  for (const EntryInfo& entry : InterfaceEntries()) {
    std::printf("0x%08x\t%s\t%s\n", static_cast<unsigned>(entry.dispid), entry.name,
                ParamListIdl(entry).c_str());
  }
  return 0;
}

int Words(const std::string& amount_text) {
  // Indian grouping ("1,05,000.50") is accepted; the number itself is read locale-independently.
  std::string digits;
  for (char c : amount_text) {
    if (c != ',' && c != '_') digits += c;
  }
  double amount = 0;
  const char* begin = digits.data() + (digits.size() > 1 && digits[0] == '+' ? 1 : 0);
  const auto [end, ec] = std::from_chars(begin, digits.data() + digits.size(), amount);
  if (ec != std::errc() || end != digits.data() + digits.size() || digits.empty()) {
    std::cerr << "vantorel words: not a number: " << amount_text << "\n";
    return kUsageError;
  }
  try {
    std::cout << AmountInWords(amount) << "\n";
    // Stdout stays exactly what the documents print; support staff learn from stderr why a
    // cheque's words look short.
    if (amount < 0) {
      std::cerr << "vantorel words: warning: the amount is negative; the words do not say so\n";
    }
    if (const std::optional<UnspokenDigits> unspoken = FindUnspokenDigits(amount)) {
      std::cerr << "vantorel words: warning: the words leave out " << unspoken->left_out << " of "
                << unspoken->amount
                << ": the 10^9 digit and every digit from 10^11 up are never spoken\n";
    }
  } catch (const Error& error) {
    std::cerr << "vantorel words: " << error.description() << "\n";
    return 1;
  }
  return 0;
}

struct CallOptions {
  std::string report_path, db, tdb, app_path;
  int firm = -1;
  bool pdf = false, print = false, design = false, exported = false;
  std::string pdf_file;
  std::vector<std::string> sets;
  std::string method;
  std::vector<std::string> args;
};

// Stores "value" as given: a whole number into a boolean property stays that number
// (RptPrint=1 is stored as 1, which the output logic does not count as true).
void PutProperty(CRepoter& rep, const std::string& name, const std::string& value) {
  const std::optional<DispId> dispid = FindDispId(name);
  const EntryInfo* entry = dispid ? FindEntry(*dispid, EntryKind::kPropertyPut) : nullptr;
  if (entry != nullptr && entry->params[0].type == VarType::kBool) {
    int number = 0;
    const auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (ec == std::errc() && end == value.data() + value.size() && number >= -32768 &&
        number <= 32767) {
      InvokeByName(rep, name, kDispatchPropertyPut, {Variant::Bool(static_cast<VBool>(number))});
      return;
    }
  }
  InvokeByName(rep, name, kDispatchPropertyPut, {Variant::String(value)});
}

// The system platform, keeping the text of every message box the component shows: a method
// that reports a problem in a message box still returns normally, and a script cannot see it.
class MessageKeepingPlatform final : public Platform {
 public:
  explicit MessageKeepingPlatform(std::shared_ptr<Platform> system) : system_(std::move(system)) {}

  void ShowMessage(const std::string& text, MessageIcon icon) override {
    {
      std::lock_guard lock(mutex_);
      messages_.push_back(text);
    }
    system_->ShowMessage(text, icon);
  }
  uint32_t FileAttributes(const std::string& path) override {
    return system_->FileAttributes(path);
  }
  std::optional<std::string> Environment(std::string_view name) override {
    return system_->Environment(name);
  }
  RegionalDateSettings RegionalDates() override { return system_->RegionalDates(); }
  Date Today() override { return system_->Today(); }

  std::vector<std::string> messages() const {
    std::lock_guard lock(mutex_);
    return messages_;
  }

 private:
  std::shared_ptr<Platform> system_;
  mutable std::mutex mutex_;
  std::vector<std::string> messages_;
};

// Identifies one version of a file: a new PDF renamed into place is a new inode.
struct FileVersion {
  bool exists = false;
  ino_t inode = 0;
  timespec modified{};

  static FileVersion Of(const std::string& path) {
    struct stat info;
    if (::stat(path.c_str(), &info) != 0) return {};
    return {true, info.st_ino, info.st_mtim};
  }
  bool SameAs(const FileVersion& other) const {
    return exists == other.exists && inode == other.inode &&
           modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
  }
};

// The PDF the component was asked to write, as it will name it: empty when the state asks for
// none. Printing wins over a PDF, as in the component's output step.
std::string ExpectedPdf(const ReportState& state) {
  if (!IsExactlyTrue(state.RptPDF) || IsExactlyTrue(state.RptPrint)) return "";
  return state.PDFPath.empty() ? state.AppPath + "\\export.pdf" : state.PDFPath;
}

// Exit status of a method that returned normally but showed a message or wrote no PDF.
constexpr int kCallIncomplete = 3;

int Call(const CallOptions& options) {
  auto platform = std::make_shared<MessageKeepingPlatform>(SystemPlatform());
  SetPlatform(platform);
  CRepoter rep;
  std::string pdf;
  FileVersion before;
  try {
    if (!options.report_path.empty()) rep.put_ReportPath(options.report_path);
    if (!options.db.empty()) rep.put_DbConnectstring(options.db);
    if (!options.tdb.empty()) rep.put_DbTConnectstring(options.tdb);
    // Without a folder of its own the default PDF goes to the current folder, never to the
    // file system's root.
    std::error_code no_cwd;
    const std::filesystem::path cwd = std::filesystem::current_path(no_cwd);
    rep.put_AppPath(!options.app_path.empty() ? options.app_path : no_cwd ? "." : cwd.string());
    if (options.firm >= 0) PutProperty(rep, "FirmID", std::to_string(options.firm));
    if (options.pdf) {
      rep.put_RptPDF(kTrue);
      rep.put_PDFPath(options.pdf_file);
    }
    if (options.print) rep.put_RptPrint(kTrue);
    if (options.design) rep.put_DesigbeMode(kTrue);
    if (options.exported) rep.put_Export(kTrue);
    for (const std::string& set : options.sets) {
      const size_t equals = set.find('=');
      if (equals == std::string::npos) {
        std::cerr << "vantorel call: --set wants Property=value, got: " << set << "\n";
        return kUsageError;
      }
      PutProperty(rep, set.substr(0, equals), set.substr(equals + 1));
    }
    rep.SetVars();
    pdf = ExpectedPdf(CurrentReportState());
    if (!pdf.empty()) before = FileVersion::Of(NativePath(pdf));
    std::vector<Variant> args;
    for (const std::string& arg : options.args) args.push_back(Variant::String(arg));
    InvokeByName(rep, options.method, kDispatchMethod, args);
  } catch (const Error& error) {
    std::cout << "LastMsg: " << rep.get_LastMsg() << "\n";
    std::fprintf(stderr, "vantorel call: error %d (0x%08X): %s\n", error.number(),
                 static_cast<unsigned>(error.hresult()), error.description().c_str());
    return 1;
  }
  std::cout << "LastMsg: " << rep.get_LastMsg() << "\n";
  int status = 0;
  for (const std::string& message : platform->messages()) {
    std::cerr << "vantorel call: the method showed a message: " << message << "\n";
    status = kCallIncomplete;
  }
  if (!pdf.empty()) {
    const FileVersion after = FileVersion::Of(NativePath(pdf));
    if (!after.exists || after.SameAs(before)) {
      std::cerr << "vantorel call: no PDF was written to " << pdf << "\n";
      status = kCallIncomplete;
    }
  }
  return status;
}

// The exit status of a render that went through with texts that do not fit their boxes, when
// asked to be strict about them.
constexpr int kTextsDoNotFit = 3;

struct RenderOptions {
  std::string template_path;
  std::string db, tdb;
  std::vector<std::string> params, vars;
  std::string pdf, png_dir, print_queue;
  double dpi = 150;
  bool print = false, preview = false;
  bool strict = false;  // texts that do not fit their boxes make the exit status kTextsDoNotFit
};

// "points" in millimetres, to one decimal.
std::string Millimetres(float points) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", static_cast<double>(points) * 25.4 / 72);
  return text;
}

// A text as a warning quotes it: on one line, its first 60 characters.
std::string Quote(const std::string& text) {
  constexpr size_t kLongest = 60;
  std::string quoted = "\"";
  size_t characters = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80 && ++characters > kLongest) {
      quoted += "\u2026";
      break;
    }
    quoted += c == '\n' || c == '\r' || c == '\t' ? ' ' : c;
  }
  return quoted + "\"";
}

// "page 3", "pages 1-4, 7": the pages, in order, ranges joined.
std::string Pages(const std::vector<size_t>& pages) {
  std::string text = pages.size() == 1 ? "page " : "pages ";
  for (size_t i = 0; i < pages.size();) {
    size_t j = i;
    while (j + 1 < pages.size() && pages[j + 1] == pages[j] + 1) ++j;
    if (i > 0) text += ", ";
    text += std::to_string(pages[i]);
    if (j > i) text += "-" + std::to_string(pages[j]);
    i = j + 1;
  }
  return text;
}

// One warning for each text that does not fit its box, in the order of the pages and then of the
// template: the same text in the same box on several pages (a page header's) is one warning
// naming them all.
std::vector<std::string> OverflowWarnings(const std::string& template_path,
                                          const std::vector<report::Overflow>& overflows) {
  std::vector<std::pair<const report::Overflow*, std::vector<size_t>>> merged;
  for (const report::Overflow& overflow : overflows) {
    const auto same = std::find_if(merged.begin(), merged.end(), [&](const auto& entry) {
      const report::Overflow& seen = *entry.first;
      return seen.line == overflow.line && seen.object == overflow.object &&
             seen.text == overflow.text && seen.across == overflow.across &&
             seen.needed == overflow.needed && seen.available == overflow.available;
    });
    if (same == merged.end()) {
      merged.push_back({&overflow, {overflow.page}});
    } else if (same->second.back() != overflow.page) {
      same->second.push_back(overflow.page);
    }
  }
  for (auto& entry : merged) {
    std::sort(entry.second.begin(), entry.second.end());
    entry.second.erase(std::unique(entry.second.begin(), entry.second.end()), entry.second.end());
  }
  // By the first page each is on, then down the template.
  std::stable_sort(merged.begin(), merged.end(), [](const auto& a, const auto& b) {
    return std::pair(a.second.front(), a.first->line) < std::pair(b.second.front(), b.first->line);
  });
  std::vector<std::string> warnings;
  warnings.reserve(merged.size());
  for (const auto& [overflow, pages] : merged) {
    warnings.push_back(template_path + ":" + std::to_string(overflow->line) +
                       ": text does not fit its box on " + Pages(pages) + ": needs " +
                       Millimetres(overflow->needed) + " mm" +
                       (overflow->across ? " of width" : "") + ", has " +
                       Millimetres(overflow->available) + " mm: " + Quote(overflow->text));
  }
  return warnings;
}

// "OWNER.NAME=VALUE" split into its three parts.
bool SplitSetting(const std::string& text, report::RenderRequest::Setting& setting) {
  const size_t dot = text.find('.');
  const size_t equals = text.find('=');
  if (dot == std::string::npos || equals == std::string::npos || dot > equals || dot == 0) {
    return false;
  }
  setting.owner = text.substr(0, dot);
  setting.name = text.substr(dot + 1, equals - dot - 1);
  setting.value = text.substr(equals + 1);
  return !setting.name.empty();
}

// A plain text as a template expression: a quoted string.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (char c : text) {
    quoted += c;
    if (c == '"') quoted += '"';
  }
  return quoted + "\"";
}

// The template's name: its file name without folders and ".fr3".
std::string TemplateName(const std::string& path) {
  std::string name =
      path.substr(path.find_last_of("/\\") == std::string::npos ? 0 : path.find_last_of("/\\") + 1);
  if (name.size() > 4 && name.compare(name.size() - 4, 4, ".fr3") == 0)
    name.resize(name.size() - 4);
  return name;
}

int Render(const RenderOptions& options) {
  report::RenderRequest request;
  request.template_path = options.template_path;
  if (!options.db.empty()) request.connections["DMSDB"] = options.db;
  if (!options.tdb.empty()) request.connections["temp"] = options.tdb;
  for (const std::string& text : options.params) {
    report::RenderRequest::Setting setting;
    if (!SplitSetting(text, setting)) {
      std::cerr << "vantorel render: --param wants QUERY.PARAM=VALUE, got: " << text << "\n";
      return kUsageError;
    }
    request.parameters.push_back(setting);
  }
  for (const std::string& text : options.vars) {
    report::RenderRequest::Setting setting;
    if (!SplitSetting(text, setting)) {
      std::cerr << "vantorel render: --var wants CATEGORY.NAME=VALUE, got: " << text << "\n";
      return kUsageError;
    }
    setting.value = Quoted(setting.value);
    request.variables.push_back(setting);
  }
  try {
    report::Rendered rendered = report::RenderTemplate(request);
    for (const std::string& warning : rendered.warnings) {
      std::cerr << "vantorel render: warning: " << warning << "\n";
    }
    const std::vector<std::string> overflows =
        OverflowWarnings(options.template_path, rendered.document.overflows);
    for (const std::string& warning : overflows) std::cerr << warning << "\n";
    if (options.pdf == "-") {
      report::StreamPdf(rendered.document, STDOUT_FILENO, "standard output");
      std::cerr << "standard output: " << rendered.document.pages.size() << " page(s)\n";
    } else if (!options.pdf.empty()) {
      report::WritePdf(rendered.document, options.pdf);
      std::cout << options.pdf << ": " << rendered.document.pages.size() << " page(s)\n";
    } else if (!options.png_dir.empty()) {
      for (const std::string& file :
           report::WritePngs(rendered.document, options.png_dir,
                             TemplateName(options.template_path), options.dpi)) {
        std::cout << file << "\n";
      }
    } else if (options.print) {
      report::PrintOptions print;
      print.queue = options.print_queue.empty() ? rendered.printer : options.print_queue;
      report::PrintDocument(rendered.document, print);
      std::cout << "printed " << rendered.document.pages.size() << " page(s)\n";
    } else {
      report::PreviewSettings preview;
      preview.title = rendered.document.metadata.title;
      preview.allow_export = true;
      preview.printer = rendered.printer;
      report::ShowPreview(rendered.document, preview);
    }
    if (options.strict && !overflows.empty()) return kTextsDoNotFit;
  } catch (const Error& error) {
    std::cerr << "vantorel render: " << error.description() << "\n";
    return 1;
  }
  return 0;
}

int Check(const std::vector<std::string>& templates, bool contracts, bool house_rules) {
  int failed = 0;
  for (const std::string& path : templates) {
    try {
      const auto report = report::CompileTemplateFile(path);
      std::vector<report::Problem> problems;
      const PrintMethodFacts* method = FindTemplateUser(TemplateName(path));
      if (contracts && method != nullptr) problems = CheckContract(*report, *method);
      // The texts its print method sets may run long whatever the template holds there.
      report::HouseRuleOptions options;
      if (method != nullptr) {
        for (const Use& memo : method->memos) options.run_time_texts.emplace_back(memo.name);
      }
      std::vector<report::Problem> findings = report::CheckHouseRules(*report, options);
      if (house_rules) {
        problems.insert(problems.end(), findings.begin(), findings.end());
      } else {
        for (report::Problem& finding : findings) finding.message = "warning: " + finding.message;
        std::cout << report::FormatProblems(findings);
      }
      if (problems.empty()) {
        std::cout << path << ": ok\n";
      } else {
        std::cout << report::FormatProblems(problems);
        ++failed;
      }
    } catch (const report::TemplateError& error) {
      std::cout << report::FormatProblems(error.problems());
      ++failed;
    }
  }
  return failed == 0 ? 0 : 1;
}

// Rewrites templates in the layout the template writer gives (docs/template-format.md); a template
// with problems is left as it is.
int Format(const std::vector<std::string>& templates) {
  int failed = 0;
  for (const std::string& path : templates) {
    try {
      const std::string xml = report::ReadTemplateFile(path);
      const std::string formatted = report::WriteTemplate(report::ParseTemplate(xml, path));
      if (formatted == xml) {
        std::cout << path << ": unchanged\n";
        continue;
      }
      std::ofstream out(path, std::ios::binary | std::ios::trunc);
      out << formatted;
      if (!out.flush()) {
        std::cout << path << ": cannot write the file\n";
        ++failed;
        continue;
      }
      std::cout << path << ": rewritten\n";
    } catch (const report::TemplateError& error) {
      std::cout << report::FormatProblems(error.problems());
      ++failed;
    }
  }
  return failed == 0 ? 0 : 1;
}

int Registration(bool add, bool system) {
  const RegistryScope scope = system ? RegistryScope::kSystem : RegistryScope::kUser;
  try {
    if (add) {
      Register(scope);
      std::cout << "registered "
                << "Vantorel.CRepoter in " << RegistryPath(scope) << "\n";
    } else {
      Unregister(scope);
      std::cout << "unregistered Vantorel.CRepoter from " << RegistryPath(scope) << "\n";
    }
  } catch (const Error& error) {
    std::cerr << "vantorel: " << error.description() << "\n";
    return 1;
  }
  return 0;
}

// A render stopped by SIGTERM or SIGINT leaves no half-written file behind; then the signal
// ends the program as it would have, so its parent sees how it died.
void OnTerminatingSignal(int signal_number) {
  RemovePendingTemporaryFiles();
  ::raise(signal_number);  // delivered with the default action once this handler returns
}

void RemoveTemporaryFilesOnSignals() {
  struct sigaction action = {};
  action.sa_handler = OnTerminatingSignal;
  action.sa_flags = SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  for (const int signal_number : {SIGTERM, SIGINT}) {
    struct sigaction previous;
    // A signal the caller chose to ignore (nohup, a background job's SIGINT) stays ignored.
    if (::sigaction(signal_number, nullptr, &previous) == 0 && previous.sa_handler == SIG_IGN) {
      continue;
    }
    ::sigaction(signal_number, &action, nullptr);
  }
}

}  // namespace
}  // namespace vantorel

int main(int argc, char** argv) {
  using namespace vantorel;
  RemoveTemporaryFilesOnSignals();
  CLI::App app{"Vantorel: dealership documents from report templates and the dealership database"};
  app.require_subcommand(1);

  app.add_subcommand("methods", "List the interface's entries: identifier, name, parameters");

  auto* words = app.add_subcommand("words", "Spell an amount in words, Indian numbering");
  std::string amount;
  words->add_option("AMOUNT", amount, "The amount, e.g. 105000.50 or 1,05,000.50")->required();

  app.add_subcommand("idl", "Print the interface description as an IDL file");
  app.add_subcommand("abi-header", "Print the C header of the interface's table of entries");

  CallOptions call;
  auto* call_cmd = app.add_subcommand(
      "call", "Create a CRepoter, set its properties, call SetVars, then call METHOD by name");
  call_cmd->add_option("--report-path", call.report_path, "ReportPath: the template folder");
  call_cmd->add_option("--db", call.db, "DbConnectstring: the dealership database");
  call_cmd->add_option("--tdb", call.tdb, "DbTConnectstring: the templates' \"temp\" database");
  call_cmd->add_option("--app-path", call.app_path, "AppPath: folder of the default PDF");
  call_cmd->add_option("--firm", call.firm, "FirmID")->check(CLI::Range(0, 255));
  call_cmd->add_option("--pdf", call.pdf_file, "Write a PDF (RptPDF); FILE is PDFPath")
      ->expected(0, 1);
  call_cmd->add_flag("--print", call.print, "Print (RptPrint)");
  call_cmd->add_flag("--design", call.design, "Open the designer first (DesigbeMode)");
  call_cmd->add_flag("--export", call.exported, "Offer export in the preview (Export)");
  call_cmd->add_option("--set", call.sets, "Property=value, stored as given (e.g. RptPrint=1)")
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  call_cmd->add_option("METHOD", call.method, "The print method, e.g. Challan_Customer")
      ->required();
  call_cmd->add_option("ARG", call.args,
                       "Arguments: dates as YYYY-MM-DD, booleans true/false or a number");

  RenderOptions render;
  auto* render_cmd = app.add_subcommand(
      "render", "Fill a template from the database and write a PDF, PNGs, print or preview it");
  render_cmd->add_option("TEMPLATE", render.template_path, "The .fr3 template")->required();
  render_cmd->add_option("--db", render.db, "Connection of the template's \"DMSDB\" database");
  render_cmd->add_option("--tdb", render.tdb, "Connection of the template's \"temp\" database");
  render_cmd->add_option("--param", render.params, "QUERY.PARAM=VALUE (dates as YYYY-MM-DD)")
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  render_cmd->add_option("--var", render.vars, "CATEGORY.NAME=VALUE, a text")
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  auto* outputs = render_cmd->add_option_group("output");
  outputs->add_option("--pdf", render.pdf, "Write the PDF to FILE (\"-\": to standard output)");
  outputs->add_option("--png", render.png_dir, "Write one PNG per page into DIR");
  outputs->add_option("--print", render.print_queue, "Print on QUEUE (default: the default queue)")
      ->expected(0, 1);
  outputs->add_flag("--preview", render.preview, "Show the preview window");
  outputs->require_option(1);
  render_cmd->add_option("--dpi", render.dpi, "PNG resolution")->check(CLI::Range(10.0, 1200.0));
  render_cmd->add_flag("--strict", render.strict,
                       "Exit with status 3 when a text does not fit its box (after the output)");

  std::vector<std::string> check_templates;
  bool check_contracts = false;
  auto* check_cmd = app.add_subcommand("check", "Validate templates; report every problem");
  check_cmd->add_option("TEMPLATE", check_templates, "Templates to check")->required();
  check_cmd->add_flag("--contracts", check_contracts,
                      "Also check that each template has what its print method sets");
  bool check_house_rules = false;
  check_cmd->add_flag("--house-rules", check_house_rules,
                      "Fail on texts that break the house rules (otherwise warnings)");

  bool system = false;
  std::vector<std::string> format_templates;
  auto* format_cmd =
      app.add_subcommand("format", "Rewrite templates in the template writer's layout");
  format_cmd->add_option("TEMPLATE", format_templates, "Templates to rewrite")->required();

  auto* reg = app.add_subcommand("register", "Register the component for this user");
  reg->add_flag("--system", system, "Register for every user of this machine");
  auto* unreg = app.add_subcommand("unregister", "Remove the component's registration");
  unreg->add_flag("--system", system, "Remove the machine-wide registration");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // CLI11 prints the problem (or the help asked for); every usage error is status 2.
    return app.exit(error) == 0 ? 0 : kUsageError;
  }

  if (app.got_subcommand("methods")) return Methods();
  if (app.got_subcommand("words")) return Words(amount);
  if (app.got_subcommand("idl")) {
    std::cout << InterfaceIdl();
    return 0;
  }
  if (app.got_subcommand("abi-header")) {
    std::cout << InterfaceCHeader();
    return 0;
  }
  if (app.got_subcommand("call")) {
    call.pdf = call_cmd->count("--pdf") > 0;
    // "--pdf Challan_Customer 12": what --pdf took is the method, not a file name.
    if (call.pdf && FindDispId(call.pdf_file) &&
        call.pdf_file.find_first_of("/\\.") == std::string::npos) {
      call.args.insert(call.args.begin(), call.method);
      call.method = call.pdf_file;
      call.pdf_file.clear();
    }
    return Call(call);
  }
  if (app.got_subcommand("render")) {
    render.print = render_cmd->count("--print") > 0;
    return Render(render);
  }
  if (app.got_subcommand("check"))
    return Check(check_templates, check_contracts, check_house_rules);
  if (app.got_subcommand("format")) return Format(format_templates);
  if (app.got_subcommand("register")) return Registration(true, system);
  if (app.got_subcommand("unregister")) return Registration(false, system);
  return kUsageError;
}
