#include "report/image/image_loader.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <jpeglib.h>
#include <sys/stat.h>

#include <csetjmp>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <list>
#include <mutex>
#include <string>
#include <unordered_map>

#include "host/native_path.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr char kSource[] = "Vantorel.Report";
// The runtime's "Invalid picture" error, which hosts know by number.
constexpr int32_t kInvalidPicture = 481;
// Pictures larger than this (on their longer side) are scaled down once when loaded; a logo
// never needs more, and every PDF and page drawn afterwards is smaller and faster for it. JPEG
// files keep their pixels: their original bytes go into PDFs unchanged anyway.
constexpr int kLargestSide = 2000;
// JPEG twins: quality 100 without chroma subsampling. Every quantisation step is 1, so a pixel
// changes by a level or two at most and red-on-white logo edges stay crisp; two-colour pictures
// (codes, signatures) stay lossless, and compress fast anyway.
constexpr int kTwinQuality = 100;
// The cache's budget for decoded pixels.
constexpr size_t kCacheBudget = size_t{256} << 20;
// The largest picture decoded, checked from the file's header before any pixel is: far above
// any logo, photo or scan at print resolution (an A4 page scanned at 600 dpi is 35 megapixels),
// while a small file may claim any size — a 1 MB PNG of 20000 × 20000 pixels would take 1.2 GB.
// Pixels bound the work of decoding; bytes the memory of a decoded copy (four bytes a pixel) and
// of the file, which is read whole.
constexpr int64_t kMaxPixels = 50'000'000;
constexpr int64_t kMaxBytes = int64_t{200} << 20;

struct PixbufUnref {
  void operator()(void* object) const {
    if (object != nullptr) g_object_unref(object);
  }
};
using PixbufPtr = std::unique_ptr<GdkPixbuf, PixbufUnref>;
using LoaderPtr = std::unique_ptr<GdkPixbufLoader, PixbufUnref>;

struct ErrorFree {
  void operator()(GError* error) const { g_error_free(error); }
};

bool IsJpeg(const std::string& bytes) {
  return bytes.size() > 3 && static_cast<uint8_t>(bytes[0]) == 0xFF &&
         static_cast<uint8_t>(bytes[1]) == 0xD8 && static_cast<uint8_t>(bytes[2]) == 0xFF;
}

double Dpi(GdkPixbuf* pixbuf, const char* option) {
  const gchar* text = gdk_pixbuf_get_option(pixbuf, option);
  if (text == nullptr) return 0;
  double dpi = 0;
  const auto [end, error] = std::from_chars(text, text + std::strlen(text), dpi);
  return error == std::errc() && dpi >= 1 && dpi <= 100000 ? dpi : 0;
}

// Why a picture of "width" × "height" pixels is too large to decode; empty when it is not.
std::string TooLarge(int64_t width, int64_t height) {
  const int64_t pixels = width * height;
  if (pixels > kMaxPixels) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels is more than the " +
           std::to_string(kMaxPixels / 1'000'000) + " megapixels a picture may have";
  }
  if (pixels * 4 > kMaxBytes) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels take more than the " +
           std::to_string(kMaxBytes >> 20) + " MB a decoded picture may take";
  }
  return {};
}

