// What a report says about itself: the title, author and subject a template gives and a PDF
// carries in its document information.
#ifndef VANTOREL_REPORT_VALUES_METADATA_H_
#define VANTOREL_REPORT_VALUES_METADATA_H_

#include <string>

namespace vantorel::report {

struct Metadata {
  std::string title;
  std::string author;
  std::string subject;
  std::string creator = "Vantorel";
  friend bool operator==(const Metadata&, const Metadata&) = default;
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_VALUES_METADATA_H_
