#include "report/raster/png_writer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "report/render/pixel_compare.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

namespace fs = std::filesystem;

struct PngStream {
  const std::string* bytes;
  size_t at = 0;
};

cairo_status_t ReadPng(void* closure, unsigned char* data, unsigned int length) {
  auto* stream = static_cast<PngStream*>(closure);
  if (stream->at + length > stream->bytes->size()) return CAIRO_STATUS_READ_ERROR;
  std::copy_n(stream->bytes->data() + stream->at, length, data);
  stream->at += length;
  return CAIRO_STATUS_SUCCESS;
}

SurfacePtr Decode(const std::string& png) {
  PngStream stream{&png};
  return SurfacePtr(cairo_image_surface_create_from_png_stream(ReadPng, &stream));
}

Document TwoPages() {
  Document document;
  Page first{{200, 100}, {}};
  first.items.push_back(RectItem{{50, 25, 100, 50}, {255, 0, 0, 255}, Stroke{0}, 0});
  Page second{{100, 200}, {}};
  document.pages = {first, second};
  return document;
}

TEST(PngWriterTest, ScalesByResolutionOnWhite) {
  const std::string png = PagePng(TwoPages(), 0, 144);
  ASSERT_EQ(png.substr(1, 3), "PNG");
  const SurfacePtr surface = Decode(png);
  ASSERT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS);
  EXPECT_EQ(cairo_image_surface_get_width(surface.get()), 400);
  EXPECT_EQ(cairo_image_surface_get_height(surface.get()), 200);
  EXPECT_EQ(testing::PixelAt(surface.get(), 5, 5), Color::White());
  EXPECT_EQ(testing::PixelAt(surface.get(), 200, 100), (Color{255, 0, 0, 255}));
  EXPECT_EQ(testing::PixelAt(surface.get(), 99, 100), Color::White());
  EXPECT_EQ(testing::PixelAt(surface.get(), 101, 100), (Color{255, 0, 0, 255}));
}

TEST(PngWriterTest, A4At150DpiHasTheUsualPixelSize) {
  Document document;
  document.pages.push_back(Page{{595.28f, 841.89f}, {}});
  const SurfacePtr surface = Decode(PagePng(document, 0, 150));
  EXPECT_EQ(cairo_image_surface_get_width(surface.get()), 1241);
  EXPECT_EQ(cairo_image_surface_get_height(surface.get()), 1754);
}

TEST(PngWriterTest, BadPageOrResolutionIsAnError) {
  EXPECT_THROW(PagePng(TwoPages(), 2, 96), Error);
  EXPECT_THROW(PagePng(TwoPages(), 0, 0), Error);
  EXPECT_THROW(PagePng(TwoPages(), 0, -72), Error);
}

TEST(PngWriterTest, WritesNumberedFiles) {
  const fs::path dir =
      fs::temp_directory_path() / ("vantorel-png-" + std::to_string(getpid())) / "new" / "folder";
  Document document = TwoPages();
  for (int i = 0; i < 9; ++i) document.pages.push_back(document.pages[1]);
  const auto paths = WritePngs(document, dir.string(), "invoice", 72);
  ASSERT_EQ(paths.size(), 11u);
  EXPECT_EQ(fs::path(paths[0]).filename(), "invoice-01.png");
  EXPECT_EQ(fs::path(paths[10]).filename(), "invoice-11.png");
  for (const std::string& path : paths) EXPECT_GT(fs::file_size(path), 50u) << path;
  std::ifstream first(paths[1], std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(first)), std::istreambuf_iterator<char>());
  const SurfacePtr surface = Decode(bytes);
  EXPECT_EQ(cairo_image_surface_get_width(surface.get()), 100);
  fs::remove_all(dir.parent_path().parent_path());
}

TEST(PngWriterTest, ThreadsDrawTheSameDocumentAlike) {
  Document document = TwoPages();
  TextStyle style;
  style.size = 12;
  const uint32_t index = document.InternStyle(style);
  document.pages[0].items.push_back(
      TextItem{{10, 10, 180, 80}, index, "Shri Ganesh Motors ₹ 1,05,630.00 श्री गणेश"});
  const std::string expected = PagePng(document, 0, 96);
  std::vector<std::string> results(4);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([&, i] {
      for (int k = 0; k < 5; ++k) results[i] = PagePng(document, 0, 96);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& png : results) EXPECT_EQ(png, expected);
}

TEST(PngWriterTest, UnwritableFolderIsAnError) {
  const fs::path file =
      fs::temp_directory_path() / ("vantorel-png-file-" + std::to_string(getpid()));
  std::ofstream(file) << "a file, not a folder";
  try {
    WritePngs(TwoPages(), (file / "pages").string(), "page", 72);
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kPathFileAccess);
    EXPECT_NE(error.description().find(file.string()), std::string::npos);
  }
  fs::remove(file);
}

}  // namespace
}  // namespace vantorel::report