PixbufPtr Decode(const std::string& bytes, const std::string& path) {
  LoaderPtr loader(gdk_pixbuf_loader_new());
  // The loader announces the size once it has read the header; a size of 0 × 0 makes it stop
  // there with an error instead of allocating the pixels.
  std::string too_large;
  g_signal_connect(loader.get(), "size-prepared",
                   G_CALLBACK(+[](GdkPixbufLoader* self, int width, int height, gpointer data) {
                     auto* reason = static_cast<std::string*>(data);
                     *reason = TooLarge(width, height);
                     if (!reason->empty()) gdk_pixbuf_loader_set_size(self, 0, 0);
                   }),
                   &too_large);
  GError* raw_error = nullptr;
  const bool written =
      gdk_pixbuf_loader_write(loader.get(), reinterpret_cast<const guchar*>(bytes.data()),
                              bytes.size(), &raw_error) != 0;
  // Closing is needed even after a failed write, or the loader complains when finalised.
  const bool closed = gdk_pixbuf_loader_close(loader.get(), written ? &raw_error : nullptr) != 0;
  std::unique_ptr<GError, ErrorFree> error(raw_error);
  GdkPixbuf* pixbuf = gdk_pixbuf_loader_get_pixbuf(loader.get());
  if (too_large.empty() && pixbuf != nullptr) {
    // A loader that went on regardless.
    too_large = TooLarge(gdk_pixbuf_get_width(pixbuf), gdk_pixbuf_get_height(pixbuf));
  }
  if (!too_large.empty()) {
    throw Error(kInvalidPicture, kSource, "Invalid picture: " + path + " (" + too_large + ")");
  }
  if (!written || !closed || pixbuf == nullptr) {
    std::string reason = error ? error->message : "unknown format";
    throw Error(kInvalidPicture, kSource, "Invalid picture: " + path + " (" + reason + ")");
  }
  return PixbufPtr(GDK_PIXBUF(g_object_ref(pixbuf)));
}

// Converts gdk-pixbuf's RGB or straight-alpha RGBA bytes to Cairo's premultiplied ARGB32.
std::shared_ptr<ImageData> ToImageData(GdkPixbuf* pixbuf) {
  auto image = std::make_shared<ImageData>();
  const int width = gdk_pixbuf_get_width(pixbuf);
  const int height = gdk_pixbuf_get_height(pixbuf);
  const int channels = gdk_pixbuf_get_n_channels(pixbuf);
  const int row_stride = gdk_pixbuf_get_rowstride(pixbuf);
  const bool alpha = gdk_pixbuf_get_has_alpha(pixbuf) != 0;
  const guchar* source = gdk_pixbuf_read_pixels(pixbuf);
  image->width = width;
  image->height = height;
  image->stride = width * 4;
  image->pixels.resize(static_cast<size_t>(image->stride) * static_cast<size_t>(height));
  bool translucent = false;
  for (int y = 0; y < height; ++y) {
    const guchar* in = source + static_cast<ptrdiff_t>(y) * row_stride;
    auto* out =
        reinterpret_cast<uint32_t*>(image->pixels.data() + static_cast<size_t>(y) * image->stride);
    for (int x = 0; x < width; ++x, in += channels) {
      const uint32_t a = alpha ? in[3] : 255;
      const auto premultiply = [a](uint32_t c) { return (c * a + 127) / 255; };
      out[x] = a << 24 | premultiply(in[0]) << 16 | premultiply(in[1]) << 8 | premultiply(in[2]);
      translucent |= a != 255;
    }
  }
  // An RGBA file that is opaque everywhere is drawn as opaque: no soft mask in PDFs.
  image->has_alpha = translucent;
  return image;
}

// Opaque and of more than two colours: worth a JPEG twin.
bool NeedsTwin(const ImageData& image) {
  if (image.has_alpha || image.pixels.size() < 8) return false;
  uint32_t first;
  std::memcpy(&first, image.pixels.data(), 4);
  std::optional<uint32_t> second;
  for (size_t offset = 4; offset < image.pixels.size(); offset += 4) {
    uint32_t pixel;
    std::memcpy(&pixel, image.pixels.data() + offset, 4);
    if (pixel == first || pixel == second) continue;
    if (second) return true;
    second = pixel;
  }
  return false;
}

// Encodes an opaque ARGB32 picture as a JPEG, once when it is loaded. PDFs embed these bytes as
// they are: Cairo recompresses raw pixels for every PDF, which for a typical logo costs more than
// the whole rest of an invoice.
struct JpegErrors {
  jpeg_error_mgr manager;
  std::jmp_buf escape;  // libjpeg is C: errors leave through longjmp, never an exception
};

