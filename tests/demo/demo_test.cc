// demo_gen and the SQLite demo database it writes: deterministic output, every table, view and
// column the print methods and templates read, ids in the facts file that exist, and amounts,
// taxes and identifiers that add up.
#include <sqlite3.h>
#include <sys/wait.h>

#include <nlohmann/json.hpp>

#include <cctype>
#include <cmath>
#include <filesystem>
#include <optional>
#include <regex>
#include <set>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/demo_support.h"

namespace vantorel::demo::testing {
namespace {

using data::ToDouble;
using data::ToText;
using data::Value;
using data::testing::TempFolder;

int ExitCode(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

int64_t CountRows(const std::string& db_path, const std::string& relation) {
  auto db = data::Connection::Open(db_path);
  return Rows(*db, "select count(*) from " + relation)[0][0].integer();
}

TEST(DemoGenerator, TheSameSeedWritesTheSameBytes) {
  TempFolder folder;
  for (const char* run : {"a", "b"}) {
    const std::string prefix = folder.File(run);
    std::string arguments = "--seed 42";
    for (const char* output : {"sqlite", "sql", "facts"}) {
      arguments.append(" --").append(output).append(" ").append(prefix).append(".").append(output);
    }
    ASSERT_EQ(RunGenerator(arguments), 0);
  }
  for (const char* ext : {".sqlite", ".sql", ".facts"}) {
    const std::string first = ReadText(folder.File(std::string("a") + ext));
    EXPECT_FALSE(first.empty()) << ext;
    EXPECT_TRUE(first == ReadText(folder.File(std::string("b") + ext))) << ext << " differs";
  }
}

TEST(DemoGenerator, AnotherSeedWritesOtherData) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--sql " + folder.File("default.sql")), 0);
  ASSERT_EQ(RunGenerator("--seed 7 --sql " + folder.File("seven.sql")), 0);
  EXPECT_NE(ReadText(folder.File("default.sql")), ReadText(folder.File("seven.sql")));
}

// The facts pick documents by what they show, with plainer fallbacks, so any seed has them all.
TEST(DemoGenerator, EverySeedHasADocumentOfEveryKind) {
  TempFolder folder;
  const Facts reference = [&] {
    EXPECT_EQ(RunGenerator("--facts " + folder.File("default.facts")), 0);
    return ReadFacts(folder.File("default.facts"));
  }();
  for (int seed = 1; seed <= 12; ++seed) {
    const std::string facts = folder.File(std::to_string(seed) + ".facts");
    ASSERT_EQ(RunGenerator("--seed " + std::to_string(seed) + " --facts " + facts), 0) << seed;
    const Facts found = ReadFacts(facts);
    EXPECT_EQ(found.size(), reference.size()) << seed;
    EXPECT_EQ(Fact(found, "seed"), std::to_string(seed));
  }
}

TEST(DemoGenerator, WritesTheDatabase) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--sqlite " + folder.File("demo.db")), 0);
  auto db = data::Connection::Open(folder.File("demo.db"));
  EXPECT_FALSE(Rows(*db, "select id from invoice").empty());
}

TEST(DemoGenerator, GatepassOptionSetsTheChallanSetting) {
  TempFolder folder;
  ASSERT_EQ(RunGenerator("--gatepass N --sqlite " + folder.File("demo.db") + " --facts " +
                         folder.File("facts")),
            0);
  auto db = data::Connection::Open(folder.File("demo.db"));
  EXPECT_EQ(Rows(*db,
                 "select para_value from para_setup where para_flag='CHALLAN' and "
                 "para_type='GATEPASS'")[0][0],
            Value::Text("N"));
  EXPECT_EQ(Fact(ReadFacts(folder.File("facts")), "gatepass"), "N");
}

TEST(DemoGenerator, RefusesBadArguments) {
  TempFolder folder;
  EXPECT_EQ(ExitCode(RunGenerator("")), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--seed x12 --sql " + folder.File("a.sql"))), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--gatepass yes --sql " + folder.File("a.sql"))), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--colour red")), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--sql")), 1);
  EXPECT_EQ(ExitCode(RunGenerator("--help")), 0);
}

// schema.sql followed by the --sql script gives the same rows as --sqlite, so PostgreSQL loads
// the same data.
TEST(DemoGenerator, SchemaAndSqlScriptRebuildTheDatabase) {
  TempFolder folder;
  ASSERT_EQ(
      RunGenerator("--sqlite " + folder.File("demo.db") + " --sql " + folder.File("data.sql")), 0);
  data::testing::CreateSqlite(folder.File("loaded.db"),
                              ReadText(SchemaPath()) + ReadText(folder.File("data.sql")));
  for (const auto& relations : {Tables(), Views()}) {
    for (const std::string& relation : relations) {
      EXPECT_EQ(CountRows(folder.File("loaded.db"), relation),
                CountRows(folder.File("demo.db"), relation))
          << relation;
    }
  }
}

TEST(DemoGenerator, ScriptsSplitIntoStatementsAtLineEnds) {
  const std::vector<std::string> expected = {"create table t (a text)",
                                             "insert into t values\n('x; y'),\n('z')"};
  EXPECT_EQ(SplitStatements("-- a comment;\ncreate table t (a text);\n\n"
                            "insert into t values\n('x; y'),\n('z');\n"),
            expected);
  const std::vector<std::string> schema = SplitStatements(ReadText(SchemaPath()));
  EXPECT_GT(schema.size(), 60u);
  for (const std::string& statement : schema) {
    EXPECT_EQ(statement.find(';'), std::string::npos) << statement;
  }
}

