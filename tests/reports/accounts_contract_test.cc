// The accounts' print methods — ledgers, VAT returns, trial balances, vouchers, GST summaries,
// quotations, top lists and labels — each guard and its place, template name, title text,
// component, parameter type and SQL exactly as the documents need them.
#include <gtest/gtest.h>

#include "method_fixture.h"
#include "words/amount_in_words.h"

namespace vantorel::testing {
namespace {

class AccountsTest : public MethodTest {
 protected:
  AccountsTest()
      : MethodTest({"refledger",
                    "partyrefledgerold",
                    "partyrefledger",
                    "voucherprintuwise",
                    "vat23",
                    "vat24",
                    "vat18",
                    "vat19",
                    "cformlist",
                    "vat16",
                    "trialparty",
                    "trialpartydcr",
                    "trialgroup",
                    "trialnature",
                    "voucherprintsingle",
                    "oldvehiclerecipt",
                    "chequeprint",
                    "gstvoucherprint",
                    "payoutvoucherprint",
                    "gstdcnprint",
                    "gstsalesummary",
                    "gstpurchasesummary",
                    "ws_toplist",
                    "quoteprint",
                    "w_partsqrprintroll",
                    "w_partsqrprint",
                    "chassisqrprintroll",
                    "chassisqrprint"}) {
    Sql("create table gstdcnmst (did integer, damt numeric(12,2));"
        "insert into gstdcnmst values (4, 11800), (0, 250.5), (6, null);");
    Fresh();
  }

  const Date kFrom = Day(2023, 4, 1);
  const Date kTo = Day(2024, 3, 31);
};

// --- ledgers
// --------------------------------------------------------------------------------------

TEST_F(AccountsTest, ReferenceLedgerPassesItsIdAsThirtyTwoBitsAndThePeriod) {
  for (int32_t id : {70000, -1}) {
    Fresh();
    rep_.RefLedger(id, kFrom, kTo);
    ExpectPrinted("refledger");
    EXPECT_EQ(ParamType("MAIN.refid"), 3);
    EXPECT_EQ(ParamValue<int32_t>("MAIN.refid"), id);
    EXPECT_EQ(ParamValue<Date>("mst.fdt"), kFrom);
    EXPECT_EQ(ParamValue<Date>("mst.tdt"), kTo);
  }
  EXPECT_EQ(Pokes(),
            (std::vector<std::string>{
                "LocateComponent MAIN", "GetQueryParameter refid", "SetParameterValue",
                "LocateComponent mst", "GetQueryParameter fdt", "SetParameterValue",
                "GetQueryParameter tdt", "SetParameterValue", "ShowPreview", "ReleaseRun"}));
  NameTemplate("host");
  rep_.RefLedger(0, kFrom, kTo);
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

TEST_F(AccountsTest, ReferenceLedgerWithoutItsPeriodQueryShowsNothing) {
  Lacking("refledger", {"mst"});
  rep_.RefLedger(5, kFrom, kTo);
  ExpectSkipped();
  EXPECT_EQ(ParamValue<int32_t>("MAIN.refid"), 5);
}

TEST_F(AccountsTest, OldPartyLedgerRefusesCodesNotAboveZero) {
  for (int16_t id : {0, -1}) {
    NameTemplate("host");
    rep_.PartyRefLedgerOld(id);
    EXPECT_EQ(RptName(), "host");
    ExpectUntouched();
  }
  rep_.PartyRefLedgerOld(12);
  ExpectPrinted("partyrefledgerold");
  EXPECT_EQ(ParamType("mst.vcode"), 2);
  EXPECT_EQ(ParamValue<int16_t>("mst.vcode"), 12);
}

TEST_F(AccountsTest, PartyLedgerTakesTheHostsSqlAndTitle) {
  rep_.PartyRefLedger("select * from ledger where party=3", "Ledger of A B Motors");
  ExpectPrinted("partyrefledger");
  EXPECT_EQ(QuerySql("mst"), "select * from ledger where party=3");
  EXPECT_EQ(Memo("memtitle"), "Ledger of A B Motors");
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"LocateComponent mst", "SetQueryText",
                                               "LocateComponent memtitle", "SetMemoText",
                                               "ShowPreview", "ReleaseRun"}));
  Fresh();
  rep_.PartyRefLedger(" ", "");
  ExpectPrinted("partyrefledger");
  EXPECT_EQ(Memo("memtitle"), "");
}

