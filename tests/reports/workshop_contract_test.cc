// The workshop's print methods — store documents, job and counter invoices, stock lists,
// technician lists — each guard, template name, component, parameter type, SQL text and memo
// text exactly as the documents need them, on the scripted engine and the trace.
#include <gtest/gtest.h>

#include "method_fixture.h"
#include "words/amount_in_words.h"

namespace vantorel::testing {
namespace {

class WorkshopTest : public MethodTest {
 protected:
  WorkshopTest()
      : MethodTest({"w_purchasecheck",
                    "w_purchasecheckgst",
                    "w_partplacementlist",
                    "w_stocktransfer",
                    "w_purchaseorder",
                    "w_poview",
                    "w_estimate",
                    "wsprintpurret",
                    "w_jobcardprint",
                    "w_jobinvprint",
                    "w_jobinvprinthero",
                    "w_jobinvprintheroigst",
                    "custom_w_jobinvprint",
                    "w_proinvoice",
                    "w_gstjobinvprint",
                    "jobinvprint",
                    "jobinvprint_wmrp",
                    "einvoiceservice",
                    "w_counterprint",
                    "w_counterprinthero",
                    "w_gstcounterprinthero",
                    "custom_w_counterprint",
                    "w_gstcounterprint",
                    "counterprint",
                    "counterprint_wmrp",
                    "einvoiceclaim",
                    "w_history",
                    "w_openingparts",
                    "w_closingbal",
                    "w_stockvaluation",
                    "w_negativereport",
                    "stocksummary",
                    "w_servicefollowup",
                    "w_mechreqlist",
                    "w_mechlablist",
                    "w_superreqlist",
                    "w_superlablist"}) {}

  void PurchaseOrderSetting(const std::string& value) {
    Sql("delete from para_setup; insert into para_setup values ('WS_PO','PO','" + value + "')");
  }
};

// --- the spare-parts store ---------------------------------------------------------------------

TEST_F(WorkshopTest, StoreDocumentsSelectTheirDocumentByIdInTheirQuery) {
  struct Row {
    std::function<void(CRepoter&, int16_t)> call;
    const char* template_name;
    const char* parameter;
  };
  const std::vector<Row> rows = {
      {[](CRepoter& r, int16_t id) { r.w_purchaseCheck(id); }, "w_purchasecheck", "q.pu_id"},
      {[](CRepoter& r, int16_t id) { r.w_purchaseCheckGST(id); }, "w_purchasecheckgst", "q.pu_id"},
      {[](CRepoter& r, int16_t id) { r.w_partPlacementList(id); }, "w_partplacementlist",
       "q.pu_id"},
      {[](CRepoter& r, int16_t id) { r.w_stocktransfer(id); }, "w_stocktransfer", "mst.stk_id"},
      {[](CRepoter& r, int16_t id) { r.w_estimate(id); }, "w_estimate", "mst.em_id"},
      {[](CRepoter& r, int16_t id) { r.w_purchaseorder(id); }, "w_purchaseorder", "mst.od_id"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.template_name);
    Fresh();
    row.call(rep_, 21);
    ExpectPrinted(row.template_name);
    EXPECT_EQ(RptName(), row.template_name);
    EXPECT_EQ(ParamType(row.parameter), 2);
    EXPECT_EQ(ParamValue<int16_t>(row.parameter), 21);
    // A negative id is passed on; only 0 is refused, before the template is named.
    Fresh();
    row.call(rep_, -3);
    EXPECT_EQ(ParamValue<int16_t>(row.parameter), -3);
    EXPECT_EQ(Count("ReleaseRun"), 1u);
    NameTemplate("host");
    row.call(rep_, 0);
    EXPECT_EQ(RptName(), "host");
    ExpectUntouched();
    EXPECT_TRUE(Sqls().empty());
  }
}

TEST_F(WorkshopTest, StockTransferPokesInTheOrderOfItsSteps) {
  rep_.w_stocktransfer(-3);
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"LocateComponent mst", "GetQueryParameter stk_id",
                                               "SetParameterValue", "ShowPreview", "ReleaseRun"}));
}

