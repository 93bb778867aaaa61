// Builds the benchmark database: the reference GST invoice and the 3,000-row stock register of
// the peer kit (its build/invoice.json and build/register.json), as SQLite tables our two
// benchmark templates read.
//
//   make_bench_data PEER_BUILD_DIR OUT.db [REGISTER_ROWS]
//
// REGISTER_ROWS (default: the kit's 3,000) repeats the register's rows to that many, for the
// scaling run.
#include <sqlite3.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using nlohmann::json;

class Db {
 public:
  explicit Db(const std::string& path) {
    std::remove(path.c_str());
    if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK)
      throw std::runtime_error(sqlite3_errmsg(db_));
    Exec("pragma journal_mode=off; pragma synchronous=off; begin");
  }
  ~Db() {
    Exec("commit");
    sqlite3_close(db_);
  }
  void Exec(const std::string& sql) {
    char* error = nullptr;
    if (sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, &error) != SQLITE_OK) {
      const std::string message = error ? error : "?";
      sqlite3_free(error);
      throw std::runtime_error(message + " in: " + sql.substr(0, 200));
    }
  }
  // Inserts one row; values are bound as text, integer or double by their JSON type.
  void Insert(const std::string& table, const std::vector<std::string>& columns,
              const std::vector<json>& values) {
    std::string sql = "insert into " + table + " (";
    std::string marks;
    for (size_t i = 0; i < columns.size(); ++i) {
      sql += (i ? "," : "") + columns[i];
      marks += i ? ",?" : "?";
    }
    sql += ") values (" + marks + ")";
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db_, sql.c_str(), -1, &statement, nullptr);
    for (size_t i = 0; i < values.size(); ++i) {
      const json& v = values[i];
      const int index = static_cast<int>(i + 1);
      if (v.is_number_integer()) {
        sqlite3_bind_int64(statement, index, v.get<int64_t>());
      } else if (v.is_number()) {
        sqlite3_bind_double(statement, index, v.get<double>());
      } else if (v.is_null()) {
        sqlite3_bind_null(statement, index);
      } else {
        const std::string text = v.is_string() ? v.get<std::string>() : v.dump();
        sqlite3_bind_text(statement, index, text.c_str(), -1, SQLITE_TRANSIENT);
      }
    }
    if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(db_));
    sqlite3_finalize(statement);
  }

 private:
  sqlite3* db_ = nullptr;
};

json Read(const std::string& path) {
  std::ifstream in(path);
  if (!in) throw std::runtime_error("cannot read " + path);
  return json::parse(in);
}

// The numbered terms as one text, a line each.
std::string Terms(const json& terms) {
  std::string text;
  int n = 0;
  for (const json& term : terms) {
    if (n > 0) text += "\n";
    text += std::to_string(++n) + ". " + term.get<std::string>();
  }
  return text;
}

