#include "reports/catalogue.h"

#include <sstream>
#include <stdexcept>
#include <utility>

namespace vantorel {
namespace {

constexpr Lookup kChecked = Lookup::kChecked;

// The queries the families share: the SQL of an invoice in "Q_INV" (dealer forms, delivery
// documents) or "Q_PM" (sub-dealer forms); delivery documents selected by parameters of "Q_INV"
// when the template has it.
std::vector<QueryUse> Sql(const char* query) { return {{.name = query, .sql = true}}; }

std::vector<QueryUse> DeliveryParameters(std::vector<Use> parameters) {
  return {{.name = "Q_INV", .lookup = Lookup::kChecked, .parameters = std::move(parameters)}};
}

// The workshop's documents select their rows by parameters of one query, each tested for before
// it is set: a template without the query or one of them prints nothing.
std::vector<QueryUse> BillParameters(const char* query, std::vector<const char*> names) {
  QueryUse use{.name = query, .lookup = Lookup::kChecked};
  for (const char* name : names) use.parameters.emplace_back(name, Lookup::kChecked);
  return {use};
}

// A function's static, so that tests instantiated before main() find it built.
const std::vector<PrintMethodFacts>& Catalogue() {
  static const std::vector<PrintMethodFacts> catalogue = {
      // The two model documents.
      {.method = "Challan_Customer",
       .templates = {"challancus", "chlgatepass"},
       .memos = {"WORDS"},
       .queries = {{.name = "Q_CHL", .sql = true}},
       .pictures = {"logo"},
       .examples = {{"challan-gatepass", "chlgatepass", "{challan_customer_id} {logo}"},
                    {"challan", "challancus", "{challan_customer_id} {logo}"}}},
      {.method = "ReceiptPrint",
       .templates = {"receipt"},
       .memos = {"inwords"},
       .queries = {{.name = "q_rt", .lookup = kChecked, .parameters = {{"id", kChecked}}}},
       .examples = {{"receipt", "receipt", "{receipt_id}"}}},

      // Registers.
      {.method = "EnqGroupwise",
       .templates = {"enqgroupwise"},
       .memos = {"Memo2"},
       .queries = {{.name = "enq", .sql = true}},
       .examples = {{"enquiry-groupwise", "enqgroupwise", "{enquiry_from} {enquiry_to}"}}},
      {.method = "EnqPending",
       .templates = {"enqpending"},
       .memos = {"Memo2"},
       .queries = {{.name = "enq", .sql = true}},
       .examples = {{"enquiry-matured", "enqpending", "{enquiry_from} {enquiry_to} 1"},
                    {"enquiry-pending", "enqpending", "{enquiry_from} {enquiry_to} 0"}}},
      {.method = "EnqBooking",
       .templates = {"enqbooking"},
       .memos = {"Memo2"},
       .queries = {{.name = "enq", .sql = true}},
       .examples = {{"enquiry-booking", "enqbooking", "{enquiry_from} {enquiry_to}"}}},
      {.method = "RecRegister",
       .templates = {"recregister"},
       .memos = {"Memo2"},
       .queries = {{.name = "q_pm", .lookup = kChecked, .parameters = {"fromdate", "todate"}}},
       .examples = {{"receipt-register", "recregister", "{receipt_from} {receipt_to}"}}},

      // Purchases and transfers.
      {.method = "VehPurBill",
       .templates = {"vehpurbill"},
       .queries = {{.name = "q_pm", .sql = true}},
       .examples = {{"purchase-bill", "vehpurbill", "{purchase_id}"}}},
      {.method = "VehPurBillGST",
       .templates = {"vehpurbillgst"},
       .queries = {{.name = "q_pm", .sql = true}},
       .examples = {{"purchase-bill-gst", "vehpurbillgst", "{purchase_id}"}}},
      {.method = "VinTrf",
       .templates = {"vintrf"},
       .queries = {{.name = "q_pm", .lookup = kChecked, .parameters = {{"tid", kChecked}}}},
       .examples = {{"vehicle-transfer", "vintrf", "{vintrf_id}"}}},
      {.method = "VehBtPrint",
       .templates = {"vehbtprint"},
       .queries = {{.name = "q_pm", .sql = true}},
       .examples = {{"branch-transfer", "vehbtprint", "{branch_transfer_id}"}}},

      // Invoices.
      {.method = "VehInvoice2in1",
       .templates = {"vehinvoice"},
       .memos = {"WAMT", "WAMT1"},
       .queries = Sql("Q_INV"),
       .examples = {{"invoice-2in1", "vehinvoice", "{invoice_id}"}}},
      {.method = "VehInvoicewith21",
       .templates = {"vehinvoicewith21"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .examples = {{"invoice-with21", "vehinvoicewith21", "{invoice_id}"}}},
      {.method = "VehInvoiceSingle",
       .templates = {"vehinvoicesingle"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .examples = {{"invoice-single", "vehinvoicesingle", "{invoice_id}"}}},
      {.method = "VehInvoiceHero",
       .templates = {"vehinvoicehero"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .examples = {{"invoice-hero", "vehinvoicehero", "{hero_invoice_id}"}}},
      {.method = "VehInvoiceHeroSubdealer",
       .templates = {"vehinvoiceherosubdealer"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .examples = {{"invoice-hero-subdealer", "vehinvoiceherosubdealer",
                     "{hero_subdealer_invoice_id}"}}},
      {.method = "GSTVehInvoiceSingle",
       .templates = {"gstvehinvoicesingle"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .pictures = {"logo"},
       .examples = {{"gst-invoice-single", "gstvehinvoicesingle", "{invoice_subsidy_id} {logo}"}}},
      {.method = "CycleInvoice",
       .templates = {"cycleinvoice"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .pictures = {"logo"},
       .examples = {{"cycle-invoice", "cycleinvoice", "{cycle_invoice_id} {logo}"}}},
      {.method = "GSTVehInvoiceHero",
       .templates = {"gstvehinvoicehero"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .examples = {{"gst-invoice-hero", "gstvehinvoicehero", "{hero_invoice_id}"}}},
      {.method = "GSTVehInvoiceHeroSubdealer",
       .templates = {"gstvehinvoiceherosubdealer"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .examples = {{"gst-invoice-hero-subdealer", "gstvehinvoiceherosubdealer",
                     "{hero_subdealer_invoice_id}"}}},
      {.method = "GSTVehInvoice2in1",
       .templates = {"gstvehinvoice"},
       .memos = {"WAMT", "WAMT1"},
       .queries = Sql("Q_INV"),
       .pictures = {"logo"},
       .examples = {{"gst-invoice-2in1", "gstvehinvoice", "{invoice_id} {logo}"}}},
      {.method = "GSTVehInvoicewith21",
       .templates = {"gstvehinvoicewith21"},
       .memos = {"WAMT"},
       .queries = Sql("Q_INV"),
       .pictures = {"logo"},
       .examples = {{"gst-invoice-with21", "gstvehinvoicewith21",
                     "{invoice_after_revision_id} {logo}"}}},
      {.method = "VehInvoiceSubDealer",
       .templates = {"vehinvoicesub"},
       .memos = {"AMT"},
       .queries = Sql("Q_PM"),
       .examples = {{"invoice-subdealer", "vehinvoicesub", "{subdealer_invoice_id}"}}},
      {.method = "GSTVehInvoiceSubDealer",
       .templates = {"gstvehinvoicesub"},
       .memos = {"AMT"},
       .queries = Sql("Q_PM"),
       .pictures = {"logo"},
       .examples = {{"gst-invoice-subdealer", "gstvehinvoicesub",
                     "{subdealer_igst_invoice_id} {logo}"}}},
      {.method = "CycleInvoiceSubDealer",
       .templates = {"cycleinvoicesub"},
       .memos = {"AMT"},
       .queries = Sql("Q_PM"),
       .pictures = {"logo"},
       .examples = {{"cycle-invoice-subdealer", "cycleinvoicesub",
                     "{cycle_subdealer_invoice_id} {logo}"}}},
      {.method = "VehSubDealerPackingList",
       .templates = {"vehsubpackinglist"},
       .memos = {"AMT"},
       .queries = Sql("Q_PM"),
       .examples = {{"packing-list", "vehsubpackinglist", "{packing_list_id}"}}},
      {.method = "EInvoiceVehicle",
       .templates = {"einvoicevehicle"},
       .memos = {"AMT"},
       .queries = Sql("Q_PM"),
       .pictures = {"logo", "qrcode"},
       .examples = {{"einvoice", "einvoicevehicle", "{einvoice_id} {logo} {qr}"}}},

      // Delivery documents.
      {.method = "ChallanSub",
       .templates = {"challansub"},
       .memos = {"AMT"},
       .queries = {{.name = "q_pm", .sql = true}},
       .pictures = {"logo"},
       .examples = {{"challan-subdealer", "challansub", "{challan_sub_id} {logo}"}}},
      {.method = "ProVisionalRc",
       .templates = {"prorc"},
       .queries = DeliveryParameters({"ID"}),
       .examples = {{"provisional-rc", "prorc", "{prorc_invoice_id}"}}},
      {.method = "VehGatePass",
       .templates = {"vehgatepass"},
       .queries = Sql("Q_INV"),
       .examples = {{"gate-pass", "vehgatepass", "{gatepass_invoice_id}"}}},
      {.method = "CycleGatePass",
       .templates = {"cyclegatepass"},
       .queries = Sql("Q_INV"),
       .pictures = {"logo"},
       .examples = {{"cycle-gate-pass", "cyclegatepass", "{cycle_invoice_id} {logo}"}}},
      {.method = "DecForm",
       .templates = {"decform"},
       .queries = Sql("Q_INV"),
       .examples = {{"declaration", "decform", "{invoice_id}"}}},
      {.method = "VehSticker",
       .templates = {"vehsticker"},
       .queries = DeliveryParameters({"ID", "XNO"}),
       .pictures = {"picpath"},
       .examples = {{"stickers", "vehsticker", "{sticker_invoice_id} 4"}}},
      {.method = "VehSaleLetter",
       .templates = {"vehsaleletter"},
       .queries = Sql("Q_INV"),
       .examples = {{"sale-letter", "vehsaleletter", "{invoice_id}"}}},
      {.method = "CycleSaleLetter",
       .templates = {"cyclesaleletter"},
       .queries = Sql("Q_INV"),
       .pictures = {"logo"},
       .examples = {{"cycle-sale-letter", "cyclesaleletter", "{cycle_invoice_id} {logo}"}}},
      {.method = "VehForm22",
       .templates = {"form22"},
       .queries = DeliveryParameters({"xid"}),
       .examples = {{"form22", "form22", "{form22_invoice_id}"}}},
      {.method = "VehHSRP",
       .templates = {"hsrp"},
       .queries = DeliveryParameters({"xid"}),
       .examples = {{"hsrp", "hsrp", "{hsrp_invoice_id}"}}},
      {.method = "VehTempCertificate",
       .templates = {"tempcert", "tempcertsingle"},
       .queries = Sql("Q_INV"),
       .examples = {{"temp-certificate-single", "tempcertsingle", "{temp_tline} Y"},
                    {"temp-certificate", "tempcert", "{temp_tline} N"}}},

      // Firm document and bulk receipts.
      {.method = "Wrc",
       .templates = {"wrc"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {"coid"}}},
       .examples = {{"firm", "wrc", ""}}},
      {.method = "BulkReceiptPrint",
       .templates = {"bulkreceipt", "bulkreceiptdetail"},
       .queries = {{.name = "q_rt", .lookup = kChecked, .parameters = {{"id", kChecked}}}},
       .examples = {{"bulk-receipt", "bulkreceipt", "{bulk_receipt_id} R"},
                    {"bulk-receipt-detail", "bulkreceiptdetail", "{bulk_receipt_id} D"}}},

      // Spares purchase and stock documents, parts stock reports.

      // Job cards, job invoices, counter invoices, service and technician lists.
      {.method = "w_jobcardprint",
       .templates = {"w_jobcardprint"},
       .queries = BillParameters("mst", {"job_srl"}),
       .pictures = {"logo"},
       .examples = {{"job-card", "w_jobcardprint", "{jobcard_srl} {logo}"}}},
      {.method = "w_jobinvPrint",
       .templates = {"w_jobinvprint"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"job-invoice", "w_jobinvprint", "{jobinv_id} {jobinv_rv} {jobinv_amt}"}}},
      {.method = "w_jobinvPrintHero",
       .templates = {"w_jobinvprinthero", "w_jobinvprintheroigst"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"job-invoice-hero", "w_jobinvprinthero",
                     "{jobinv_id} {jobinv_rv} {jobinv_amt} 0"},
                    {"job-invoice-hero-igst", "w_jobinvprintheroigst",
                     "{jobinv_igst_id} {jobinv_igst_rv} {jobinv_igst_amt} 1"}}},
      {.method = "custom_w_jobinvPrint",
       .templates = {"custom_w_jobinvprint"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"job-invoice-custom", "custom_w_jobinvprint",
                     "{jobinv_credit_id} {jobinv_credit_rv} {jobinv_credit_amt}"}}},
      {.method = "w_proinvoicePrint",
       .templates = {"w_proinvoice"},
       .queries = BillParameters("job", {"job_srl"}),
       .examples = {{"proforma-invoice", "w_proinvoice", "{proforma_srl}"}}},
      {.method = "w_gstjobinvPrint",
       .templates = {"w_gstjobinvprint"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"gst-job-invoice", "w_gstjobinvprint",
                     "{jobinv_id} {jobinv_rv} {jobinv_amt} w_gstjobinvprint"}}},
      {.method = "Apro_jobinvPrint",
       .templates = {"jobinvprint", "jobinvprint_wmrp"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .pictures = {"logo"},
       .examples = {{"job-invoice-mrp", "jobinvprint",
                     "{jobinv_id} {jobinv_rv} {jobinv_amt} {logo} 0"},
                    {"job-invoice-without-mrp", "jobinvprint_wmrp",
                     "{jobinv_credit_id} {jobinv_credit_rv} {jobinv_credit_amt} {logo} 1"}}},
      {.method = "EInvoiceService",
       .templates = {"einvoiceservice"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .pictures = {"logo", "qrcode"},
       .examples = {{"einvoice-service", "einvoiceservice",
                     "{einvoice_service_id} {einvoice_service_rv} {einvoice_service_amt} {logo} "
                     "{qr}"}}},
      {.method = "w_counterprint",
       .templates = {"w_counterprint"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"counter-invoice", "w_counterprint",
                     "{counter_id} {counter_rv} {counter_amt}"}}},
      {.method = "w_counterprinthero",
       .templates = {"w_counterprinthero"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"counter-invoice-hero", "w_counterprinthero",
                     "{counter_id} {counter_rv} {counter_amt}"}}},
      {.method = "w_gstcounterprinthero",
       .templates = {"w_gstcounterprinthero"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"gst-counter-invoice-hero", "w_gstcounterprinthero",
                     "{counter_igst_id} {counter_igst_rv} {counter_igst_amt}"}}},
      {.method = "custom_w_counterprint",
       .templates = {"custom_w_counterprint"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"counter-invoice-custom", "custom_w_counterprint",
                     "{counter_b2b_id} {counter_b2b_rv} {counter_b2b_amt}"}}},
      {.method = "w_gstcounterprint",
       .templates = {"w_gstcounterprint"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .examples = {{"gst-counter-invoice", "w_gstcounterprint",
                     "{counter_b2b_id} {counter_b2b_rv} {counter_b2b_amt} {logo}"}}},
      {.method = "Apro_counterprint",
       .templates = {"counterprint", "counterprint_wmrp"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"ma_id", "ma_rv"}),
       .pictures = {"logo"},
       .examples = {{"counter-invoice-mrp", "counterprint",
                     "{counter_id} {counter_rv} {counter_amt} {logo} 0"},
                    {"counter-invoice-without-mrp", "counterprint_wmrp",
                     "{counter_b2b_id} {counter_b2b_rv} {counter_b2b_amt} {logo} 1"}}},
      {.method = "EInvoiceClaim",
       .templates = {"einvoiceclaim"},
       .memos = {"WORDS"},
       .queries = BillParameters("mst", {"docid", "docfrom"}),
       .pictures = {"logo", "qrcode"},
       .examples = {{"einvoice-claim", "einvoiceclaim",
                     "{claim_docid} {claim_docfrom} {claim_amt} {logo} {qr}"}}},
      {.method = "w_ServiceReport",
       .templates = {"w_servicefollowup"},
       .memos = {{"titel", kChecked}},
       .examples = {{"service-followup", "w_servicefollowup", "{followup_from} {followup_to}"}}},
      {.method = "w_mechreqlist",
       .templates = {"w_mechreqlist"},
       .memos = {"TITLE"},
       .queries = BillParameters("mst", {"mechid", "fdt", "tdt", "parttype"}),
       .examples = {{"mechanic-requisitions", "w_mechreqlist",
                     "{mechanic_id} {mechanic_name} {req_part_type} {list_from} {list_to}"}}},
      {.method = "w_mechlablist",
       .templates = {"w_mechlablist"},
       .memos = {"TITLE"},
       .queries = BillParameters("mst", {"mechid", "fdt", "tdt"}),
       .examples = {{"mechanic-labour", "w_mechlablist",
                     "{mechanic_id} {mechanic_name} {list_from} {list_to}"}}},
      {.method = "w_superreqlist",
       .templates = {"w_superreqlist"},
       .memos = {"TITLE"},
       .queries = BillParameters("mst", {"mechid", "fdt", "tdt"}),
       .examples = {{"supervisor-requisitions", "w_superreqlist",
                     "{supervisor_id} {supervisor_name} {list_from} {list_to}"}}},
      {.method = "w_superlablist",
       .templates = {"w_superlablist"},
       .memos = {"TITLE"},
       .queries = BillParameters("mst", {"mechid", "fdt", "tdt"}),
       .examples = {{"supervisor-labour", "w_superlablist",
                     "{supervisor_id} {supervisor_name} {list_from} {list_to}"}}},
      {.method = "w_history",
       .templates = {"w_history"},
       .queries = BillParameters("mst", {"chassisno"}),
       .examples = {{"service-history", "w_history", "{history_chassis}"}}},

      // Ledgers, trial balances, vouchers, cheques and notes.

      // VAT and C-form returns, GST summaries, quotations, top lists and QR labels.
      {.method = "VAT23print",
       .templates = {"vat23"},
       .memos = {"Memo13", "Memo40"},
       .queries = {{.name = "QRY", .sql = true}, {.name = "QRY1", .sql = true}},
       .examples = {{"vat-annexure-j1", "vat23",
                     "{vat23_sql} {vat23_sql2} {vat_fy_from} {vat_fy_to}"}}},
      {.method = "VAT24print",
       .templates = {"vat24"},
       .memos = {"Memo13", "Memo40"},
       .queries = {{.name = "QRY", .sql = true}, {.name = "QRY1", .sql = true}},
       .examples = {{"vat-annexure-j2", "vat24",
                     "{vat24_sql} {vat24_sql2} {vat_fy_from} {vat_fy_to}"}}},
      {.method = "Vat18Print",
       .templates = {"vat18"},
       .memos = {"Memo10"},
       .queries = {{.name = "QRY", .sql = true}},
       .examples = {{"vat-sales-register", "vat18",
                     "{vat18_sql} {vat_quarter_from} {vat_quarter_to}"}}},
      {.method = "Vat19Print",
       .templates = {"vat19"},
       .memos = {"Memo10"},
       .queries = {{.name = "QRY", .sql = true}},
       .examples = {{"vat-purchase-register", "vat19",
                     "{vat19_sql} {vat_quarter_from} {vat_quarter_to}"}}},
      {.method = "PrintCformList",
       .templates = {"cformlist"},
       .memos = {"TITEL"},
       .queries = {{.name = "mst", .sql = true}},
       .examples = {{"c-forms", "cformlist",
                     "{cform_sql} {vat_fy_from} {vat_fy_to} {cform_title}"}}},
      {.method = "PrintVat16",
       .templates = {"vat16"},
       .queries = {{.name = "payment",
                    .lookup = kChecked,
                    .parameters = {{"xqno", kChecked}, {"xmm", kChecked}}},
                   {.name = "wsheet",
                    .lookup = kChecked,
                    .parameters = {{"xmm", kChecked}, {"xyy", kChecked}}},
                   {.name = "cst",
                    .lookup = kChecked,
                    .parameters = {{"xmm", kChecked}, {"xyy", kChecked}}}},
       .examples = {{"vat-return", "vat16", "{vat16_qno} {vat16_mm} {vat16_yy}"}}},
      {.method = "GstSaleSummary",
       .templates = {"gstsalesummary"},
       .queries = {{.name = "sumtax", .lookup = kChecked, .parameters = {"xdt", "ydt"}},
                   {.name = "sumhsn", .parameters = {"xdt", "ydt"}}},
       .examples = {{"gst-sales-summary", "gstsalesummary", "{gst_from} {gst_to}"}}},
      {.method = "GstPurchaseSummary",
       .templates = {"gstpurchasesummary"},
       .queries = {{.name = "sumtax", .lookup = kChecked, .parameters = {"xdt", "ydt"}},
                   {.name = "sumhsn", .parameters = {"xdt", "ydt"}}},
       .examples = {{"gst-purchase-summary", "gstpurchasesummary", "{gst_from} {gst_to}"}}},
      {.method = "WS_TOPLIST",
       .templates = {"ws_toplist"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"td_id", kChecked}}}},
       .examples = {{"workshop-top-parts", "ws_toplist", "{toplist_id}"},
                    {"workshop-top-mechanics", "ws_toplist", "{toplist_mechanics_id}"}}},
      {.method = "QuotePrint",
       .templates = {"quoteprint"},
       .queries = {{.name = "qry", .lookup = kChecked, .parameters = {{"xid", kChecked}}}},
       .examples = {{"quotation", "quoteprint", "{quotation_id}"}}},
      {.method = "PartsQrPrint",
       .templates = {"w_partsqrprint", "w_partsqrprintroll"},
       .queries = {{.name = "qry", .lookup = kChecked, .sql = true}},
       .pictures = {"picpath"},
       .examples = {{"parts-labels", "w_partsqrprint", "{parts_qr_sql} 0"},
                    {"parts-labels-roll", "w_partsqrprintroll", "{parts_qr_roll_sql} 1"}}},
      {.method = "ChassisQrPrint",
       .templates = {"chassisqrprint", "chassisqrprintroll"},
       .queries = {{.name = "qry", .lookup = kChecked, .sql = true}},
       .pictures = {"picpath"},
       .examples = {{"chassis-labels", "chassisqrprint", "{chassis_qr_sql} 0"},
                    {"chassis-labels-roll", "chassisqrprintroll", "{chassis_qr_roll_sql} 1"}}},

  };
  return catalogue;
}

}  // namespace