std::string JpegTwin(const ImageData& image) {
  jpeg_compress_struct compress{};
  JpegErrors errors{};
  compress.err = jpeg_std_error(&errors.manager);
  errors.manager.error_exit = [](j_common_ptr info) {
    std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->escape, 1);
  };
  unsigned char* buffer = nullptr;
  unsigned long size = 0;
  std::vector<unsigned char> row(static_cast<size_t>(image.width) * 3);
  std::string bytes;
  if (setjmp(errors.escape) == 0) {
    jpeg_create_compress(&compress);
    jpeg_mem_dest(&compress, &buffer, &size);
    compress.image_width = static_cast<JDIMENSION>(image.width);
    compress.image_height = static_cast<JDIMENSION>(image.height);
    compress.input_components = 3;
    compress.in_color_space = JCS_RGB;
    jpeg_set_defaults(&compress);
    jpeg_set_quality(&compress, kTwinQuality, TRUE);
    for (int c = 0; c < compress.num_components; ++c) {
      compress.comp_info[c].h_samp_factor = 1;
      compress.comp_info[c].v_samp_factor = 1;
    }
    jpeg_start_compress(&compress, TRUE);
    while (compress.next_scanline < compress.image_height) {
      const uint8_t* in =
          image.pixels.data() + static_cast<size_t>(compress.next_scanline) * image.stride;
      for (int x = 0; x < image.width; ++x) {
        uint32_t pixel;
        std::memcpy(&pixel, in + static_cast<size_t>(x) * 4, 4);
        row[static_cast<size_t>(x) * 3] = static_cast<unsigned char>(pixel >> 16);
        row[static_cast<size_t>(x) * 3 + 1] = static_cast<unsigned char>(pixel >> 8);
        row[static_cast<size_t>(x) * 3 + 2] = static_cast<unsigned char>(pixel);
      }
      JSAMPROW rows[] = {row.data()};
      jpeg_write_scanlines(&compress, rows, 1);
    }
    jpeg_finish_compress(&compress);
    bytes.assign(reinterpret_cast<const char*>(buffer), size);
  }
  // On an error the twin is simply not made: the PDF gets the pixels instead.
  jpeg_destroy_compress(&compress);
  std::free(buffer);
  return bytes;
}

std::shared_ptr<const ImageData> ReadImage(const std::string& native, const std::string& path,
                                           const struct stat& info) {
  if (info.st_size > kMaxBytes) {
    throw Error(kInvalidPicture, kSource,
                "Invalid picture: " + path + " (the file is larger than the " +
                    std::to_string(kMaxBytes >> 20) + " MB a picture may take)");
  }
  std::ifstream file(native, std::ios::binary);
  if (!file) {
    throw Error(errnum::kPathFileAccess, kSource, "Cannot read picture file " + path);
  }
  std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad()) {
    throw Error(errnum::kPathFileAccess, kSource, "Cannot read picture file " + path);
  }
  PixbufPtr pixbuf = Decode(bytes, path);
  const bool jpeg = IsJpeg(bytes);
  double dpi_x = Dpi(pixbuf.get(), "x-dpi");
  double dpi_y = Dpi(pixbuf.get(), "y-dpi");
  if (dpi_x == 0) dpi_x = dpi_y;
  if (dpi_y == 0) dpi_y = dpi_x;
  if (dpi_x == 0) dpi_x = dpi_y = 96;

  const int width = gdk_pixbuf_get_width(pixbuf.get());
  const int height = gdk_pixbuf_get_height(pixbuf.get());
  const int longest = std::max(width, height);
  if (!jpeg && longest > kLargestSide) {
    const double factor = static_cast<double>(kLargestSide) / longest;
    const int new_width = std::max(1, static_cast<int>(std::lround(width * factor)));
    const int new_height = std::max(1, static_cast<int>(std::lround(height * factor)));
    PixbufPtr scaled(
        gdk_pixbuf_scale_simple(pixbuf.get(), new_width, new_height, GDK_INTERP_BILINEAR));
    if (scaled) {
      // The picture keeps its size on paper: fewer pixels per inch.
      dpi_x *= static_cast<double>(new_width) / width;
      dpi_y *= static_cast<double>(new_height) / height;
      pixbuf = std::move(scaled);
    }
  }
  std::shared_ptr<ImageData> image = ToImageData(pixbuf.get());
  image->source = path;
  image->dpi_x = dpi_x;
  image->dpi_y = dpi_y;
  if (jpeg) {
    image->jpeg = std::move(bytes);
  } else if (NeedsTwin(*image)) {
    image->jpeg = JpegTwin(*image);
  }
  return image;
}