TEST_F(WorkshopTest, StoreDocumentWithoutQueryOrParameterIsLoadedAndReleasedOnly) {
  Lacking("w_purchasecheck", {"q"});
  rep_.w_purchaseCheck(4);
  ExpectSkipped();
  Fresh();
  Lacking("w_estimate", {"mst.em_id"});
  rep_.w_estimate(4);
  ExpectSkipped();
}

TEST_F(WorkshopTest, PurchaseOrderReadsItsLayoutSetting) {
  struct Row {
    const char* value;
    const char* expected;
  };
  for (const Row& row : {Row{" y ", "w_poview"}, Row{"Y", "w_poview"},
                         Row{"YES", "w_purchaseorder"}, Row{"N", "w_purchaseorder"}}) {
    SCOPED_TRACE(row.value);
    PurchaseOrderSetting(row.value);
    Fresh();
    rep_.w_purchaseorder(8);
    EXPECT_EQ(Sqls(), (std::vector<std::string>{"select para_value from para_setup where "
                                                "para_flag='WS_PO' and para_type='PO'"}));
    ExpectPrinted(row.expected);
    EXPECT_EQ(RptName(), row.expected);
  }
  Sql("delete from para_setup");
  rep_.w_purchaseorder(8);
  EXPECT_EQ(Loaded(), "w_purchaseorder.fr3");
  Sql("insert into para_setup values ('WS_PO','PO',null)");
  rep_.w_purchaseorder(8);
  EXPECT_EQ(Loaded(), "w_purchaseorder.fr3");
}

TEST_F(WorkshopTest, PurchaseOrderThatCannotBePreparedIsNotReleased) {
  engine_->FailOn("LoadTemplate", "broken template");
  rep_.w_purchaseorder(8);
  EXPECT_EQ(Count("ReleaseRun"), 0u);
  EXPECT_FALSE(Rendered());
}

TEST_F(WorkshopTest, PurchaseReturnPrintsItsWordsAndLogoForAReturnAndADebitNoteAlike) {
  for (VBool is_debit_note : {kTrue, kFalse}) {
    Fresh();
    rep_.Apro_WsPrintPurRet(6, 11800.5, is_debit_note, "C:\\logo.bmp");
    ExpectPrinted("wsprintpurret");
    EXPECT_EQ(ParamValue<int16_t>("mst.pu_id"), 6);
    EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(11800.5));
    EXPECT_EQ(Variable("logo"), "\"C:\\logo.bmp\"");
    EXPECT_EQ(Pokes(),
              (std::vector<std::string>{"LocateComponent mst", "GetQueryParameter pu_id",
                                        "SetParameterValue", "LocateComponent WORDS", "SetMemoText",
                                        "SetTemplateVariable logo", "ShowPreview", "ReleaseRun"}));
  }
}

TEST_F(WorkshopTest, PurchaseReturnRefusesEveryIdNotAboveZero) {
  for (int16_t id : {0, -3}) {
    NameTemplate("host");
    rep_.Apro_WsPrintPurRet(id, 100, kFalse, "");
    EXPECT_EQ(RptName(), "host");
    ExpectUntouched();
  }
}

TEST_F(WorkshopTest, PurchaseReturnWithoutItsParameterSetsNoWordsAndNoLogo) {
  Lacking("wsprintpurret", {"mst.pu_id"});
  rep_.Apro_WsPrintPurRet(6, 100, kFalse, "logo.png");
  ExpectSkipped();
  EXPECT_EQ(Memo("WORDS"), "<unset>");
  EXPECT_EQ(Variable("logo"), "<unset>");
}

// --- job cards and job invoices ------------------------------------------------------------------

TEST_F(WorkshopTest, JobInvoicePokesInTheOrderOfItsSteps) {
  rep_.w_jobinvPrint(12, "JI/24-25", 2360.75);
  ExpectPrinted("w_jobinvprint");
  EXPECT_EQ(ParamType("mst.ma_id"), 2);
  EXPECT_EQ(ParamValue<int16_t>("mst.ma_id"), 12);
  EXPECT_EQ(ParamType("mst.ma_rv"), 8);
  EXPECT_EQ(ParamValue<std::string>("mst.ma_rv"), "JI/24-25");
  EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(2360.75));
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"LocateComponent mst", "GetQueryParameter ma_id",
                                               "SetParameterValue", "GetQueryParameter ma_rv",
                                               "SetParameterValue", "LocateComponent WORDS",
                                               "SetMemoText", "ShowPreview", "ReleaseRun"}));
}

