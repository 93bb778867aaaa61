#include "report/image/image_loader.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "vantorel/error.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;

// The smallest GIF: one 1 × 1 red pixel.
constexpr unsigned char kRedGif[] = {0x47, 0x49, 0x46, 0x38, 0x39, 0x61, 0x01, 0x00, 0x01,
                                     0x00, 0x80, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00,
                                     0x00, 0x2C, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x01,
                                     0x00, 0x00, 0x02, 0x02, 0x44, 0x01, 0x00, 0x3B};

uint32_t PixelAt(const ImageData& image, int x, int y) {
  return reinterpret_cast<const uint32_t*>(image.pixels.data() +
                                           static_cast<size_t>(y) * image.stride)[x];
}

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

// A PNG chunk: length, type, data and the CRC of type and data.
void AppendChunk(std::string& png, const char* type, const std::string& data) {
  const uint32_t length = static_cast<uint32_t>(data.size());
  for (int shift = 24; shift >= 0; shift -= 8) png += static_cast<char>(length >> shift);
  const std::string body = type + data;
  png += body;
  const uint32_t crc = static_cast<uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size())));
  for (int shift = 24; shift >= 0; shift -= 8) png += static_cast<char>(crc >> shift);
}

// A black PNG of "side" × "side" pixels at one bit a pixel: a few tens of kilobytes on disk for
// 20000 × 20000, and 1.2 GB once gdk-pixbuf has decoded it to RGB.
std::string BlackPng(uint32_t side) {
  std::string header;
  for (const uint32_t value : {side, side}) {
    for (int shift = 24; shift >= 0; shift -= 8) header += static_cast<char>(value >> shift);
  }
  header +=
      std::string("\x01\x00\x00\x00\x00", 5);  // 1 bit, grey, deflate, no filter, no interlace
  // Every row is its filter byte and side / 8 bytes of black: all zeros, deflated in pieces.
  const size_t row = 1 + (side + 7) / 8;
  const std::vector<Bytef> zeros(row * 64, 0);
  z_stream stream{};
  deflateInit(&stream, Z_BEST_COMPRESSION);
  std::string idat;
  std::vector<Bytef> out(1 << 16);
  for (uint32_t rows = 0; rows < side;) {
    const uint32_t now = std::min<uint32_t>(64, side - rows);
    rows += now;
    stream.next_in = const_cast<Bytef*>(zeros.data());
    stream.avail_in = static_cast<uInt>(row * now);
    const int flush = rows == side ? Z_FINISH : Z_NO_FLUSH;
    do {
      stream.next_out = out.data();
      stream.avail_out = static_cast<uInt>(out.size());
      deflate(&stream, flush);
      idat.append(reinterpret_cast<const char*>(out.data()), out.size() - stream.avail_out);
    } while (stream.avail_out == 0 || (flush == Z_FINISH && stream.avail_in > 0));
  }
  deflateEnd(&stream);
  std::string png("\x89PNG\r\n\x1a\n", 8);
  AppendChunk(png, "IHDR", header);
  AppendChunk(png, "IDAT", idat);
  AppendChunk(png, "IEND", "");
  return png;
}

class ImageLoaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("vantorel-image-" + std::to_string(getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  // Saves a width × height picture through gdk-pixbuf: opaque red on the left half, blue on the
  // right; with alpha, the bottom row is half transparent. "options" are saver key/value pairs.
  fs::path Save(const std::string& name, const char* type, int width, int height, bool alpha,
                std::initializer_list<const char*> options = {}) {
    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, alpha, 8, width, height);
    const int channels = alpha ? 4 : 3;
    guchar* pixels = gdk_pixbuf_get_pixels(pixbuf);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        guchar* p = pixels + y * gdk_pixbuf_get_rowstride(pixbuf) + x * channels;
        const bool left = x < width / 2;
        p[0] = left ? 255 : 0;
        p[1] = 0;
        p[2] = left ? 0 : 255;
        if (alpha) p[3] = y == height - 1 ? 128 : 255;
      }
    }
    std::vector<char*> keys, values;
    for (auto it = options.begin(); it != options.end(); it += 2) {
      keys.push_back(const_cast<char*>(*it));
      values.push_back(const_cast<char*>(*(it + 1)));
    }
    keys.push_back(nullptr);
    values.push_back(nullptr);
    fs::path path = dir_ / name;
    GError* error = nullptr;
    EXPECT_TRUE(gdk_pixbuf_savev(pixbuf, path.c_str(), type, keys.data(), values.data(), &error))
        << (error ? error->message : "");
    if (error != nullptr) g_error_free(error);
    g_object_unref(pixbuf);
    return path;
  }

  fs::path dir_;
};