std::span<const PrintMethodFacts> PrintMethodCatalogue() { return Catalogue(); }

const PrintMethodFacts* FindPrintMethod(std::string_view method) {
  for (const PrintMethodFacts& facts : Catalogue()) {
    if (method == facts.method) return &facts;
  }
  return nullptr;
}

const PrintMethodFacts* FindTemplateUser(std::string_view template_name) {
  for (const PrintMethodFacts& facts : Catalogue()) {
    for (const char* name : facts.templates) {
      if (template_name == name) return &facts;
    }
  }
  return nullptr;
}

std::vector<std::string> ExampleArguments(const ExampleCall& call,
                                          const std::map<std::string, std::string>& values) {
  std::vector<std::string> arguments;
  std::istringstream words(call.arguments);
  std::string word;
  while (words >> word) {
    for (size_t open = word.find('{'); open != std::string::npos; open = word.find('{', open)) {
      const size_t close = word.find('}', open);
      if (close == std::string::npos) break;
      const std::string key = word.substr(open + 1, close - open - 1);
      const auto value = values.find(key);
      if (value == values.end()) throw std::out_of_range("no value for {" + key + "}");
      word.replace(open, close - open + 1, value->second);
      open += value->second.size();
    }
    arguments.push_back(word);
  }
  return arguments;
}

namespace {

std::string Named(const char* name, Lookup lookup) {
  return std::string("`") + name + "`" + (lookup == Lookup::kChecked ? " (checked)" : "");
}

template <typename T, typename F>
std::string Joined(const std::vector<T>& items, F text) {
  std::string joined;
  for (const T& item : items) joined += (joined.empty() ? "" : ", ") + text(item);
  return joined;
}

}  // namespace

std::string CatalogueTable() {
  std::string table =
      "| Method | Templates | Memos | Queries | Pictures |\n"
      "|---|---|---|---|---|\n";
  for (const PrintMethodFacts& method : Catalogue()) {
    auto use = [](const Use& u) { return Named(u.name, u.lookup); };
    auto query = [&](const QueryUse& q) {
      std::string text = Named(q.name, q.lookup) + (q.sql ? " SQL" : "");
      if (!q.parameters.empty()) text += ": " + Joined(q.parameters, use);
      return text;
    };
    table += std::string("| `") + method.method + "` | " +
             Joined(method.templates, [](const char* t) { return std::string(t); }) + " | " +
             Joined(method.memos, use) + " | " + Joined(method.queries, query) + " | " +
             Joined(method.pictures, use) + " |\n";
  }
  return table;
}

}  // namespace vantorel