size_t Footprint(const ImageData& image) { return image.pixels.size() + image.jpeg.size(); }

// Decoded pictures by native path, remembered with the file's size and modification time so an
// edited file is read again. Least recently used pictures go first when over budget.
class ImageCache {
 public:
  std::shared_ptr<const ImageData> Find(const std::string& native, const struct stat& info) {
    std::lock_guard lock(mutex_);
    const auto found = index_.find(native);
    if (found == index_.end()) return nullptr;
    Entry& entry = *found->second;
    if (entry.size != info.st_size || entry.mtime_sec != info.st_mtim.tv_sec ||
        entry.mtime_nsec != info.st_mtim.tv_nsec) {
      return nullptr;
    }
    entries_.splice(entries_.begin(), entries_, found->second);
    return entry.image;
  }

  void Insert(const std::string& native, const struct stat& info,
              std::shared_ptr<const ImageData> image) {
    std::lock_guard lock(mutex_);
    if (const auto found = index_.find(native); found != index_.end()) {
      bytes_ -= Footprint(*found->second->image);
      entries_.erase(found->second);
      index_.erase(found);
    }
    const size_t footprint = Footprint(*image);
    if (footprint > kCacheBudget) return;
    entries_.push_front(
        {native, info.st_size, info.st_mtim.tv_sec, info.st_mtim.tv_nsec, std::move(image)});
    index_.emplace(native, entries_.begin());
    bytes_ += footprint;
    while (bytes_ > kCacheBudget) {
      const Entry& oldest = entries_.back();
      bytes_ -= Footprint(*oldest.image);
      index_.erase(oldest.path);
      entries_.pop_back();
    }
  }

 private:
  struct Entry {
    std::string path;
    off_t size;
    time_t mtime_sec;
    long mtime_nsec;
    std::shared_ptr<const ImageData> image;
  };
  std::mutex mutex_;
  std::list<Entry> entries_;
  std::unordered_map<std::string, std::list<Entry>::iterator> index_;
  size_t bytes_ = 0;
};

ImageCache& Cache() {
  static ImageCache* const cache = new ImageCache;  // never destroyed: used until exit
  return *cache;
}

}  // namespace

std::shared_ptr<const ImageData> LoadImage(const std::string& path) {
  const std::string native = NativePath(path);
  struct stat info;
  if (stat(native.c_str(), &info) != 0) {
    const int error = errno;
    if (error == ENOENT || error == ENOTDIR || native.empty()) {
      throw Error(errnum::kFileNotFound, kSource, "Picture file not found: " + path);
    }
    throw Error(errnum::kPathFileAccess, kSource,
                "Cannot read picture file " + path + ": " + std::strerror(error), error);
  }
  if (!S_ISREG(info.st_mode)) {
    throw Error(errnum::kFileNotFound, kSource, "Picture file not found: " + path);
  }
  if (auto cached = Cache().Find(native, info)) return cached;
  auto image = ReadImage(native, path, info);
  Cache().Insert(native, info, image);
  return image;
}

}  // namespace vantorel::report
