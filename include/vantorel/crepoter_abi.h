/* The binary layout of _CRepoter, the dual interface of Vantorel.CRepoter: the table
 * of entries an early-bound host calls by position (the seven entries of IDispatch, then
 * the get and put of each property, then the methods, in the order they were published),
 * the identifiers of the interface, the class and the type library, and the four exports
 * of the component's library. The comment before each entry is its dispatch identifier.
 *
 * Made from the component's interface description; do not edit. */
#ifndef VANTOREL_CREPOTER_ABI_H_
#define VANTOREL_CREPOTER_ABI_H_

/* clang-format off */

#include "vantorel/automation.h"
#include "vantorel/export.h"
#include "vantorel/identity.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The names are the interface's published ones, leading underscore and all. */
/* NOLINTBEGIN(bugprone-reserved-identifier) */
typedef struct _CRepoter _CRepoter;

typedef struct _CRepoterVtbl {
  /* IUnknown */
  HRESULT(STDMETHODCALLTYPE* QueryInterface)(_CRepoter* This, REFIID riid, void** ppvObject);
  ULONG(STDMETHODCALLTYPE* AddRef)(_CRepoter* This);
  ULONG(STDMETHODCALLTYPE* Release)(_CRepoter* This);
  /* IDispatch */
  HRESULT(STDMETHODCALLTYPE* GetTypeInfoCount)(_CRepoter* This, UINT* pctinfo);
  HRESULT(STDMETHODCALLTYPE* GetTypeInfo)(_CRepoter* This, UINT iTInfo, LCID lcid,
                                          ITypeInfo** ppTInfo);
  HRESULT(STDMETHODCALLTYPE* GetIDsOfNames)(_CRepoter* This, REFIID riid, LPOLESTR* rgszNames,
                                            UINT cNames, LCID lcid, DISPID* rgDispId);
  HRESULT(STDMETHODCALLTYPE* Invoke)(_CRepoter* This, DISPID dispIdMember, REFIID riid, LCID lcid,
                                     WORD wFlags, DISPPARAMS* pDispParams, VARIANT* pVarResult,
                                     EXCEPINFO* pExcepInfo, UINT* puArgErr);
  /* _CRepoter */
  /* 0x40030000 */
  HRESULT(STDMETHODCALLTYPE* get_LastMsg)(_CRepoter* This, BSTR* LastMsg);
  /* 0x40030000 */
  HRESULT(STDMETHODCALLTYPE* put_LastMsg)(_CRepoter* This, BSTR LastMsg);
  /* 0x40030008 */
  HRESULT(STDMETHODCALLTYPE* get_ReportPath)(_CRepoter* This, BSTR* ReportPath);
  /* 0x40030008 */
  HRESULT(STDMETHODCALLTYPE* put_ReportPath)(_CRepoter* This, BSTR ReportPath);
  /* 0x40030009 */
  HRESULT(STDMETHODCALLTYPE* get_RptName)(_CRepoter* This, BSTR* RptName);
  /* 0x40030009 */
  HRESULT(STDMETHODCALLTYPE* put_RptName)(_CRepoter* This, BSTR RptName);
  /* 0x4003000a */
  HRESULT(STDMETHODCALLTYPE* get_Export)(_CRepoter* This, VARIANT_BOOL* Export);
  /* 0x4003000a */
  HRESULT(STDMETHODCALLTYPE* put_Export)(_CRepoter* This, VARIANT_BOOL Export);
  /* 0x4003000b */
  HRESULT(STDMETHODCALLTYPE* get_DbConnectstring)(_CRepoter* This, BSTR* DbConnectstring);
  /* 0x4003000b */
  HRESULT(STDMETHODCALLTYPE* put_DbConnectstring)(_CRepoter* This, BSTR DbConnectstring);
  /* 0x4003000c */
  HRESULT(STDMETHODCALLTYPE* get_DbTConnectstring)(_CRepoter* This, BSTR* DbTConnectstring);
  /* 0x4003000c */
  HRESULT(STDMETHODCALLTYPE* put_DbTConnectstring)(_CRepoter* This, BSTR DbTConnectstring);
  /* 0x4003000d */
  HRESULT(STDMETHODCALLTYPE* get_DesigbeMode)(_CRepoter* This, VARIANT_BOOL* DesigbeMode);
  /* 0x4003000d */
  HRESULT(STDMETHODCALLTYPE* put_DesigbeMode)(_CRepoter* This, VARIANT_BOOL DesigbeMode);
  /* 0x4003000e */
  HRESULT(STDMETHODCALLTYPE* get_RptPrint)(_CRepoter* This, VARIANT_BOOL* RptPrint);
  /* 0x4003000e */
  HRESULT(STDMETHODCALLTYPE* put_RptPrint)(_CRepoter* This, VARIANT_BOOL RptPrint);
  /* 0x4003000f */
  HRESULT(STDMETHODCALLTYPE* get_FirmID)(_CRepoter* This, unsigned char* FirmID);
  /* 0x4003000f */
  HRESULT(STDMETHODCALLTYPE* put_FirmID)(_CRepoter* This, unsigned char FirmID);
  /* 0x40030010 */
  HRESULT(STDMETHODCALLTYPE* get_AppPath)(_CRepoter* This, BSTR* AppPath);
  /* 0x40030010 */
  HRESULT(STDMETHODCALLTYPE* put_AppPath)(_CRepoter* This, BSTR AppPath);
  /* 0x40030011 */
  HRESULT(STDMETHODCALLTYPE* get_RptPDF)(_CRepoter* This, VARIANT_BOOL* RptPDF);
  /* 0x40030011 */
  HRESULT(STDMETHODCALLTYPE* put_RptPDF)(_CRepoter* This, VARIANT_BOOL RptPDF);
  /* 0x40030012 */
  HRESULT(STDMETHODCALLTYPE* get_PDFPath)(_CRepoter* This, BSTR* PDFPath);
  /* 0x40030012 */
  HRESULT(STDMETHODCALLTYPE* put_PDFPath)(_CRepoter* This, BSTR PDFPath);
  /* 0x60030000 */
  HRESULT(STDMETHODCALLTYPE* SetVars)(_CRepoter* This);
  /* 0x60030001 */
  HRESULT(STDMETHODCALLTYPE* SuperReport)(_CRepoter* This, BSTR RptName);
  /* 0x60030003 */
  HRESULT(STDMETHODCALLTYPE* Challan_Customer)(_CRepoter* This, short Cid, BSTR* LogoFile);
  /* 0x60030004 */
  HRESULT(STDMETHODCALLTYPE* ReceiptPrint)(_CRepoter* This, short RecId);
  /* 0x60030005 */
  HRESULT(STDMETHODCALLTYPE* EnqGroupwise)(_CRepoter* This, DATE FoDate, DATE Tdate);
  /* 0x60030006 */
  HRESULT(STDMETHODCALLTYPE* EnqPending)(_CRepoter* This, DATE FoDate, DATE Tdate, short Yn);
  /* 0x60030007 */
  HRESULT(STDMETHODCALLTYPE* EnqBooking)(_CRepoter* This, DATE FoDate, DATE Tdate);
  /* 0x60030008 */
  HRESULT(STDMETHODCALLTYPE* VehPurBill)(_CRepoter* This, short Xid);
  /* 0x60030009 */
  HRESULT(STDMETHODCALLTYPE* VehPurBillGST)(_CRepoter* This, short Xid);
  /* 0x6003000a */
  HRESULT(STDMETHODCALLTYPE* VinTrf)(_CRepoter* This, short Xid);
  /* 0x6003000b */
  HRESULT(STDMETHODCALLTYPE* VehBtPrint)(_CRepoter* This, short Xid);
  /* 0x6003000c */
  HRESULT(STDMETHODCALLTYPE* RecRegister)(_CRepoter* This, DATE Fdate, DATE Tdate);
  /* 0x6003000d */
  HRESULT(STDMETHODCALLTYPE* ChallanSub)(_CRepoter* This, short ChlId, BSTR* LogoFile);
  /* 0x6003000e */
  HRESULT(STDMETHODCALLTYPE* VehInvoice2in1)(_CRepoter* This, short ID);
  /* 0x6003000f */
  HRESULT(STDMETHODCALLTYPE* VehInvoicewith21)(_CRepoter* This, short ID);
  /* 0x60030010 */
  HRESULT(STDMETHODCALLTYPE* VehInvoiceSingle)(_CRepoter* This, short ID);
  /* 0x60030011 */
  HRESULT(STDMETHODCALLTYPE* VehInvoiceHero)(_CRepoter* This, short ID);
  /* 0x60030012 */
  HRESULT(STDMETHODCALLTYPE* VehInvoiceHeroSubdealer)(_CRepoter* This, short ID);
  /* 0x60030013 */
  HRESULT(STDMETHODCALLTYPE* ProVisionalRc)(_CRepoter* This, short ID);
  /* 0x60030014 */
  HRESULT(STDMETHODCALLTYPE* VehGatePass)(_CRepoter* This, short ID);
  /* 0x60030015 */
  HRESULT(STDMETHODCALLTYPE* CycleGatePass)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030016 */
  HRESULT(STDMETHODCALLTYPE* DecForm)(_CRepoter* This, short ID);
  /* 0x60030017 */
  HRESULT(STDMETHODCALLTYPE* VehSticker)(_CRepoter* This, short ID, unsigned char NoofStickers);
  /* 0x60030018 */
  HRESULT(STDMETHODCALLTYPE* VehSaleLetter)(_CRepoter* This, short ID);
  /* 0x60030019 */
  HRESULT(STDMETHODCALLTYPE* CycleSaleLetter)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x6003001a */
  HRESULT(STDMETHODCALLTYPE* VehForm22)(_CRepoter* This, short ID);
  /* 0x6003001b */
  HRESULT(STDMETHODCALLTYPE* VehHSRP)(_CRepoter* This, short ID);
  /* 0x6003001c */
  HRESULT(STDMETHODCALLTYPE* VehTempCertificate)(_CRepoter* This, short Tline, BSTR A4Single);
  /* 0x6003001d */
  HRESULT(STDMETHODCALLTYPE* VehInvoiceSubDealer)(_CRepoter* This, short ID);
  /* 0x6003001e */
  HRESULT(STDMETHODCALLTYPE* Wrc)(_CRepoter* This);
  /* 0x6003001f */
  HRESULT(STDMETHODCALLTYPE* BulkReceiptPrint)(_CRepoter* This, short RecId, BSTR d_or_r);
  /* 0x60030020 */
  HRESULT(STDMETHODCALLTYPE* w_purchaseCheck)(_CRepoter* This, short* PuId);
  /* 0x60030021 */
  HRESULT(STDMETHODCALLTYPE* w_purchaseCheckGST)(_CRepoter* This, short* PuId);
  /* 0x60030022 */
  HRESULT(STDMETHODCALLTYPE* w_partPlacementList)(_CRepoter* This, short* PuId);
  /* 0x60030023 */
  HRESULT(STDMETHODCALLTYPE* w_stocktransfer)(_CRepoter* This, short* StkId);
  /* 0x60030024 */
  HRESULT(STDMETHODCALLTYPE* w_purchaseorder)(_CRepoter* This, short* Odid);
  /* 0x60030025 */
  HRESULT(STDMETHODCALLTYPE* w_estimate)(_CRepoter* This, short* emid);
  /* 0x60030026 */
  HRESULT(STDMETHODCALLTYPE* w_jobcardprint)(_CRepoter* This, short* job_srl, BSTR* LogoFile);
  /* 0x60030027 */
  HRESULT(STDMETHODCALLTYPE* w_jobinvPrint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                            double* Amt);
  /* 0x60030028 */
  HRESULT(STDMETHODCALLTYPE* w_jobinvPrintHero)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                double* Amt, VARIANT_BOOL* IsIGST);
  /* 0x60030029 */
  HRESULT(STDMETHODCALLTYPE* custom_w_jobinvPrint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                   double* Amt);
  /* 0x6003002a */
  HRESULT(STDMETHODCALLTYPE* w_proinvoicePrint)(_CRepoter* This, short* job_srl);
  /* 0x6003002b */
  HRESULT(STDMETHODCALLTYPE* w_counterprint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                             double* Amt);
  /* 0x6003002c */
  HRESULT(STDMETHODCALLTYPE* w_counterprinthero)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                 double* Amt);
  /* 0x6003002d */
  HRESULT(STDMETHODCALLTYPE* w_gstcounterprinthero)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                    double* Amt);
  /* 0x6003002e */
  HRESULT(STDMETHODCALLTYPE* custom_w_counterprint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                    double* Amt);
  /* 0x6003002f */
  HRESULT(STDMETHODCALLTYPE* w_history)(_CRepoter* This, BSTR* chassisno);
  /* 0x60030030 */
  HRESULT(STDMETHODCALLTYPE* w_OpeningParts)(_CRepoter* This);
  /* 0x60030031 */
  HRESULT(STDMETHODCALLTYPE* w_ClosingParts)(_CRepoter* This, DATE* ason, VARIANT_BOOL* ShowZero);
  /* 0x60030032 */
  HRESULT(STDMETHODCALLTYPE* w_Stockvaluation)(_CRepoter* This, DATE* ason, VARIANT_BOOL* ShowZero,
                                               BSTR* SOA, BSTR* Based);
  /* 0x60030033 */
  HRESULT(STDMETHODCALLTYPE* w_Negativepart)(_CRepoter* This, DATE* ason);
  /* 0x60030034 */
  HRESULT(STDMETHODCALLTYPE* w_ServiceReport)(_CRepoter* This, DATE* FromDate, DATE* ToDate);
  /* 0x60030035 */
  HRESULT(STDMETHODCALLTYPE* w_mechreqlist)(_CRepoter* This, short* Mechid, BSTR* MechName,
                                            BSTR* PartType, DATE* Fdt, DATE* Tdt);
  /* 0x60030036 */
  HRESULT(STDMETHODCALLTYPE* w_mechlablist)(_CRepoter* This, short* Mechid, BSTR* MechName,
                                            DATE* Fdt, DATE* Tdt);
  /* 0x60030037 */
  HRESULT(STDMETHODCALLTYPE* w_superreqlist)(_CRepoter* This, short* Mechid, BSTR* MechName,
                                             DATE* Fdt, DATE* Tdt);
  /* 0x60030038 */
  HRESULT(STDMETHODCALLTYPE* w_superlablist)(_CRepoter* This, short* Mechid, BSTR* MechName,
                                             DATE* Fdt, DATE* Tdt);
  /* 0x60030039 */
  HRESULT(STDMETHODCALLTYPE* RefLedger)(_CRepoter* This, LONG* RefiD, DATE* Fdt, DATE* Tdt);
  /* 0x6003003a */
  HRESULT(STDMETHODCALLTYPE* PartyRefLedgerOld)(_CRepoter* This, short* ActId);
  /* 0x6003003b */
  HRESULT(STDMETHODCALLTYPE* VAT23print)(_CRepoter* This, BSTR* Sq, BSTR* Sq2, DATE* Fdt,
                                         DATE* Tdt);
  /* 0x6003003c */
  HRESULT(STDMETHODCALLTYPE* VAT24print)(_CRepoter* This, BSTR* Sq, BSTR* Sq2, DATE* Fdt,
                                         DATE* Tdt);
  /* 0x6003003d */
  HRESULT(STDMETHODCALLTYPE* Vat18Print)(_CRepoter* This, BSTR* Sq, DATE* Fdt, DATE* Tdt);
  /* 0x6003003e */
  HRESULT(STDMETHODCALLTYPE* Vat19Print)(_CRepoter* This, BSTR* Sq, DATE* Fdt, DATE* Tdt);
  /* 0x6003003f */
  HRESULT(STDMETHODCALLTYPE* TrialParty)(_CRepoter* This, DATE Fdt, BSTR NatureType);
  /* 0x60030040 */
  HRESULT(STDMETHODCALLTYPE* TrialPartydcr)(_CRepoter* This, DATE Fdt);
  /* 0x60030041 */
  HRESULT(STDMETHODCALLTYPE* WS_TOPLIST)(_CRepoter* This, short Xid);
  /* 0x60030044 */
  HRESULT(STDMETHODCALLTYPE* QuotePrint)(_CRepoter* This, short Xid);
  /* 0x60030045 */
  HRESULT(STDMETHODCALLTYPE* PartsQrPrint)(_CRepoter* This, BSTR strQuery, short* PaPerType);
  /* 0x60030046 */
  HRESULT(STDMETHODCALLTYPE* ChassisQrPrint)(_CRepoter* This, BSTR strQuery, short* PaPerType);
  /* 0x60030047 */
  HRESULT(STDMETHODCALLTYPE* PrintCformList)(_CRepoter* This, BSTR* Sq, DATE* Fdt, DATE* Tdt,
                                             BSTR* Title);
  /* 0x60030048 */
  HRESULT(STDMETHODCALLTYPE* TrialGroup)(_CRepoter* This, DATE Fdt, BSTR TrlID, BSTR* TrlName);
  /* 0x60030049 */
  HRESULT(STDMETHODCALLTYPE* PrintVat16)(_CRepoter* This, short* Xqno, short* Xmno, short* Xyy);
  /* 0x6003004a */
  HRESULT(STDMETHODCALLTYPE* VoucherPrintSingle)(_CRepoter* This, short Xid);
  /* 0x6003004b */
  HRESULT(STDMETHODCALLTYPE* OldVehicleReceiptPrint)(_CRepoter* This, short Xid);
  /* 0x6003004c */
  HRESULT(STDMETHODCALLTYPE* PartyRefLedger)(_CRepoter* This, BSTR* SqlQry, BSTR* mTitle);
  /* 0x6003004d */
  HRESULT(STDMETHODCALLTYPE* VoucherPrintUserWise)(_CRepoter* This, BSTR* SqlQry);
  /* 0x6003004e */
  HRESULT(STDMETHODCALLTYPE* ChequePrint)(_CRepoter* This, BSTR Chdate, BSTR ACpay, BSTR PartyName,
                                          BSTR Amt, BSTR inWords);
  /* 0x6003004f */
  HRESULT(STDMETHODCALLTYPE* GSTVehInvoiceSingle)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030050 */
  HRESULT(STDMETHODCALLTYPE* CycleInvoice)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030051 */
  HRESULT(STDMETHODCALLTYPE* GSTVehInvoiceHero)(_CRepoter* This, short ID);
  /* 0x60030052 */
  HRESULT(STDMETHODCALLTYPE* GSTVehInvoiceHeroSubdealer)(_CRepoter* This, short ID);
  /* 0x60030053 */
  HRESULT(STDMETHODCALLTYPE* GSTVehInvoice2in1)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030054 */
  HRESULT(STDMETHODCALLTYPE* GSTVehInvoicewith21)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030055 */
  HRESULT(STDMETHODCALLTYPE* GSTVehInvoiceSubDealer)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030056 */
  HRESULT(STDMETHODCALLTYPE* CycleInvoiceSubDealer)(_CRepoter* This, short ID, BSTR* LogoFile);
  /* 0x60030057 */
  HRESULT(STDMETHODCALLTYPE* VehSubDealerPackingList)(_CRepoter* This, short ID);
  /* 0x60030058 */
  HRESULT(STDMETHODCALLTYPE* w_gstjobinvPrint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                               double* Amt, BSTR* mRPT);
  /* 0x60030059 */
  HRESULT(STDMETHODCALLTYPE* w_gstcounterprint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                double* Amt, VARIANT* LogoFile);
  /* 0x6003005a */
  HRESULT(STDMETHODCALLTYPE* TrialNature)(_CRepoter* This, DATE Fdt, BSTR Nature, BSTR* Qry);
  /* 0x6003005b */
  HRESULT(STDMETHODCALLTYPE* GstVoucherPrint)(_CRepoter* This, short dId);
  /* 0x6003005c */
  HRESULT(STDMETHODCALLTYPE* PayoutVoucherPrint)(_CRepoter* This, short dId);
  /* 0x6003005d */
  HRESULT(STDMETHODCALLTYPE* GstDCNPrint)(_CRepoter* This, short dId);
  /* 0x6003005e */
  HRESULT(STDMETHODCALLTYPE* GstSaleSummary)(_CRepoter* This, DATE* Fdt, DATE* Tdt);
  /* 0x6003005f */
  HRESULT(STDMETHODCALLTYPE* GstPurchaseSummary)(_CRepoter* This, DATE* Fdt, DATE* Tdt);
  /* 0x60030060 */
  HRESULT(STDMETHODCALLTYPE* Apro_counterprint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                                double* Amt, BSTR* LogoFile,
                                                VARIANT_BOOL* WithoutMrp);
  /* 0x60030061 */
  HRESULT(STDMETHODCALLTYPE* Apro_jobinvPrint)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                               double* Amt, BSTR* LogoFile,
                                               VARIANT_BOOL* WithoutMrp);
  /* 0x60030062 */
  HRESULT(STDMETHODCALLTYPE* Apro_StockSummary)(_CRepoter* This, DATE Fdt);
  /* 0x60030063 */
  HRESULT(STDMETHODCALLTYPE* EInvoiceVehicle)(_CRepoter* This, short ID, BSTR* LogoFile,
                                              BSTR* QrFile);
  /* 0x60030064 */
  HRESULT(STDMETHODCALLTYPE* EInvoiceService)(_CRepoter* This, short* ma_id, BSTR* ma_rv,
                                              double* Amt, BSTR* LogoFile, BSTR* QrFile);
  /* 0x60030065 */
  HRESULT(STDMETHODCALLTYPE* EInvoiceClaim)(_CRepoter* This, short* DocID, BSTR* DocFrom,
                                            double* Amt, BSTR* LogoFile, BSTR* QrFile);
  /* 0x60030066 */
  HRESULT(STDMETHODCALLTYPE* Apro_WsPrintPurRet)(_CRepoter* This, short* mPu_id, double* Amt,
                                                 VARIANT_BOOL* isDN, BSTR* LogoFile);
} _CRepoterVtbl;

