// CRepoter, the report-printing component. A host creates one, sets its properties, calls
// SetVars on the thread that will print, then calls print methods; each prints one business
// document from its template and the dealership database to the designer, a preview window, the
// printer or a PDF file, as the output flags say.
//
// Failures of a print method are thrown as vantorel::Error. Template preparation and database
// reads that fail show a message box instead and the method returns normally; LastMsg then tells
// how far preparation got.
//
// Thread-safety: an instance belongs to the thread that uses it (apartment threading). The report
// state is per thread: every instance on one thread shares it, instances on other threads never
// see it.
#ifndef VANTOREL_CREPOTER_H_
#define VANTOREL_CREPOTER_H_

#include <cstdint>
#include <memory>
#include <string>

#include "vantorel/export.h"
#include "vantorel/types.h"
#include "vantorel/variant.h"

namespace vantorel {

namespace engine {
class Engine;
class ReportRun;
}  // namespace engine

class VANTOREL_EXPORT CRepoter {
 public:
  CRepoter();
  // Prints with "engine" instead of the default report engine.
  explicit CRepoter(std::shared_ptr<engine::Engine> engine);
  virtual ~CRepoter();
  CRepoter(const CRepoter&) = delete;
  CRepoter& operator=(const CRepoter&) = delete;

  // Properties: plain stored values; a put has no other effect. The getters are what SetVars
  // reads through.
  virtual std::string get_LastMsg() const;
  void put_LastMsg(std::string value);
  virtual std::string get_ReportPath() const;
  void put_ReportPath(std::string value);
  virtual std::string get_RptName() const;
  void put_RptName(std::string value);
  virtual VBool get_Export() const;
  void put_Export(VBool value);
  virtual std::string get_DbConnectstring() const;
  void put_DbConnectstring(std::string value);
  virtual std::string get_DbTConnectstring() const;
  void put_DbTConnectstring(std::string value);
  virtual VBool get_DesigbeMode() const;
  void put_DesigbeMode(VBool value);
  virtual VBool get_RptPrint() const;
  void put_RptPrint(VBool value);
  virtual uint8_t get_FirmID() const;
  void put_FirmID(uint8_t value);
  virtual std::string get_AppPath() const;
  void put_AppPath(std::string value);
  virtual VBool get_RptPDF() const;
  void put_RptPDF(VBool value);
  virtual std::string get_PDFPath() const;
  void put_PDFPath(std::string value);

  // Copies the properties (all but LastMsg) into the calling thread's report state, reading them
  // through the getters in the order AppPath, DbConnectstring, DbTConnectstring, DesigbeMode,
  // Export, FirmID, ReportPath, RptName, RptPrint, RptPDF, PDFPath. A getter that throws stops
  // the copy there.
  void SetVars();

  // Loads template "RptName" and outputs it; an empty name does nothing at all.
  void SuperReport(const std::string& RptName);

  // Sales and vehicle documents.
  void Challan_Customer(int16_t Cid, const std::string& LogoFile = {});
  void ReceiptPrint(int16_t RecId);
  void EnqGroupwise(Date FoDate, Date Tdate);
  void EnqPending(Date FoDate, Date Tdate, int16_t Yn);
  void EnqBooking(Date FoDate, Date Tdate);
  void VehPurBill(int16_t Xid);
  void VehPurBillGST(int16_t Xid);
  void VinTrf(int16_t Xid);
  void VehBtPrint(int16_t Xid);
  void RecRegister(Date Fdate, Date Tdate);
  void ChallanSub(int16_t ChlId, const std::string& LogoFile = {});
  void VehInvoice2in1(int16_t ID);
  void VehInvoicewith21(int16_t ID);
  void VehInvoiceSingle(int16_t ID);
  void VehInvoiceHero(int16_t ID);
  void VehInvoiceHeroSubdealer(int16_t ID);
  void ProVisionalRc(int16_t ID);
  void VehGatePass(int16_t ID);
  void CycleGatePass(int16_t ID, const std::string& LogoFile);
  void DecForm(int16_t ID);
  void VehSticker(int16_t ID, uint8_t NoofStickers);
  void VehSaleLetter(int16_t ID);
  void CycleSaleLetter(int16_t ID, const std::string& LogoFile);
  void VehForm22(int16_t ID);
  void VehHSRP(int16_t ID);
  void VehTempCertificate(int16_t Tline, const std::string& A4Single);
  void VehInvoiceSubDealer(int16_t ID);
  void Wrc();
  void BulkReceiptPrint(int16_t RecId, const std::string& d_or_r);

