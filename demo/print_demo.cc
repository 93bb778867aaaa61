// Prints every document of the demo dealership through the component, the way a host
// does: one CRepoter, its properties, SetVars, then each print of demo/demo_prints.h (both
// templates where a setting or an argument chooses one) to a PDF in OUT. Writes OUT/manifest.tsv:
// file, method, template, arguments.
//
//   demo_print --db DEMO.db --facts FACTS --templates DIR --assets DIR --out DIR
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

#include "demo/demo_prints.h"
#include "vantorel/crepoter.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"
#include "vantorel/report_state.h"

int main(int argc, char** argv) {
  std::map<std::string, std::string> options;
  for (int i = 1; i + 1 < argc; i += 2) options[argv[i]] = argv[i + 1];
  for (const char* required : {"--db", "--facts", "--templates", "--assets", "--out"}) {
    if (!options.count(required)) {
      std::cerr << "usage: demo_print --db DEMO.db --facts FACTS --templates DIR --assets DIR "
                   "--out DIR\n";
      return 2;
    }
  }
  for (auto& [name, value] : options) value = std::filesystem::absolute(value).string();
  vantorel::demo::PrintContext context;
  context.db = options["--db"];
  context.facts = vantorel::demo::ReadFacts(options["--facts"]);
  context.logo = options["--assets"] + "/logo.png";
  context.folder = options["--out"];
  const std::string& out = context.folder;
  std::filesystem::create_directories(out);
  // A dealer's program runs from its own folder, and paths in its data are relative to it: the
  // firm's logo is "assets/logo.png".
  std::filesystem::current_path(out);
  // Stickers find their pictures in the host's temporary folder.
  ::setenv("TEMP", options["--assets"].c_str(), 1);
  // Message boxes of a demo run go to stderr, not to a desktop.
  vantorel::SetMessageBoxHandler([](const std::string& text, vantorel::MessageIcon) {
    std::cerr << "demo_print: message: " << text << "\n";
  });

  vantorel::CRepoter rep;
  rep.put_ReportPath(options["--templates"] + "/");
  rep.put_DbConnectstring(context.db);
  rep.put_RptPDF(vantorel::kTrue);
  rep.put_AppPath(out);
  try {
    rep.put_FirmID(static_cast<uint8_t>(std::stoi(context.Fact("firm_id"))));
  } catch (const std::exception& error) {
    std::cerr << "demo_print: " << error.what() << "\n";
    return 1;
  }

  std::ofstream manifest(out + "/manifest.tsv");
  int failed = 0;
  for (const vantorel::demo::DemoPrint& print : vantorel::demo::DemoPrints()) {
    const std::string pdf = out + "/" + print.name + ".pdf";
    std::string arguments;
    std::filesystem::remove(pdf);
    rep.put_PDFPath(pdf);
    rep.SetVars();
    try {
      arguments = vantorel::demo::Arguments(print, context);
      if (print.prepare != nullptr) print.prepare(context);
      print.print(rep, context);
    } catch (const vantorel::Error& error) {
      std::cerr << "demo_print: " << print.method << " " << arguments << ": " << error.description()
                << "\n";
      ++failed;
      continue;
    } catch (const std::exception& error) {
      std::cerr << "demo_print: " << print.method << ": " << error.what() << "\n";
      ++failed;
      continue;
    }
    if (!std::filesystem::exists(pdf)) {
      std::cerr << "demo_print: " << print.method << " " << arguments
                << " printed nothing (LastMsg: " << rep.get_LastMsg() << ")\n";
      ++failed;
      continue;
    }
    manifest << print.name << ".pdf\t" << print.method << "\t"
             << vantorel::CurrentReportState().RptName << "\t" << arguments << "\n";
    std::cout << pdf << "\n";
  }
  return failed == 0 ? 0 : 1;
}
