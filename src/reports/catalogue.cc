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
      {.method = "w_purchaseCheck",
       .templates = {"w_purchasecheck"},
       .queries = {{.name = "q", .lookup = kChecked, .parameters = {{"pu_id", kChecked}}}},
       .examples = {{"purchase-check", "w_purchasecheck", "{spares_purchase_id}"}}},
      {.method = "w_purchaseCheckGST",
       .templates = {"w_purchasecheckgst"},
       .queries = {{.name = "q", .lookup = kChecked, .parameters = {{"pu_id", kChecked}}}},
       .examples = {{"purchase-check-gst", "w_purchasecheckgst", "{spares_purchase_igst_id}"}}},
      {.method = "w_partPlacementList",
       .templates = {"w_partplacementlist"},
       .queries = {{.name = "q", .lookup = kChecked, .parameters = {{"pu_id", kChecked}}}},
       .examples = {{"part-placement-list", "w_partplacementlist", "{spares_purchase_id}"}}},
      {.method = "w_stocktransfer",
       .templates = {"w_stocktransfer"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"stk_id", kChecked}}}},
       .examples = {{"stock-transfer", "w_stocktransfer", "{stock_transfer_id}"}}},
      {.method = "w_purchaseorder",
       .templates = {"w_purchaseorder", "w_poview"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"od_id", kChecked}}}},
       .examples = {{"purchase-order", "w_purchaseorder", "{purchase_order_id}"},
                    {"purchase-order-view", "w_poview", "{purchase_order_id}"}}},
      {.method = "w_estimate",
       .templates = {"w_estimate"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"em_id", kChecked}}}},
       .examples = {{"estimate", "w_estimate", "{estimate_id}"}}},
      {.method = "Apro_WsPrintPurRet",
       .templates = {"wsprintpurret"},
       .memos = {"WORDS"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"pu_id", kChecked}}}},
       .pictures = {"logo"},
       .examples = {{"purchase-return", "wsprintpurret",
                     "{purchase_return_id} {purchase_return_amount} false {logo}"},
                    {"debit-note", "wsprintpurret",
                     "{debit_note_id} {debit_note_amount} true {logo}"}}},
      {.method = "w_OpeningParts",
       .templates = {"w_openingparts"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true}},
       .examples = {{"opening-stock", "w_openingparts", ""}}},
      {.method = "w_ClosingParts",
       .templates = {"w_closingbal"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true}},
       .examples = {{"closing-stock", "w_closingbal", "{stock_date} false"},
                    {"closing-stock-all", "w_closingbal", "{stock_date} true"}}},
      {.method = "w_Stockvaluation",
       .templates = {"w_stockvaluation"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true}},
       .examples = {{"stock-valuation", "w_stockvaluation", "{stock_date} false {stock_types} PP"},
                    {"stock-valuation-dp", "w_stockvaluation",
                     "{stock_date} false {stock_types} DP"},
                    {"stock-valuation-mrp", "w_stockvaluation",
                     "{stock_date} true {stock_types} MRP"}}},
      {.method = "w_Negativepart",
       .templates = {"w_negativereport"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true}},
       .examples = {{"negative-stock", "w_negativereport", "{stock_date}"}}},
      {.method = "Apro_StockSummary",
       .templates = {"stocksummary"},
       .memos = {"Memo26"},
       .queries = {{.name = "Q_SUM", .lookup = kChecked, .parameters = {{"xdt", kChecked}}}},
       .examples = {{"stock-summary", "stocksummary", "{stock_summary_date}"}}},

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
      {.method = "RefLedger",
       .templates = {"refledger"},
       .queries = {{.name = "MAIN", .lookup = kChecked, .parameters = {{"refid", kChecked}}},
                   {.name = "mst",
                    .lookup = kChecked,
                    .parameters = {{"fdt", kChecked}, {"tdt", kChecked}}}},
       .examples = {{"ledger-reference", "refledger", "{ledger_refid} {ledger_from} {ledger_to}"}}},
      {.method = "PartyRefLedgerOld",
       .templates = {"partyrefledgerold"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"vcode", kChecked}}}},
       .examples = {{"ledger-party-old", "partyrefledgerold", "{party_account_id}"}}},
      {.method = "PartyRefLedger",
       .templates = {"partyrefledger"},
       .memos = {"memtitle"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true}},
       .examples = {{"ledger-party", "partyrefledger", "{party_ledger_sql} {party_ledger_title}"}}},
      {.method = "VoucherPrintUserWise",
       .templates = {"voucherprintuwise"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true}},
       .examples = {{"vouchers-by-user", "voucherprintuwise", "{voucher_user_sql}"}}},
      {.method = "TrialParty",
       .templates = {"trialparty"},
       .memos = {"Memo3"},
       .queries = {{.name = "mst",
                    .lookup = kChecked,
                    .parameters = {{"xdt", kChecked}, {"nature", kChecked}}}},
       .examples = {{"trial-party", "trialparty", "{trial_date} {trial_party_nature}"}}},
      {.method = "TrialPartydcr",
       .templates = {"trialpartydcr"},
       .memos = {"Memo3", "Memo23"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"xdt", kChecked}}},
                   {.name = "mstcr", .lookup = kChecked, .parameters = {{"xdt", kChecked}}}},
       .examples = {{"trial-debtors-creditors", "trialpartydcr", "{trial_date}"}}},
      {.method = "TrialGroup",
       .templates = {"trialgroup"},
       .memos = {"Memo3", "Memo16"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"xdt", kChecked}}},
                   {.name = "qry",
                    .lookup = kChecked,
                    .parameters = {{"xdt", kChecked}, {"Tid", kChecked}}}},
       .examples = {{"trial-group", "trialgroup",
                     "{trial_date} {trial_group_id} {trial_group_name}"}}},
      {.method = "TrialNature",
       .templates = {"trialnature"},
       .memos = {"Memo3", "Memo16"},
       .queries = {{.name = "mst", .lookup = kChecked, .sql = true},
                   {.name = "qry",
                    .lookup = kChecked,
                    .parameters = {{"xdt", kChecked}, {"nature", kChecked}}}},
       .examples = {{"trial-nature", "trialnature",
                     "{trial_date} {trial_nature} {trial_nature_sql}"}}},
      {.method = "VoucherPrintSingle",
       .templates = {"voucherprintsingle"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"xvid", kChecked}}}},
       .examples = {{"voucher", "voucherprintsingle", "{voucher_id}"},
                    {"voucher-payment", "voucherprintsingle", "{voucher_payment_id}"}}},
      {.method = "OldVehicleReceiptPrint",
       .templates = {"oldvehiclerecipt"},
       .queries = {{.name = "q_inv", .lookup = kChecked, .parameters = {{"xid", kChecked}}}},
       .examples = {{"exchange-vehicle-receipt", "oldvehiclerecipt", "{old_vehicle_id}"}}},
      {.method = "ChequePrint",
       .templates = {"chequeprint"},
       .memos = {"mempay", "memdate", "memparty", "memword", "memamt"},
       .examples = {{"cheque", "chequeprint",
                     "{cheque_date} {cheque_acpay} {cheque_party} {cheque_amount} "
                     "{cheque_words}"}}},
      {.method = "GstVoucherPrint",
       .templates = {"gstvoucherprint"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"xdid", kChecked}}}},
       .examples = {{"gst-voucher", "gstvoucherprint", "{gst_voucher_id}"}}},
      {.method = "PayoutVoucherPrint",
       .templates = {"payoutvoucherprint"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"xdid", kChecked}}}},
       .examples = {{"payout-voucher", "payoutvoucherprint", "{payout_voucher_id}"}}},
      {.method = "GstDCNPrint",
       .templates = {"gstdcnprint"},
       .memos = {"inwords"},
       .queries = {{.name = "mst", .lookup = kChecked, .parameters = {{"xdid", kChecked}}}},
       .examples = {{"gst-credit-note", "gstdcnprint", "{gst_credit_note_id}"},
                    {"gst-debit-note", "gstdcnprint", "{gst_debit_note_id}"}}},

      // VAT and C-form returns, GST summaries, quotations, top lists and QR labels.

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