  // Workshop and spares.
  void w_purchaseCheck(int16_t PuId);
  void w_purchaseCheckGST(int16_t PuId);
  void w_partPlacementList(int16_t PuId);
  void w_stocktransfer(int16_t StkId);
  void w_purchaseorder(int16_t Odid);
  void w_estimate(int16_t emid);
  void w_jobcardprint(int16_t job_srl, const std::string& LogoFile = {});
  void w_jobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt);
  void w_jobinvPrintHero(int16_t ma_id, const std::string& ma_rv, double Amt, VBool IsIGST);
  void custom_w_jobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt);
  void w_proinvoicePrint(int16_t job_srl);
  void w_counterprint(int16_t ma_id, const std::string& ma_rv, double Amt);
  void w_counterprinthero(int16_t ma_id, const std::string& ma_rv, double Amt);
  void w_gstcounterprinthero(int16_t ma_id, const std::string& ma_rv, double Amt);
  void custom_w_counterprint(int16_t ma_id, const std::string& ma_rv, double Amt);
  void w_history(const std::string& chassisno);
  void w_OpeningParts();
  void w_ClosingParts(Date ason, VBool ShowZero);
  void w_Stockvaluation(Date ason, VBool ShowZero, const std::string& SOA,
                        const std::string& Based);
  void w_Negativepart(Date ason);
  void w_ServiceReport(Date FromDate, Date ToDate);
  void w_mechreqlist(int16_t Mechid, const std::string& MechName, const std::string& PartType,
                     Date Fdt, Date Tdt);
  void w_mechlablist(int16_t Mechid, const std::string& MechName, Date Fdt, Date Tdt);
  void w_superreqlist(int16_t Mechid, const std::string& MechName, Date Fdt, Date Tdt);
  void w_superlablist(int16_t Mechid, const std::string& MechName, Date Fdt, Date Tdt);

  // Accounts and tax.
  void RefLedger(int32_t RefiD, Date Fdt, Date Tdt);
  void PartyRefLedgerOld(int16_t ActId);
  void VAT23print(const std::string& Sq, const std::string& Sq2, Date Fdt, Date Tdt);
  void VAT24print(const std::string& Sq, const std::string& Sq2, Date Fdt, Date Tdt);
  void Vat18Print(const std::string& Sq, Date Fdt, Date Tdt);
  void Vat19Print(const std::string& Sq, Date Fdt, Date Tdt);
  void TrialParty(Date Fdt, const std::string& NatureType);
  void TrialPartydcr(Date Fdt);
  void WS_TOPLIST(int16_t Xid);
  void QuotePrint(int16_t Xid);
  void PartsQrPrint(const std::string& strQuery, int16_t PaPerType);
  void ChassisQrPrint(const std::string& strQuery, int16_t PaPerType);
  void PrintCformList(const std::string& Sq, Date Fdt, Date Tdt, const std::string& Title);
  void TrialGroup(Date Fdt, const std::string& TrlID, const std::string& TrlName);
  void PrintVat16(int16_t Xqno, int16_t Xmno, int16_t Xyy);
  void VoucherPrintSingle(int16_t Xid);
  void OldVehicleReceiptPrint(int16_t Xid);
  void PartyRefLedger(const std::string& SqlQry, const std::string& mTitle);
  void VoucherPrintUserWise(const std::string& SqlQry);
  void ChequePrint(const std::string& Chdate, const std::string& ACpay,
                   const std::string& PartyName, const std::string& Amt,
                   const std::string& inWords);

  // Later sales forms.
  void GSTVehInvoiceSingle(int16_t ID, const std::string& LogoFile = {});
  void CycleInvoice(int16_t ID, const std::string& LogoFile);
  void GSTVehInvoiceHero(int16_t ID);
  void GSTVehInvoiceHeroSubdealer(int16_t ID);
  void GSTVehInvoice2in1(int16_t ID, const std::string& LogoFile = {});
  void GSTVehInvoicewith21(int16_t ID, const std::string& LogoFile = {});
  void GSTVehInvoiceSubDealer(int16_t ID, const std::string& LogoFile = {});
  void CycleInvoiceSubDealer(int16_t ID, const std::string& LogoFile);
  void VehSubDealerPackingList(int16_t ID);

  // Later workshop and accounts forms.
  void w_gstjobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt,
                        const std::string& mRPT);
  void w_gstcounterprint(int16_t ma_id, const std::string& ma_rv, double Amt,
                         const Variant& LogoFile = Variant::Missing());
  void TrialNature(Date Fdt, const std::string& Nature, const std::string& Qry);
  void GstVoucherPrint(int16_t dId);
  void PayoutVoucherPrint(int16_t dId);
  void GstDCNPrint(int16_t dId);
  void GstSaleSummary(Date Fdt, Date Tdt);
  void GstPurchaseSummary(Date Fdt, Date Tdt);
  void Apro_counterprint(int16_t ma_id, const std::string& ma_rv, double Amt,
                         const std::string& LogoFile, VBool WithoutMrp);
  void Apro_jobinvPrint(int16_t ma_id, const std::string& ma_rv, double Amt,
                        const std::string& LogoFile, VBool WithoutMrp);
  void Apro_StockSummary(Date Fdt);
  void EInvoiceVehicle(int16_t ID, const std::string& LogoFile = {},
                       const std::string& QrFile = {});
  void EInvoiceService(int16_t ma_id, const std::string& ma_rv, double Amt,
                       const std::string& LogoFile = {}, const std::string& QrFile = {});
  void EInvoiceClaim(int16_t DocID, const std::string& DocFrom, double Amt,
                     const std::string& LogoFile = {}, const std::string& QrFile = {});
  void Apro_WsPrintPurRet(int16_t mPu_id, double Amt, VBool isDN, const std::string& LogoFile);

  // The text buffer in which print methods build texts (amount in words, query texts). It keeps
  // its last content between calls; exposed for diagnostics and tests.
  const std::string& text_buffer() const { return text_buffer_; }

 private:
  // Print methods reach the run, the text buffer and the steps below through it.
  friend struct PrintSteps;

  // The shared steps every print method is made of. PrepareTemplate returns the success flag.
  bool PrepareTemplate();
  void RenderReport();
  void ReleaseRun();

  std::string LastMsg_;
  std::string ReportPath_;
  std::string RptName_;
  VBool Export_ = kFalse;
  std::string DbConnectstring_;
  std::string DbTConnectstring_;
  VBool DesigbeMode_ = kFalse;
  VBool RptPrint_ = kFalse;
  uint8_t FirmID_ = 0;
  std::string AppPath_;
  VBool RptPDF_ = kFalse;
  std::string PDFPath_;

  std::unique_ptr<engine::ReportRun> run_;
  // Keeps the SQLite connections prints on the creating thread open, for the next print.
  std::shared_ptr<void> kept_connections_;
  std::string text_buffer_;
};

}  // namespace vantorel

#endif  // VANTOREL_CREPOTER_H_
