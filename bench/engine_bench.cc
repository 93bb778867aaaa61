// The whole engine in one process, warm: template (cached), fill from SQLite, PDF bytes. The two
// documents of the speed comparison: the reference GST invoice and the stock register.
//
//   engine_bench --db BENCH.db --templates DIR [--logo PNG] [google benchmark flags]
//   engine_bench --db BIG.db --templates DIR --once register   (one render, then peak RSS)
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <chrono>
#include <cstring>
#include <iostream>
#include <string>

#include "report/binding/report_engine.h"
#include "report/pdf/pdf_writer.h"
#include "vantorel/error.h"

namespace {

std::string g_db, g_templates, g_logo;

vantorel::report::RenderRequest Request(const std::string& name) {
  vantorel::report::RenderRequest request;
  request.template_path = g_templates + "/" + name + ".fr3";
  request.connections["DMSDB"] = g_db;
  if (name == "invoice" && !g_logo.empty()) {
    request.variables.push_back({"Company", "logo", "\"" + g_logo + "\""});
  }
  return request;
}

size_t RenderToPdf(const std::string& name) {
  const auto rendered = vantorel::report::RenderTemplate(Request(name));
  return vantorel::report::PdfBytes(rendered.document).size();
}

void BM_Invoice(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(RenderToPdf("invoice"));
}
BENCHMARK(BM_Invoice)->Unit(benchmark::kMillisecond);

void BM_Register(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(RenderToPdf("register"));
}
BENCHMARK(BM_Register)->Unit(benchmark::kMillisecond)->Iterations(10);

double PeakRssMb() {
  struct rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

}  // namespace

int main(int argc, char** argv) {
  std::string once;
  std::vector<char*> rest{argv[0]};
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--db" && i + 1 < argc) {
      g_db = argv[++i];
    } else if (arg == "--templates" && i + 1 < argc) {
      g_templates = argv[++i];
    } else if (arg == "--logo" && i + 1 < argc) {
      g_logo = argv[++i];
    } else if (arg == "--once" && i + 1 < argc) {
      once = argv[++i];
    } else {
      rest.push_back(argv[i]);
    }
  }
  if (g_db.empty() || g_templates.empty()) {
    std::cerr << "usage: engine_bench --db BENCH.db --templates DIR [--logo PNG] [--once NAME]\n";
    return 2;
  }
  try {
    if (!once.empty()) {
      const auto start = std::chrono::steady_clock::now();
      const size_t bytes = RenderToPdf(once);
      const double seconds =
          std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
      std::cout << once << ": " << seconds << " s, " << bytes << " PDF bytes, peak RSS "
                << PeakRssMb() << " MB\n";
      return 0;
    }
    RenderToPdf("invoice");  // first use: fonts, template cache
    int count = static_cast<int>(rest.size());
    benchmark::Initialize(&count, rest.data());
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::cerr << "peak RSS " << PeakRssMb() << " MB\n";
  } catch (const vantorel::Error& error) {
    std::cerr << "engine_bench: " << error.description() << "\n";
    return 1;
  }
  return 0;
}