TEST_F(WorkshopTest, JobInvoiceWithIdNotAboveZeroLeavesEverythingAsItWas) {
  for (int16_t id : {0, -1}) {
    NameTemplate("host");
    rep_.w_jobinvPrint(id, "R", 10);
    EXPECT_EQ(RptName(), "host");
    ExpectUntouched();
  }
}

TEST_F(WorkshopTest, JobInvoiceOfNothingSpellsZero) {
  rep_.w_jobinvPrint(3, "R", 0);
  EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(0));
}

TEST_F(WorkshopTest, JobInvoiceWithoutWordsMemoIsTheHostsError) {
  Lacking("w_jobinvprint", {"WORDS"});
  ExpectHostError([&] { rep_.w_jobinvPrint(3, "R", 10); });
}

TEST_F(WorkshopTest, JobInvoiceWithoutQueryOrParameterIsLoadedAndReleasedOnly) {
  for (const char* lacking : {"mst", "mst.ma_id", "mst.ma_rv"}) {
    SCOPED_TRACE(lacking);
    Lacking("w_jobinvprint", {lacking});
    Fresh();
    rep_.w_jobinvPrint(3, "R", 10);
    ExpectSkipped();
  }
}

TEST_F(WorkshopTest, MakersJobInvoiceChoosesItsTaxFormAndWritesRs) {
  struct Row {
    VBool igst;
    const char* expected;
  };
  for (const Row& row : {Row{1, "w_jobinvprintheroigst"}, Row{-1, "w_jobinvprintheroigst"},
                         Row{0, "w_jobinvprinthero"}}) {
    Fresh();
    rep_.w_jobinvPrintHero(4, "R", 1500, row.igst);
    ExpectPrinted(row.expected);
    EXPECT_EQ(Memo("WORDS"), "Rs. " + AmountInWords(1500));
  }
}

TEST_F(WorkshopTest, CustomJobInvoiceDiffersOnlyInItsTemplate) {
  rep_.custom_w_jobinvPrint(4, "R", 99.5);
  ExpectPrinted("custom_w_jobinvprint");
  EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(99.5));
}

TEST_F(WorkshopTest, HostNamedJobInvoiceNeedsAName) {
  NameTemplate("host");
  rep_.w_gstjobinvPrint(4, "R", 10, "");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
  rep_.w_gstjobinvPrint(0, "R", 10, "w_gstjobinvprint");
  ExpectUntouched();
  rep_.w_gstjobinvPrint(4, "R", 10, "w_gstjobinvprint");
  ExpectPrinted("w_gstjobinvprint");
  EXPECT_EQ(RptName(), "w_gstjobinvprint");
}

TEST_F(WorkshopTest, JobInvoiceWithOrWithoutMrpSetsTheLogoAfterTheWords) {
  rep_.Apro_jobinvPrint(4, "R", 10, "D:\\logo.jpg", kFalse);
  ExpectPrinted("jobinvprint");
  EXPECT_EQ(Variable("logo"), "\"D:\\logo.jpg\"");
  const auto pokes = Pokes();
  EXPECT_EQ(std::vector<std::string>(pokes.end() - 4, pokes.end()),
            (std::vector<std::string>{"SetMemoText", "SetTemplateVariable logo", "ShowPreview",
                                      "ReleaseRun"}));
  Fresh();
  rep_.Apro_jobinvPrint(4, "R", 10, "", 7);
  ExpectPrinted("jobinvprint_wmrp");
  EXPECT_EQ(Variable("logo"), "\"\"");
}

TEST_F(WorkshopTest, JobInvoiceWithoutItsRvParameterSetsNoLogoAndShowsNothing) {
  Lacking("jobinvprint", {"mst.ma_rv"});
  rep_.Apro_jobinvPrint(4, "R", 10, "logo.png", kFalse);
  ExpectSkipped();
  EXPECT_EQ(Variable("logo"), "<unset>");
}

