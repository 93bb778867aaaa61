// What every print method is made of: the calling thread's report state, the instance's report
// run and text buffer, the three shared steps (prepare, render, release), and the small
// conversions the documents use (ids as digits, quoted picture paths, settings flags, amounts).
#ifndef VANTOREL_REPORTS_PRINT_STEPS_H_
#define VANTOREL_REPORTS_PRINT_STEPS_H_

#include <cstdint>
#include <string>

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

// The documents whose SQL the component writes: prepare, set the picture "logo" when given, give
// query "query" the SQL, render, release. The query is not tested for presence.
inline void PrintWithSql(CRepoter& rep, const char* query, const std::string& sql,
                         const std::string* logo = nullptr);

// An id as SQL text: plain decimal digits, a minus sign for negatives, no blanks.
inline std::string Digits(int64_t id) { return std::to_string(id); }

// A picture path as a template variable value: between quote characters, as it is.
inline std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

// Sets the picture variable "Company"/"name" ("logo", "qrcode", "picpath").
inline void SetPicture(engine::ReportRun& run, const char* name, const std::string& path) {
  run.SetTemplateVariable("Company", name, Quoted(path));
}

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

inline void PrintWithSql(CRepoter& rep, const char* query, const std::string& sql,
                         const std::string* logo) {
  engine::ReportRun& run = PrintSteps::Run(rep);
  std::string& buffer = PrintSteps::TextBuffer(rep);
  if (!PrintSteps::Prepare(rep)) return;
  if (logo != nullptr) SetPicture(run, "logo", *logo);
  run.query = run.LocateQuery(query);
  buffer = sql;
  run.query.SetQueryText(buffer);
  run.database = {};
  run.query = {};
  PrintSteps::Render(rep);
  PrintSteps::Release(rep);
}

// Closes a recordset the method opened, when it is open.
inline void CloseIfOpen(data::Recordset& rs) {
  if (rs.State() == data::kStateOpen) rs.Close();
}

}  // namespace vantorel

#endif  // VANTOREL_REPORTS_PRINT_STEPS_H_
