// A filter on Cairo's PDF output that blanks repeated entries in XObject resource dictionaries.
//
// Cairo lists an image once per use on a page ("/XObject << /x6 6 0 R /x6 6 0 R >>"), so a page
// showing the logo twice has a dictionary with a duplicated key. Readers differ on such files:
// qpdf warns, and some CUPS filter versions drop the whole page from the print job. The repeats
// are overwritten with blanks of the same length, so every byte offset Cairo wrote into the
// cross-reference table stays right.
//
// Thread-safety: one filter per PDF being written.
#ifndef VANTOREL_REPORT_PDF_RESOURCE_FILTER_H_
#define VANTOREL_REPORT_PDF_RESOURCE_FILTER_H_

#include <cairo.h>

#include <string>

namespace vantorel::report {

class ResourceFilter {
 public:
  ResourceFilter(cairo_write_func_t next, void* closure) : next_(next), closure_(closure) {}

  // A cairo_write_func_t: "closure" is the filter.
  static cairo_status_t Write(void* closure, const unsigned char* data, unsigned int length);

  // Passes on whatever is still held back; call once Cairo has finished the surface.
  cairo_status_t Flush();

 private:
  cairo_status_t Take(const unsigned char* data, unsigned int length);
  cairo_status_t Pass(const std::string& bytes);

  cairo_write_func_t next_;
  void* closure_;
  size_t matched_ = 0;  // bytes of "/XObject <<" seen so far
  bool in_dictionary_ = false;
  std::string held_;  // the dictionary being read, held back until its ">>"
};

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_PDF_RESOURCE_FILTER_H_
