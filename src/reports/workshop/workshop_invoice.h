// The workshop's invoice recipe, shared by the job invoices and the counter invoices: a positive
// id, the invoice selected by two parameters of query "mst" (both tested for), its amount in
// words in memo "WORDS" (used without a test), and the pictures each form adds.
#ifndef VANTOREL_REPORTS_WORKSHOP_WORKSHOP_INVOICE_H_
#define VANTOREL_REPORTS_WORKSHOP_WORKSHOP_INVOICE_H_

#include <string>

#include "reports/print_steps.h"

namespace vantorel {

inline constexpr const char* kRupeesColon = "RUPEES : ";

// What one invoice form differs in.
struct WorkshopInvoiceForm {
  const char* template_name;
  const char* words_prefix = kRupeesColon;
  const char* id_parameter = "ma_id";
  const char* text_parameter = "ma_rv";
  // Pictures set right after preparing, the logo first (e-invoices, with their QR code).
  const std::string* logo = nullptr;
  const std::string* qr_code = nullptr;
  // The logo set after the words, so only when the invoice was found in the template.
  const std::string* logo_after_words = nullptr;
};

inline void PrintWorkshopInvoice(CRepoter& rep, int16_t id, const std::string& text, double amount,
                                 const WorkshopInvoiceForm& form) {
  if (!(id > 0)) return;
  ThreadReportState().RptName = form.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  if (form.logo != nullptr) pokes.RequirePicture("logo", *form.logo);
  if (form.qr_code != nullptr) pokes.RequirePicture("qrcode", *form.qr_code);
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip(form.id_parameter, {id});
  pokes.ParameterOrSkip(form.text_parameter, {text});
  pokes.RequireMemo("WORDS", form.words_prefix + AmountInWords(amount));
  if (form.logo_after_words != nullptr) pokes.RequirePicture("logo", *form.logo_after_words);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel

#endif  // VANTOREL_REPORTS_WORKSHOP_WORKSHOP_INVOICE_H_
