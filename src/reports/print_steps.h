// What every print method is made of: the calling thread's report state, the instance's report
// run and text buffer, the three shared steps (prepare, render, release), and the small
// conversions the documents use (ids as digits, quoted picture paths, settings flags, amounts).
#ifndef VANTOREL_REPORTS_PRINT_STEPS_H_
#define VANTOREL_REPORTS_PRINT_STEPS_H_

#include <cstdint>
#include <string>
#include <type_traits>

#include "component/report_state.h"
#include "data/open_rs.h"
#include "data/recordset.h"
#include "engine/run.h"
#include "host/date_format.h"
#include "host/messages.h"
#include "vantorel/crepoter.h"
#include "vantorel/platform.h"
#include "words/amount_in_words.h"

namespace vantorel {

struct PrintSteps {
  static engine::ReportRun& Run(CRepoter& r) { return *r.run_; }
  static std::string& TextBuffer(CRepoter& r) { return r.text_buffer_; }
  static bool Prepare(CRepoter& r) { return r.PrepareTemplate(); }
  static void Render(CRepoter& r) { r.RenderReport(); }
  static void Release(CRepoter& r) { r.ReleaseRun(); }
};

// An id as SQL text: plain decimal digits, a minus sign for negatives, no blanks.
inline std::string Digits(int64_t id) { return std::to_string(id); }

// A picture path as a template variable value: between quote characters, as it is.
inline std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

// A settings flag: blanks trimmed, upper-cased, equal to "Y". A NULL is never "Y".
inline bool IsYes(const data::Value& value) {
  if (value.is_null()) return false;
  std::string text = data::ToText(value);
  const size_t begin = text.find_first_not_of(' ');
  const size_t end = text.find_last_not_of(' ');
  text = begin == std::string::npos ? std::string() : text.substr(begin, end - begin + 1);
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text == "Y";
}

// The amount of a field read the way its text reads: the number at its start ("12abc" is 12).
inline double LeadingAmount(const data::Value& value) { return data::Val(data::ToText(value)); }

// The calling thread's settings of dates as text.
inline std::string DateText(Date date, const char* picture) {
  return FormatDate(date, picture, CurrentPlatform()->RegionalDates().separator);
}

// The process's "temp" environment variable, empty when unset.
inline std::string TempFolder() { return CurrentPlatform()->Environment("temp").value_or(""); }

// The pokes of one print run, from the prepared template to its release. Each verb's name says
// what a template without the component does to the method:
//  - Require…: the component is used without a test, so its absence is the engine's error; it
//    reaches the host, and nothing is rendered or released.
//  - …OrSkip: the component is tested for; when it is absent, the pokes after it and the rendering
//    are skipped without a word, and the method still releases.
// The references a verb takes are dropped by the verb itself or before rendering.
class TemplatePokes {
 public:
  explicit TemplatePokes(CRepoter& rep) : rep_(rep), run_(PrintSteps::Run(rep)) {}

  // PrepareTemplate on the template the report state names. False when it failed and showed
  // why; the method then returns at once, without release.
  bool Prepare() { return PrintSteps::Prepare(rep_); }

  // Sets the text of memo "memo".
  void RequireMemo(const char* memo, const std::string& text) {
    if (skipped_) return;
    run_.memo = run_.LocateMemo(memo);
    run_.memo.SetMemoText(text);
    run_.memo = {};
  }

  // The same with a text made after the memo is found, as when it reads the database: a failing
  // read then fails after the lookup, as the document's steps have it.
  template <typename MakeText>
  requires std::is_invocable_r_v<std::string, MakeText>
  void RequireMemo(const char* memo, MakeText make_text) {
    if (skipped_) return;
    run_.memo = run_.LocateMemo(memo);
    run_.memo.SetMemoText(make_text());
    run_.memo = {};
  }

