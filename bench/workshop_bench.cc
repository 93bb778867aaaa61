// A job invoice printed in process, warm, as a host prints it: one CRepoter, reused, writing a
// PDF from the demo dealership's SQLite database through w_jobinvPrint (template, fill, PDF
// file). The budget is 5 ms a print.
//
//   demo_gen --sqlite demo.db --facts facts.txt
//   workshop_bench --db demo.db --facts facts.txt --templates templates/ [google benchmark flags]
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "component/dispatch.h"
#include "demo/demo_prints.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace {

std::string g_db, g_templates, g_facts;

// The demo's job invoice with its amount, as the host passes them.
std::vector<vantorel::Variant> JobInvoiceArguments() {
  const vantorel::demo::Facts facts = vantorel::demo::ReadFacts(g_facts);
  return {vantorel::Variant::String(facts.at("jobinv_id")),
          vantorel::Variant::String(facts.at("jobinv_rv")),
          vantorel::Variant::String(facts.at("jobinv_amt"))};
}

void BM_JobInvoiceToPdf(benchmark::State& state) {
  const std::string pdf =
      (std::filesystem::temp_directory_path() / "vantorel-workshop-bench.pdf").string();
  vantorel::CRepoter rep;
  rep.put_ReportPath(g_templates + "/");
  rep.put_DbConnectstring(g_db);
  rep.put_RptPDF(vantorel::kTrue);
  rep.put_PDFPath(pdf);
  rep.put_FirmID(1);
  rep.SetVars();
  const std::vector<vantorel::Variant> args = JobInvoiceArguments();
  vantorel::InvokeByName(rep, "w_jobinvPrint", vantorel::kDispatchMethod, args);  // warm up
  if (!std::filesystem::exists(pdf)) {
    state.SkipWithError(("w_jobinvPrint wrote no PDF; LastMsg: " + rep.get_LastMsg()).c_str());
    return;
  }
  for (auto _ : state) {
    vantorel::InvokeByName(rep, "w_jobinvPrint", vantorel::kDispatchMethod, args);
  }
  state.counters["pdf_bytes"] = static_cast<double>(std::filesystem::file_size(pdf));
  std::filesystem::remove(pdf);
}
BENCHMARK(BM_JobInvoiceToPdf)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> rest{argv[0]};
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--db" && i + 1 < argc) {
      g_db = std::filesystem::absolute(argv[++i]).string();
    } else if (arg == "--templates" && i + 1 < argc) {
      g_templates = std::filesystem::absolute(argv[++i]).string();
    } else if (arg == "--facts" && i + 1 < argc) {
      g_facts = argv[++i];
    } else {
      rest.push_back(argv[i]);
    }
  }
  if (g_db.empty() || g_templates.empty() || g_facts.empty()) {
    std::cerr << "usage: workshop_bench --db DEMO.db --facts FACTS --templates DIR\n";
    return 2;
  }
  vantorel::SetMessageBoxHandler([](const std::string& text, vantorel::MessageIcon) {
    std::cerr << "workshop_bench: message: " << text << "\n";
  });
  try {
    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
  } catch (const vantorel::Error& error) {
    std::cerr << "workshop_bench: " << error.description() << "\n";
    return 1;
  }
  return 0;
}