TEST_F(ImageLoaderTest, PngWithAlphaIsPremultiplied) {
  const auto image = LoadImage(Save("alpha.png", "png", 4, 2, true).string());
  EXPECT_EQ(image->width, 4);
  EXPECT_EQ(image->height, 2);
  EXPECT_EQ(image->stride, 16);
  EXPECT_TRUE(image->has_alpha);
  EXPECT_TRUE(image->jpeg.empty());
  EXPECT_EQ(PixelAt(*image, 0, 0), 0xFFFF0000u);
  EXPECT_EQ(PixelAt(*image, 3, 0), 0xFF0000FFu);
  EXPECT_EQ(PixelAt(*image, 0, 1), 0x80800000u) << "half-transparent red, premultiplied";
  EXPECT_EQ(PixelAt(*image, 3, 1), 0x80000080u);
}

TEST_F(ImageLoaderTest, OpaqueRgbaIsOpaque) {
  GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, TRUE, 8, 2, 2);
  gdk_pixbuf_fill(pixbuf, 0x336699FF);
  const fs::path path = dir_ / "opaque.png";
  ASSERT_TRUE(gdk_pixbuf_save(pixbuf, path.c_str(), "png", nullptr, nullptr));
  g_object_unref(pixbuf);
  const auto image = LoadImage(path.string());
  EXPECT_FALSE(image->has_alpha) << "no soft mask needed in PDFs";
  EXPECT_EQ(PixelAt(*image, 1, 1), 0xFF336699u);
}

TEST_F(ImageLoaderTest, JpegKeepsItsBytes) {
  const fs::path path = Save("photo.jpg", "jpeg", 16, 8, false, {"quality", "95"});
  const auto image = LoadImage(path.string());
  EXPECT_EQ(image->jpeg, ReadFile(path));
  EXPECT_EQ(image->width, 16);
  EXPECT_FALSE(image->has_alpha);
  const uint32_t left = PixelAt(*image, 1, 4);
  EXPECT_GT((left >> 16) & 0xFF, 200u);
  EXPECT_LT(left & 0xFF, 60u);
}

TEST_F(ImageLoaderTest, BmpAndGifAndTiff) {
  const auto bmp = LoadImage(Save("logo.bmp", "bmp", 6, 3, false).string());
  EXPECT_EQ(bmp->width, 6);
  EXPECT_EQ(PixelAt(*bmp, 0, 0), 0xFFFF0000u);
  EXPECT_TRUE(bmp->jpeg.empty());

  const fs::path gif = dir_ / "dot.gif";
  std::ofstream(gif, std::ios::binary)
      .write(reinterpret_cast<const char*>(kRedGif), sizeof kRedGif);
  const auto dot = LoadImage(gif.string());
  EXPECT_EQ(dot->width, 1);
  EXPECT_EQ(PixelAt(*dot, 0, 0), 0xFFFF0000u);

  const auto tiff = LoadImage(Save("scan.tiff", "tiff", 4, 4, false).string());
  EXPECT_EQ(PixelAt(*tiff, 3, 3), 0xFF0000FFu);
}

TEST_F(ImageLoaderTest, ResolutionComesFromTheFile) {
  EXPECT_EQ(LoadImage(Save("plain.png", "png", 2, 2, false).string())->dpi_x, 96);
  const auto printed =
      LoadImage(Save("300.png", "png", 2, 2, false, {"x-dpi", "300", "y-dpi", "300"}).string());
  EXPECT_NEAR(printed->dpi_x, 300, 0.5);
  EXPECT_NEAR(printed->dpi_y, 300, 0.5);
}

TEST_F(ImageLoaderTest, LargePicturesAreScaledDownOnce) {
  const auto image = LoadImage(Save("poster.png", "png", 3000, 1000, false).string());
  EXPECT_EQ(image->width, 2000);
  EXPECT_EQ(image->height, 667);
  // Same size on paper: 3000 px at 96 dpi is 31.25 inches.
  EXPECT_NEAR(image->width / image->dpi_x, 3000 / 96.0, 0.01);
}