TEST_F(WorkshopTest, ServiceEInvoiceSetsItsPicturesRightAfterPreparing) {
  rep_.EInvoiceService(9, "SI", 54000, "logo.png", "C:\\qr\\9.png");
  ExpectPrinted("einvoiceservice");
  EXPECT_EQ(Variable("logo"), "\"logo.png\"");
  EXPECT_EQ(Variable("qrcode"), "\"C:\\qr\\9.png\"");
  const auto pokes = Pokes();
  ASSERT_GE(pokes.size(), 3u);
  EXPECT_EQ(std::vector<std::string>(pokes.begin(), pokes.begin() + 3),
            (std::vector<std::string>{"SetTemplateVariable logo", "SetTemplateVariable qrcode",
                                      "LocateComponent mst"}));
  // Without the invoice in the template the pictures are set all the same.
  Lacking("einvoiceservice", {"mst"});
  Fresh();
  rep_.EInvoiceService(9, "SI", 54000, "", "");
  ExpectSkipped();
  EXPECT_EQ(Variable("qrcode"), "\"\"");
}

TEST_F(WorkshopTest, JobCardSetsItsLogoThenSelectsTheJob) {
  rep_.w_jobcardprint(31, "logo.png");
  ExpectPrinted("w_jobcardprint");
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"SetTemplateVariable logo", "LocateComponent mst",
                                               "GetQueryParameter job_srl", "SetParameterValue",
                                               "ShowPreview", "ReleaseRun"}));
  EXPECT_EQ(ParamValue<int16_t>("mst.job_srl"), 31);
  EXPECT_EQ(Memo("WORDS"), "<unset>");
  NameTemplate("host");
  rep_.w_jobcardprint(-31, "");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

TEST_F(WorkshopTest, ProformaInvoiceSelectsTheJobInItsOwnQuery) {
  rep_.w_proinvoicePrint(31);
  ExpectPrinted("w_proinvoice");
  EXPECT_EQ(ParamValue<int16_t>("job.job_srl"), 31);
  EXPECT_TRUE(engine_->observed().variables.empty());
  EXPECT_EQ(Memo("WORDS"), "<unset>");
  NameTemplate("host");
  rep_.w_proinvoicePrint(0);
  ExpectUntouched();
}

// --- counter invoices
// ------------------------------------------------------------------------------

TEST_F(WorkshopTest, CounterInvoicesAllWriteRupeesBeforeTheWords) {
  struct Row {
    std::function<void(CRepoter&)> call;
    const char* template_name;
  };
  const std::vector<Row> rows = {
      {[](CRepoter& r) { r.w_counterprint(5, "CS", 450); }, "w_counterprint"},
      {[](CRepoter& r) { r.w_counterprinthero(5, "CS", 450); }, "w_counterprinthero"},
      {[](CRepoter& r) { r.w_gstcounterprinthero(5, "CS", 450); }, "w_gstcounterprinthero"},
      {[](CRepoter& r) { r.custom_w_counterprint(5, "CS", 450); }, "custom_w_counterprint"},
      {[](CRepoter& r) { r.w_gstcounterprint(5, "CS", 450, Variant()); }, "w_gstcounterprint"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.template_name);
    Fresh();
    row.call(rep_);
    ExpectPrinted(row.template_name);
    EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(450));
    EXPECT_EQ(ParamValue<std::string>("mst.ma_rv"), "CS");
  }
}

TEST_F(WorkshopTest, GstCounterInvoiceIgnoresItsLogo) {
  rep_.w_gstcounterprint(5, "CS", 450, Variant::String("logo.png"));
  EXPECT_TRUE(engine_->observed().variables.empty());
  const auto with_logo = Pokes();
  Fresh();
  rep_.w_gstcounterprint(5, "CS", 450, Variant());
  EXPECT_EQ(Pokes(), with_logo);
}

TEST_F(WorkshopTest, CounterInvoiceWithOrWithoutMrp) {
  rep_.Apro_counterprint(5, "CS", 450, "logo.png", 0);
  ExpectPrinted("counterprint");
  EXPECT_EQ(Variable("logo"), "\"logo.png\"");
  for (VBool without : {VBool{1}, VBool{-1}, VBool{2}}) {
    Fresh();
    rep_.Apro_counterprint(5, "CS", 450, "logo.png", without);
    ExpectPrinted("counterprint_wmrp");
  }
  Lacking("counterprint", {"mst"});
  Fresh();
  rep_.Apro_counterprint(5, "CS", 450, "logo.png", 0);
  ExpectSkipped();
  EXPECT_EQ(Variable("logo"), "<unset>");
}