struct _CRepoter {
  const _CRepoterVtbl* lpVtbl;
};

static const IID IID__CRepoter VANTOREL_MAYBE_UNUSED = VANTOREL_IID_INIT;
static const CLSID CLSID_CRepoter VANTOREL_MAYBE_UNUSED = VANTOREL_CLSID_INIT;
static const GUID LIBID_Vantorel VANTOREL_MAYBE_UNUSED = VANTOREL_LIBID_INIT;
/* NOLINTEND(bugprone-reserved-identifier) */

/* The exports of the component's library, as a host that loads it finds them. */
typedef HRESULT(STDAPICALLTYPE* PFN_DllGetClassObject)(REFCLSID rclsid, REFIID riid,
                                                      void** ppv);
typedef HRESULT(STDAPICALLTYPE* PFN_DllCanUnloadNow)(void);
typedef HRESULT(STDAPICALLTYPE* PFN_DllRegisterServer)(void);
typedef HRESULT(STDAPICALLTYPE* PFN_DllUnregisterServer)(void);

#if !defined(_WIN32)
VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID rclsid, REFIID riid,
                                                         void** ppv);
VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllCanUnloadNow(void);
VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllRegisterServer(void);
VANTOREL_EXPORT HRESULT STDAPICALLTYPE DllUnregisterServer(void);
#endif

#ifdef __cplusplus
} /* extern "C" */
#endif

/* clang-format on */

#endif /* VANTOREL_CREPOTER_ABI_H_ */