TEST_F(ImageLoaderTest, LargeJpegKeepsItsPixels) {
  const auto image = LoadImage(Save("big.jpg", "jpeg", 2400, 10, false).string());
  EXPECT_EQ(image->width, 2400);
  EXPECT_FALSE(image->jpeg.empty());
}

TEST_F(ImageLoaderTest, MissingFileIsFileNotFound) {
  const std::string path = (dir_ / "nowhere.png").string();
  try {
    LoadImage(path);
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kFileNotFound);
    EXPECT_EQ(error.description(), "Picture file not found: " + path);
  }
  EXPECT_THROW(LoadImage(dir_.string()), Error) << "a folder is not a picture";
}

TEST_F(ImageLoaderTest, UndecodableFileIsAnError) {
  const fs::path path = dir_ / "notes.png";
  std::ofstream(path) << "this is not a picture";
  try {
    LoadImage(path.string());
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_NE(error.number(), errnum::kFileNotFound);
    EXPECT_NE(error.description().find(path.string()), std::string::npos) << error.description();
  }
}

TEST_F(ImageLoaderTest, TooManyPixelsAreRefusedBeforeDecoding) {
  const fs::path path = dir_ / "huge.png";
  std::ofstream(path, std::ios::binary) << BlackPng(20000);
  ASSERT_LT(fs::file_size(path), 2u << 20);
  // Loaded in a child process, whose peak memory is its own: what decoding took shows there.
  int result[2];
  ASSERT_EQ(pipe(result), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    struct rusage before, after;
    getrusage(RUSAGE_SELF, &before);
    std::string outcome = "loaded";
    try {
      LoadImage(path.string());
    } catch (const Error& error) {
      outcome = std::to_string(error.number()) + " " + error.description();
    }
    getrusage(RUSAGE_SELF, &after);
    outcome = std::to_string(after.ru_maxrss - before.ru_maxrss) + " " + outcome;
    const ssize_t written = write(result[1], outcome.data(), outcome.size());
    _exit(written == static_cast<ssize_t>(outcome.size()) ? 0 : 1);
  }
  close(result[1]);
  std::string outcome;
  char buffer[512];
  for (ssize_t n; (n = read(result[0], buffer, sizeof buffer)) > 0;) outcome.append(buffer, n);
  close(result[0]);
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  const long grown_kb = std::stol(outcome);
  const std::string reported = outcome.substr(outcome.find(' ') + 1);
  EXPECT_EQ(reported, "481 Invalid picture: " + path.string() +
                          " (20000 x 20000 pixels is more than the 50 megapixels a picture may "
                          "have)");
  EXPECT_LT(grown_kb, 64 * 1024) << "the pixels were decoded";
}

TEST_F(ImageLoaderTest, TooLargeAFileIsRefusedUnread) {
  const fs::path path = dir_ / "large.png";
  {
    std::ofstream file(path, std::ios::binary);
    file << BlackPng(8);
  }
  fs::resize_file(path, (200u << 20) + 1);  // sparse: takes no room on disk
  try {
    LoadImage(path.string());
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), 481);
    EXPECT_NE(error.description().find("larger than the 200 MB"), std::string::npos)
        << error.description();
  }
}

TEST_F(ImageLoaderTest, BackslashesAreSeparators) {
  fs::create_directories(dir_ / "pictures");
  Save("pictures/logo.png", "png", 2, 2, false);
  const std::string host_path = dir_.string() + "\\pictures\\logo.png";
  const auto image = LoadImage(host_path);
  EXPECT_EQ(image->width, 2);
  EXPECT_EQ(image->source, host_path);
}

TEST_F(ImageLoaderTest, CachedUntilTheFileChanges) {
  const fs::path path = Save("logo.png", "png", 4, 2, false);
  const auto first = LoadImage(path.string());
  EXPECT_EQ(LoadImage(path.string()), first) << "decoded once";
  Save("logo.png", "png", 8, 2, false);
  fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(2));
  const auto second = LoadImage(path.string());
  EXPECT_NE(second, first);
  EXPECT_EQ(second->width, 8);
}

}  // namespace
}  // namespace vantorel::report