TEST_F(AccountsTest, PartyLedgerWithoutSqlDoesNothingEvenWithATitle) {
  NameTemplate("host");
  rep_.PartyRefLedger("", "Ledger");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

TEST_F(AccountsTest, PartyLedgerWithoutItsQuerySetsNeitherSqlNorTitle) {
  Lacking("partyrefledger", {"mst"});
  rep_.PartyRefLedger("select 1", "Ledger");
  ExpectSkipped();
  EXPECT_EQ(Memo("memtitle"), "<unset>");
  Lacking("partyrefledger", {"memtitle"});
  Fresh();
  ExpectHostError([&] { rep_.PartyRefLedger("select 1", "Ledger"); });
}

TEST_F(AccountsTest, UserWiseVoucherListHasTheShorterTemplateName) {
  rep_.VoucherPrintUserWise("select * from vouchers where usr='ADMIN'");
  ExpectPrinted("voucherprintuwise");
  EXPECT_EQ(QuerySql("mst"), "select * from vouchers where usr='ADMIN'");
  NameTemplate("host");
  rep_.VoucherPrintUserWise("");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

// --- VAT and C-form returns ----------------------------------------------------------------------

TEST_F(AccountsTest, VatFormsWithTwoStatementsTitleTwoMemos) {
  for (const char* form : {"vat23", "vat24"}) {
    SCOPED_TRACE(form);
    Fresh();
    if (std::string(form) == "vat23") {
      rep_.VAT23print("select 1", "select 2", kFrom, kTo);
    } else {
      rep_.VAT24print("select 1", "select 2", kFrom, kTo);
    }
    ExpectPrinted(form);
    EXPECT_EQ(Memo("Memo13"), "Tax Period From : 01/04/2023  To  31/03/2024");
    EXPECT_EQ(Memo("Memo40"), Memo("Memo13"));
    EXPECT_EQ(QuerySql("QRY"), "select 1");
    EXPECT_EQ(QuerySql("QRY1"), "select 2");
    EXPECT_EQ(Pokes(), (std::vector<std::string>{
                           "LocateComponent Memo13", "SetMemoText", "LocateComponent Memo40",
                           "SetMemoText", "LocateComponent QRY", "SetQueryText",
                           "LocateComponent QRY1", "SetQueryText", "ShowPreview", "ReleaseRun"}));
  }
}

TEST_F(AccountsTest, VatFormsNeedEveryStatement) {
  NameTemplate("host");
  rep_.VAT23print("select 1", "", kFrom, kTo);
  rep_.VAT24print("", "select 2", kFrom, kTo);
  rep_.Vat18Print("", kFrom, kTo);
  rep_.PrintCformList("", kFrom, kTo, "Delhi");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
  rep_.Vat18Print(" ", kFrom, kTo);
  ExpectPrinted("vat18");
  EXPECT_EQ(QuerySql("QRY"), " ");
}

TEST_F(AccountsTest, VatFormsRefuseADateThatIsNotOne) {
  NameTemplate("host");
  rep_.Vat19Print("select 1", Date{1e9}, kTo);
  rep_.VAT23print("select 1", "select 2", kFrom, Date{1e9});
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

TEST_F(AccountsTest, SingleStatementVatFormsTitleTheirPeriodWithALeadingBlank) {
  rep_.Vat18Print("select 18", kFrom, kTo);
  ExpectPrinted("vat18");
  EXPECT_EQ(Memo("Memo10"), " From 01/04/2023  To  31/03/2024");
  Fresh();
  rep_.Vat19Print("select 19", kFrom, kTo);
  ExpectPrinted("vat19");
  EXPECT_EQ(Memo("Memo10"), " From 01/04/2023  To  31/03/2024");
  EXPECT_EQ(QuerySql("QRY"), "select 19");
}

TEST_F(AccountsTest, CFormListTitlesWhatItCovers) {
  rep_.PrintCformList("select * from cform", kFrom, kTo, "Delhi");
  ExpectPrinted("cformlist");
  EXPECT_EQ(Memo("TITEL"), " C form List From 01/04/2023  To  31/03/2024 (Delhi)");
  EXPECT_EQ(QuerySql("mst"), "select * from cform");
  rep_.PrintCformList("select * from cform", kFrom, kTo, "");
  EXPECT_EQ(Memo("TITEL"), " C form List From 01/04/2023  To  31/03/2024 ()");
}

TEST_F(AccountsTest, DatesInTitlesUseTheSystemsSeparator) {
  platform_->SetRegional({.separator = '-', .short_date = "dd-mm-yyyy"});
  rep_.Vat18Print("select 18", kFrom, kTo);
  EXPECT_EQ(Memo("Memo10"), " From 01-04-2023  To  31-03-2024");
}

TEST_F(AccountsTest, VatFormWithoutItsMemoOrQueryIsTheHostsError) {
  for (const char* lacking : {"Memo40", "QRY1"}) {
    SCOPED_TRACE(lacking);
    Lacking("vat23", {lacking});
    Fresh();
    ExpectHostError([&] { rep_.VAT23print("select 1", "select 2", kFrom, kTo); });
  }
}

TEST_F(AccountsTest, QuarterlyFormSetsQuarterMonthAndYear) {
  rep_.PrintVat16(2, 9, 2016);
  ExpectPrinted("vat16");
  EXPECT_EQ(ParamValue<int16_t>("payment.xqno"), 2);
  EXPECT_EQ(ParamValue<int16_t>("payment.xmm"), 9);
  EXPECT_EQ(Param("payment.xyy"), nullptr);
  EXPECT_EQ(ParamValue<int16_t>("wsheet.xmm"), 9);
  EXPECT_EQ(ParamValue<int16_t>("wsheet.xyy"), 2016);
  EXPECT_EQ(ParamType("cst.xyy"), 2);
  EXPECT_EQ(ParamValue<int16_t>("cst.xyy"), 2016);
  EXPECT_TRUE(engine_->observed().memo_texts.empty());
}

TEST_F(AccountsTest, QuarterlyFormWithoutItsCstQueryStopsThereQuietly) {
  Lacking("vat16", {"cst"});
  rep_.PrintVat16(2, 9, 2016);
  ExpectSkipped();
  EXPECT_NE(Param("payment.xmm"), nullptr);
  EXPECT_NE(Param("wsheet.xyy"), nullptr);
  EXPECT_EQ(Param("cst.xmm"), nullptr);
}

// --- trial balances ------------------------------------------------------------------------------

TEST_F(AccountsTest, PartyTrialListsOneNatureAsOnTheDate) {
  rep_.TrialParty(kTo, "SUNDRY DEBTORS");
  ExpectPrinted("trialparty");
  EXPECT_EQ(Memo("Memo3"), "List of SUNDRY DEBTORS as on 31/03/2024");
  EXPECT_EQ(ParamValue<Date>("mst.xdt"), kTo);
  EXPECT_EQ(ParamValue<std::string>("mst.nature"), "SUNDRY DEBTORS");
}

TEST_F(AccountsTest, TrialBalancesRefuseADateThatIsNotOne) {
  NameTemplate("host");
  rep_.TrialParty(Date{1e9}, "X");
  rep_.TrialPartydcr(Date{1e9});
  rep_.TrialGroup(Date{1e9}, "1", "X");
  rep_.TrialNature(Date{1e9}, "X", "select 1");
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

TEST_F(AccountsTest, DebtorsAndCreditorsSideBySide) {
  rep_.TrialPartydcr(kTo);
  ExpectPrinted("trialpartydcr");
  EXPECT_EQ(Memo("Memo3"), "List of Debitors as on 31/03/2024");
  EXPECT_EQ(Memo("Memo23"), "List of Creditors as on 31/03/2024");
  EXPECT_EQ(ParamValue<Date>("mstcr.xdt"), kTo);
  Lacking("trialpartydcr", {"mstcr"});
  Fresh();
  rep_.TrialPartydcr(kTo);
  ExpectSkipped();
  EXPECT_NE(Memo("Memo23"), "<unset>");
  EXPECT_EQ(ParamValue<Date>("mst.xdt"), kTo);
}

TEST_F(AccountsTest, GroupTrialPassesTheGroupAsTheNumberItsTextStartsWith) {
  struct Row {
    const char* id;
    double expected;
  };
  for (const Row& row : {Row{"12", 12.0}, Row{"", 0.0}, Row{"A12", 0.0}, Row{"  7.5x", 7.5}}) {
    SCOPED_TRACE(row.id);
    Fresh();
    rep_.TrialGroup(kTo, row.id, "");
    ExpectPrinted("trialgroup");
    EXPECT_EQ(ParamType("qry.Tid"), 5);
    EXPECT_EQ(ParamValue<double>("qry.Tid"), row.expected);
    EXPECT_EQ(Memo("Memo3"), "Group Trial as on 31/03/2024");
    EXPECT_EQ(Memo("Memo16"), "<unset>");
  }
  rep_.TrialGroup(kTo, "3", "  ");
  EXPECT_EQ(Memo("Memo16"), "   Trial as on 31/03/2024");
  rep_.TrialGroup(kTo, "3", "SUNDRY CREDITORS");
  EXPECT_EQ(Memo("Memo16"), "SUNDRY CREDITORS Trial as on 31/03/2024");
}

TEST_F(AccountsTest, NatureTrialTakesTheHostsSqlBeforeItsParameters) {
  rep_.TrialNature(kTo, "ASSETS", "select * from tb");
  ExpectPrinted("trialnature");
  EXPECT_EQ(Memo("Memo16"), "ASSETS Trial as on 31/03/2024");
  EXPECT_EQ(QuerySql("mst"), "select * from tb");
  EXPECT_EQ(ParamValue<std::string>("qry.nature"), "ASSETS");
  EXPECT_EQ(Pokes(),
            (std::vector<std::string>{
                "LocateComponent Memo3", "SetMemoText", "LocateComponent Memo16", "SetMemoText",
                "LocateComponent mst", "SetQueryText", "LocateComponent qry",
                "GetQueryParameter xdt", "SetParameterValue", "GetQueryParameter nature",
                "SetParameterValue", "ShowPreview", "ReleaseRun"}));
  Fresh();
  rep_.TrialNature(kTo, "", "");
  EXPECT_EQ(QuerySql("mst"), "");
  EXPECT_EQ(Memo("Memo16"), "<unset>");
}

TEST_F(AccountsTest, TrialBalanceWithoutItsTitleMemoIsTheHostsError) {
  Lacking("trialgroup", {"Memo16"});
  ExpectHostError([&] { rep_.TrialGroup(kTo, "1", "SALES"); });
}

// --- vouchers, cheques and notes -----------------------------------------------------------------

TEST_F(AccountsTest, OlderVouchersRefuseOnlyZeroAndAreNamedFirst) {
  rep_.VoucherPrintSingle(-5);
  ExpectPrinted("voucherprintsingle");
  EXPECT_EQ(ParamValue<int16_t>("mst.xvid"), -5);
  NameTemplate("host");
  rep_.VoucherPrintSingle(0);
  EXPECT_EQ(RptName(), "voucherprintsingle");
  ExpectUntouched();
  rep_.OldVehicleReceiptPrint(0);
  EXPECT_EQ(RptName(), "oldvehiclerecipt");
  ExpectUntouched();
  rep_.OldVehicleReceiptPrint(-2);
  ExpectPrinted("oldvehiclerecipt");
  EXPECT_EQ(ParamValue<int16_t>("q_inv.xid"), -2);
}

TEST_F(AccountsTest, GstVouchersRefuseEveryIdNotAboveZeroAndAreNamedFirst) {
  NameTemplate("host");
  rep_.GstVoucherPrint(-5);
  EXPECT_EQ(RptName(), "gstvoucherprint");
  rep_.PayoutVoucherPrint(0);
  EXPECT_EQ(RptName(), "payoutvoucherprint");
  ExpectUntouched();
  rep_.GstVoucherPrint(5);
  ExpectPrinted("gstvoucherprint");
  EXPECT_EQ(ParamValue<int16_t>("mst.xdid"), 5);
  Fresh();
  rep_.PayoutVoucherPrint(5);
  ExpectPrinted("payoutvoucherprint");
  Lacking("payoutvoucherprint", {"mst.xdid"});
  Fresh();
  rep_.PayoutVoucherPrint(5);
  ExpectSkipped();
}

TEST_F(AccountsTest, ChequePrintsTheHostsFiveTextsInOrder) {
  rep_.ChequePrint("31/03/2024", "A/C PAYEE ONLY", "Vayu Motocorp Ltd", "1,18,000.00",
                   "One Lakh Eighteen Thousand Only");
  ExpectPrinted("chequeprint");
  EXPECT_EQ(Memo("mempay"), "A/C PAYEE ONLY");
  EXPECT_EQ(Memo("memdate"), "31/03/2024");
  EXPECT_EQ(Memo("memparty"), "Vayu Motocorp Ltd");
  EXPECT_EQ(Memo("memword"), "One Lakh Eighteen Thousand Only");
  EXPECT_EQ(Memo("memamt"), "1,18,000.00");
  std::vector<std::string> located;
  for (const std::string& poke : Pokes()) {
    if (poke.starts_with("LocateComponent ")) located.push_back(poke.substr(16));
  }
  EXPECT_EQ(located,
            (std::vector<std::string>{"mempay", "memdate", "memparty", "memword", "memamt"}));
  EXPECT_TRUE(engine_->observed().query_sql.empty());
  Fresh();
  rep_.ChequePrint("", "", "", "", "");
  ExpectPrinted("chequeprint");
  EXPECT_EQ(Memo("memamt"), "");
  Lacking("chequeprint", {"memword"});
  Fresh();
  ExpectHostError([&] { rep_.ChequePrint("", "", "", "", ""); });
}

TEST_F(AccountsTest, GstNoteReadsItsAmountFirstAndWritesItInRupees) {
  rep_.GstDCNPrint(4);
  EXPECT_EQ(Sqls(), (std::vector<std::string>{"select damt from gstdcnmst where did=4"}));
  ExpectPrinted("gstdcnprint");
  EXPECT_EQ(Memo("inwords"), "(INR " + AmountInWords(11800) + ")");
  EXPECT_EQ(rep_.text_buffer(), AmountInWords(11800));
  EXPECT_EQ(ParamValue<int16_t>("mst.xdid"), 4);
}

TEST_F(AccountsTest, GstNoteWithIdZeroReadsAndNamesButDoesNotPrint) {
  NameTemplate("host");
  rep_.GstDCNPrint(0);
  EXPECT_EQ(Sqls(), (std::vector<std::string>{"select damt from gstdcnmst where did=0"}));
  EXPECT_EQ(RptName(), "gstdcnprint");
  EXPECT_EQ(rep_.text_buffer(), AmountInWords(250.5));
  ExpectUntouched();
}

TEST_F(AccountsTest, GstNoteThatIsNotThereFailsBeforeTheTemplate) {
  NameTemplate("host");
  EXPECT_EQ(ErrorOf([&] { rep_.GstDCNPrint(-7); }), errnum::kNoCurrentRecord);
  EXPECT_EQ(ErrorOf([&] { rep_.GstDCNPrint(6); }), errnum::kInvalidUseOfNull);
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

TEST_F(AccountsTest, GstNoteWithoutItsQueryIsLoadedAndReleasedOnly) {
  Lacking("gstdcnprint", {"mst"});
  rep_.GstDCNPrint(4);
  ExpectSkipped();
  Lacking("gstdcnprint", {"inwords"});
  Fresh();
  ExpectHostError([&] { rep_.GstDCNPrint(4); });
}

// --- GST summaries -------------------------------------------------------------------------------

TEST_F(AccountsTest, GstSummariesGiveBothQueriesThePeriodAsItIs) {
  rep_.GstSaleSummary(kTo, kFrom);
  ExpectPrinted("gstsalesummary");
  EXPECT_EQ(ParamValue<Date>("sumtax.xdt"), kTo);
  EXPECT_EQ(ParamValue<Date>("sumtax.ydt"), kFrom);
  EXPECT_EQ(ParamValue<Date>("sumhsn.xdt"), kTo);
  EXPECT_EQ(ParamType("sumhsn.ydt"), 7);
  const auto sale = Pokes();
  Fresh();
  rep_.GstPurchaseSummary(kTo, kFrom);
  ExpectPrinted("gstpurchasesummary");
  EXPECT_EQ(Pokes(), sale);
}

TEST_F(AccountsTest, GstSummaryTestsOnlyForItsRateQuery) {
  Lacking("gstsalesummary", {"sumtax"});
  rep_.GstSaleSummary(kFrom, kTo);
  ExpectSkipped();
  for (const char* lacking : {"sumhsn", "sumhsn.ydt", "sumtax.xdt"}) {
    SCOPED_TRACE(lacking);
    Lacking("gstsalesummary", {lacking});
    Fresh();
    ExpectHostError([&] { rep_.GstSaleSummary(kFrom, kTo); });
  }
  NameTemplate("host");
  rep_.GstPurchaseSummary(kFrom, Date{1e9});
  EXPECT_EQ(RptName(), "host");
  ExpectUntouched();
}

// --- quotations, top lists and labels ------------------------------------------------------------

TEST_F(AccountsTest, TopListPrintsEverySelection) {
  for (int16_t id : {0, -4, 9}) {
    Fresh();
    rep_.WS_TOPLIST(id);
    ExpectPrinted("ws_toplist");
    EXPECT_EQ(ParamValue<int16_t>("mst.td_id"), id);
  }
}

TEST_F(AccountsTest, QuotationRefusesOnlyZeroAfterItsName) {
  NameTemplate("host");
  rep_.QuotePrint(0);
  EXPECT_EQ(RptName(), "quoteprint");
  ExpectUntouched();
  rep_.QuotePrint(-3);
  ExpectPrinted("quoteprint");
  EXPECT_EQ(ParamValue<int16_t>("qry.xid"), -3);
}

TEST_F(AccountsTest, LabelsChooseTheRollOnPaperTypeOneOnly) {
  struct Row {
    int16_t paper;
    const char* parts;
    const char* chassis;
  };
  for (const Row& row :
       {Row{1, "w_partsqrprintroll", "chassisqrprintroll"},
        Row{0, "w_partsqrprint", "chassisqrprint"}, Row{2, "w_partsqrprint", "chassisqrprint"},
        Row{-1, "w_partsqrprint", "chassisqrprint"}}) {
    SCOPED_TRACE(row.paper);
    Fresh();
    rep_.PartsQrPrint("select part_no from ws_partmaster", row.paper);
    ExpectPrinted(row.parts);
    EXPECT_EQ(QuerySql("qry"), "select part_no from ws_partmaster");
    Fresh();
    rep_.ChassisQrPrint("select chassis from vehicle", row.paper);
    ExpectPrinted(row.chassis);
  }
}

TEST_F(AccountsTest, LabelsHaveTheTempFolderAsTheirPicturePath) {
  platform_->SetEnvironment("temp", "C:\\Temp");
  rep_.PartsQrPrint("select 1", 0);
  EXPECT_EQ(Variable("picpath"), "\"C:\\Temp\"");
  EXPECT_EQ(Pokes(), (std::vector<std::string>{"SetTemplateVariable picpath", "LocateComponent qry",
                                               "SetQueryText", "ShowPreview", "ReleaseRun"}));
}

TEST_F(AccountsTest, LabelsWithoutSqlAreOnlyNamed) {
  NameTemplate("host");
  rep_.PartsQrPrint("", 1);
  EXPECT_EQ(RptName(), "w_partsqrprintroll");
  ExpectUntouched();
  rep_.ChassisQrPrint(" ", 3);
  ExpectPrinted("chassisqrprint");
  Lacking("chassisqrprint", {"qry"});
  Fresh();
  rep_.ChassisQrPrint("select 1", 3);
  ExpectSkipped();
  EXPECT_EQ(Variable("picpath"), "\"\"");
}

}  // namespace
}  // namespace vantorel::testing
