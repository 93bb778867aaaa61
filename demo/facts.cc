#include "demo/facts.h"

#include <fstream>

namespace vantorel::demo {

std::string FactsText(const FactList& facts) {
  std::string text =
      "# Demo dealership: documents of every kind, for tests and the demo script.\n"
      "# key=value, one per line; docs/demo-database.md says which print method takes which.\n";
  for (const auto& [key, value] : facts) text.append(key).append("=").append(value).append("\n");
  return text;
}

Facts ReadFacts(const std::string& path) {
  Facts facts;
  std::ifstream in(path);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    const size_t equals = line.find('=');
    if (equals != std::string::npos) facts[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return facts;
}

}  // namespace vantorel::demo
