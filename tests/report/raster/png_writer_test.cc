#include "report/raster/png_writer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
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

// A fresh folder for one test, removed at the end.
class PngFolder {
 public:
  PngFolder()
      : path_(fs::temp_directory_path() /
              ("vantorel-png-" + std::to_string(getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::remove_all(path_);
    fs::create_directories(path_);
  }
  ~PngFolder() { fs::remove_all(path_); }
  const fs::path& path() const { return path_; }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  fs::path path_;
};

TEST(PngWriterTest, PageFileThatIsASymbolicLinkIsRefusedAndItsFileKept) {
  const PngFolder folder;
  std::ofstream(folder.path() / "victim.txt") << "precious";
  fs::create_symlink(folder.path() / "victim.txt", folder.path() / "page-2.png");
  try {
    WritePngs(TwoPages(), folder.path().string(), "page", 72);
    FAIL() << "expected an error";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errnum::kPathFileAccess);
    EXPECT_EQ(error.source(), "Vantorel.Png");
    EXPECT_EQ(error.description(), "Cannot write " + (folder.path() / "page-2.png").string() +
                                       ": it is not a regular file but a symbolic link");
  }
  std::ifstream victim(folder.path() / "victim.txt");
  std::string text;
  victim >> text;
  EXPECT_EQ(text, "precious");
  EXPECT_TRUE(fs::is_symlink(folder.path() / "page-2.png"));
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"page-1.png", "page-2.png", "victim.txt"}));
}

TEST(PngWriterTest, FifoPageFileIsRefused) {
  const PngFolder folder;
  ASSERT_EQ(mkfifo((folder.path() / "page-1.png").c_str(), 0600), 0);
  EXPECT_THROW(WritePngs(TwoPages(), folder.path().string(), "page", 72), Error);
  struct stat info;
  ASSERT_EQ(lstat((folder.path() / "page-1.png").c_str(), &info), 0);
  EXPECT_TRUE(S_ISFIFO(info.st_mode));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"page-1.png"});
}

TEST(PngWriterTest, ReplacedPagesKeepTheirPermissionsAndLeaveNoStrayFiles) {
  const PngFolder folder;
  WritePngs(TwoPages(), folder.path().string(), "page", 72);
  ASSERT_EQ(chmod((folder.path() / "page-1.png").c_str(), 0600), 0);
  struct stat before;
  ASSERT_EQ(stat((folder.path() / "page-1.png").c_str(), &before), 0);
  WritePngs(TwoPages(), folder.path().string(), "page", 72);
  struct stat after;
  ASSERT_EQ(stat((folder.path() / "page-1.png").c_str(), &after), 0);
  EXPECT_EQ(after.st_mode & 07777, 0600u);
  EXPECT_NE(after.st_ino, before.st_ino) << "renamed into place, not rewritten in place";
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"page-1.png", "page-2.png"}));
}

}  // namespace
}  // namespace vantorel::report