class DemoDatabase : public GeneratedDemo {
 protected:
  std::vector<std::string> Column(const std::string& sql) {
    std::vector<std::string> values;
    for (const auto& row : Query(sql)) values.push_back(ToText(row[0]));
    return values;
  }
};

TEST_F(DemoDatabase, EveryTableAndViewHasRows) {
  for (const auto& relations : {Tables(), Views()}) {
    for (const std::string& relation : relations) {
      EXPECT_GT(Count("select count(*) from " + relation), 0) << relation;
    }
  }
  EXPECT_EQ(Count("select count(*) from customer"), 60);
  EXPECT_EQ(Count("select count(*) from invoice"), 150);
  EXPECT_EQ(Count("select count(*) from enqdata"), 300);
  EXPECT_EQ(Count("select count(*) from branch"), 3);
  EXPECT_EQ(Count("select count(*) from fa_acmaster where am_group = 'SUBDEALER'"), 6);
  EXPECT_GE(Count("select count(*) from challan"), 50);
}

// The list the other cases walk names every table the schema creates, so that no table is left
// out of the row counts and the PostgreSQL comparison.
TEST_F(DemoDatabase, TablesNamesEveryTableOfTheSchema) {
  EXPECT_EQ(Column("select name from sqlite_master where type = 'table' order by rowid"), Tables());
}

TEST_F(DemoDatabase, TablesAndViewsHaveTheColumnsDocumentsRead) {
  for (const auto& [relation, columns] : RequiredColumns()) {
    const auto cursor = db_->Execute("select * from " + relation + " where 1 = 0");
    std::set<std::string> present;
    for (const data::Column& column : cursor->columns()) present.insert(column.name);
    for (const std::string& column : columns) {
      EXPECT_TRUE(present.count(column)) << relation << "." << column;
    }
  }
}

// The branch-transfer print joins btmstveh and fa_acmaster by a bare "id".
TEST_F(DemoDatabase, AccountMasterHasNoIdColumn) {
  const auto cursor = db_->Execute("select * from fa_acmaster where 1 = 0");
  for (const data::Column& column : cursor->columns()) EXPECT_NE(column.name, "id");
}

TEST_F(DemoDatabase, InvariantsHold) {
  for (const Invariant& invariant : Invariants()) {
    EXPECT_EQ(Count(invariant.sql), 0) << invariant.name;
  }
}

TEST_F(DemoDatabase, DocumentQueriesFindTheirRows) {
  for (const DocumentQuery& query : DocumentQueries(*facts_)) {
    const auto rows = Rows(*db_, query.sql, query.params);
    EXPECT_GE(rows.size(), query.min_rows) << query.name << ": " << query.sql;
    if (!rows.empty()) {
      EXPECT_FALSE(rows[0][0].is_null()) << query.name << ": " << query.sql;
    }
  }
}

TEST_F(DemoDatabase, ChallansPrintAsTheCustomerChallanReadsThem) {
  EXPECT_EQ(One("select para_value from para_setup where para_flag='CHALLAN' and "
                "para_type='GATEPASS'"),
            Value::Text("Y"));
  const std::string id = Id("challan_customer_id");
  const auto cursor = db_->Execute("select * from challan where id=" + id);
  size_t amt = cursor->columns().size();
  for (size_t i = 0; i < cursor->columns().size(); ++i) {
    if (cursor->columns()[i].name == "amt") amt = i;
  }
  std::vector<Value> row;
  ASSERT_TRUE(cursor->Next(row));
  ASSERT_LT(amt, row.size());
  EXPECT_GT(data::Val(ToText(row[amt])), 5000.0);
  EXPECT_EQ(One("select type from challan where id=" + id), Value::Text("C"));
  EXPECT_EQ(Count("select count(*) from challan where id=" + Id("challan_missing_id")), 0);
  EXPECT_EQ(One("select type from challan where id=" + Id("challan_sub_id")), Value::Text("S"));
  EXPECT_TRUE(One("select invid from challan where id=" + Id("challan_pending_id")).is_null());
}

