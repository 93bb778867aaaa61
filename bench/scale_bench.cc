// Costs that must grow in step with their input, never faster: a money receipt whose narration is
// 200 KB; a 1 MB text measured, and stretched over many pages (prose, and one word-free run of
// digits, each on our own line breaker and on Pango's); and templates of 40,000, 80,000 and
// 160,000 texts loaded, filled and written to PDF. Every case makes its own SQLite database and
// templates in a temporary folder; the receipt is the shipped templates/receipt.fr3.
//
//   cmake --build build/release --target scale_bench && build/release/bench/scale_bench
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "report/binding/report_engine.h"
#include "report/pdf/pdf_writer.h"
#include "report/text/layout.h"
#include "report/text/text_layout.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;

// The benchmark's own temporary folder, removed with everything in it at exit.
class ScratchFolder {
 public:
  ScratchFolder()
      : path_(fs::temp_directory_path() / ("vantorel-scale-" + std::to_string(getpid()))) {
    fs::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

const fs::path& Folder() {
  static const ScratchFolder folder;
  return folder.path();
}

// A database "name" in the folder, made by "sql"; "text" is bound to every "?1".
std::string Database(const std::string& name, const std::string& sql, const std::string& text) {
  const std::string path = (Folder() / name).string();
  fs::remove(path);
  sqlite3* db = nullptr;
  sqlite3_open(path.c_str(), &db);
  const char* rest = sql.c_str();
  while (*rest != '\0') {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, rest, -1, &statement, &rest) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(db));
    }
    if (statement == nullptr) break;
    if (sqlite3_bind_parameter_count(statement) > 0) {
      sqlite3_bind_text(statement, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    }
    const int stepped = sqlite3_step(statement);
    sqlite3_finalize(statement);
    if (stepped != SQLITE_DONE && stepped != SQLITE_ROW) {
      throw std::runtime_error(sqlite3_errmsg(db));
    }
  }
  sqlite3_close(db);
  return path;
}

std::string WriteFile(const std::string& name, const std::string& content) {
  const std::string path = (Folder() / name).string();
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

// Narration-like prose: words of 2 to 11 letters, a full stop now and then, no line breaks.
std::string Words(size_t bytes) {
  static const char* const kWords[] = {
      "received",  "towards",  "the", "balance", "of",    "vehicle",  "invoice",     "dated",
      "cheque",    "drawn",    "on",  "branch",  "bank",  "customer", "financier",   "and",
      "insurance", "charges",  "for", "motor",   "cycle", "with",     "accessories", "helmet",
      "payment",   "received", "in",  "cash",    "by",    "transfer"};
  std::string text;
  text.reserve(bytes + 16);
  for (size_t i = 0; text.size() < bytes; ++i) {
    text += kWords[(i * 7 + i / 5) % std::size(kWords)];
    text += i % 13 == 12 ? ". " : " ";
  }
  text.resize(bytes);
  return text;
}

// One word with no place to break but between characters.
std::string Digits(size_t bytes) {
  std::string text(bytes, '0');
  for (size_t i = 0; i < bytes; ++i) text[i] = static_cast<char>('0' + (i * 7 + i / 10) % 10);
  return text;
}

void RenderToPdf(benchmark::State& state, const RenderRequest& request) {
  size_t pages = 0;
  double seconds = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const Rendered rendered = RenderTemplate(request);
    pages = rendered.document.pages.size();
    benchmark::DoNotOptimize(PdfBytes(rendered.document).size());
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  state.counters["pages"] = static_cast<double>(pages);
  state.counters["ms_per_page"] =
      pages > 0 ? seconds * 1000 / static_cast<double>(pages * state.iterations()) : 0;
}

// The money receipt of templates/receipt.fr3 with a narration of state.range(0) bytes of prose.
void BM_ReceiptNarration(benchmark::State& state) {
  const std::string narration = Words(static_cast<size_t>(state.range(0)));
  RenderRequest request;
  request.template_path = std::string(VANTOREL_SOURCE_DIR) + "/templates/receipt.fr3";
  request.connections["DMSDB"] = Database("receipt.db", R"(
    create table vu_receipt (id integer, coid integer, num text, rdate date, br_name text,
      mode text, pname text, padd1 text, padd2 text, pcity text, pmobile text, amt numeric,
      chqno text, chqdate date, bank text, refno text, against text, inv_num text,
      inv_date date, model text, color text, chassis text, engine text, narration text,
      cashier text);
    insert into vu_receipt values (1022, 1, 'RC/24-25/1022', '2025-03-15', 'Nashik Road', 'CHEQUE',
      'Rajesh Kumar Patil', '12 Shivaji Nagar', 'Near Bus Stand', 'Nashik', '9822012345',
      105630.00, '004512', '2025-03-14', 'HDFC Bank', null, 'INVOICE', 'INV/24-25/0421',
      '2025-03-15', 'Splendor Plus Xtec', 'Black with Red', 'MBLHA10AMEHK12345', 'HA10EFHK67890',
      ?1, 'S. Deshmukh');
    create table firm (coid integer, name text, tagline text, add1 text, add2 text, add3 text,
      city text, pin text, state text, phone text, mobile text, email text, gstin text, pan text,
      state_code text, name_local text, jurisdiction text);
    insert into firm values (1, 'Shri Ganesh Motors', 'Authorised dealer', 'Plot 14', 'MIDC',
      'Ambad', 'Nashik', '422010', 'Maharashtra', '0253-2345678', '9822000000',
      'sales@example.in', '27AABCS1234F1Z5', 'AABCS1234F', '27', 'Shri Ganesh Motors',
      'Subject to Nashik jurisdiction');
  )",
                                          narration);
  RenderToPdf(state, request);
}
BENCHMARK(BM_ReceiptNarration)
    ->Arg(200 << 10)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