TEST_F(WorkshopTest, ClaimEInvoiceNeedsItsDocumentAndWhereItComesFrom) {
  NameTemplate("host");
  rep_.EInvoiceClaim(5, "", 100, "", "");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
  rep_.EInvoiceClaim(0, "WARRANTY", 100, "", "");
  ExpectUntouched();
  rep_.EInvoiceClaim(5, "WARRANTY", 8260, "logo.png", "qr.png");
  ExpectPrinted("einvoiceclaim");
  EXPECT_EQ(ParamType("mst.docid"), 2);
  EXPECT_EQ(ParamValue<int16_t>("mst.docid"), 5);
  EXPECT_EQ(ParamValue<std::string>("mst.docfrom"), "WARRANTY");
  EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(8260));
  EXPECT_EQ(Variable("logo"), "\"logo.png\"");
  EXPECT_EQ(Variable("qrcode"), "\"qr.png\"");
  EXPECT_EQ(Param("mst.ma_id"), nullptr);
  Lacking("einvoiceclaim", {"mst.docfrom"});
  Fresh();
  rep_.EInvoiceClaim(5, "WARRANTY", 8260, "", "");
  ExpectSkipped();
}

// --- stock lists ---------------------------------------------------------------------------------

TEST_F(WorkshopTest, StockValuationWritesItsSqlFromTheArguments) {
  rep_.w_Stockvaluation(Day(2024, 3, 31), kFalse, "'A','L'", "MRP");
  ExpectPrinted("w_stockvaluation");
  const std::string sql =
      "SELECT PART_NO,PART_DESC,PART_LOCATION,PART_HSNCODE,PART_BINCARD,PART_MRP,PART_SOURCE,"
      "part_balance1 as Balance,cast('2024/03/31' as date) AS ason,part_MRP as rate,'MRP' as "
      "based, part_igstrate as taxrate From ws_partmaster where left(part_type,1) in ('A','L') "
      "and  part_balance1<>0 order by part_no";
  EXPECT_EQ(QuerySql("mst"), sql);
  EXPECT_EQ(rep_.text_buffer(), sql);
}

TEST_F(WorkshopTest, StockValuationLabelsPurchasePriceAsDealerPrice) {
  struct Row {
    const char* based;
    const char* column_and_label;
  };
  for (const Row& row :
       {Row{"PP", "part_PP as rate,'DP' as based"}, Row{"pp", "part_pp as rate,'MRP' as based"},
        Row{"DP", "part_DP as rate,'MRP' as based"},
        Row{"MRP", "part_MRP as rate,'MRP' as based"}}) {
    rep_.w_Stockvaluation(Day(2024, 3, 31), kTrue, "'S'", row.based);
    EXPECT_NE(QuerySql("mst").find(row.column_and_label), std::string::npos) << QuerySql("mst");
    EXPECT_TRUE(QuerySql("mst").ends_with("in ('S') order by part_no")) << QuerySql("mst");
  }
}

TEST_F(WorkshopTest, OnlyExactlyTrueShowsZeroBalances) {
  rep_.w_Stockvaluation(Day(2024, 3, 31), 1, "'S'", "MRP");
  EXPECT_TRUE(QuerySql("mst").ends_with(") and  part_balance1<>0 order by part_no"));
  rep_.w_ClosingParts(Day(2024, 3, 31), 1);
  EXPECT_TRUE(QuerySql("mst").ends_with("where part_balance1<>0 order by part_no"));
}