TEST_F(DemoDatabase, InvoiceFactsNameInvoicesOfTheirKind) {
  auto invoice = [&](const std::string& key, const std::string& column) {
    return One("select " + column + " from invoice where id=" + Id(key));
  };
  EXPECT_EQ(invoice("invoice_id", "vcat"), Value::Text("MC"));
  EXPECT_EQ(invoice("invoice_scooter_id", "vcat"), Value::Text("SC"));
  EXPECT_FALSE(invoice("invoice_financed_id", "hypothecation").is_null());
  EXPECT_GE(Count("select count(*) from purdata where invid=" + Id("invoice_accessories_id")), 2);
  EXPECT_EQ(ToText(invoice("invoice_before_revision_id", "idate")), "2025-09-21");
  EXPECT_EQ(ToText(invoice("invoice_after_revision_id", "idate")), "2025-09-22");
  EXPECT_EQ(Number("select cgst_rate + sgst_rate from purdata where line = 1 and invid=" +
                   Id("invoice_before_revision_id")),
            28.0);
  EXPECT_EQ(Number("select cgst_rate + sgst_rate from purdata where line = 1 and invid=" +
                   Id("invoice_after_revision_id")),
            18.0);
  EXPECT_GT(Number("select tot_subsidy from invoice where id=" + Id("invoice_subsidy_id")), 0);
  EXPECT_EQ(Count("select count(*) from purdata where subsidyamt is not null and invid=" +
                  Id("invoice_null_subsidy_id")),
            0);
  EXPECT_NEAR(Number("select sum(netprice-coalesce(subsidyamt,0)) from purdata where invid=" +
                     Id("invoice_subsidy_id")) +
                  Number("select round_off from invoice where id=" + Id("invoice_subsidy_id")),
              Number("select payable from invoice where id=" + Id("invoice_subsidy_id")), 0.001);
  for (const char* key :
       {"hero_subdealer_invoice_id", "subdealer_invoice_id", "subdealer_igst_invoice_id",
        "cycle_subdealer_invoice_id", "packing_list_id", "einvoice_id"}) {
    EXPECT_EQ(invoice(key, "itype"), Value::Text("S")) << key;
  }
  EXPECT_GT(Number("select tot_igst from invoice where id=" + Id("subdealer_igst_invoice_id")), 0);
  EXPECT_EQ(Number("select tot_igst from invoice where id=" + Id("subdealer_invoice_id")), 0);
  EXPECT_EQ(invoice("cycle_invoice_id", "vcat"), Value::Text("CY"));
  EXPECT_EQ(invoice("cycle_subdealer_invoice_id", "vcat"), Value::Text("CY"));
  EXPECT_FALSE(invoice("einvoice_id", "irn").is_null());
  EXPECT_FALSE(invoice("einvoice_id", "ewb_no").is_null());
  EXPECT_EQ(invoice("einvoice_retail_id", "itype"), Value::Text("R"));
  EXPECT_FALSE(invoice("einvoice_retail_id", "irn").is_null());
  EXPECT_FALSE(invoice("form22_invoice_id", "regno").is_null());
  EXPECT_EQ(Count("select count(*) from hsrp where fit_date is not null and invid=" +
                  Id("hsrp_invoice_id")),
            1);
  EXPECT_EQ(Count("select count(*) from tempreg where invid=" + Id("prorc_invoice_id")), 1);
}

TEST_F(DemoDatabase, OtherFactsNameDocumentsOfTheirKind) {
  EXPECT_EQ(One("select reg_state from tempreg where tline=" + Id("temp_tline")),
            Value::Text("Maharashtra"));
  EXPECT_EQ(One("select reg_state from tempreg where tline=" + Id("temp_tline_karnataka")),
            Value::Text("Karnataka"));
  EXPECT_EQ(One("select mode from receipt where id=" + Id("receipt_id")), Value::Text("CASH"));
  EXPECT_EQ(One("select mode from receipt where id=" + Id("receipt_cheque_id")),
            Value::Text("CHEQUE"));
  EXPECT_EQ(One("select mode from receipt where id=" + Id("receipt_finance_id")),
            Value::Text("FINANCE"));
  EXPECT_EQ(One("select a.am_group from bulkrec b join fa_acmaster a on a.am_id = b.am_id "
                "where b.id=" +
                Id("bulk_receipt_id")),
            Value::Text("FINANCIER"));
  EXPECT_EQ(One("select a.am_group from bulkrec b join fa_acmaster a on a.am_id = b.am_id "
                "where b.id=" +
                Id("bulk_receipt_subdealer_id")),
            Value::Text("SUBDEALER"));
  EXPECT_GT(Number("select igst from purchase where id=" + Id("purchase_id")), 0);
  EXPECT_GT(Number("select cgst from purchase where id=" + Id("purchase_intra_id")), 0);
  EXPECT_GE(Count("select count(*) from btdetveh where btid=" + Id("branch_transfer_id")), 2);
  EXPECT_GE(Count("select count(*) from vintrfdet where tid=" + Id("vintrf_id")), 1);
  EXPECT_EQ(Count("select count(*) from firm where coid=" + Id("firm_id")), 1);
  EXPECT_EQ(Count("select count(distinct mode) from receipt where rdate>='" + Id("receipt_from") +
                  "' and rdate<='" + Id("receipt_to") + "'"),
            5);
  const std::string month = "select count(*) from enqdata where enq_date>='" +
                            Id("enquiry_month_from") + "' and enq_date<='" +
                            Id("enquiry_month_to") + "'";
  for (const char* filter : {" and enq_status=0", " and enq_status=1", " and enq_status=2"}) {
    EXPECT_GT(Count(month + filter), 0) << filter;
  }
}

// The print methods write dates year first with the regional separator; the SQLite backend
// reads them like the ISO dates the database stores.
TEST_F(DemoDatabase, YearFirstDateLiteralsSelectLikeIsoOnes) {
  const std::string from = Id("enquiry_month_from");
  const std::string to = Id("enquiry_month_to");
  const int64_t iso = Count("select count(*) from enqdata where  enq_date>='" + from +
                            "' and enq_date<='" + to + "'");
  EXPECT_GT(iso, 0);
  EXPECT_EQ(Count("select count(*) from enqdata where  enq_date>='" + SlashDate(from) +
                  "' and enq_date<='" + SlashDate(to) + "'"),
            iso);
  EXPECT_EQ(Count("select count(*) from enqdata where enq_date>='2024/04/01' and "
                  "enq_date<='2025/03/31'"),
            300);
}