// dd-mm-yyyy → yyyy-mm-dd
std::string Iso(const std::string& date) {
  return date.substr(6, 4) + "-" + date.substr(3, 2) + "-" + date.substr(0, 2);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4) {
    std::cerr << "usage: make_bench_data PEER_BUILD_DIR OUT.db [REGISTER_ROWS]\n";
    return 2;
  }
  try {
    const std::string dir = argv[1];
    const json invoice = Read(dir + "/invoice.json");
    const json reg = Read(dir + "/register.json");
    Db db(argv[2]);
    db.Exec(R"(
      create table firm (name text, tag text, addr1 text, addr2 text, phone text, email text,
                         gstin text, pan text, cin text, state text, statecode text, bank text);
      create table invoice (id integer, no text, idate date, itime text, pos text, revcharge text,
        bookingno text, salesexec text, payment text, irn text, ackno text, ackdate text,
        cname text, cadd1 text, cadd2 text, cmobile text, cgstin text, cpan text,
        cstatecode text, hypothecation text, model text, variant text, colour text,
        chassis text, engine text, keyno text, battery text, mfg text, fuel text, cc text,
        taxable numeric(12,2), cgst numeric(12,2), sgst numeric(12,2), total numeric(12,2),
        roundoff numeric(12,2), grand numeric(12,2), qrdata text, terms text);
      create table invoiceline (invid integer, sr integer, descr text, hsn text, qty integer,
        rate numeric(12,2), disc numeric(12,2), taxable numeric(12,2), cgstrate numeric(5,2),
        cgst numeric(12,2), sgstrate numeric(5,2), sgst numeric(12,2), total numeric(12,2));
      create table register (title text, subtitle text);
      create table stock (sr integer, pn text, descr text, loc text, hsn text, bal integer,
        rate numeric(12,2), value numeric(12,2));
    )");
    const json& c = invoice["company"];
    db.Insert("firm",
              {"name", "tag", "addr1", "addr2", "phone", "email", "gstin", "pan", "cin", "state",
               "statecode", "bank"},
              {c["name"], c["tag"], c["addr1"], c["addr2"], c["phone"], c["email"], c["gstin"],
               c["pan"], c["cin"], c["state"], c["stateCode"], c["bank"]});
    const json& cu = invoice["customer"];
    const json& ve = invoice["vehicle"];
    const json& t = invoice["totals"];
    // The e-invoice QR carries the same payload the peer kit encodes.
    const json qr = {{"SellerGstin", c["gstin"]},
                     {"BuyerGstin", "URP"},
                     {"DocNo", invoice["no"]},
                     {"DocTyp", "INV"},
                     {"DocDt", "15/11/2025"},
                     {"TotInvVal", t["grand"]},
                     {"ItemCnt", invoice["lines"].size()},
                     {"MainHsnCode", "87112019"},
                     {"Irn", invoice["irn"]},
                     {"IrnDt", "2025-11-15 11:44:00"}};
    db.Insert(
        "invoice",
        {"id",        "no",      "idate",   "itime",  "pos",        "revcharge",     "bookingno",
         "salesexec", "payment", "irn",     "ackno",  "ackdate",    "cname",         "cadd1",
         "cadd2",     "cmobile", "cgstin",  "cpan",   "cstatecode", "hypothecation", "model",
         "variant",   "colour",  "chassis", "engine", "keyno",      "battery",       "mfg",
         "fuel",      "cc",      "taxable", "cgst",   "sgst",       "total",         "roundoff",
         "grand",     "qrdata",  "terms"},
        {1,
         invoice["no"],
         Iso(invoice["date"]),
         invoice["time"],
         invoice["placeOfSupply"],
         invoice["reverseCharge"],
         invoice["bookingNo"],
         invoice["salesExec"],
         invoice["payment"],
         invoice["irn"],
         invoice["ackNo"],
         invoice["ackDate"],
         cu["name"],
         cu["addr1"],
         cu["addr2"],
         cu["mobile"],
         cu["gstin"],
         cu["pan"],
         cu["stateCode"],
         cu["hypothecation"],
         ve["model"],
         ve["variant"],
         ve["colour"],
         ve["chassis"],
         ve["engine"],
         ve["keyNo"],
         ve["battery"],
         ve["mfg"],
         ve["fuel"],
         ve["cc"],
         t["taxable"],
         t["cgst"],
         t["sgst"],
         t["total"],
         t["roundOff"],
         t["grand"],
         qr.dump(),
         Terms(invoice["terms"])});
    int sr = 0;
    for (const json& l : invoice["lines"]) {
      db.Insert("invoiceline",
                {"invid", "sr", "descr", "hsn", "qty", "rate", "disc", "taxable", "cgstrate",
                 "cgst", "sgstrate", "sgst", "total"},
                {1, ++sr, l["desc"], l["hsn"], l["qty"], l["rate"], l["disc"], l["taxable"],
                 l["cgstRate"], l["cgst"], l["sgstRate"], l["sgst"], l["total"]});
    }
    db.Insert("register", {"title", "subtitle"}, {reg["title"], reg["subtitle"]});
    const json& rows = reg["rows"];
    const size_t count = argc == 4 ? std::stoul(argv[3]) : rows.size();
    for (size_t i = 0; i < count; ++i) {
      const json& r = rows[i % rows.size()];
      db.Insert("stock", {"sr", "pn", "descr", "loc", "hsn", "bal", "rate", "value"},
                {i + 1, r["pn"], r["desc"], r["loc"], r["hsn"], r["bal"], r["rate"], r["value"]});
    }
  } catch (const std::exception& error) {
    std::cerr << "make_bench_data: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
