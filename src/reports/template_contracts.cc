#include "reports/template_contracts.h"

#include <cctype>
#include <string_view>

namespace vantorel {

std::span<const TemplateContract> SalesContracts() {
  static const std::vector<TemplateContract> contracts = {
      {"challancus", "Challan_Customer", {"WORDS"}, {"Q_CHL"}, {"logo"}},
      {"chlgatepass", "Challan_Customer", {"WORDS"}, {"Q_CHL"}, {"logo"}},
      {"receipt", "ReceiptPrint", {"inwords"}, {"q_rt:id"}, {}},
      {"enqgroupwise", "EnqGroupwise", {"Memo2"}, {"enq"}, {}},
      {"enqpending", "EnqPending", {"Memo2"}, {"enq"}, {}},
      {"enqbooking", "EnqBooking", {"Memo2"}, {"enq"}, {}},
      {"recregister", "RecRegister", {"Memo2"}, {"q_pm:fromdate,todate"}, {}},
      {"vehpurbill", "VehPurBill", {}, {"q_pm"}, {}},
      {"vehpurbillgst", "VehPurBillGST", {}, {"q_pm"}, {}},
      {"vintrf", "VinTrf", {}, {"q_pm:tid"}, {}},
      {"vehbtprint", "VehBtPrint", {}, {"q_pm"}, {}},
      {"vehinvoice", "VehInvoice2in1", {"WAMT", "WAMT1"}, {"Q_INV"}, {}},
      {"vehinvoicewith21", "VehInvoicewith21", {"WAMT"}, {"Q_INV"}, {}},
      {"vehinvoicesingle", "VehInvoiceSingle", {"WAMT"}, {"Q_INV"}, {}},
      {"vehinvoicehero", "VehInvoiceHero", {"WAMT"}, {"Q_INV"}, {}},
      {"vehinvoiceherosubdealer", "VehInvoiceHeroSubdealer", {"WAMT"}, {"Q_INV"}, {}},
      {"gstvehinvoicesingle", "GSTVehInvoiceSingle", {"WAMT"}, {"Q_INV"}, {"logo"}},
      {"cycleinvoice", "CycleInvoice", {"WAMT"}, {"Q_INV"}, {"logo"}},
      {"gstvehinvoicehero", "GSTVehInvoiceHero", {"WAMT"}, {"Q_INV"}, {}},
      {"gstvehinvoiceherosubdealer", "GSTVehInvoiceHeroSubdealer", {"WAMT"}, {"Q_INV"}, {}},
      {"gstvehinvoice", "GSTVehInvoice2in1", {"WAMT", "WAMT1"}, {"Q_INV"}, {"logo"}},
      {"gstvehinvoicewith21", "GSTVehInvoicewith21", {"WAMT"}, {"Q_INV"}, {"logo"}},
      {"vehinvoicesub", "VehInvoiceSubDealer", {"AMT"}, {"Q_PM"}, {}},
      {"gstvehinvoicesub", "GSTVehInvoiceSubDealer", {"AMT"}, {"Q_PM"}, {"logo"}},
      {"cycleinvoicesub", "CycleInvoiceSubDealer", {"AMT"}, {"Q_PM"}, {"logo"}},
      {"vehsubpackinglist", "VehSubDealerPackingList", {"AMT"}, {"Q_PM"}, {}},
      {"einvoicevehicle", "EInvoiceVehicle", {"AMT"}, {"Q_PM"}, {"logo", "qrcode"}},
      {"challansub", "ChallanSub", {"AMT"}, {"q_pm"}, {"logo"}},
      {"prorc", "ProVisionalRc", {}, {"Q_INV:ID"}, {}},
      {"vehgatepass", "VehGatePass", {}, {"Q_INV"}, {}},
      {"cyclegatepass", "CycleGatePass", {}, {"Q_INV"}, {"logo"}},
      {"decform", "DecForm", {}, {"Q_INV"}, {}},
      {"vehsticker", "VehSticker", {}, {"Q_INV:ID,XNO"}, {"picpath"}},
      {"vehsaleletter", "VehSaleLetter", {}, {"Q_INV"}, {}},
      {"cyclesaleletter", "CycleSaleLetter", {}, {"Q_INV"}, {"logo"}},
      {"form22", "VehForm22", {}, {"Q_INV:xid"}, {}},
      {"hsrp", "VehHSRP", {}, {"Q_INV:xid"}, {}},
      {"tempcert", "VehTempCertificate", {}, {"Q_INV"}, {}},
      {"tempcertsingle", "VehTempCertificate", {}, {"Q_INV"}, {}},
      {"wrc", "Wrc", {}, {"mst:coid"}, {}},
      {"bulkreceipt", "BulkReceiptPrint", {}, {"q_rt:id"}, {}},
      {"bulkreceiptdetail", "BulkReceiptPrint", {}, {"q_rt:id"}, {}},
  };
  return contracts;
}

const TemplateContract* FindContract(const std::string& template_name) {
  for (const TemplateContract& contract : SalesContracts()) {
    if (template_name == contract.template_name) return &contract;
  }
  return nullptr;
}

std::vector<report::Problem> CheckContract(const report::CompiledReport& report,
                                           const TemplateContract& contract) {
  std::vector<report::Problem> problems;
  const std::string method = contract.method;
  auto missing = [&](const std::string& what, const std::string& hint) {
    problems.push_back({report.file, 0, method + " needs " + what, hint});
  };
  if (report.FindDatabase("DMSDB") < 0) {
    missing("the database \"DMSDB\"", "add <database name=\"DMSDB\"/>");
  }
  for (const char* memo : contract.memos) {
    const report::ComponentEntry* entry = report.Find(memo);
    if (entry == nullptr || entry->kind != report::ComponentEntry::Kind::kMemo) {
      missing(std::string("a text named \"") + memo + "\"",
              std::string("add <text name=\"") + memo + "\" …>");
    }
  }
  for (std::string_view spec : contract.queries) {
    const size_t colon = spec.find(':');
    const std::string name(spec.substr(0, colon));
    const int query = report.FindQuery(name);
    if (query < 0) {
      missing("a query named \"" + name + "\"", "add <query name=\"" + name + "\">");
      continue;
    }
    if (colon == std::string_view::npos) continue;
    std::string_view params = spec.substr(colon + 1);
    while (!params.empty()) {
      const size_t comma = params.find(',');
      const std::string param(params.substr(0, comma));
      params = comma == std::string_view::npos ? std::string_view() : params.substr(comma + 1);
      bool found = false;
      for (const report::CompiledParam& declared :
           report.queries[static_cast<size_t>(query)].params) {
        std::string a = declared.name, b = param;
        for (char& c : a) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        for (char& c : b) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        found |= a == b;
      }
      if (!found) {
        missing("the parameter \"" + param + "\" of query \"" + name + "\"",
                "add <param name=\"" + param + "\" …/> to the query");
      }
    }
  }
  for (const char* variable : contract.variables) {
    if (report.FindVariable("Company", variable) < 0) {
      missing(std::string("the variable Company.") + variable,
              std::string("add <variable category=\"Company\" name=\"") + variable +
                  "\" value='\"\"'/>");
    }
  }
  return problems;
}

}  // namespace vantorel