bool IsVin(const std::string& vin) {
  static const std::string kLetters = "ABCDEFGHJKLMNPRSTUVWXYZ";
  static const int kValues[] = {1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4,
                                5, 7, 9, 2, 3, 4, 5, 6, 7, 8, 9};
  static const int kWeights[] = {8, 7, 6, 5, 4, 3, 2, 10, 0, 9, 8, 7, 6, 5, 4, 3, 2};
  if (vin.size() != 17 || vin.compare(0, 2, "MD") != 0) return false;
  int sum = 0;
  for (size_t i = 0; i < vin.size(); ++i) {
    const char c = vin[i];
    const size_t letter = kLetters.find(c);
    if (!std::isdigit(static_cast<unsigned char>(c)) && letter == std::string::npos) return false;
    sum += (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : kValues[letter]) * kWeights[i];
  }
  return vin[8] == (sum % 11 == 10 ? 'X' : static_cast<char>('0' + sum % 11));
}

TEST_F(DemoDatabase, ChassisNumbersAreUniqueVinsWithValidCheckDigits) {
  const auto chassis = Column("select chassis from vehicle");
  EXPECT_GT(chassis.size(), 250u);
  EXPECT_EQ(std::set<std::string>(chassis.begin(), chassis.end()).size(), chassis.size());
  for (const std::string& vin : chassis) EXPECT_TRUE(IsVin(vin)) << vin;
}

TEST_F(DemoDatabase, EngineNumbersAreUniqueAndOnlyCyclesLackThem) {
  EXPECT_EQ(Count("select count(*) from vehicle where engine is not null"),
            Count("select count(distinct engine) from vehicle"));
  EXPECT_EQ(Count("select count(*) from vehicle v join vehmodel m on m.model_id = v.model_id "
                  "where (v.engine is null) <> (m.vcat = 'CY')"),
            0);
}

// An independent reading of the GSTIN check: code points weighted 1, 2, 1, … from the left,
// each product folded to quotient plus remainder by 36.
char GstinCheck(const std::string& gstin) {
  static const std::string kCodes = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  int sum = 0;
  for (size_t i = 0; i < 14; ++i) {
    const int product = static_cast<int>(kCodes.find(gstin[i])) * (i % 2 == 0 ? 1 : 2);
    sum += product / 36 + product % 36;
  }
  return kCodes[static_cast<size_t>((36 - sum % 36) % 36)];
}

TEST_F(DemoDatabase, GstinsHaveValidCheckCharacters) {
  // Published GSTINs, to pin the check itself.
  EXPECT_EQ(GstinCheck("27AAPFU0939F1ZV"), 'V');
  EXPECT_EQ(GstinCheck("29AAGCB7383J1Z4"), '4');

  const std::regex format("[0-9]{2}[A-Z]{5}[0-9]{4}[A-Z][1-9A-Z]Z[0-9A-Z]");
  const auto gstins = Column(
      "select gstin from firm union all select am_gst from fa_acmaster where am_gst is not null "
      "union all select cgstin from customer where cgstin is not null");
  EXPECT_GE(gstins.size(), 20u);
  for (const std::string& gstin : gstins) {
    ASSERT_TRUE(std::regex_match(gstin, format)) << gstin;
    EXPECT_EQ(gstin[14], GstinCheck(gstin)) << gstin;
  }
  EXPECT_EQ(ToText(One("select gstin from firm")).substr(0, 2), "27");
  EXPECT_EQ(Count("select count(*) from fa_acmaster where am_gst is not null and "
                  "substr(am_gst, 1, 2) <> am_statecode"),
            0);
  EXPECT_EQ(Count("select count(*) from firm where substr(gstin, 3, 10) <> pan"), 0);
}

// An independent reading of base64url (RFC 4648, URL-safe alphabet, no padding); nullopt for a
// character outside the alphabet or a length no encoder writes.
std::optional<std::string> DecodeBase64Url(const std::string& text) {
  static const std::string kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
  if (text.size() % 4 == 1) return std::nullopt;
  std::string bytes;
  uint32_t bits = 0;
  int count = 0;
  for (char c : text) {
    const size_t value = kAlphabet.find(c);
    if (value == std::string::npos) return std::nullopt;
    bits = (bits << 6) | static_cast<uint32_t>(value);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>((bits >> count) & 0xff);
    }
  }
  return bytes;
}

TEST(Base64Url, DecodesTheStandardsExamples) {
  EXPECT_EQ(DecodeBase64Url("Zm9vYmFy"), "foobar");
  EXPECT_EQ(DecodeBase64Url("Zm9vYg"), "foob");
  EXPECT_EQ(DecodeBase64Url("-_8"), std::string("\xfb\xff"));
  EXPECT_EQ(DecodeBase64Url("Zm9v+g"), std::nullopt);
}

