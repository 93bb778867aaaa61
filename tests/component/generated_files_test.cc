// The IDL file and the C header of the binary layout are checked in so hosts can use them without
// building anything; both must say exactly what the interface description says.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "component/interface.h"

namespace vantorel {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// The source and build folders the build told the test, or the environment's.
fs::path Folder(const char* built_in, const char* variable) {
  if (built_in != nullptr && *built_in != '\0') return built_in;
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0' ? fs::path(value) : fs::current_path();
}

#ifdef VANTOREL_SOURCE_DIR
constexpr const char* kSourceDir = VANTOREL_SOURCE_DIR;
#else
constexpr const char* kSourceDir = nullptr;
#endif
#ifdef VANTOREL_BUILD_DIR
constexpr const char* kBuildDir = VANTOREL_BUILD_DIR;
#else
constexpr const char* kBuildDir = nullptr;
#endif

// Compares the checked-in "relative" with "generated". On a difference the generated text is
// written under the build folder, and the message says how to bring the file up to date.
void ExpectUpToDate(const std::string& relative, const std::string& generated,
                    const std::string& command) {
  const fs::path source = Folder(kSourceDir, "VANTOREL_SOURCE_DIR") / relative;
  if (ReadFile(source) == generated) return;
  const fs::path fresh = Folder(kBuildDir, "VANTOREL_BUILD_DIR") / "generated" / relative;
  fs::create_directories(fresh.parent_path());
  std::ofstream(fresh, std::ios::binary) << generated;
  ADD_FAILURE() << relative << " differs from the interface description.\n"
                << "Regenerate with `" << command << " > " << relative << "`, or copy " << fresh
                << " over it.";
}

TEST(GeneratedFiles, IdlMatchesTheInterfaceDescription) {
  ExpectUpToDate("docs/vantorel.idl", InterfaceIdl(), "vantorel idl");
}

TEST(GeneratedFiles, AbiHeaderMatchesTheInterfaceDescription) {
  ExpectUpToDate("include/vantorel/crepoter_abi.h", InterfaceCHeader(), "vantorel abi-header");
}

TEST(GeneratedFiles, AbiHeaderSpellsEveryParameterWithItsCType) {
  const std::string header = InterfaceCHeader();
  EXPECT_NE(header.find("(_CRepoter* This, short Cid, BSTR* LogoFile);"), std::string::npos);
  EXPECT_NE(header.find("(_CRepoter* This, LONG* RefiD, DATE* Fdt, DATE* Tdt);"),
            std::string::npos);
  EXPECT_NE(header.find("(_CRepoter* This, short ID, unsigned char NoofStickers);"),
            std::string::npos);
  EXPECT_NE(header.find("VARIANT* LogoFile);"), std::string::npos);
  EXPECT_NE(header.find("get_FirmID)(_CRepoter* This, unsigned char* FirmID);"), std::string::npos);
  EXPECT_NE(header.find("put_Export)(_CRepoter* This, VARIANT_BOOL Export);"), std::string::npos);
  for (size_t start = 0, end; start < header.size(); start = end + 1) {
    end = header.find('\n', start);
    if (end == std::string::npos) end = header.size();
    EXPECT_LE(end - start, 100u) << header.substr(start, end - start);
  }
}

}  // namespace
}  // namespace vantorel
