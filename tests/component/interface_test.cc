// The interface description: entry order, dispatch identifiers, parameter lists.
#include "component/interface.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "support/test_support.h"

namespace vantorel {
namespace {

TEST(Interface, HasTwentyFourPropertyEntriesThenOneHundredMethods) {
  const auto entries = InterfaceEntries();
  ASSERT_EQ(entries.size(), 124u);
  for (size_t i = 0; i < 24; ++i) {
    EXPECT_EQ(entries[i].kind, i % 2 == 0 ? EntryKind::kPropertyGet : EntryKind::kPropertyPut);
  }
  for (size_t i = 24; i < entries.size(); ++i) EXPECT_EQ(entries[i].kind, EntryKind::kMethod);
  EXPECT_STREQ(entries[24].name, "SetVars");
  EXPECT_STREQ(entries.back().name, "Apro_WsPrintPurRet");
}

TEST(Interface, PropertyIdentifiersSkipOneToSeven) {
  const char* kOrder[] = {"LastMsg",         "ReportPath",       "RptName",     "Export",
                          "DbConnectstring", "DbTConnectstring", "DesigbeMode", "RptPrint",
                          "FirmID",          "AppPath",          "RptPDF",      "PDFPath"};
  const auto entries = InterfaceEntries();
  for (size_t p = 0; p < 12; ++p) {
    const DispId expected = p == 0 ? 0x40030000 : 0x40030007 + static_cast<DispId>(p);
    EXPECT_STREQ(entries[2 * p].name, kOrder[p]);
    EXPECT_EQ(entries[2 * p].dispid, expected) << kOrder[p];
    EXPECT_EQ(entries[2 * p + 1].dispid, expected) << kOrder[p];
  }
  for (DispId id = 0x40030001; id <= 0x40030007; ++id) {
    EXPECT_EQ(FindEntry(id, EntryKind::kPropertyGet), nullptr);
  }
}

TEST(Interface, MethodIdentifiersCountUpSkippingThePrivateOnes) {
  DispId expected = 0x60030000;
  const auto entries = InterfaceEntries();
  for (size_t i = 24; i < entries.size(); ++i) {
    while (expected == 0x60030002 || expected == 0x60030042 || expected == 0x60030043) ++expected;
    EXPECT_EQ(entries[i].dispid, expected) << entries[i].name;
    ++expected;
  }
  EXPECT_EQ(*FindDispId("SuperReport"), 0x60030001);
  EXPECT_EQ(*FindDispId("Challan_Customer"), 0x60030003);
  EXPECT_EQ(*FindDispId("WS_TOPLIST"), 0x60030041);
  EXPECT_EQ(*FindDispId("QuotePrint"), 0x60030044);
  EXPECT_EQ(*FindDispId("Apro_WsPrintPurRet"), 0x60030066);
  for (DispId skipped : {0x60030002, 0x60030042, 0x60030043}) {
    EXPECT_EQ(FindEntry(skipped, EntryKind::kMethod), nullptr);
  }
}

TEST(Interface, NamesResolveWithoutCase) {
  EXPECT_EQ(FindDispId("challan_customer"), FindDispId("Challan_Customer"));
  EXPECT_EQ(FindDispId("DESIGBEMODE"), 0x4003000D);
  EXPECT_FALSE(FindDispId("DesignMode"));
}

TEST(Interface, ParameterListsMatchThePublishedOnes) {
  // One line per entry, as `vantorel methods` prints it; the golden file is the published list.
  std::ostringstream listing;
  for (const EntryInfo& entry : InterfaceEntries()) {
    char id[16];
    std::snprintf(id, sizeof id, "0x%08x", static_cast<unsigned>(entry.dispid));
    listing << id << '\t' << entry.name << '\t' << ParamListIdl(entry) << '\n';
  }
  const std::string golden =
      testing::ReadFile(std::string(VANTOREL_TEST_DIR) + "/component/methods.golden");
  EXPECT_EQ(listing.str(), golden);
}

TEST(Interface, IdlFileIsUpToDate) {
  const std::string idl =
      testing::ReadFile(std::string(VANTOREL_SOURCE_DIR) + "/docs/vantorel.idl");
  EXPECT_EQ(idl, InterfaceIdl()) << "regenerate with `vantorel idl > docs/vantorel.idl`";
}

}  // namespace
}  // namespace vantorel