TEST_F(DemoDatabase, EInvoicesCarryIrnAckAndASignedQrCode) {
  const std::regex hex("[0-9a-f]{64}");
  const std::string seller = ToText(One("select gstin from firm"));
  const auto rows = Query(
      "select i.irn, i.ack_no, i.qr_text, i.num, coalesce(c.cgstin, a.am_gst), i.idate, i.invamt, "
      "(select count(*) from purdata d where d.invid = i.id), "
      "(select hsn from purdata d where d.invid = i.id and d.line = 1), i.ack_date "
      "from invoice i left join customer c on c.cust_id = i.cust_id "
      "left join fa_acmaster a on a.am_id = i.am_id where i.irn is not null");
  EXPECT_GE(rows.size(), 30u);
  for (const auto& row : rows) {
    const std::string irn = ToText(row[0]);
    const std::string num = ToText(row[3]);
    SCOPED_TRACE(num);
    EXPECT_TRUE(std::regex_match(irn, hex)) << irn;
    EXPECT_TRUE(std::regex_match(ToText(row[1]), std::regex("1[0-9]{14}"))) << ToText(row[1]);

    // A JSON Web Token as the invoice registration portal signs it.
    const std::string qr = ToText(row[2]);
    EXPECT_GE(qr.size(), 900u);
    EXPECT_LE(qr.size(), 1300u);
    ASSERT_TRUE(
        std::regex_match(qr, std::regex("[A-Za-z0-9_-]+\\.[A-Za-z0-9_-]+\\.[A-Za-z0-9_-]+")))
        << qr;
    const size_t first = qr.find('.');
    const size_t second = qr.find('.', first + 1);
    const auto header = DecodeBase64Url(qr.substr(0, first));
    const auto payload = DecodeBase64Url(qr.substr(first + 1, second - first - 1));
    const auto signature = DecodeBase64Url(qr.substr(second + 1));
    ASSERT_TRUE(header && payload && signature);
    EXPECT_EQ(signature->size(), 256u);  // an RSA-2048 signature
    const auto head = nlohmann::json::parse(*header);
    EXPECT_EQ(head.at("alg"), "RS256");
    EXPECT_EQ(head.at("typ"), "JWT");
    const auto claims = nlohmann::json::parse(*payload);
    EXPECT_EQ(claims.at("iss"), "NIC");
    const auto invoice = nlohmann::json::parse(claims.at("data").get<std::string>());
    EXPECT_EQ(invoice.at("SellerGstin"), seller);
    EXPECT_EQ(invoice.at("BuyerGstin"), ToText(row[4]));
    EXPECT_EQ(invoice.at("DocNo"), num);
    EXPECT_EQ(invoice.at("DocTyp"), "INV");
    const std::string day = ToText(row[5]);
    EXPECT_EQ(invoice.at("DocDt"),
              day.substr(8, 2) + "/" + day.substr(5, 2) + "/" + day.substr(0, 4));
    EXPECT_NEAR(invoice.at("TotInvVal").get<double>(), ToDouble(row[6]), 0.001);
    EXPECT_EQ(invoice.at("ItemCnt"), row[7].integer());
    EXPECT_EQ(invoice.at("MainHsnCode"), ToText(row[8]));
    EXPECT_EQ(invoice.at("Irn"), irn);
    EXPECT_EQ(invoice.at("IrnDt"), ToText(row[9]).substr(0, 19));
  }
}

// Amounts as the database holds them, in paise.
// Each line's taxes, reckoned again here from its taxable value and rates: CGST, SGST and IGST
// each the rate on the taxable value rounded to the paisa, half up.
TEST_F(DemoDatabase, EveryLineTaxIsItsRateOnItsTaxableValue) {
  for (const char* table : {"purdata", "purveh"}) {
    const auto lines =
        Query(std::string("select taxable, cgst_rate, cgst_amt, sgst_rate, sgst_amt, "
                          "igst_rate, igst_amt from ") +
              table);
    EXPECT_EQ(static_cast<int64_t>(lines.size()),
              Count(std::string("select count(*) from ") + table));
    EXPECT_GT(lines.size(), 100u) << table;
    for (const auto& line : lines) {
      const int64_t taxable = Paise(line[0]);
      for (size_t tax = 1; tax < 7; tax += 2) {
        const int64_t basis_points = Paise(line[tax]);  // 14.00 % is 1400
        const int64_t expected = (2 * taxable * basis_points + 10000) / 20000;
        EXPECT_EQ(Paise(line[tax + 1]), expected)
            << table << ": taxable " << ToText(line[0]) << " at " << ToText(line[tax]) << "%";
      }
    }
  }
}

// Lines add up to the totals, and the round-off brings them to whole rupees.
TEST_F(DemoDatabase, DocumentTotalsAreTheirLinesPlusTheRoundOff) {
  int64_t rounded = 0;
  // Each query gives a document's total, its round-off and the sum of its lines.
  for (const char* sql : {"select i.invamt, i.round_off, sum(d.netprice) from invoice i "
                          "join purdata d on d.invid = i.id group by i.id, i.invamt, i.round_off",
                          "select c.amt, c.round_off, sum(d.chlamt) from challan c "
                          "join purdata d on d.chlid = c.id group by c.id, c.amt, c.round_off",
                          "select p.total, p.round_off, sum(l.amount) from purchase p "
                          "join purveh l on l.purid = p.id group by p.id, p.total, p.round_off"}) {
    const auto documents = Query(sql);
    EXPECT_GT(documents.size(), 40u) << sql;
    for (const auto& row : documents) {
      if (ExpectWholeRupeeTotal(row, sql)) ++rounded;
    }
  }
  // Each line's taxable value is chosen so that its taxes bring it to whole rupees: the print
  // methods word the sum of the lines, so a document that needed rounding off would print words
  // a few paise off its total.
  EXPECT_EQ(rounded, 0);
  for (const auto& row :
       Query("select netprice from purdata union all select amount from purveh")) {
    EXPECT_EQ(Paise(row[0]) % 100, 0) << "every line comes to whole rupees";
  }
}