TEST_F(WorkshopTest, ClosingStockListsEveryPartOrOnlyThoseWithABalance) {
  const std::string head =
      "SELECT PART_NO,PART_DESC,PART_LOCATION,PART_SOURCE,part_hsncode,part_balance1 as "
      "Balance,cast('2025/03/31";
  rep_.w_ClosingParts(Day(2025, 3, 31), kTrue);
  ExpectPrinted("w_closingbal");
  EXPECT_EQ(QuerySql("mst"), head + "' as date) AS ason From ws_partmaster order by part_no");
  rep_.w_ClosingParts(Day(2025, 3, 31), kFalse);
  EXPECT_EQ(QuerySql("mst"),
            head + "' as date) AS ason From ws_partmaster where part_balance1<>0 order by part_no");
}

TEST_F(WorkshopTest, NegativeAndOpeningStockLists) {
  rep_.w_Negativepart(Day(2024, 12, 1));
  ExpectPrinted("w_negativereport");
  EXPECT_EQ(QuerySql("mst"),
            "SELECT PART_NO,PART_DESC,PART_LOCATION,PART_HSNCODE,PART_SOURCE,part_balance1 as "
            "Balance,cast('2024/12/01' as date) AS ason From ws_partmaster where part_balance1<0 "
            "order by part_no");
  Fresh();
  rep_.w_OpeningParts();
  ExpectPrinted("w_openingparts");
  EXPECT_EQ(QuerySql("mst"),
            "SELECT PART_NO,PART_DESC,PART_SOURCE,part_hsncode,PART_LOCATION,PART_OP1 as op From "
            "WS_PARTMASTER where coalesce(part_op1,0)<>0 order by part_no");
  EXPECT_EQ(rep_.text_buffer(), QuerySql("mst"));
}

TEST_F(WorkshopTest, StockListWithoutItsQueryKeepsTheLastSql) {
  rep_.w_OpeningParts();
  const std::string last = rep_.text_buffer();
  Lacking("w_negativereport", {"mst"});
  Fresh();
  rep_.w_Negativepart(Day(2024, 12, 1));
  ExpectSkipped();
  EXPECT_EQ(rep_.text_buffer(), last);
}

TEST_F(WorkshopTest, ServiceHistoryNeedsAChassisNumber) {
  NameTemplate("host");
  rep_.w_history("");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
  rep_.w_history("MD2A11CZ5RCA12345");
  ExpectPrinted("w_history");
  EXPECT_EQ(ParamType("mst.chassisno"), 8);
  EXPECT_EQ(ParamValue<std::string>("mst.chassisno"), "MD2A11CZ5RCA12345");
  EXPECT_EQ(QuerySql("mst"), "<unset>");
  Lacking("w_history", {"mst.chassisno"});
  Fresh();
  rep_.w_history("X");
  ExpectSkipped();
}

TEST_F(WorkshopTest, StockSummaryTitlesTheVehiclesAsOnTheDate) {
  rep_.Apro_StockSummary(Day(2024, 3, 31));
  ExpectPrinted("stocksummary");
  EXPECT_EQ(Memo("Memo26"), "Vehicle Stock Summary as on 31/03/2024");
  EXPECT_EQ(ParamType("Q_SUM.xdt"), 7);
  EXPECT_EQ(ParamValue<Date>("Q_SUM.xdt"), Day(2024, 3, 31));
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"LocateComponent Memo26", "SetMemoText",
                                               "LocateComponent Q_SUM", "GetQueryParameter xdt",
                                               "SetParameterValue", "ShowPreview", "ReleaseRun"}));
  Lacking("stocksummary", {"Memo26"});
  Fresh();
  ExpectHostError([&] { rep_.Apro_StockSummary(Day(2024, 3, 31)); });
  Lacking("stocksummary", {"Q_SUM"});
  Fresh();
  rep_.Apro_StockSummary(Day(2024, 3, 31));
  ExpectSkipped();
}

// --- technician lists ----------------------------------------------------------------------------

