// Pictures for templates: PNG, JPEG, BMP, GIF (first frame) and TIFF files decoded once into the
// document's image form and cached for the process, keyed by path, size and modification time,
// so a logo printed on every invoice is read and decoded once.
//
// Thread-safety: LoadImage may be called from any thread; cached images are immutable.
#ifndef VANTOREL_REPORT_IMAGE_IMAGE_LOADER_H_
#define VANTOREL_REPORT_IMAGE_IMAGE_LOADER_H_

#include <memory>
#include <string>

#include "report/document/document.h"

namespace vantorel::report {

// The picture at "path" (a host path: backslashes count as separators). Throws vantorel::Error
// naming the file when it is missing or cannot be decoded.
std::shared_ptr<const ImageData> LoadImage(const std::string& path);

}  // namespace vantorel::report

#endif  // VANTOREL_REPORT_IMAGE_IMAGE_LOADER_H_