// A copy of the demo database with "changes" made to it.
std::string ChangedCopy(const TempFolder& folder, const std::string& original,
                        const std::string& changes) {
  const std::string copy = folder.File("changed.db");
  std::filesystem::copy_file(original, copy, std::filesystem::copy_options::overwrite_existing);
  data::testing::CreateSqlite(copy, changes);
  return copy;
}

int64_t Broken(data::Connection& db, const std::string& invariant) {
  for (const Invariant& i : Invariants()) {
    if (invariant == i.name) return Rows(db, i.sql)[0][0].integer();
  }
  ADD_FAILURE() << "no invariant " << invariant;
  return 0;
}

// The checks see a tax a paisa off, and a total that is not its lines' sum in whole rupees.
TEST_F(DemoDatabase, TaxChecksCatchAPaisaOff) {
  TempFolder scratch;
  auto db = data::Connection::Open(ChangedCopy(
      scratch, folder_->File("demo.db"),
      "update purdata set sgst_amt = sgst_amt + 0.01, netprice = netprice + 0.01 "
      "where pd_id = (select min(pd_id) from purdata where chlid is not null and sgst_amt > 0);\n"
      "update purveh set igst_amt = igst_amt - 0.01, amount = amount - 0.01 "
      "where purid = (select min(purid) from purveh where igst_amt > 0) and line = 1;\n"
      "update invoice set invamt = invamt - 0.40, payable = payable - 0.40 "
      "where id = (select min(id) from invoice);\n"));
  EXPECT_EQ(Broken(*db,
                   "each tax of an invoice or challan line is its rate on the taxable value, "
                   "to the paisa"),
            1);
  EXPECT_EQ(Broken(*db,
                   "each tax of a purchase line is its rate on the taxable value, to the "
                   "paisa"),
            1);
  EXPECT_EQ(
      Broken(*db, "invoice totals are the sums of their lines, the amount with the round-off"), 1);
  EXPECT_EQ(Broken(*db, "document totals are whole rupees, rounded off by less than half a rupee"),
            1);
}

TEST_F(DemoDatabase, EWayBillsHaveTwelveDigitsAndTheDayOfTheMovement) {
  const auto bills = Query(
      "select ewb_no, ewb_date, cdate from challan where ewb_no is not null "
      "union all select ewb_no, ewb_date, btdate from btmstveh where ewb_no is not null "
      "union all select i.ewb_no, i.ewb_date, coalesce(c.cdate, i.idate) from invoice i "
      "left join challan c on c.id = i.chlid where i.ewb_no is not null "
      "union all select ewb_no, ewb_date, billdate from purchase");
  EXPECT_GT(bills.size(), 80u);
  for (const auto& bill : bills) {
    EXPECT_TRUE(std::regex_match(ToText(bill[0]), std::regex("[0-9]{12}"))) << ToText(bill[0]);
    EXPECT_EQ(ToText(bill[1]).substr(0, 10), ToText(bill[2])) << ToText(bill[0]);
  }
  // Sub-dealer challans, the invoices that follow them and branch transfers all travel on one.
  for (const char* moved : {"select count(*) from challan where ewb_no is not null",
                            "select count(*) from invoice where ewb_no is not null and chlid "
                            "is not null",
                            "select count(*) from btmstveh where ewb_no is not null"}) {
    EXPECT_GT(Count(moved), 0) << moved;
  }
}

// The checks of goods on the road see a value above the limit without a bill, and a challan and
// its invoice that part ways.
TEST_F(DemoDatabase, EWayBillChecksCatchWhatIsMissing) {
  TempFolder scratch;
  auto db = data::Connection::Open(ChangedCopy(
      scratch, folder_->File("demo.db"),
      "update btmstveh set ewb_no = null where id = (select min(id) from btmstveh "
      "where btvalue > 50000);\n"
      "update invoice set truck_no = 'MH12ZZ0001' where id = (select min(invid) from challan "
      "where type = 'S');\n"));
  EXPECT_EQ(Broken(*db, "goods moved for more than Rs. 50,000 travel on an e-way bill"), 1);
  EXPECT_EQ(Broken(*db,
                   "a sub-dealer challan and its invoice name the same truck, consignment "
                   "and e-way bill"),
            1);
}

TEST_F(DemoDatabase, DocumentViewsNameTheIssuingBranchAndFirm) {
  for (const std::string& view : DocumentViews()) {
    EXPECT_EQ(Count("select count(*) from " + view + " where br_id is null or coid is null"), 0)
        << view;
    EXPECT_EQ(Count("select count(*) from " + view +
                    " v join branch b on b.br_id = v.br_id "
                    "join firm f on f.coid = b.coid and f.coid = v.coid"),
              Count("select count(*) from " + view))
        << view;
  }
  // Each branch issues documents of its own.
  EXPECT_EQ(Count("select count(distinct br_id) from vu_invoicehead"),
            Count("select count(*) from branch"));
  EXPECT_EQ(Count("select count(*) from vu_btveh v join btmstveh t on t.id = v.btid "
                  "where v.br_id <> t.from_br"),
            0);
}