TEST_F(WorkshopTest, MechanicsRequisitionsSetTheirFourParametersAndTitle) {
  rep_.w_mechreqlist(7, "DGRZ", "S", Day(2024, 4, 1), Day(2024, 4, 30));
  ExpectPrinted("w_mechreqlist");
  EXPECT_EQ(ParamValue<int16_t>("mst.mechid"), 7);
  EXPECT_EQ(ParamValue<Date>("mst.fdt"), Day(2024, 4, 1));
  EXPECT_EQ(ParamValue<Date>("mst.tdt"), Day(2024, 4, 30));
  EXPECT_EQ(ParamType("mst.parttype"), 8);
  EXPECT_EQ(ParamValue<std::string>("mst.parttype"), "S");
  EXPECT_EQ(Memo("TITLE"), "REPORT FROM 01/04/2024 TO 30/04/2024 MECHANIC NAME : DGRZ");
  EXPECT_EQ(Pokes(), (std::vector<std::string>{
                         "LocateComponent mst", "GetQueryParameter mechid", "SetParameterValue",
                         "GetQueryParameter fdt", "SetParameterValue", "GetQueryParameter tdt",
                         "SetParameterValue", "GetQueryParameter parttype", "SetParameterValue",
                         "LocateComponent TITLE", "SetMemoText", "ShowPreview", "ReleaseRun"}));
}

TEST_F(WorkshopTest, TitlesUseTheHostsShortDateForm) {
  platform_->SetRegional({.separator = '-', .short_date = "yyyy-mm-dd"});
  rep_.w_mechlablist(7, "DGRZ", Day(2024, 4, 1), Day(2024, 4, 30));
  EXPECT_EQ(Memo("TITLE"), "REPORT FROM 2024-04-01 TO 2024-04-30 MECHANIC NAME : DGRZ");
}

TEST_F(WorkshopTest, WithoutAPartTypeOnlyTheRequisitionListOfMechanicsShowsNothing) {
  Lacking("w_mechreqlist", {"mst.parttype"});
  rep_.w_mechreqlist(7, "DGRZ", "S", Day(2024, 4, 1), Day(2024, 4, 30));
  ExpectSkipped();
  EXPECT_EQ(Memo("TITLE"), "<unset>");
  Lacking("w_mechlablist", {"mst.parttype"});
  Fresh();
  rep_.w_mechlablist(7, "DGRZ", Day(2024, 4, 1), Day(2024, 4, 30));
  ExpectPrinted("w_mechlablist");
  EXPECT_EQ(Param("mst.parttype"), nullptr);
}

TEST_F(WorkshopTest, SupervisorListsTitleTheSupervisor) {
  rep_.w_superreqlist(3, "R PATIL", Day(2024, 4, 1), Day(2024, 4, 30));
  ExpectPrinted("w_superreqlist");
  EXPECT_EQ(Memo("TITLE"), "REPORT FROM 01/04/2024 TO 30/04/2024 SUPERVISOR NAME : R PATIL");
  EXPECT_EQ(Param("mst.parttype"), nullptr);
  Fresh();
  rep_.w_superlablist(3, "", Day(2024, 4, 1), Day(2024, 4, 30));
  ExpectPrinted("w_superlablist");
  EXPECT_EQ(Memo("TITLE"), "REPORT FROM 01/04/2024 TO 30/04/2024 SUPERVISOR NAME : ");
}

TEST_F(WorkshopTest, TechnicianListsRefuseIdsNotAboveZeroAndNeedTheirTitle) {
  NameTemplate("host");
  rep_.w_mechlablist(0, "X", Day(2024, 4, 1), Day(2024, 4, 30));
  rep_.w_superlablist(-2, "X", Day(2024, 4, 1), Day(2024, 4, 30));
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
  Lacking("w_mechlablist", {"TITLE"});
  ExpectHostError([&] { rep_.w_mechlablist(7, "", Day(2024, 4, 1), Day(2024, 4, 30)); });
}

TEST_F(WorkshopTest, ServiceFollowUpIsTitledByItsDatesInAnyOrder) {
  rep_.w_ServiceReport(Day(2024, 4, 30), Day(2024, 4, 1));
  ExpectPrinted("w_servicefollowup");
  EXPECT_EQ(Memo("titel"), "Service Followup Report from 30/04/2024 to 01/04/2024");
  EXPECT_TRUE(engine_->observed().parameters.empty());
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"LocateComponent titel", "SetMemoText",
                                               "ShowPreview", "ReleaseRun"}));
  Lacking("w_servicefollowup", {"titel"});
  Fresh();
  rep_.w_ServiceReport(Day(2024, 4, 1), Day(2024, 4, 30));
  ExpectSkipped();
}

}  // namespace
}  // namespace vantorel::testing