// The long texts of the benchmarks below: prose (kind 0), digits (1), and the same two after a
// Hindi word, which takes them from our own line breaker to Pango's (2 and 3).
std::string LongText(int64_t kind, size_t bytes) {
  const std::string hindi = kind >= 2 ? "नमस्ते " : "";
  return hindi + (kind % 2 == 0 ? Words(bytes - hindi.size()) : Digits(bytes - hindi.size()));
}

// One layout of a text of state.range(1) bytes of kind state.range(0) in a box 190 mm wide, as a
// stretching text is measured.
void BM_MeasureLongText(benchmark::State& state) {
  const std::string text = LongText(state.range(0), static_cast<size_t>(state.range(1)));
  TextStyle style;
  style.size = 9;
  size_t lines = 0;
  for (auto _ : state) {
    text::ClearLayoutCache();
    lines = text::LayOut(text, style, 535)->lines.size();
  }
  state.counters["lines"] = static_cast<double>(lines);
}
BENCHMARK(BM_MeasureLongText)
    ->ArgNames({"kind", "bytes"})
    ->ArgsProduct({{0, 1, 2, 3}, {1 << 20}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

// A text of state.range(1) bytes of kind state.range(0) (see LongText) in a growing box, run
// over as many A4 pages as it takes.
void BM_LongText(benchmark::State& state) {
  const std::string text = LongText(state.range(0), static_cast<size_t>(state.range(1)));
  RenderRequest request;
  request.template_path = WriteFile("long.fr3", R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1" name="long">
  <page size="A4" margin="10mm"/>
  <database name="DMSDB"/>
  <query name="T" database="DMSDB"><sql>select body from t</sql></query>
  <page-footer height="6mm"><text width="190mm" height="5mm" align="right">Page [Page]</text></page-footer>
  <title height="20mm">
    <text width="190mm" height="8mm" size="14" bold="true">A long text</text>
    <text top="10mm" width="190mm" height="8mm" size="9" stretch="grow">[T.body]</text>
  </title>
</report>
)");
  request.connections["DMSDB"] =
      Database("long.db", "create table t (body text); insert into t values (?1);", text);
  RenderToPdf(state, request);
}
BENCHMARK(BM_LongText)
    ->ArgNames({"kind", "bytes"})
    ->ArgsProduct({{0, 1, 2, 3}, {1 << 20}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

// The fields a template of "texts" texts reads.
int FieldCount(int texts) { return std::max(10, texts / 200); }

// A template of "texts" texts in bands of "per_band" (rows of ten cells), each band a data band of
// one row, and "Page N of M" in the page footer. Half the texts are labels, half show fields of a
// query; like a real template, a bigger one also reads more fields (one for every 200 texts) and
// has more styles (a colour for every 400 texts, one to a band), while a page keeps its mix.
std::string BigTemplate(int texts, int per_band) {
  std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1" name="big">
  <page size="A4" margin="10mm"/>
  <database name="DMSDB"/>
  <query name="Q" database="DMSDB"><sql>select * from q</sql></query>
  <style name="cell" font="Liberation Sans" size="7" padding="0.5mm"/>
  <style name="number" based-on="cell" align="right"/>
  <page-footer height="6mm"><text width="190mm" height="5mm" align="right">Page [Page] of [TotalPages]</text></page-footer>
)";
  const int fields = FieldCount(texts);
  const int colours = std::max(1, texts / 400);
  for (int band = 0; band * per_band < texts; ++band) {
    xml += "  <data name=\"D" + std::to_string(band) + "\" rows=\"1\" height=\"" +
           std::to_string((std::min(per_band, texts) + 9) / 10 * 4) + "mm\">\n";
    for (int cell = 0; cell < per_band && band * per_band + cell < texts; ++cell) {
      const int n = band * per_band + cell;
      const int colour = band % colours;
      xml += "    <text style=\"" + std::string(cell % 2 == 0 ? "cell" : "number") + "\" left=\"" +
             std::to_string(cell % 10 * 19) + "mm\" top=\"" + std::to_string(cell / 10 * 4) +
             "mm\" width=\"19mm\" height=\"4mm\" color=\"#" + std::to_string(100000 + colour) +
             "\">";
      xml += cell % 2 == 0 ? "Item " + std::to_string(n)
                           : "[Q.f" + std::to_string(n / 2 % fields) + "]";
      xml += "</text>\n";
    }
    xml += "  </data>\n";
  }
  xml += "</report>\n";
  return xml;
}

// Loading (the file changes before every render, so it is compiled each time), filling and the
// PDF of a template of state.range(0) texts in bands of state.range(1).
void BM_TemplateSize(benchmark::State& state) {
  const int texts = static_cast<int>(state.range(0));
  RenderRequest request;
  request.template_path =
      WriteFile("big.fr3", BigTemplate(texts, static_cast<int>(state.range(1))));
  std::string columns, values;
  for (int f = 0; f < FieldCount(texts); ++f) {
    columns += (f == 0 ? "f" : ", f") + std::to_string(f);
    values += (f == 0 ? "" : ", ") + std::to_string(f * 37 % 1000);
  }
  request.connections["DMSDB"] = Database(
      "big.db", "create table q (" + columns + "); insert into q values (" + values + ");", "");
  size_t pages = 0;
  int touch = 0;
  double load = 0, fill = 0, pdf = 0;  // seconds of each stage
  const auto seconds_since = [](std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  for (auto _ : state) {
    fs::last_write_time(request.template_path,
                        fs::file_time_type::clock::now() + std::chrono::seconds(++touch));
    auto start = std::chrono::steady_clock::now();
    LoadCompiledTemplate(request.template_path);  // RenderTemplate finds it cached
    load += seconds_since(start);
    start = std::chrono::steady_clock::now();
    const Rendered rendered = RenderTemplate(request);
    fill += seconds_since(start);
    start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(PdfBytes(rendered.document).size());
    pdf += seconds_since(start);
    pages = rendered.document.pages.size();
  }
  const double runs = static_cast<double>(state.iterations());
  state.counters["load_ms"] = load * 1000 / runs;
  state.counters["fill_ms"] = fill * 1000 / runs;
  state.counters["pdf_ms"] = pdf * 1000 / runs;
  state.counters["pages"] = static_cast<double>(pages);
  state.counters["us_per_text"] = benchmark::Counter(
      static_cast<double>(texts) / 1e6,
      benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_TemplateSize)
    ->ArgNames({"texts", "per_band"})
    ->ArgsProduct({{40000, 80000, 160000}, {20, 2000, 160000}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace
}  // namespace vantorel::report

BENCHMARK_MAIN();