TEST_F(DemoDatabase, EveryBranchHasItsAddressAndPhone) {
  const auto branches = Query(
      "select br_code, br_add1, br_add2, br_city, br_pin, br_phone, br_state, br_statecode "
      "from branch");
  EXPECT_EQ(branches.size(), 3u);
  for (const auto& branch : branches) {
    for (size_t i = 1; i < branch.size(); ++i) {
      EXPECT_FALSE(branch[i].is_null()) << ToText(branch[0]) << " column " << i;
    }
    EXPECT_TRUE(std::regex_match(ToText(branch[4]), std::regex("4[0-9]{5}"))) << ToText(branch[0]);
    EXPECT_TRUE(std::regex_match(ToText(branch[5]), std::regex("0[0-9]{2,4}-[0-9]{6,8}")))
        << ToText(branch[0]);
    EXPECT_EQ(ToText(branch[7]), ToText(One("select substr(gstin, 1, 2) from firm")));
  }
  EXPECT_EQ(ToText(One("select br_city from branch where br_code = 'CKN'")), "Chakan");
}

// The logo the firm names is the picture the demo ships, found from the application folder as
// make demo lays it out (demo/assets/ is copied to assets/ beside the prints).
TEST_F(DemoDatabase, FirmLogoIsThePictureTheDemoShips) {
  const std::string logo = ToText(One("select logo from firm where coid=" + Id("firm_id")));
  EXPECT_EQ(logo.rfind("assets/", 0), 0u) << logo;
  const std::string picture = ReadText(std::string(VANTOREL_SOURCE_DIR) + "/demo/" + logo);
  ASSERT_GT(picture.size(), 24u) << logo;
  EXPECT_EQ(picture.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
  auto be32 = [&](size_t at) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
      value = (value << 8) | static_cast<unsigned char>(picture[at + i]);
    return value;
  };
  EXPECT_GE(be32(16), 300u);  // width and height: large enough to print sharply at 40 mm
  EXPECT_GE(be32(20), 300u);
  const std::string script = ReadText(std::string(VANTOREL_SOURCE_DIR) + "/demo/run_demo.sh");
  EXPECT_NE(script.find("demo/assets/logo.png\" \"$OUT/" + logo), std::string::npos);
}

TEST_F(DemoDatabase, IndividualsNameTheirFatherOrHusband) {
  const auto people = Query(
      "select cname, ctitle, relation, cfname, surname from customer where cgstin is null "
      "and ctitle <> 'M/s'");
  EXPECT_GT(people.size(), 50u);
  for (const auto& person : people) {
    const std::string name = ToText(person[0]);
    EXPECT_FALSE(person[2].is_null()) << name;
    EXPECT_FALSE(person[3].is_null()) << name;
    const std::string father = ToText(person[3]);
    // A married woman takes her husband's surname; everyone shares it with the one named.
    EXPECT_NE(father.find(ToText(person[4])), std::string::npos) << name << ", " << father;
    EXPECT_NE(father, name);
  }
  for (const char* view : {"vu_invoicehead", "vu_tempnumber"}) {
    EXPECT_EQ(Count(std::string("select count(*) from ") + view +
                    " where ctitle <> 'M/s' and (relation is null or cfname is null)"),
              0)
        << view;
  }
}

TEST_F(DemoDatabase, TemporaryCertificatesCarryTheirRegisterNumbers) {
  const auto certificates = Query(
      "select t.cert_no, b.br_code, t.tdate, t.tno from tempreg t join invoice i on i.id = t.invid "
      "join branch b on b.br_id = i.br_id order by t.tline");
  ASSERT_GT(certificates.size(), 3u);
  std::map<std::string, int> last;  // by branch and financial year
  for (const auto& row : certificates) {
    const std::string number = ToText(row[0]);
    std::smatch parts;
    ASSERT_TRUE(std::regex_match(number, parts,
                                 std::regex("TC/([A-Z]+)/(20[0-9]{2})-([0-9]{2})/([0-9]{4})")))
        << number;
    EXPECT_EQ(parts[1].str(), ToText(row[1])) << number;
    const std::string day = ToText(row[2]);
    const int year = std::stoi(day.substr(0, 4)) - (std::stoi(day.substr(5, 2)) < 4 ? 1 : 0);
    EXPECT_EQ(std::stoi(parts[2].str()), year) << number;
    EXPECT_EQ(std::stoi(parts[3].str()), (year + 1) % 100) << number;
    // Each branch's register runs from 1 every financial year, in the order of issue.
    int& previous = last[parts[1].str() + parts[2].str()];
    EXPECT_EQ(std::stoi(parts[4].str()), previous + 1) << number;
    previous = std::stoi(parts[4].str());
    EXPECT_NE(number, ToText(row[3]));
    EXPECT_EQ(number.find("TR-"), std::string::npos);
  }
  EXPECT_EQ(ToText(One("select cert_no from vu_tempnumber where tline=" + Id("temp_tline"))),
            ToText(One("select cert_no from tempreg where tline=" + Id("temp_tline"))));
}