  // Sets the text of memo "memo", when the template has it.
  void MemoOrSkip(const char* memo, const std::string& text) {
    if (skipped_) return;
    run_.memo = run_.LocateMemo(memo);
    skipped_ = !run_.memo;
    if (!skipped_) run_.memo.SetMemoText(text);
    run_.memo = {};
  }

  // Gives query "query" its SQL.
  void RequireQuerySql(const char* query, const std::string& sql) {
    if (skipped_) return;
    run_.query = run_.LocateQuery(query);
    run_.query.SetQueryText(sql);
  }

  // Sets the picture variable "Company"/"name" ("logo", "qrcode", "picpath") to the quoted path.
  void RequirePicture(const char* name, const std::string& path) {
    if (skipped_) return;
    run_.SetTemplateVariable("Company", name, Quoted(path));
  }

  // Finds query "query", used without a test, whose parameters the next verbs set.
  void RequireQuery(const char* query) {
    if (skipped_) return;
    run_.query = run_.LocateQuery(query);
  }

  // Finds query "query", whose parameters the next verbs set.
  void QueryOrSkip(const char* query) {
    if (skipped_) return;
    run_.query = run_.LocateQuery(query);
    skipped_ = !run_.query;
  }

  // Finds query "query" and gives it its SQL.
  void QuerySqlOrSkip(const char* query, const std::string& sql) {
    QueryOrSkip(query);
    if (!skipped_) run_.query.SetQueryText(sql);
  }

  // The same with an SQL text made only once the query is found, as when it is kept in the
  // text buffer: a template without the query leaves the buffer as it was.
  template <typename MakeText>
  requires std::is_invocable_r_v<std::string, MakeText>
  void QuerySqlOrSkip(const char* query, MakeText make_sql) {
    QueryOrSkip(query);
    if (!skipped_) run_.query.SetQueryText(make_sql());
  }

  // Sets parameter "name" of the query found last.
  void RequireParameter(const char* name, const engine::ParameterValue& value) {
    if (skipped_) return;
    run_.param = run_.query.GetQueryParameter(name);
    run_.param.SetParameterValue(value);
  }

  void ParameterOrSkip(const char* name, const engine::ParameterValue& value) {
    if (skipped_) return;
    run_.param = run_.query.GetQueryParameter(name);
    skipped_ = !run_.param;
    if (!skipped_) run_.param.SetParameterValue(value);
  }

  // Drops the component references and renders, unless a lookup skipped.
  void RenderUnlessSkipped() {
    if (skipped_) return;
    run_.param = {};
    run_.database = {};
    run_.query = {};
    PrintSteps::Render(rep_);
  }

  void Release() { PrintSteps::Release(rep_); }

 private:
  CRepoter& rep_;
  engine::ReportRun& run_;
  bool skipped_ = false;
};

// A document chosen by its id in one parameter of one query, both tested for: vouchers, store
// documents, job cards, lists of one selection. What one such document differs in:
struct IdDocument {
  const char* template_name;
  bool id_accepted;                 // the document's id guard, evaluated
  bool named_before_guard = false;  // a refused call still leaves the template name
  const char* query = "mst";
  const char* parameter;
  const std::string* logo = nullptr;  // picture "logo", set right after preparing
};

inline void PrintIdDocument(CRepoter& rep, int16_t id, const IdDocument& document) {
  ReportState& state = ThreadReportState();
  if (document.named_before_guard) state.RptName = document.template_name;
  if (!document.id_accepted) return;
  state.RptName = document.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  if (document.logo != nullptr) pokes.RequirePicture("logo", *document.logo);
  pokes.QueryOrSkip(document.query);
  pokes.ParameterOrSkip(document.parameter, {id});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

// Closes a recordset the method opened, when it is open.
inline void CloseIfOpen(data::Recordset& rs) {
  if (rs.State() == data::kStateOpen) rs.Close();
}

}  // namespace vantorel

#endif  // VANTOREL_REPORTS_PRINT_STEPS_H_
