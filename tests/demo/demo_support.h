// What the demo database tests share: running demo_gen, reading its facts, splitting SQL scripts
// into statements, and the checks every copy of the database must pass, on SQLite and on
// PostgreSQL alike: invariants written as SQL that counts the rows breaking them, and the SQL the
// print methods and the templates send.
#ifndef VANTOREL_TESTS_DEMO_DEMO_SUPPORT_H_
#define VANTOREL_TESTS_DEMO_DEMO_SUPPORT_H_

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "data/connection.h"
#include "data/temp_database.h"
#include "data/value.h"
#include "demo/facts.h"

namespace vantorel::demo::testing {

inline std::string SchemaPath() { return std::string(VANTOREL_SOURCE_DIR) + "/demo/schema.sql"; }

// Runs demo_gen with "arguments"; returns its exit status.
inline int RunGenerator(const std::string& arguments) {
  const std::string command = std::string(DEMO_GEN) + " " + arguments + " 2>&1";
  return std::system(command.c_str());
}

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

inline std::string Fact(const Facts& facts, const std::string& key) {
  const auto found = facts.find(key);
  if (found == facts.end()) {
    ADD_FAILURE() << "the facts file has no " << key;
    return "0";
  }
  return found->second;
}

// The statements of a script whose statements end with a semicolon at the end of a line and
// whose comments are whole lines, as demo/schema.sql and demo_gen's data files are written.
inline std::vector<std::string> SplitStatements(const std::string& script) {
  std::vector<std::string> statements;
  std::istringstream in(script);
  std::string line, statement;
  while (std::getline(in, line)) {
    const size_t text = line.find_first_not_of(" \t\r");
    if (text == std::string::npos || line.compare(text, 2, "--") == 0) continue;
    statement += line + "\n";
    const size_t last = line.find_last_not_of(" \t\r");
    if (line[last] == ';') {
      statements.push_back(statement.substr(0, statement.rfind(';')));
      statement.clear();
    }
  }
  if (statement.find_first_not_of(" \t\r\n") != std::string::npos) statements.push_back(statement);
  return statements;
}

// Every table demo/schema.sql creates, in the order it creates them: the sales side, the
// workshop, the books of account, the returns.
inline const std::vector<std::string>& Tables() {
  static const std::vector<std::string> tables = {"firm",
                                                  "para_setup",
                                                  "fa_acmaster",
                                                  "branch",
                                                  "customer",
                                                  "vehmodel",
                                                  "pricelist",
                                                  "color",
                                                  "item",
                                                  "purchase",
                                                  "vehicle",
                                                  "purveh",
                                                  "btmstveh",
                                                  "btdetveh",
                                                  "vintrf",
                                                  "vintrfdet",
                                                  "challan",
                                                  "invoice",
                                                  "purdata",
                                                  "enqdata",
                                                  "receipt",
                                                  "bulkrec",
                                                  "bulkrecdet",
                                                  "tempreg",
                                                  "hsrp",
                                                  "numbers",
                                                  "ws_partmaster",
                                                  "ws_po",
                                                  "ws_podet",
                                                  "ws_purchase",
                                                  "ws_purchasedet",
                                                  "ws_purret",
                                                  "ws_purretdet",
                                                  "ws_stktrf",
                                                  "ws_stktrfdet",
                                                  "ws_estimate",
                                                  "ws_estimatedet",
                                                  "fin_years",
                                                  "ws_mechanic",
                                                  "ws_jobcard",
                                                  "ws_jobcomplaint",
                                                  "ws_requisition",
                                                  "ws_labour",
                                                  "ws_jobinv",
                                                  "ws_jobinvdet",
                                                  "ws_proforma",
                                                  "ws_proformadet",
                                                  "ws_counterinv",
                                                  "ws_counterinvdet",
                                                  "ws_claim",
                                                  "ws_claimdet",
                                                  "ws_followup",
                                                  "fa_group",
                                                  "vchmst",
                                                  "vchdet",
                                                  "gstvmst",
                                                  "gstvdet",
                                                  "gstdcnmst",
                                                  "gstdcndet",
                                                  "oldveh",
                                                  "vat_dealer",
                                                  "vat_sale",
                                                  "vat_purchase",
                                                  "vat_cform",
                                                  "vat_payment",
                                                  "gst_hsn",
                                                  "quotation",
                                                  "ws_toplist",
                                                  "ws_toplistdet"};
  return tables;
}

inline const std::vector<std::string>& Views() {
  static const std::vector<std::string> views = {"vu_challan",    "vu_invoice", "vu_invoicehead",
                                                 "vu_tempnumber", "vu_receipt", "vu_bulkreceipt",
                                                 "vu_purveh",     "vu_btveh",   "vu_vintrf"};
  return views;
}

// Every view prints a document issued by a branch of a firm: each names both, so a template can
// print the issuing branch's address under the firm's name.
inline const std::vector<std::string>& DocumentViews() { return Views(); }

// Columns the print methods and the templates read, by table or view.
inline const std::map<std::string, std::vector<std::string>>& RequiredColumns() {
  static const std::map<std::string, std::vector<std::string>> columns = {
      {"para_setup", {"para_flag", "para_type", "para_value"}},
      {"challan",
       {"id", "type", "num", "cdate", "amt", "round_off", "transporter", "truck_no", "lr_no",
        "ewb_no", "ewb_date"}},
      {"invoice", {"id", "invamt", "round_off", "ewb_no", "ewb_date", "truck_no", "qr_text"}},
      {"branch",
       {"br_id", "coid", "br_code", "br_name", "br_add1", "br_add2", "br_city", "br_pin",
        "br_phone", "br_state", "br_statecode"}},
      {"customer", {"cust_id", "ctitle", "cname", "relation", "cfname"}},
      {"tempreg", {"tline", "tno", "cert_no"}},
      {"btmstveh", {"id", "btno", "btdate", "btto", "from_br", "to_br", "ewb_no", "ewb_date"}},
      {"vintrf", {"tid", "br_id"}},
      {"receipt", {"id", "num", "rdate", "amt", "mode", "pname"}},
      {"purdata",
       {"invid", "chlid", "line", "description", "hsn", "qty", "rate", "discount", "taxable",
        "cgst_rate", "cgst_amt", "sgst_rate", "sgst_amt", "igst_rate", "igst_amt", "netprice",
        "subsidyamt", "chlamt"}},
      {"enqdata",
       {"enq_id", "enq_date", "enq_model", "enq_status", "enq_booking", "enq_name", "enq_mobile",
        "enq_source", "enq_exec", "enq_bkstatus", "enq_refunddate"}},
      {"purchase",
       {"id", "supid", "billno", "billdate", "nveh", "taxable", "cgst", "sgst", "igst", "total",
        "round_off", "ewb_no", "ewb_date"}},
      {"fa_acmaster", {"am_id", "am_name", "am_add1", "am_add2", "am_add3", "am_town", "am_gst"}},
      {"firm",
       {"coid", "name", "add1", "add2", "add3", "city", "pin", "phone", "email", "gstin", "pan",
        "bank_name", "bank_acno", "bank_ifsc", "jurisdiction", "logo"}},
      {"vu_challan",
       {"id",     "type",     "num",       "cdate",   "line",    "cname",     "cfname",
        "cadd1",  "cadd2",    "cadd3",     "ccity",   "cmobile", "cgstin",    "description",
        "hsn",    "qty",      "uom",       "rate",    "taxable", "netprice",  "chlamt",
        "amt",    "model",    "color",     "chassis", "engine",  "round_off", "lr_no",
        "ewb_no", "ewb_date", "clocality", "caddress"}},
      {"vu_invoice",
       {"id",
        "itype",
        "num",
        "idate",
        "cname",
        "cfname",
        "cadd1",
        "cadd2",
        "cadd3",
        "ccity",
        "cmobile",
        "model",
        "color",
        "chassis",
        "engine",
        "cgstin",
        "cpan",
        "hypothecation",
        "tot_taxable",
        "invamt",
        "tot_subsidy",
        "payable",
        "irn",
        "ack_no",
        "ack_date",
        "qr_text",
        "line",
        "description",
        "hsn",
        "taxable",
        "netprice",
        "subsidyamt",
        "regno",
        "mfg_year",
        "emission_norms",
        "hsrp_front_laser",
        "key_no",
        "battery_no",
        "uom",
        "round_off",
        "ewb_no",
        "ewb_date",
        "relation",
        "clocality",
        "caddress"}},
      {"vu_invoicehead",
       {"id", "num", "idate", "cname", "model", "chassis", "engine", "regno", "invamt", "round_off",
        "ewb_no", "ewb_date", "relation", "cfname", "clocality", "caddress"}},
      {"vu_tempnumber",
       {"tline", "tno", "cert_no", "tdate", "valid_upto", "id", "cname", "relation", "cfname",
        "cadd1", "model", "chassis", "engine", "clocality", "caddress"}},
      {"vu_receipt", {"id", "num", "rdate", "pname", "amt", "mode", "inv_num", "paddress"}},
      {"vu_bulkreceipt", {"id", "num", "bdate", "am_name", "amt", "line", "invid", "line_amt"}},
      {"vu_purveh", {"purid", "line", "model", "chassis", "engine", "amount", "qty", "uom"}},
      {"vu_btveh",
       {"btid", "line", "model", "chassis", "engine", "qty", "uom", "from_br", "to_br", "btno",
        "btdate", "vehicle_no", "ewb_no", "ewb_date"}},
      {"vu_vintrf",
       {"tid", "tno", "tdate", "from_loc", "to_loc", "line", "chassis", "engine", "qty", "uom"}},
      {"numbers", {"n"}},
  };
  return columns;
}

struct Invariant {
  const char* name;
  const char* sql;  // counts the rows that break it
};

// Rates by HSN and date: two-wheelers and their parts 28%, cycles and theirs 12% before
// 22 September 2025, 18% and 5% from it; electric two-wheelers and helmets 5%.
#define VT_DEMO_EXPECTED_RATE(hsn, day)                                     \
  "case when " hsn                                                          \
  " like '871160%' then 5 "                                                 \
  "when " hsn " like '8711%' or " hsn " like '871410%' then case when " day \
  " < '2025-09-22' then 28 else 18 end "                                    \
  "when " hsn " like '8712%' or " hsn " like '87149%' then case when " day  \
  " < '2025-09-22' then 12 else 5 end "                                     \
  "when " hsn " like '6506%' then 18 end"

// True when the tax "amount" is not "rate" percent of the line's taxable value rounded to the
// paisa, half up: worked in whole paise and basis points, so both engines reckon it exactly.
#define VT_DEMO_TAX_OFF(amount, rate)                                               \
  "abs(" amount " * 100 - (cast(round(taxable * 100) as bigint) * cast(round(" rate \
  " * 100) as bigint) + 5000) / 10000) > 0.001"
#define VT_DEMO_ANY_TAX_OFF                \
  VT_DEMO_TAX_OFF("cgst_amt", "cgst_rate") \
  " or " VT_DEMO_TAX_OFF("sgst_amt", "sgst_rate") " or " VT_DEMO_TAX_OFF("igst_amt", "igst_rate")

inline const std::vector<Invariant>& Invariants() {
  static const std::vector<Invariant> invariants = {
      {"every item line belongs to one invoice or one challan",
       "select count(*) from purdata where (invid is null and chlid is null) "
       "or (invid is not null and chlid is not null)"},
      {"taxable value plus taxes is the line total",
       "select count(*) from purdata "
       "where abs(taxable + cgst_amt + sgst_amt + igst_amt - netprice) > 0.001"},
      {"amount less discount is the taxable value",
       "select count(*) from purdata where abs(amount - discount - taxable) > 0.001"},
      {"each tax of an invoice or challan line is its rate on the taxable value, to the paisa",
       "select count(*) from purdata where " VT_DEMO_ANY_TAX_OFF},
      {"each tax of a purchase line is its rate on the taxable value, to the paisa",
       "select count(*) from purveh where " VT_DEMO_ANY_TAX_OFF},
      {"a purchase line's amount is its taxable value plus taxes",
       "select count(*) from purveh "
       "where abs(taxable + cgst_amt + sgst_amt + igst_amt - amount) > 0.001"},
      {"quantity times rate is the value of a line",
       "select count(*) from (select qty, rate, amount as value from purdata "
       "union all select qty, rate, taxable from purveh) l "
       "where abs(qty * rate - value) > 0.001"},
      {"every line counts its goods in numbers",
       "select count(*) from (select qty, uom from purdata union all select qty, uom from purveh "
       "union all select qty, uom from btdetveh union all select qty, uom from vintrfdet) l "
       "where uom is null or uom <> 'NOS' or qty is null or qty < 1"},
      {"document totals are whole rupees, rounded off by less than half a rupee",
       "select count(*) from (select invamt as total, round_off from invoice "
       "union all select amt, round_off from challan "
       "union all select total, round_off from purchase) t where round_off is null "
       "or abs(total - round(total)) > 0.001 or round_off <= -0.5 or round_off > 0.5"},
      {"every HSN code has a known rate",
       "select count(*) from purdata where (" VT_DEMO_EXPECTED_RATE("hsn",
                                                                    "'2024-04-01'") ") is null"},
      {"invoice lines carry the GST rate of the invoice date",
       "select count(*) from purdata d join invoice i on i.id = d.invid "
       "where d.cgst_rate + d.sgst_rate + d.igst_rate <> "
       "(" VT_DEMO_EXPECTED_RATE("d.hsn", "i.idate") ")"},
      {"challan lines carry the GST rate of the challan date",
       "select count(*) from purdata d join challan c on c.id = d.chlid "
       "where d.cgst_rate + d.sgst_rate + d.igst_rate <> "
       "(" VT_DEMO_EXPECTED_RATE("d.hsn", "c.cdate") ")"},
      {"purchase lines carry the GST rate of the bill date",
       "select count(*) from purveh l join purchase p on p.id = l.purid "
       "where l.cgst_rate + l.sgst_rate + l.igst_rate <> "
       "(" VT_DEMO_EXPECTED_RATE("l.hsn", "p.billdate") ")"},
      {"within Maharashtra CGST equals SGST and there is no IGST",
       "select count(*) from purdata d join invoice i on i.id = d.invid where i.pos_code = '27' "
       "and (d.cgst_amt <> d.sgst_amt or d.cgst_rate <> d.sgst_rate or d.igst_amt <> 0)"},
      {"to another state only IGST",
       "select count(*) from purdata d join invoice i on i.id = d.invid "
       "where i.pos_code <> '27' and (d.cgst_amt <> 0 or d.sgst_amt <> 0 or d.igst_amt = 0)"},
      {"sub-dealers in other states are billed across states",
       "select count(*) from invoice i join fa_acmaster a on a.am_id = i.am_id "
       "where i.pos_code <> a.am_statecode"},
      {"invoice totals are the sums of their lines, the amount with the round-off",
       "select count(*) from invoice i where i.invamt is null or exists (select 1 from purdata d "
       "where d.invid = i.id group by d.invid "
       "having abs(sum(d.netprice) + i.round_off - i.invamt) > 0.001 "
       "or abs(sum(d.taxable) - i.tot_taxable) > 0.001 "
       "or abs(sum(d.cgst_amt) - i.tot_cgst) > 0.001 or abs(sum(d.sgst_amt) - i.tot_sgst) > 0.001 "
       "or abs(sum(d.igst_amt) - i.tot_igst) > 0.001 "
       "or abs(sum(coalesce(d.subsidyamt, 0)) - i.tot_subsidy) > 0.001)"},
      {"the payable amount is the total less the subsidy",
       "select count(*) from invoice where abs(invamt - tot_subsidy - payable) > 0.001"},
      {"every invoice has lines",
       "select count(*) from invoice i where not exists (select 1 from purdata d "
       "where d.invid = i.id)"},
      {"challan amounts are the sums of their lines plus the round-off",
       "select count(*) from challan c where abs(c.amt - c.round_off - (select sum(chlamt) "
       "from purdata d where d.chlid = c.id)) > 0.001"},
      {"only electric scooters sold to people carry a subsidy",
       "select count(*) from purdata d join invoice i on i.id = d.invid "
       "where d.subsidyamt > 0 and (d.hsn <> '871160' or i.itype <> 'R')"},
      {"purchase totals are the sums of their lines, the total with the round-off",
       "select count(*) from purchase p where exists (select 1 from purveh l "
       "where l.purid = p.id group by l.purid "
       "having abs(sum(l.amount) + p.round_off - p.total) > 0.001 "
       "or abs(sum(l.taxable) - p.taxable) > 0.001 or abs(sum(l.cgst_amt) - p.cgst) > 0.001 "
       "or abs(sum(l.sgst_amt) - p.sgst) > 0.001 or abs(sum(l.igst_amt) - p.igst) > 0.001 "
       "or count(*) <> p.nveh)"},
      {"bulk receipts are the sums of their lines",
       "select count(*) from bulkrec b where abs(b.amt - (select sum(amt) from bulkrecdet d "
       "where d.brid = b.id)) > 0.001"},
      {"receipts and bulk receipts pay every retail invoice in full",
       "select count(*) from invoice i where i.itype = 'R' and abs(i.payable "
       "- coalesce((select sum(amt) from receipt r where r.invid = i.id), 0) "
       "- coalesce((select sum(amt) from bulkrecdet d where d.invid = i.id), 0)) > 0.001"},
      {"no invoice is paid twice over",
       "select count(*) from invoice i where coalesce((select sum(amt) from receipt r "
       "where r.invid = i.id), 0) + coalesce((select sum(amt) from bulkrecdet d "
       "where d.invid = i.id), 0) > i.payable + 0.001"},
      {"invoices to GST-registered buyers have an IRN",
       "select count(*) from vu_invoicehead where cgstin is not null and (irn is null "
       "or ack_no is null or ack_date is null or qr_text is null)"},
      {"IRNs are 64 characters and unique",
       "select count(*) from invoice where irn is not null and (length(irn) <> 64 or irn in "
       "(select irn from invoice where irn is not null group by irn having count(*) > 1))"},
      {"no vehicle is invoiced twice",
       "select count(*) from (select veh_id from purdata where invid is not null "
       "and veh_id is not null group by veh_id having count(*) > 1) twice"},
      {"a retail invoice's vehicle is on its first line",
       "select count(*) from invoice i where i.itype = 'R' and not exists (select 1 from purdata d "
       "where d.invid = i.id and d.line = 1 and d.veh_id = i.veh_id)"},
      {"vehicles arrive before they are delivered",
       "select count(*) from purdata d join vehicle v on v.veh_id = d.veh_id "
       "join purchase p on p.id = v.purid left join invoice i on i.id = d.invid "
       "left join challan c on c.id = d.chlid where p.recdate > coalesce(c.cdate, i.idate)"},
      {"vehicles reach a branch before they are delivered there",
       "select count(*) from invoice i join btdetveh t on t.veh_id = i.veh_id "
       "join btmstveh b on b.id = t.btid where b.btdate > i.idate or b.to_br <> i.br_id"},
      {"branch transfers go to a branch account",
       "select count(*) from btmstveh b join fa_acmaster a on a.am_id = b.btto "
       "where a.am_group <> 'BRANCH'"},
      {"an invoiced challan names its invoice and the invoice its challan",
       "select count(*) from challan c join invoice i on i.id = c.invid where i.chlid <> c.id"},
      {"a challan and the invoice that bills it deliver the same vehicles",
       "select count(*) from challan c join invoice i on i.id = c.invid where exists "
       "(select veh_id from purdata where chlid = c.id and veh_id is not null "
       "except select veh_id from purdata where invid = i.id) or exists "
       "(select veh_id from purdata where invid = i.id and veh_id is not null "
       "except select veh_id from purdata where chlid = c.id)"},
      {"goods moved for more than Rs. 50,000 travel on an e-way bill",
       "select count(*) from (select ewb_no, case when ewb_date is null then 0 else 1 end as "
       "dated, "
       "amt as value from challan where type = 'S' "
       "union all select ewb_no, case when ewb_date is null then 0 else 1 end, invamt "
       "from invoice where itype = 'S' "
       "union all select ewb_no, case when ewb_date is null then 0 else 1 end, btvalue "
       "from btmstveh "
       "union all select ewb_no, case when ewb_date is null then 0 else 1 end, total "
       "from purchase) m "
       "where value > 50000 and (ewb_no is null or length(ewb_no) <> 12 or dated = 0)"},
      {"e-way bill numbers are never given twice",
       "select count(*) from (select ewb_no from (select ewb_no from challan "
       "union all select ewb_no from btmstveh union all select ewb_no from purchase "
       "union all select ewb_no from invoice i where not exists (select 1 from challan c "
       "where c.id = i.chlid and c.ewb_no = i.ewb_no)) e "
       "where ewb_no is not null group by ewb_no having count(*) > 1) twice"},
      {"a sub-dealer challan and its invoice name the same truck, consignment and e-way bill",
       "select count(*) from challan c join invoice i on i.id = c.invid where c.type = 'S' and "
       "(coalesce(i.transporter, '-') <> coalesce(c.transporter, '-') "
       "or coalesce(i.truck_no, '-') <> coalesce(c.truck_no, '-') "
       "or coalesce(i.lr_no, '-') <> coalesce(c.lr_no, '-') "
       "or coalesce(i.ewb_no, '-') <> coalesce(c.ewb_no, '-') "
       "or (i.ewb_date is null and c.ewb_date is not null) "
       "or (i.ewb_date is not null and c.ewb_date is null) or i.ewb_date <> c.ewb_date)"},
      {"every branch has a full address, a phone and the state code of the firm's GSTIN",
       "select count(*) from branch b join firm f on f.coid = b.coid where b.br_add1 is null "
       "or b.br_add2 is null or b.br_city is null or b.br_pin is null or length(b.br_pin) <> 6 "
       "or b.br_phone is null or b.br_state is null or b.br_statecode is null "
       "or b.br_statecode <> substr(f.gstin, 1, 2)"},
      {"every document names the branch that issued it and its firm",
       "select count(*) from (select br_id, coid from vu_challan "
       "union all select br_id, coid from vu_invoice "
       "union all select br_id, coid from vu_invoicehead "
       "union all select br_id, coid from vu_tempnumber "
       "union all select br_id, coid from vu_receipt "
       "union all select br_id, coid from vu_bulkreceipt "
       "union all select br_id, coid from vu_purveh "
       "union all select br_id, coid from vu_btveh "
       "union all select br_id, coid from vu_vintrf) v where not exists "
       "(select 1 from branch b where b.br_id = v.br_id and b.coid = v.coid)"},
      {"a branch transfer is issued by the branch it leaves",
       "select count(*) from vu_btveh where br_id <> from_br or from_br = to_br"},
      {"people name their father or husband as their title says",
       "select count(*) from customer where ctitle <> 'M/s' and (cfname is null "
       "or (ctitle = 'Mr' and coalesce(relation, '') <> 'S/O') "
       "or (ctitle = 'Mrs' and coalesce(relation, '') <> 'W/O') "
       "or (ctitle = 'Ms' and coalesce(relation, '') <> 'D/O') "
       "or ctitle not in ('Mr', 'Mrs', 'Ms'))"},
      {"no address names its town twice or has an empty part",
       "select count(*) from (select cadd1 as add1, cadd2 as add2, cadd3 as add3, ccity as town "
       "from customer union all select am_add1, am_add2, am_add3, am_town from fa_acmaster "
       "union all select br_add1, br_add2, null, br_city from branch) a "
       "where add1 = '' or add2 = '' or add3 = '' or add2 = town or add3 = town"},
      {"the views spell every party's address on one line",
       "select count(*) from (select caddress from vu_challan "
       "union all select caddress from vu_invoice union all select caddress from vu_invoicehead "
       "union all select caddress from vu_tempnumber union all select paddress from vu_receipt) a "
       "where caddress is null"},
      {"temporary certificates are numbered once each in their branch's register",
       "select count(*) from tempreg t join invoice i on i.id = t.invid "
       "join branch b on b.br_id = i.br_id "
       "where t.cert_no is null or not (t.cert_no like ('TC/' || b.br_code || '/____-__/____')) "
       "or t.cert_no in (select cert_no from tempreg group by cert_no having count(*) > 1)"},
      {"a booking's status follows its enquiry",
       "select count(*) from enqdata where (enq_booking = 1 and enq_bkstatus is null) "
       "or (enq_booking = 0 and enq_bkstatus is not null) "
       "or (enq_bkstatus = 'BOOKED' and enq_status <> 0) "
       "or (enq_bkstatus = 'DELIVERED' and enq_status <> 1) "
       "or (enq_bkstatus in ('CANCELLED', 'REFUNDED') and enq_status <> 2) "
       "or enq_bkstatus not in ('BOOKED', 'DELIVERED', 'CANCELLED', 'REFUNDED') "
       "or (enq_refunddate is not null and coalesce(enq_bkstatus, '-') <> 'REFUNDED') "
       "or (enq_bkstatus = 'REFUNDED' and (enq_refunddate is null "
       "or enq_refunddate < enq_bookdate))"},
      {"enquiry status is 0, 1 or 2 and booking 0 or 1",
       "select count(*) from enqdata where enq_status not in (0, 1, 2) "
       "or enq_booking not in (0, 1)"},
      {"matured enquiries name their invoice",
       "select count(*) from enqdata where enq_status = 1 and enq_invid is null"},
      {"temporary registrations run one month from the invoice date",
       "select count(*) from tempreg t join invoice i on i.id = t.invid "
       "where t.tdate <> i.idate or t.valid_upto <= t.tdate"},
      {"registered vehicles have number plates ordered",
       "select count(*) from invoice i where i.regno is not null and not exists "
       "(select 1 from hsrp h where h.invid = i.id)"},
      {"document ids fit a 16-bit integer",
       "select count(*) from (select id from challan union all select id from invoice "
       "union all select id from receipt union all select id from purchase "
       "union all select id from btmstveh union all select tid from vintrf "
       "union all select id from bulkrec union all select tline from tempreg) ids "
       "where id > 32767 or id < 1"},
  };
  return invariants;
}

#undef VT_DEMO_ANY_TAX_OFF
#undef VT_DEMO_TAX_OFF
#undef VT_DEMO_EXPECTED_RATE

// One SQL text as a print method or a template sends it.
struct DocumentQuery {
  std::string name;
  std::string sql;
  std::map<std::string, data::ParamValue> params;
  size_t min_rows = 1;
};

// "2024-04-01" as the print methods write dates into SQL: "2024/04/01".
inline std::string SlashDate(std::string iso) {
  for (char& c : iso) {
    if (c == '-') c = '/';
  }
  return iso;
}

inline Date IsoDate(const std::string& iso) {
  return Date::FromYmd(std::stoi(iso.substr(0, 4)), std::stoi(iso.substr(5, 2)),
                       std::stoi(iso.substr(8, 2)));
}

// The SQL the sales print methods send (exactly as they build it) and the queries their templates
// run, for the documents the facts name.
inline std::vector<DocumentQuery> DocumentQueries(const Facts& f) {
  std::vector<DocumentQuery> q;
  auto add = [&](std::string name, std::string sql, size_t min_rows = 1) {
    q.push_back({std::move(name), std::move(sql), {}, min_rows});
  };
  auto add_params = [&](std::string name, std::string sql,
                        std::map<std::string, data::ParamValue> params, size_t min_rows = 1) {
    q.push_back({std::move(name), std::move(sql), std::move(params), min_rows});
  };
  auto id = [&](const char* key) { return Fact(f, key); };
  auto number = [&](const char* key) { return int64_t{std::stoi(Fact(f, key))}; };

  add("Challan_Customer: setting",
      "select para_value from para_setup where para_flag='CHALLAN' and para_type='GATEPASS'");
  add("w_purchaseorder: setting",
      "select para_value from para_setup where para_flag='WS_PO' and para_type='PO'");
  add("Challan_Customer: existence and Amt",
      "select * from challan where id=" + id("challan_customer_id"));
  add("Challan_Customer: Q_CHL",
      "SELECT * FROM VU_CHALLAN WHERE id=" + id("challan_customer_id") + " AND TYPE='C'");
  add("ChallanSub: amount", "select sum(chlamt) from purdata where chlid=" + id("challan_sub_id"));
  add("ChallanSub: q_pm",
      "select * FROM VU_CHALLAN where id=" + id("challan_sub_id") + " order by line", 2);
  add("ChallanSub: pending challan",
      "select * FROM VU_CHALLAN where id=" + id("challan_pending_id") + " order by line");
  add("ReceiptPrint: amount", "select amt from receipt where id=" + id("receipt_id"));

  const std::string from = SlashDate(Fact(f, "enquiry_from"));
  const std::string to = SlashDate(Fact(f, "enquiry_to"));
  const std::string range =
      "select * from enqdata where  enq_date>='" + from + "' " + "and enq_date<='" + to + "'";
  add("EnqGroupwise: enq", range + " order by enq_model,enq_date,enq_id ", 300);
  add("EnqPending: matured", range + " and enq_status=1 order by enq_id ");
  add("EnqPending: pending", range + " and enq_status=0 order by enq_id ");
  add("EnqPending: lost", range + " and enq_status=2 order by enq_id ");
  add("EnqBooking: enq", range + " and enq_booking=1 order by enq_id ");
  const std::string month = "select * from enqdata where  enq_date>='" +
                            SlashDate(Fact(f, "enquiry_month_from")) + "' " + "and enq_date<='" +
                            SlashDate(Fact(f, "enquiry_month_to")) + "'";
  add("EnqGroupwise: one month", month + " order by enq_model,enq_date,enq_id ", 10);

  add("VehPurBill: q_pm",
      "select p.*,am_name,am_add1,am_add2,am_add3,am_town from purchase p,fa_acmaster " +
          std::string("Where p.supid = am_id and p.id=") + id("purchase_id"));
  add("VehPurBillGST: q_pm",
      "select p.*,am_name,am_add1,am_add2,am_add3,am_town,am_gst from purchase p,fa_acmaster " +
          std::string("Where p.supid = am_id and p.id=") + id("purchase_intra_id"));
  add("VehBtPrint: q_pm",
      "select BV.*,am_name,am_town from btmstveh bv ,fa_acmaster where bv.btto=am_id and id=" +
          id("branch_transfer_id"));

  for (const char* key :
       {"invoice_id", "invoice_accessories_id", "invoice_financed_id", "invoice_scooter_id",
        "invoice_before_revision_id", "invoice_after_revision_id", "invoice_subsidy_id",
        "invoice_null_subsidy_id", "hero_invoice_id", "hero_subdealer_invoice_id",
        "subdealer_invoice_id", "subdealer_igst_invoice_id", "cycle_invoice_id",
        "cycle_subdealer_invoice_id", "packing_list_id", "einvoice_id", "einvoice_retail_id"}) {
    add(std::string(key) + ": amount", "select sum(netprice) from purdata where invid=" + id(key));
    add(std::string(key) + ": Q_INV", "SELECT * FROM VU_INVOICE WHERE ID=" + id(key));
  }
  add("GSTVehInvoiceSingle: amount less subsidy",
      "select sum(netprice-coalesce(subsidyamt,0)) from purdata where invid=" +
          id("invoice_subsidy_id"));
  add("GSTVehInvoiceSingle: amount, null subsidies",
      "select sum(netprice-coalesce(subsidyamt,0)) from purdata where invid=" +
          id("invoice_null_subsidy_id"));

  const std::string gate_pass =
      "select itype,num,idate,cname,cfname,cadd1,cadd2,cadd3,ccity,cmobile,model,color,chassis,"
      "engine from vu_invoice where id=";
  add("VehGatePass: Q_INV", gate_pass + id("gatepass_invoice_id"));
  add("CycleGatePass: Q_INV", gate_pass + id("cycle_invoice_id"));
  for (const char* key :
       {"form22_invoice_id", "hsrp_invoice_id", "sticker_invoice_id", "prorc_invoice_id"}) {
    add(std::string("DecForm / sale letter: ") + key,
        "SELECT * FROM VU_INVOICE WHERE ID=" + id(key));
  }
  add("VehTempCertificate: Q_INV", "SELECT * FROM VU_TEMPNUMBER WHERE TLINE=" + id("temp_tline"));
  add("VehTempCertificate: Karnataka",
      "SELECT * FROM VU_TEMPNUMBER WHERE TLINE=" + id("temp_tline_karnataka"));

  add_params("Wrc: mst", "select * from firm where coid = :coid", {{"coid", number("firm_id")}});
  add_params("ReceiptPrint: q_rt", "select * from vu_receipt where id = :id",
             {{"id", number("receipt_id")}});
  add_params("ReceiptPrint: q_rt, finance", "select * from vu_receipt where id = :id",
             {{"id", number("receipt_finance_id")}});
  add_params(
      "RecRegister: q_pm",
      "select * from vu_receipt where rdate >= :fromdate and rdate <= :todate "
      "order by rdate, id",
      {{"fromdate", IsoDate(Fact(f, "receipt_from"))}, {"todate", IsoDate(Fact(f, "receipt_to"))}},
      5);
  add_params("BulkReceiptPrint: q_rt", "select * from vu_bulkreceipt where id = :id order by line",
             {{"id", number("bulk_receipt_id")}}, 2);
  add_params("BulkReceiptPrint: q_rt, sub-dealer",
             "select * from vu_bulkreceipt where id = :id order by line",
             {{"id", number("bulk_receipt_subdealer_id")}}, 2);
  add_params("VinTrf: q_pm", "select * from vu_vintrf where tid = :tid order by line",
             {{"tid", number("vintrf_id")}});
  add_params("VehBtPrint: vehicles", "select * from vu_btveh where btid = :id order by line",
             {{"id", number("branch_transfer_id")}});
  add_params("VehPurBill: vehicles", "select * from vu_purveh where purid = :id order by line",
             {{"id", number("purchase_id")}}, 2);
  add_params("ProVisionalRc: Q_INV", "select * from vu_invoicehead where id = :ID",
             {{"ID", number("prorc_invoice_id")}});
  add_params("VehForm22: Q_INV",
             "select * from vu_invoicehead where id = :xid and regno is not null",
             {{"xid", number("form22_invoice_id")}});
  add_params("VehHSRP: Q_INV",
             "select * from vu_invoicehead where id = :xid and hsrp_fit_date is not null",
             {{"xid", number("hsrp_invoice_id")}});
  add_params("VehSticker: Q_INV",
             "select v.*, n.n as copy_no from vu_invoicehead v, numbers n "
             "where v.id = :ID and n.n <= :XNO order by n.n",
             {{"ID", number("sticker_invoice_id")}, {"XNO", int64_t{3}}}, 3);
  return q;
}

using data::testing::Rows;

// A money column in paise.
inline int64_t Paise(const data::Value& value) { return std::llround(data::ToDouble(value) * 100); }

// A document total against its lines, for rows of (total, round-off, sum of the lines, ...): the
// total is the lines plus the round-off, in whole rupees, the round-off within fifty paise.
// Returns whether the document was rounded.
inline bool ExpectWholeRupeeTotal(const std::vector<data::Value>& row, const std::string& sql) {
  const int64_t total = Paise(row[0]);
  const int64_t round_off = Paise(row[1]);
  EXPECT_EQ(total, Paise(row[2]) + round_off) << sql;
  EXPECT_EQ(total % 100, 0) << sql;
  EXPECT_GT(round_off, -50) << sql;
  EXPECT_LE(round_off, 50) << sql;
  return round_off != 0;
}

// A suite over the demo database that demo_gen writes once for it, with its facts; each test
// opens its own connection.
class GeneratedDemo : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new data::testing::TempFolder;
    ASSERT_EQ(
        RunGenerator("--sqlite " + folder_->File("demo.db") + " --facts " + folder_->File("facts")),
        0);
    facts_ = new Facts(ReadFacts(folder_->File("facts")));
  }
  static void TearDownTestSuite() {
    delete facts_;
    facts_ = nullptr;
    delete folder_;
    folder_ = nullptr;
  }
  void SetUp() override { db_ = data::Connection::Open(folder_->File("demo.db")); }

  std::vector<std::vector<data::Value>> Query(const std::string& sql) { return Rows(*db_, sql); }
  // The one value "sql" selects.
  data::Value One(const std::string& sql) {
    const auto rows = Query(sql);
    EXPECT_EQ(rows.size(), 1u) << sql;
    return rows.empty() ? data::Value() : rows[0][0];
  }
  int64_t Count(const std::string& sql) { return One(sql).integer(); }
  double Number(const std::string& sql) { return data::ToDouble(One(sql)); }
  std::string Id(const std::string& key) { return Fact(*facts_, key); }

  static inline data::testing::TempFolder* folder_ = nullptr;
  static inline Facts* facts_ = nullptr;
  std::unique_ptr<data::Connection> db_;
};

}  // namespace vantorel::demo::testing

#endif  // VANTOREL_TESTS_DEMO_DEMO_SUPPORT_H_