TEST_F(DemoDatabase, AddressesNameTheirTownOnce) {
  for (const char* sql :
       {"select count(*) from customer where cadd3 = ccity or cadd2 = ccity",
        "select count(*) from fa_acmaster where am_add3 = am_town or am_add2 = am_town",
        "select count(*) from branch where br_add2 = br_city or br_add1 = br_city",
        "select count(*) from customer where cadd1 = '' or cadd2 = '' or cadd3 = ''"}) {
    EXPECT_EQ(Count(sql), 0) << sql;
  }
  // Towns small enough to need no locality, and towns with one, are both on file.
  EXPECT_GT(Count("select count(*) from customer where cadd3 is null"), 0);
  EXPECT_GT(Count("select count(*) from customer where cadd3 is not null and ccity <> 'Pune'"), 0);
  const auto rows = Query(
      "select caddress, cadd1, cadd2, cadd3, ccity, cpin from vu_invoicehead where cust_id is not "
      "null");
  for (const auto& row : rows) {
    std::string expected = ToText(row[1]) + ", " + ToText(row[2]) + ", ";
    if (!row[3].is_null()) expected += ToText(row[3]) + ", ";
    expected += ToText(row[4]) + " - " + ToText(row[5]);
    EXPECT_EQ(ToText(row[0]), expected);
  }
}

// Data from elsewhere may still repeat the town as the locality: the views leave it out.
TEST_F(DemoDatabase, AddressColumnsLeaveOutALocalityThatRepeatsTheTown) {
  TempFolder scratch;
  auto db = data::Connection::Open(ChangedCopy(
      scratch, folder_->File("demo.db"),
      "update customer set cadd1 = 'H. No. 12', cadd2 = 'Station Road', cadd3 = 'Jejuri', "
      "ccity = 'Jejuri', cpin = '412303' where cust_id = (select min(cust_id) from customer "
      "where cust_id in (select cust_id from invoice));\n"
      "update fa_acmaster set am_add1 = 'Shop 4', am_add2 = 'Market Yard', am_add3 = 'Satara', "
      "am_town = 'Satara', am_pin = '415001' where am_id = (select min(am_id) from challan);\n"));
  const auto person = Rows(*db,
                           "select caddress, clocality from vu_invoicehead where cust_id = (select "
                           "min(cust_id) from customer where ccity = 'Jejuri')");
  ASSERT_FALSE(person.empty());
  EXPECT_EQ(ToText(person[0][0]), "H. No. 12, Station Road, Jejuri - 412303");
  EXPECT_TRUE(person[0][1].is_null());
  const auto dealer = Rows(*db,
                           "select caddress, clocality from vu_challan where am_id = (select "
                           "min(am_id) from challan)");
  ASSERT_FALSE(dealer.empty());
  EXPECT_EQ(ToText(dealer[0][0]), "Shop 4, Market Yard, Satara - 415001");
  EXPECT_TRUE(dealer[0][1].is_null());
  const auto payer = Rows(*db,
                          "select paddress from vu_receipt where cust_id = (select min(cust_id) "
                          "from customer where ccity = 'Jejuri')");
  ASSERT_FALSE(payer.empty());
  EXPECT_EQ(ToText(payer[0][0]), "H. No. 12, Station Road, Jejuri - 412303");
}

TEST_F(DemoDatabase, CancelledAndRefundedBookingsStandApartInTheBookingRegister) {
  const std::string from = SlashDate(Id("enquiry_from"));
  const std::string to = SlashDate(Id("enquiry_to"));
  // The booking register's own query, as EnqBooking sends it.
  const std::string bookings = "select * from enqdata where  enq_date>='" + from +
                               "' and enq_date<='" + to + "' and enq_booking=1";
  EXPECT_EQ(Count("select count(*) from (" + bookings + ") b where enq_bkstatus is null"), 0);
  EXPECT_GT(Count("select count(*) from (" + bookings +
                  ") b where enq_bkstatus in ('CANCELLED', 'REFUNDED')"),
            0);
  EXPECT_GT(Count("select count(*) from (" + bookings + ") b where enq_bkstatus = 'BOOKED'"), 0);
  EXPECT_GT(Count("select count(*) from (" + bookings + ") b where enq_bkstatus = 'DELIVERED'"), 0);
  EXPECT_EQ(Count("select count(*) from enqdata where enq_bkstatus = 'REFUNDED' and "
                  "(enq_refunddate is null or enq_remarks not like '%refunded%')"),
            0);
  EXPECT_EQ(Count("select count(*) from enqdata where enq_bkstatus in ('CANCELLED', 'REFUNDED') "
                  "and (enq_status <> 2 or enq_invid is not null)"),
            0);
}

TEST_F(DemoDatabase, EveryLineCountsInNumbers) {
  for (const char* table : {"purdata", "purveh", "btdetveh", "vintrfdet", "vu_invoice",
                            "vu_challan", "vu_purveh", "vu_btveh", "vu_vintrf"}) {
    EXPECT_EQ(Count(std::string("select count(*) from ") + table +
                    " where uom is null or uom <> 'NOS' or qty is null or qty < 1"),
              0)
        << table;
  }
}

TEST_F(DemoDatabase, SalesAfterTheRateRevisionAreOnFile) {
  EXPECT_GE(Count("select count(*) from invoice where idate >= '2025-09-22'"), 15);
  EXPECT_GE(Count("select count(*) from invoice where idate < '2025-09-22'"), 100);
  EXPECT_GT(Count("select count(*) from purdata d join invoice i on i.id = d.invid "
                  "where i.idate >= '2025-09-22' and d.hsn = '871200'"),
            0);
}

}  // namespace
}  // namespace vantorel::demo::testing
