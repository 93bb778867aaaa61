// The sales and vehicle print methods, each guard, step order, SQL text, memo text, template
// name, parameter type and picture exactly as the documents need them.
#include <gtest/gtest.h>

#include <cmath>

#include "sales_fixture.h"
#include "words/amount_in_words.h"

namespace vantorel::testing {
namespace {

const std::string kTen = "          ";  // ten blanks

// --- the customer challan -------------------------------------------------------------------

TEST_F(SalesTest, ChallanWithNonPositiveIdOnlyNamesTheTemplate) {
  for (int16_t id : {0, -3}) {
    rep_.put_RptName("host");
    rep_.SetVars();
    trace_.Clear();
    rep_.Challan_Customer(id);
    EXPECT_EQ(RptName(), "challancus");
    EXPECT_TRUE(trace_.Events().empty()) << id;
  }
}

TEST_F(SalesTest, ChallanPrintsInTheOrderOfItsSteps) {
  rep_.Challan_Customer(12, "C:\\Logos\\firm.png");
  EXPECT_EQ(Sqls(), (std::vector<std::string>{
                        "select para_value from para_setup where para_flag='CHALLAN' and "
                        "para_type='GATEPASS'",
                        "select * from challan where id=12"}));
  EXPECT_EQ(Loaded(), "challancus.fr3");
  EXPECT_EQ(Memo("WORDS"), "RUPEES : " + AmountInWords(1250.5));
  EXPECT_EQ(Variable("logo"), "\"C:\\Logos\\firm.png\"");
  EXPECT_EQ(QuerySql("Q_CHL"), "SELECT * FROM VU_CHALLAN WHERE id=12 AND TYPE='C'");
  std::vector<std::string> pokes;
  for (const auto& event : trace_.Events()) {
    const std::string op = event["op"];
    if (op == "LocateComponent" || op == "SetMemoText" || op == "SetTemplateVariable" ||
        op == "SetQueryText" || op == "ShowPreview" || op == "ReleaseRun") {
      pokes.push_back(op + (event.contains("name") ? " " + event["name"].get<std::string>() : ""));
    }
  }
  EXPECT_EQ(pokes, (std::vector<std::string>{"LocateComponent DMSDB", "LocateComponent temp",
                                             "LocateComponent WORDS", "SetMemoText",
                                             "SetTemplateVariable logo", "LocateComponent Q_CHL",
                                             "SetQueryText", "ShowPreview", "ReleaseRun"}));
}

TEST_F(SalesTest, GatePassSettingIsTrimmedAndCaseFolded) {
  struct Row {
    const char* value;
    const char* expected;
  };
  for (const Row& row : {Row{" y ", "chlgatepass"}, Row{"Y", "chlgatepass"},
                         Row{"YES", "challancus"}, Row{"1", "challancus"}}) {
    Sql("delete from para_setup; insert into para_setup values ('CHALLAN','GATEPASS','" +
        std::string(row.value) + "')");
    rep_.Challan_Customer(12);
    EXPECT_EQ(Loaded(), std::string(row.expected) + ".fr3") << row.value;
  }
  Sql("delete from para_setup; insert into para_setup values ('CHALLAN','GATEPASS',null)");
  rep_.Challan_Customer(12);
  EXPECT_EQ(Loaded(), "challancus.fr3");
}

TEST_F(SalesTest, MissingChallanShowsItsIdAndStillReleases) {
  rep_.Challan_Customer(99);
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_EQ(platform_->messages()[0].text, "Challan Id [99] not found");
  EXPECT_EQ(platform_->messages()[0].icon, MessageIcon::kCritical);
  EXPECT_EQ(Count("ReleaseRun"), 1u);
  EXPECT_EQ(Count("LoadTemplate"), 0u);
}

TEST_F(SalesTest, ChallanWithoutLogoSetsTwoQuotes) {
  rep_.Challan_Customer(12);
  EXPECT_EQ(Variable("logo"), "\"\"");
}

TEST_F(SalesTest, ChallanAmountIsReadAsTheNumberItsTextStartsWith) {
  Sql("create table challan2 as select * from challan; drop table challan;"
      "create table challan (id integer, amt text); insert into challan values (12, '12abc')");
  rep_.Challan_Customer(12);
  EXPECT_EQ(Memo("WORDS"), "RUPEES : TWELVE ONLY");
}

TEST_F(SalesTest, NullChallanAmountIsTheHostsError) {
  EXPECT_EQ(ErrorOf([&] { rep_.Challan_Customer(13); }), errnum::kInvalidUseOfNull);
  EXPECT_EQ(Count("ReleaseRun"), 0u);
}

TEST_F(SalesTest, FailedPreparationReturnsWithoutRelease) {
  engine_->FailOn("LoadTemplate", "broken template");
  rep_.Challan_Customer(12);
  EXPECT_EQ(Count("ReleaseRun"), 0u);
  EXPECT_EQ(rep_.get_LastMsg(), "loading Report definition file");
}

TEST_F(SalesTest, DeadDatabaseShowsTheOpenRsMessageThenFails) {
  rep_.put_DbConnectstring(dir_.path().string() + "/missing.db");
  rep_.SetVars();
  EXPECT_EQ(ErrorOf([&] { rep_.Challan_Customer(12); }), errnum::kObjectClosed);
  ASSERT_EQ(platform_->messages().size(), 1u);
  EXPECT_EQ(platform_->messages()[0].text.rfind("Function OpenRs, ErrNo : ", 0), 0u);
}

// --- the money receipt ------------------------------------------------------------------------

TEST_F(SalesTest, ReceiptReadsTheAmountFirstAndPrintsItsWords) {
  rep_.ReceiptPrint(7);
  EXPECT_EQ(Sqls(), (std::vector<std::string>{"select amt from receipt where id=7"}));
  EXPECT_EQ(Memo("inwords"), "(AMOUNT IN WORDS RUPEES ONE LAC FIVE THOUSAND & PAISA FIFTY ONLY )");
  const auto* id = Param("q_rt.id");
  ASSERT_NE(id, nullptr);
  EXPECT_EQ(id->TypeCode(), 2);
  EXPECT_EQ(std::get<int16_t>(id->value), 7);
  EXPECT_TRUE(Rendered());
  EXPECT_EQ(rep_.text_buffer(), AmountInWords(105000.5));
}

TEST_F(SalesTest, ReceiptWithIdZeroReadsButDoesNotPrint) {
  rep_.ReceiptPrint(0);
  EXPECT_EQ(Sqls(), (std::vector<std::string>{"select amt from receipt where id=0"}));
  EXPECT_EQ(RptName(), "receipt");
  EXPECT_EQ(Count("LoadTemplate"), 0u);
  EXPECT_EQ(Count("ReleaseRun"), 0u);
}

TEST_F(SalesTest, MissingReceiptFailsBeforeTheTemplate) {
  rep_.put_RptName("before");
  rep_.SetVars();
  EXPECT_EQ(ErrorOf([&] { rep_.ReceiptPrint(-1); }), errnum::kNoCurrentRecord);
  EXPECT_EQ(RptName(), "before");
}

TEST_F(SalesTest, ReceiptTemplateWithoutQueryPreparesSetsWordsAndReleases) {
  Without("receipt", {"q_rt"});
  rep_.ReceiptPrint(7);
  EXPECT_NE(Memo("inwords"), "<unset>");
  EXPECT_FALSE(Rendered());
  EXPECT_EQ(Count("ReleaseRun"), 1u);
}

// --- registers --------------------------------------------------------------------------------

const Date kFrom = Date::FromYmd(2023, 4, 1);
const Date kTo = Date::FromYmd(2024, 3, 31);

TEST_F(SalesTest, EnquiryRegistersTitleAndSelectTheirRows) {
  rep_.EnqGroupwise(kFrom, kTo);
  EXPECT_EQ(Memo("Memo2"), "Enquiry Register Group wise from 01-04-2023 TO 31-03-2024");
  EXPECT_EQ(QuerySql("enq"),
            "select * from enqdata where  enq_date>='2023/04/01' and enq_date<='2024/03/31' "
            "order by enq_model,enq_date,enq_id ");
  EXPECT_EQ(Loaded(), "enqgroupwise.fr3");

  rep_.EnqBooking(kFrom, kTo);
  EXPECT_EQ(Memo("Memo2"), "Enquiry Booking Register from 01-04-2023 TO 31-03-2024");
  EXPECT_EQ(QuerySql("enq"),
            "select * from enqdata where  enq_date>='2023/04/01' and enq_date<='2024/03/31' and "
            "enq_booking=1 order by enq_id ");
}

TEST_F(SalesTest, PendingRegisterTitlesByStatus) {
  rep_.EnqPending(kFrom, kTo, 1);
  EXPECT_EQ(Memo("Memo2"), "Matured Enquiry Register from 01-04-2023 TO 31-03-2024");
  EXPECT_EQ(QuerySql("enq"),
            "select * from enqdata where  enq_date>='2023/04/01' and enq_date<='2024/03/31' and "
            "enq_status=1 order by enq_id ");
  for (int16_t code : {0, 2}) {
    rep_.EnqPending(kFrom, kTo, code);
    EXPECT_EQ(Memo("Memo2"), "Pending Enquiry Register from 01-04-2023 TO 31-03-2024");
    EXPECT_NE(QuerySql("enq").find("enq_status=" + std::to_string(code) + " order by"),
              std::string::npos);
  }
}

TEST_F(SalesTest, SqlDatesFollowTheRegionalSeparator) {
  platform_->SetRegional({'.', "dd/mm/yyyy"});
  rep_.EnqGroupwise(kFrom, kTo);
  EXPECT_NE(QuerySql("enq").find("enq_date>='2023.04.01' and enq_date<='2024.03.31'"),
            std::string::npos);
  EXPECT_EQ(Memo("Memo2"), "Enquiry Register Group wise from 01-04-2023 TO 31-03-2024");
}

TEST_F(SalesTest, InvalidDatesEndRegistersSilently) {
  rep_.put_RptName("host");
  rep_.SetVars();
  rep_.EnqGroupwise(Date{1e9}, kTo);
  EXPECT_EQ(RptName(), "host");
  rep_.RecRegister(kFrom, Date{std::nan("")});
  EXPECT_EQ(RptName(), "recregister");
  EXPECT_EQ(Count("LoadTemplate"), 0u);
}

TEST_F(SalesTest, ReceiptRegisterSetsItsDateParameters) {
  rep_.RecRegister(kFrom, kTo);
  EXPECT_EQ(Memo("Memo2"), "Receipts Register from 01-04-2023 TO 31-03-2024");
  ASSERT_NE(Param("q_pm.fromdate"), nullptr);
  EXPECT_EQ(Param("q_pm.fromdate")->TypeCode(), 7);
  EXPECT_EQ(std::get<Date>(Param("q_pm.todate")->value), kTo);
  EXPECT_TRUE(Rendered());
}

TEST_F(SalesTest, ReceiptRegisterWithoutQueryIsReleasedUnrendered) {
  Without("recregister", {"q_pm"});
  rep_.RecRegister(kFrom, kTo);
  EXPECT_FALSE(Rendered());
  EXPECT_EQ(Count("ReleaseRun"), 1u);
}

TEST_F(SalesTest, EnquiryTemplateWithoutItsQueryFails) {
  Without("enqbooking", {"enq"});
  EXPECT_EQ(ErrorOf([&] { rep_.EnqBooking(kFrom, kTo); }), errnum::kObjectNotSet);
}

// --- purchases and transfers ------------------------------------------------------------------

TEST_F(SalesTest, PurchaseBillsSelectWithTheirJoins) {
  rep_.VehPurBill(4);
  EXPECT_EQ(QuerySql("q_pm"),
            "select p.*,am_name,am_add1,am_add2,am_add3,am_town from purchase p,fa_acmaster Where "
            "p.supid = am_id and p.id=4");
  rep_.VehPurBillGST(4);
  EXPECT_EQ(QuerySql("q_pm"),
            "select p.*,am_name,am_add1,am_add2,am_add3,am_town,am_gst from purchase "
            "p,fa_acmaster Where p.supid = am_id and p.id=4");
  EXPECT_EQ(Loaded(), "vehpurbillgst.fr3");
}

TEST_F(SalesTest, BranchTransferAcceptsNegativeIdsAndNamesBeforeItsGuard) {
  rep_.VehBtPrint(-3);
  EXPECT_EQ(QuerySql("q_pm"),
            "select BV.*,am_name,am_town from btmstveh bv ,fa_acmaster where bv.btto=am_id and "
            "id=-3");
  rep_.put_RptName("host");
  rep_.SetVars();
  trace_.Clear();
  rep_.VehBtPrint(0);
  EXPECT_EQ(RptName(), "vehbtprint");
  EXPECT_TRUE(trace_.Events().empty());
}

TEST_F(SalesTest, PurchaseBillRefusesNegativeIds) {
  rep_.put_RptName("host");
  rep_.SetVars();
  rep_.VehPurBill(-3);
  EXPECT_EQ(RptName(), "host");
  EXPECT_EQ(Count("LoadTemplate"), 0u);
}

TEST_F(SalesTest, VehicleTransferSetsItsParameterOrQuietlySkips) {
  rep_.VinTrf(9);
  EXPECT_EQ(std::get<int16_t>(Param("q_pm.tid")->value), 9);
  EXPECT_TRUE(Rendered());
  auto t = FullTemplate();
  t.parameters["q_pm"] = {"fromdate"};
  engine_->AddTemplate("vintrf", t);
  const size_t outputs = engine_->observed().outputs.size();
  rep_.VinTrf(9);
  EXPECT_EQ(engine_->observed().outputs.size(), outputs);
  EXPECT_EQ(Count("ReleaseRun"), 2u);
}

// --- invoices ---------------------------------------------------------------------------------

struct InvoiceRow {
  const char* method;
  const char* template_name;
  bool sub_dealer;
  const char* amount_sql;
  std::string words_memo_text;  // with "{}" where the words go
  const char* memo;
  bool second_copy;
  const char* query;
  bool logo;
  bool qr;
};

const char* kNet = "select sum(netprice) from purdata where invid=";
const std::string kIndentedWords = kTen + "AMOUNT IN WORDS {}";

const InvoiceRow kInvoices[] = {
    {"VehInvoice2in1", "vehinvoice", false, kNet, kIndentedWords, "WAMT", true, "Q_INV", false,
     false},
    {"VehInvoicewith21", "vehinvoicewith21", false, kNet, kIndentedWords, "WAMT", false, "Q_INV",
     false, false},
    {"VehInvoiceSingle", "vehinvoicesingle", false, kNet, kIndentedWords, "WAMT", false, "Q_INV",
     false, false},
    {"VehInvoiceHero", "vehinvoicehero", false, kNet, "Rupees {}", "WAMT", false, "Q_INV", false,
     false},
    {"VehInvoiceHeroSubdealer", "vehinvoiceherosubdealer", false, kNet, "Rupees {}", "WAMT", false,
     "Q_INV", false, false},
    {"GSTVehInvoiceSingle", "gstvehinvoicesingle", false,
     "select sum(netprice-coalesce(subsidyamt,0)) from purdata where invid=", kIndentedWords,
     "WAMT", false, "Q_INV", true, false},
    {"CycleInvoice", "cycleinvoice", false, kNet, kIndentedWords, "WAMT", false, "Q_INV", true,
     false},
    {"GSTVehInvoiceHero", "gstvehinvoicehero", false, kNet, "Rupees {}", "WAMT", false, "Q_INV",
     false, false},
    {"GSTVehInvoiceHeroSubdealer", "gstvehinvoiceherosubdealer", false, kNet, "Rupees {}", "WAMT",
     false, "Q_INV", false, false},
    {"GSTVehInvoice2in1", "gstvehinvoice", false, kNet, kIndentedWords, "WAMT", true, "Q_INV", true,
     false},
    {"GSTVehInvoicewith21", "gstvehinvoicewith21", false, kNet, kIndentedWords, "WAMT", false,
     "Q_INV", true, false},
    {"VehInvoiceSubDealer", "vehinvoicesub", true, kNet, kIndentedWords, "AMT", false, "Q_PM",
     false, false},
    {"GSTVehInvoiceSubDealer", "gstvehinvoicesub", true, kNet, kIndentedWords, "AMT", false, "Q_PM",
     true, false},
    {"CycleInvoiceSubDealer", "cycleinvoicesub", true, kNet, kIndentedWords, "AMT", false, "Q_PM",
     true, false},
    {"VehSubDealerPackingList", "vehsubpackinglist", true, kNet, kIndentedWords, "AMT", false,
     "Q_PM", false, false},
    {"EInvoiceVehicle", "einvoicevehicle", true, kNet, kIndentedWords, "AMT", false, "Q_PM", true,
     true},
};

void CallInvoice(CRepoter& rep, const std::string& method, int16_t id, const std::string& logo,
                 const std::string& qr) {
  if (method == "VehInvoice2in1") rep.VehInvoice2in1(id);
  if (method == "VehInvoicewith21") rep.VehInvoicewith21(id);
  if (method == "VehInvoiceSingle") rep.VehInvoiceSingle(id);
  if (method == "VehInvoiceHero") rep.VehInvoiceHero(id);
  if (method == "VehInvoiceHeroSubdealer") rep.VehInvoiceHeroSubdealer(id);
  if (method == "GSTVehInvoiceSingle") rep.GSTVehInvoiceSingle(id, logo);
  if (method == "CycleInvoice") rep.CycleInvoice(id, logo);
  if (method == "GSTVehInvoiceHero") rep.GSTVehInvoiceHero(id);
  if (method == "GSTVehInvoiceHeroSubdealer") rep.GSTVehInvoiceHeroSubdealer(id);
  if (method == "GSTVehInvoice2in1") rep.GSTVehInvoice2in1(id, logo);
  if (method == "GSTVehInvoicewith21") rep.GSTVehInvoicewith21(id, logo);
  if (method == "VehInvoiceSubDealer") rep.VehInvoiceSubDealer(id);
  if (method == "GSTVehInvoiceSubDealer") rep.GSTVehInvoiceSubDealer(id, logo);
  if (method == "CycleInvoiceSubDealer") rep.CycleInvoiceSubDealer(id, logo);
  if (method == "VehSubDealerPackingList") rep.VehSubDealerPackingList(id);
  if (method == "EInvoiceVehicle") rep.EInvoiceVehicle(id, logo, qr);
}

class Invoices : public SalesTest, public ::testing::WithParamInterface<InvoiceRow> {};

TEST_P(Invoices, PrintTheirFormExactly) {
  const InvoiceRow& row = GetParam();
  CallInvoice(rep_, row.method, 22, "/logos/firm.png", "/qr/inv22.png");
  EXPECT_EQ(Sqls(), (std::vector<std::string>{row.amount_sql + std::string("22")}));
  EXPECT_EQ(Loaded(), std::string(row.template_name) + ".fr3");
  std::string text = row.words_memo_text;
  text.replace(text.find("{}"), 2, AmountInWords(45000));
  EXPECT_EQ(Memo(row.memo), text);
  EXPECT_EQ(Memo("WAMT1"), row.second_copy ? text : "<unset>");
  EXPECT_EQ(QuerySql(row.query), "SELECT * FROM VU_INVOICE WHERE ID=22");
  EXPECT_EQ(Variable("logo"), row.logo ? "\"/logos/firm.png\"" : "<unset>");
  EXPECT_EQ(Variable("qrcode"), row.qr ? "\"/qr/inv22.png\"" : "<unset>");
  EXPECT_EQ(rep_.text_buffer(), "SELECT * FROM VU_INVOICE WHERE ID=22");
  EXPECT_TRUE(Rendered());
  EXPECT_EQ(Count("ReleaseRun"), 1u);
}

TEST_P(Invoices, GuardOnTheirIds) {
  const InvoiceRow& row = GetParam();
  rep_.put_RptName("host");
  rep_.SetVars();
  trace_.Clear();
  CallInvoice(rep_, row.method, 0, "", "");
  EXPECT_EQ(RptName(), "host");
  EXPECT_TRUE(trace_.Events().empty());
  CallInvoice(rep_, row.method, -5, "", "");
  if (row.sub_dealer) {
    EXPECT_TRUE(trace_.Events().empty());
  } else {
    EXPECT_EQ(Sqls(), (std::vector<std::string>{row.amount_sql + std::string("-5")}));
  }
}

TEST_P(Invoices, MissingInvoiceFailsAtTheAmountBeforeTheTemplate) {
  const InvoiceRow& row = GetParam();
  rep_.put_RptName("host");
  rep_.SetVars();
  EXPECT_EQ(ErrorOf([&] { CallInvoice(rep_, row.method, 77, "", ""); }), errnum::kInvalidUseOfNull);
  EXPECT_EQ(Count("LoadTemplate"), 0u);
  // Sub-dealer forms name their template only after the amount was read.
  EXPECT_EQ(RptName(), row.sub_dealer ? "host" : row.template_name);
}

INSTANTIATE_TEST_SUITE_P(AllSixteen, Invoices, ::testing::ValuesIn(kInvoices),
                         [](const ::testing::TestParamInfo<InvoiceRow>& row) {
                           return std::string(row.param.method);
                         });

TEST_F(SalesTest, OnlyTheSingleGstFormDeductsTheSubsidy) {
  rep_.GSTVehInvoiceSingle(21);
  EXPECT_EQ(Memo("WAMT"), kTen + "AMOUNT IN WORDS " + AmountInWords(55000));
  rep_.GSTVehInvoicewith21(21);
  EXPECT_EQ(Memo("WAMT"), kTen + "AMOUNT IN WORDS " + AmountInWords(60000));
  rep_.GSTVehInvoice2in1(21);
  EXPECT_EQ(Memo("WAMT1"), kTen + "AMOUNT IN WORDS " + AmountInWords(60000));
  rep_.GSTVehInvoiceSingle(22);  // no subsidy: NULL counts as 0
  EXPECT_EQ(Memo("WAMT"), kTen + "AMOUNT IN WORDS " + AmountInWords(45000));
}

TEST_F(SalesTest, EInvoiceWithoutQrFileStillSetsTheQrVariable) {
  rep_.EInvoiceVehicle(22, "/logo.png");
  EXPECT_EQ(Variable("qrcode"), "\"\"");
  const auto events = trace_.Events();
  std::vector<std::string> order;
  for (const auto& event : events) {
    if (event["op"] == "SetTemplateVariable") order.push_back(event["name"]);
  }
  EXPECT_EQ(order, (std::vector<std::string>{"logo", "qrcode"}));
}

TEST_F(SalesTest, InvoiceTemplateWithoutItsMemoFails) {
  Without("vehinvoicesingle", {"WAMT"});
  EXPECT_EQ(ErrorOf([&] { rep_.VehInvoiceSingle(22); }), errnum::kObjectNotSet);
  EXPECT_EQ(Count("ReleaseRun"), 0u);
}

// --- delivery documents -----------------------------------------------------------------------

TEST_F(SalesTest, SubDealerChallanPrintsItsWordsAndLines) {
  rep_.ChallanSub(31, "/logo.png");
  EXPECT_EQ(Sqls(), (std::vector<std::string>{"select sum(chlamt) from purdata where chlid=31"}));
  EXPECT_EQ(Memo("AMT"), kTen + "AMOUNT IN WORDS " + AmountInWords(2500.75));
  EXPECT_EQ(QuerySql("q_pm"), "select * FROM VU_CHALLAN where id=31 order by line");
  EXPECT_EQ(Variable("logo"), "\"/logo.png\"");
  EXPECT_EQ(Loaded(), "challansub.fr3");
}

TEST_F(SalesTest, SubDealerChallanWithoutLinesFailsBeforeLoading) {
  EXPECT_EQ(ErrorOf([&] { rep_.ChallanSub(55); }), errnum::kInvalidUseOfNull);
  EXPECT_EQ(Count("LoadTemplate"), 0u);
}

TEST_F(SalesTest, GatePassesSelectTheirColumnsNegativeIdsIncluded) {
  const std::string sql =
      "select itype,num,idate,cname,cfname,cadd1,cadd2,cadd3,ccity,cmobile,model,color,chassis,"
      "engine from vu_invoice where id=";
  rep_.VehGatePass(-4);
  EXPECT_EQ(QuerySql("Q_INV"), sql + "-4");
  EXPECT_EQ(Variable("logo"), "<unset>");
  rep_.CycleGatePass(8, "");
  EXPECT_EQ(QuerySql("Q_INV"), sql + "8");
  EXPECT_EQ(Variable("logo"), "\"\"");
  EXPECT_EQ(Loaded(), "cyclegatepass.fr3");
}

TEST_F(SalesTest, InvoiceSqlDocuments) {
  rep_.DecForm(5);
  EXPECT_EQ(Loaded(), "decform.fr3");
  EXPECT_EQ(QuerySql("Q_INV"), "SELECT * FROM VU_INVOICE WHERE ID=5");
  rep_.VehSaleLetter(6);
  EXPECT_EQ(Loaded(), "vehsaleletter.fr3");
  EXPECT_EQ(QuerySql("Q_INV"), "SELECT * FROM VU_INVOICE WHERE ID=6");
  rep_.CycleSaleLetter(7, "/logo.png");
  EXPECT_EQ(Loaded(), "cyclesaleletter.fr3");
  EXPECT_EQ(Variable("logo"), "\"/logo.png\"");
}

TEST_F(SalesTest, ParameterDocumentsSetTypedParameters) {
  rep_.ProVisionalRc(3);
  EXPECT_EQ(Loaded(), "prorc.fr3");
  EXPECT_EQ(std::get<int16_t>(Param("Q_INV.ID")->value), 3);
  rep_.VehForm22(4);
  EXPECT_EQ(Loaded(), "form22.fr3");
  EXPECT_EQ(std::get<int16_t>(Param("Q_INV.xid")->value), 4);
  rep_.VehHSRP(5);
  EXPECT_EQ(Loaded(), "hsrp.fr3");
  EXPECT_EQ(std::get<int16_t>(Param("Q_INV.xid")->value), 5);
}

TEST_F(SalesTest, StickerPassesItsCountAndTheTempFolder) {
  platform_->SetEnvironment("TEMP", "C:\\Users\\dealer\\Temp");
  rep_.VehSticker(9, 0);
  EXPECT_EQ(Variable("picpath"), "\"C:\\Users\\dealer\\Temp\"");
  EXPECT_EQ(std::get<int16_t>(Param("Q_INV.ID")->value), 9);
  const auto* count = Param("Q_INV.XNO");
  ASSERT_NE(count, nullptr);
  EXPECT_EQ(count->TypeCode(), 17);
  EXPECT_EQ(std::get<uint8_t>(count->value), 0);
}

TEST_F(SalesTest, StickerWithoutTempFolderPassesEmptyQuotes) {
  rep_.VehSticker(9, 3);
  EXPECT_EQ(Variable("picpath"), "\"\"");
}

TEST_F(SalesTest, MissingQueryEndsParameterDocumentsQuietlyButFailsSqlDocuments) {
  Without("prorc", {"Q_INV"});
  rep_.ProVisionalRc(3);
  EXPECT_FALSE(Rendered());
  EXPECT_EQ(Count("ReleaseRun"), 1u);
  Without("decform", {"Q_INV"});
  EXPECT_EQ(ErrorOf([&] { rep_.DecForm(3); }), errnum::kObjectNotSet);
}

TEST_F(SalesTest, MissingParameterFailsParameterDocuments) {
  auto t = FullTemplate();
  t.parameters["Q_INV"] = {"ID"};
  engine_->AddTemplate("vehsticker", t);
  EXPECT_EQ(ErrorOf([&] { rep_.VehSticker(3, 2); }), errnum::kObjectNotSet);
}

TEST_F(SalesTest, TemporaryCertificateChoosesItsTemplateExactly) {
  rep_.VehTempCertificate(4, "Y");
  EXPECT_EQ(Loaded(), "tempcertsingle.fr3");
  EXPECT_EQ(QuerySql("Q_INV"), "SELECT * FROM VU_TEMPNUMBER WHERE TLINE=4");
  for (const char* a4 : {"y", " Y", "N", ""}) {
    rep_.VehTempCertificate(4, a4);
    EXPECT_EQ(Loaded(), "tempcert.fr3") << a4;
  }
  rep_.put_RptName("host");
  rep_.SetVars();
  trace_.Clear();
  rep_.VehTempCertificate(0, "Y");
  EXPECT_EQ(RptName(), "tempcertsingle");
  EXPECT_TRUE(trace_.Events().empty());
}

TEST_F(SalesTest, DeliveryDocumentsRefuseOnlyIdZero) {
  rep_.put_RptName("host");
  rep_.SetVars();
  trace_.Clear();
  rep_.ProVisionalRc(0);
  rep_.VehGatePass(0);
  rep_.CycleGatePass(0, "x");
  rep_.DecForm(0);
  rep_.VehSticker(0, 1);
  rep_.VehSaleLetter(0);
  rep_.CycleSaleLetter(0, "x");
  rep_.VehForm22(0);
  rep_.VehHSRP(0);
  rep_.ChallanSub(0);
  EXPECT_EQ(RptName(), "host");
  EXPECT_TRUE(trace_.Events().empty());
}

// --- receipts -----------------------------------------------------------------------------------

TEST_F(SalesTest, FirmDocumentPassesTheFirmOfTheState) {
  rep_.put_FirmID(0);
  rep_.SetVars();
  rep_.Wrc();
  const auto* coid = Param("mst.coid");
  ASSERT_NE(coid, nullptr);
  EXPECT_EQ(coid->TypeCode(), 17);
  EXPECT_EQ(std::get<uint8_t>(coid->value), 0);
  rep_.put_FirmID(3);
  rep_.SetVars();
  rep_.Wrc();
  EXPECT_EQ(std::get<uint8_t>(Param("mst.coid")->value), 3);
  EXPECT_EQ(Loaded(), "wrc.fr3");
}

TEST_F(SalesTest, BulkReceiptChoosesSummaryOnlyForCapitalR) {
  rep_.BulkReceiptPrint(5, "R");
  EXPECT_EQ(Loaded(), "bulkreceipt.fr3");
  EXPECT_EQ(std::get<int16_t>(Param("q_rt.id")->value), 5);
  for (const char* form : {"r", "D", "", " R"}) {
    rep_.BulkReceiptPrint(5, form);
    EXPECT_EQ(Loaded(), "bulkreceiptdetail.fr3") << form;
  }
}

TEST_F(SalesTest, BulkReceiptWithIdZeroDoesNothing) {
  rep_.put_RptName("host");
  rep_.SetVars();
  trace_.Clear();
  rep_.BulkReceiptPrint(0, "R");
  EXPECT_EQ(RptName(), "host");
  EXPECT_TRUE(trace_.Events().empty());
}

}  // namespace
}  // namespace vantorel::testing
