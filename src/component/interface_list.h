// The published entry list of _CRepoter, once: every binding of the interface visits it. A
// visitor provides Property<Get, Put, Type>(dispid, name) and Method<Member>(dispid, name,
// params...) where each param is In/Ref/Opt<Type>("Name").
//
// The order is the order in which the entries were published and must never change: early-bound
// hosts call them by position. Dispatch identifiers run from 0x60030000; 0x60030002, 0x60030042
// and 0x60030043 belong to nothing.
#ifndef VANTOREL_COMPONENT_INTERFACE_LIST_H_
#define VANTOREL_COMPONENT_INTERFACE_LIST_H_

#include "vantorel/crepoter.h"
#include "vantorel/variant.h"

namespace vantorel {

template <VarType T, int P>  // P: 0 by value, 1 by reference, 2 optional by reference
struct ParamSpec {
  const char* name;
};
template <VarType T>
constexpr ParamSpec<T, 0> In(const char* name) {
  return {name};
}
template <VarType T>
constexpr ParamSpec<T, 1> Ref(const char* name) {
  return {name};
}
template <VarType T>
constexpr ParamSpec<T, 2> Opt(const char* name) {
  return {name};
}

template <typename Visitor>
void VisitInterface(Visitor& v) {
  constexpr auto I2 = VarType::kI2;
  constexpr auto I4 = VarType::kI4;
  constexpr auto UI1 = VarType::kUI1;
  constexpr auto R8 = VarType::kR8;
  constexpr auto DT = VarType::kDate;
  constexpr auto STR = VarType::kString;
  constexpr auto BOOL = VarType::kBool;
  constexpr auto VAR = VarType::kVariant;
  using C = CRepoter;

  v.template Property<&C::get_LastMsg, &C::put_LastMsg, STR>(0x40030000, "LastMsg");
  v.template Property<&C::get_ReportPath, &C::put_ReportPath, STR>(0x40030008, "ReportPath");
  v.template Property<&C::get_RptName, &C::put_RptName, STR>(0x40030009, "RptName");
  v.template Property<&C::get_Export, &C::put_Export, BOOL>(0x4003000A, "Export");
  v.template Property<&C::get_DbConnectstring, &C::put_DbConnectstring, STR>(0x4003000B,
                                                                             "DbConnectstring");
  v.template Property<&C::get_DbTConnectstring, &C::put_DbTConnectstring, STR>(0x4003000C,
                                                                               "DbTConnectstring");
  v.template Property<&C::get_DesigbeMode, &C::put_DesigbeMode, BOOL>(0x4003000D, "DesigbeMode");
  v.template Property<&C::get_RptPrint, &C::put_RptPrint, BOOL>(0x4003000E, "RptPrint");
  v.template Property<&C::get_FirmID, &C::put_FirmID, UI1>(0x4003000F, "FirmID");
  v.template Property<&C::get_AppPath, &C::put_AppPath, STR>(0x40030010, "AppPath");
  v.template Property<&C::get_RptPDF, &C::put_RptPDF, BOOL>(0x40030011, "RptPDF");
  v.template Property<&C::get_PDFPath, &C::put_PDFPath, STR>(0x40030012, "PDFPath");

  v.template Method<&C::SetVars>(0x60030000, "SetVars");
  v.template Method<&C::SuperReport>(0x60030001, "SuperReport", In<STR>("RptName"));
  v.template Method<&C::Challan_Customer>(0x60030003, "Challan_Customer", In<I2>("Cid"),
                                          Opt<STR>("LogoFile"));
  v.template Method<&C::ReceiptPrint>(0x60030004, "ReceiptPrint", In<I2>("RecId"));
  v.template Method<&C::EnqGroupwise>(0x60030005, "EnqGroupwise", In<DT>("FoDate"),
                                      In<DT>("Tdate"));
  v.template Method<&C::EnqPending>(0x60030006, "EnqPending", In<DT>("FoDate"), In<DT>("Tdate"),
                                    In<I2>("Yn"));
  v.template Method<&C::EnqBooking>(0x60030007, "EnqBooking", In<DT>("FoDate"), In<DT>("Tdate"));
  v.template Method<&C::VehPurBill>(0x60030008, "VehPurBill", In<I2>("Xid"));
  v.template Method<&C::VehPurBillGST>(0x60030009, "VehPurBillGST", In<I2>("Xid"));
  v.template Method<&C::VinTrf>(0x6003000A, "VinTrf", In<I2>("Xid"));
  v.template Method<&C::VehBtPrint>(0x6003000B, "VehBtPrint", In<I2>("Xid"));
  v.template Method<&C::RecRegister>(0x6003000C, "RecRegister", In<DT>("Fdate"), In<DT>("Tdate"));
  v.template Method<&C::ChallanSub>(0x6003000D, "ChallanSub", In<I2>("ChlId"),
                                    Opt<STR>("LogoFile"));
  v.template Method<&C::VehInvoice2in1>(0x6003000E, "VehInvoice2in1", In<I2>("ID"));
  v.template Method<&C::VehInvoicewith21>(0x6003000F, "VehInvoicewith21", In<I2>("ID"));
  v.template Method<&C::VehInvoiceSingle>(0x60030010, "VehInvoiceSingle", In<I2>("ID"));
  v.template Method<&C::VehInvoiceHero>(0x60030011, "VehInvoiceHero", In<I2>("ID"));
  v.template Method<&C::VehInvoiceHeroSubdealer>(0x60030012, "VehInvoiceHeroSubdealer",
                                                 In<I2>("ID"));
  v.template Method<&C::ProVisionalRc>(0x60030013, "ProVisionalRc", In<I2>("ID"));
  v.template Method<&C::VehGatePass>(0x60030014, "VehGatePass", In<I2>("ID"));
  v.template Method<&C::CycleGatePass>(0x60030015, "CycleGatePass", In<I2>("ID"),
                                       Ref<STR>("LogoFile"));
  v.template Method<&C::DecForm>(0x60030016, "DecForm", In<I2>("ID"));
  v.template Method<&C::VehSticker>(0x60030017, "VehSticker", In<I2>("ID"),
                                    In<UI1>("NoofStickers"));
  v.template Method<&C::VehSaleLetter>(0x60030018, "VehSaleLetter", In<I2>("ID"));
  v.template Method<&C::CycleSaleLetter>(0x60030019, "CycleSaleLetter", In<I2>("ID"),
                                         Ref<STR>("LogoFile"));
  v.template Method<&C::VehForm22>(0x6003001A, "VehForm22", In<I2>("ID"));
  v.template Method<&C::VehHSRP>(0x6003001B, "VehHSRP", In<I2>("ID"));
  v.template Method<&C::VehTempCertificate>(0x6003001C, "VehTempCertificate", In<I2>("Tline"),
                                            In<STR>("A4Single"));
  v.template Method<&C::VehInvoiceSubDealer>(0x6003001D, "VehInvoiceSubDealer", In<I2>("ID"));
  v.template Method<&C::Wrc>(0x6003001E, "Wrc");
  v.template Method<&C::BulkReceiptPrint>(0x6003001F, "BulkReceiptPrint", In<I2>("RecId"),
                                          In<STR>("d_or_r"));
  v.template Method<&C::w_purchaseCheck>(0x60030020, "w_purchaseCheck", Ref<I2>("PuId"));
  v.template Method<&C::w_purchaseCheckGST>(0x60030021, "w_purchaseCheckGST", Ref<I2>("PuId"));
  v.template Method<&C::w_partPlacementList>(0x60030022, "w_partPlacementList", Ref<I2>("PuId"));
  v.template Method<&C::w_stocktransfer>(0x60030023, "w_stocktransfer", Ref<I2>("StkId"));
  v.template Method<&C::w_purchaseorder>(0x60030024, "w_purchaseorder", Ref<I2>("Odid"));
  v.template Method<&C::w_estimate>(0x60030025, "w_estimate", Ref<I2>("emid"));
  v.template Method<&C::w_jobcardprint>(0x60030026, "w_jobcardprint", Ref<I2>("job_srl"),
                                        Opt<STR>("LogoFile"));
  v.template Method<&C::w_jobinvPrint>(0x60030027, "w_jobinvPrint", Ref<I2>("ma_id"),
                                       Ref<STR>("ma_rv"), Ref<R8>("Amt"));
  v.template Method<&C::w_jobinvPrintHero>(0x60030028, "w_jobinvPrintHero", Ref<I2>("ma_id"),
                                           Ref<STR>("ma_rv"), Ref<R8>("Amt"), Ref<BOOL>("IsIGST"));
  v.template Method<&C::custom_w_jobinvPrint>(0x60030029, "custom_w_jobinvPrint", Ref<I2>("ma_id"),
                                              Ref<STR>("ma_rv"), Ref<R8>("Amt"));
  v.template Method<&C::w_proinvoicePrint>(0x6003002A, "w_proinvoicePrint", Ref<I2>("job_srl"));
  v.template Method<&C::w_counterprint>(0x6003002B, "w_counterprint", Ref<I2>("ma_id"),
                                        Ref<STR>("ma_rv"), Ref<R8>("Amt"));
  v.template Method<&C::w_counterprinthero>(0x6003002C, "w_counterprinthero", Ref<I2>("ma_id"),
                                            Ref<STR>("ma_rv"), Ref<R8>("Amt"));
  v.template Method<&C::w_gstcounterprinthero>(0x6003002D, "w_gstcounterprinthero",
                                               Ref<I2>("ma_id"), Ref<STR>("ma_rv"), Ref<R8>("Amt"));
  v.template Method<&C::custom_w_counterprint>(0x6003002E, "custom_w_counterprint",
                                               Ref<I2>("ma_id"), Ref<STR>("ma_rv"), Ref<R8>("Amt"));
  v.template Method<&C::w_history>(0x6003002F, "w_history", Ref<STR>("chassisno"));
  v.template Method<&C::w_OpeningParts>(0x60030030, "w_OpeningParts");
  v.template Method<&C::w_ClosingParts>(0x60030031, "w_ClosingParts", Ref<DT>("ason"),
                                        Ref<BOOL>("ShowZero"));
  v.template Method<&C::w_Stockvaluation>(0x60030032, "w_Stockvaluation", Ref<DT>("ason"),
                                          Ref<BOOL>("ShowZero"), Ref<STR>("SOA"),
                                          Ref<STR>("Based"));
  v.template Method<&C::w_Negativepart>(0x60030033, "w_Negativepart", Ref<DT>("ason"));
  v.template Method<&C::w_ServiceReport>(0x60030034, "w_ServiceReport", Ref<DT>("FromDate"),
                                         Ref<DT>("ToDate"));
  v.template Method<&C::w_mechreqlist>(0x60030035, "w_mechreqlist", Ref<I2>("Mechid"),
                                       Ref<STR>("MechName"), Ref<STR>("PartType"), Ref<DT>("Fdt"),
                                       Ref<DT>("Tdt"));
  v.template Method<&C::w_mechlablist>(0x60030036, "w_mechlablist", Ref<I2>("Mechid"),
                                       Ref<STR>("MechName"), Ref<DT>("Fdt"), Ref<DT>("Tdt"));
  v.template Method<&C::w_superreqlist>(0x60030037, "w_superreqlist", Ref<I2>("Mechid"),
                                        Ref<STR>("MechName"), Ref<DT>("Fdt"), Ref<DT>("Tdt"));
  v.template Method<&C::w_superlablist>(0x60030038, "w_superlablist", Ref<I2>("Mechid"),
                                        Ref<STR>("MechName"), Ref<DT>("Fdt"), Ref<DT>("Tdt"));
  v.template Method<&C::RefLedger>(0x60030039, "RefLedger", Ref<I4>("RefiD"), Ref<DT>("Fdt"),
                                   Ref<DT>("Tdt"));
  v.template Method<&C::PartyRefLedgerOld>(0x6003003A, "PartyRefLedgerOld", Ref<I2>("ActId"));
  v.template Method<&C::VAT23print>(0x6003003B, "VAT23print", Ref<STR>("Sq"), Ref<STR>("Sq2"),
                                    Ref<DT>("Fdt"), Ref<DT>("Tdt"));
  v.template Method<&C::VAT24print>(0x6003003C, "VAT24print", Ref<STR>("Sq"), Ref<STR>("Sq2"),
                                    Ref<DT>("Fdt"), Ref<DT>("Tdt"));
  v.template Method<&C::Vat18Print>(0x6003003D, "Vat18Print", Ref<STR>("Sq"), Ref<DT>("Fdt"),
                                    Ref<DT>("Tdt"));
  v.template Method<&C::Vat19Print>(0x6003003E, "Vat19Print", Ref<STR>("Sq"), Ref<DT>("Fdt"),
                                    Ref<DT>("Tdt"));
  v.template Method<&C::TrialParty>(0x6003003F, "TrialParty", In<DT>("Fdt"), In<STR>("NatureType"));
  v.template Method<&C::TrialPartydcr>(0x60030040, "TrialPartydcr", In<DT>("Fdt"));
  v.template Method<&C::WS_TOPLIST>(0x60030041, "WS_TOPLIST", In<I2>("Xid"));
  v.template Method<&C::QuotePrint>(0x60030044, "QuotePrint", In<I2>("Xid"));
  v.template Method<&C::PartsQrPrint>(0x60030045, "PartsQrPrint", In<STR>("strQuery"),
                                      Ref<I2>("PaPerType"));
  v.template Method<&C::ChassisQrPrint>(0x60030046, "ChassisQrPrint", In<STR>("strQuery"),
                                        Ref<I2>("PaPerType"));
  v.template Method<&C::PrintCformList>(0x60030047, "PrintCformList", Ref<STR>("Sq"),
                                        Ref<DT>("Fdt"), Ref<DT>("Tdt"), Ref<STR>("Title"));
  v.template Method<&C::TrialGroup>(0x60030048, "TrialGroup", In<DT>("Fdt"), In<STR>("TrlID"),
                                    Ref<STR>("TrlName"));
  v.template Method<&C::PrintVat16>(0x60030049, "PrintVat16", Ref<I2>("Xqno"), Ref<I2>("Xmno"),
                                    Ref<I2>("Xyy"));
  v.template Method<&C::VoucherPrintSingle>(0x6003004A, "VoucherPrintSingle", In<I2>("Xid"));
  v.template Method<&C::OldVehicleReceiptPrint>(0x6003004B, "OldVehicleReceiptPrint",
                                                In<I2>("Xid"));
  v.template Method<&C::PartyRefLedger>(0x6003004C, "PartyRefLedger", Ref<STR>("SqlQry"),
                                        Ref<STR>("mTitle"));
  v.template Method<&C::VoucherPrintUserWise>(0x6003004D, "VoucherPrintUserWise",
                                              Ref<STR>("SqlQry"));
  v.template Method<&C::ChequePrint>(0x6003004E, "ChequePrint", In<STR>("Chdate"), In<STR>("ACpay"),
                                     In<STR>("PartyName"), In<STR>("Amt"), In<STR>("inWords"));
  v.template Method<&C::GSTVehInvoiceSingle>(0x6003004F, "GSTVehInvoiceSingle", In<I2>("ID"),
                                             Opt<STR>("LogoFile"));
  v.template Method<&C::CycleInvoice>(0x60030050, "CycleInvoice", In<I2>("ID"),
                                      Ref<STR>("LogoFile"));
  v.template Method<&C::GSTVehInvoiceHero>(0x60030051, "GSTVehInvoiceHero", In<I2>("ID"));
  v.template Method<&C::GSTVehInvoiceHeroSubdealer>(0x60030052, "GSTVehInvoiceHeroSubdealer",
                                                    In<I2>("ID"));
  v.template Method<&C::GSTVehInvoice2in1>(0x60030053, "GSTVehInvoice2in1", In<I2>("ID"),
                                           Opt<STR>("LogoFile"));
  v.template Method<&C::GSTVehInvoicewith21>(0x60030054, "GSTVehInvoicewith21", In<I2>("ID"),
                                             Opt<STR>("LogoFile"));
  v.template Method<&C::GSTVehInvoiceSubDealer>(0x60030055, "GSTVehInvoiceSubDealer", In<I2>("ID"),
                                                Opt<STR>("LogoFile"));
  v.template Method<&C::CycleInvoiceSubDealer>(0x60030056, "CycleInvoiceSubDealer", In<I2>("ID"),
                                               Ref<STR>("LogoFile"));
  v.template Method<&C::VehSubDealerPackingList>(0x60030057, "VehSubDealerPackingList",
                                                 In<I2>("ID"));
  v.template Method<&C::w_gstjobinvPrint>(0x60030058, "w_gstjobinvPrint", Ref<I2>("ma_id"),
                                          Ref<STR>("ma_rv"), Ref<R8>("Amt"), Ref<STR>("mRPT"));
  v.template Method<&C::w_gstcounterprint>(0x60030059, "w_gstcounterprint", Ref<I2>("ma_id"),
                                           Ref<STR>("ma_rv"), Ref<R8>("Amt"), Opt<VAR>("LogoFile"));
  v.template Method<&C::TrialNature>(0x6003005A, "TrialNature", In<DT>("Fdt"), In<STR>("Nature"),
                                     Ref<STR>("Qry"));
  v.template Method<&C::GstVoucherPrint>(0x6003005B, "GstVoucherPrint", In<I2>("dId"));
  v.template Method<&C::PayoutVoucherPrint>(0x6003005C, "PayoutVoucherPrint", In<I2>("dId"));
  v.template Method<&C::GstDCNPrint>(0x6003005D, "GstDCNPrint", In<I2>("dId"));
  v.template Method<&C::GstSaleSummary>(0x6003005E, "GstSaleSummary", Ref<DT>("Fdt"),
                                        Ref<DT>("Tdt"));
  v.template Method<&C::GstPurchaseSummary>(0x6003005F, "GstPurchaseSummary", Ref<DT>("Fdt"),
                                            Ref<DT>("Tdt"));
  v.template Method<&C::Apro_counterprint>(0x60030060, "Apro_counterprint", Ref<I2>("ma_id"),
                                           Ref<STR>("ma_rv"), Ref<R8>("Amt"), Ref<STR>("LogoFile"),
                                           Ref<BOOL>("WithoutMrp"));
  v.template Method<&C::Apro_jobinvPrint>(0x60030061, "Apro_jobinvPrint", Ref<I2>("ma_id"),
                                          Ref<STR>("ma_rv"), Ref<R8>("Amt"), Ref<STR>("LogoFile"),
                                          Ref<BOOL>("WithoutMrp"));
  v.template Method<&C::Apro_StockSummary>(0x60030062, "Apro_StockSummary", In<DT>("Fdt"));
  v.template Method<&C::EInvoiceVehicle>(0x60030063, "EInvoiceVehicle", In<I2>("ID"),
                                         Opt<STR>("LogoFile"), Opt<STR>("QrFile"));
  v.template Method<&C::EInvoiceService>(0x60030064, "EInvoiceService", Ref<I2>("ma_id"),
                                         Ref<STR>("ma_rv"), Ref<R8>("Amt"), Opt<STR>("LogoFile"),
                                         Opt<STR>("QrFile"));
  v.template Method<&C::EInvoiceClaim>(0x60030065, "EInvoiceClaim", Ref<I2>("DocID"),
                                       Ref<STR>("DocFrom"), Ref<R8>("Amt"), Opt<STR>("LogoFile"),
                                       Opt<STR>("QrFile"));
  v.template Method<&C::Apro_WsPrintPurRet>(0x60030066, "Apro_WsPrintPurRet", Ref<I2>("mPu_id"),
                                            Ref<R8>("Amt"), Ref<BOOL>("isDN"),
                                            Ref<STR>("LogoFile"));
}

}  // namespace vantorel

#endif  // VANTOREL_COMPONENT_INTERFACE_LIST_H_
