// Date-range registers of the sales desk: enquiries (grouped by model, pending or matured,
// turned into bookings) and money receipts. Titles show dates as dd-mm-yyyy; the SQL carries them
// as YYYY/MM/DD with the host's regional date separator.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

std::string TitleDate(Date date) { return FormatDate(date, "dd-mm-yyyy", '-'); }
std::string SqlDate(Date date) { return DateText(date, "YYYY/MM/DD"); }

std::string DateRangeTitle(Date from, Date to) {
  return " from " + TitleDate(from) + " TO " + TitleDate(to);
}

// What one enquiry register differs in.
struct EnquiryRegister {
  const char* template_name;
  std::string title;     // the title of memo "Memo2", before its date range
  std::string sql_tail;  // what the SQL of query "enq" adds to the date range
};

void PrintEnquiryRegister(CRepoter& rep, Date from, Date to, const EnquiryRegister& form) {
  if (!from.IsValid() || !to.IsValid()) return;
  TemplatePokes pokes(rep);
  std::string& sql = PrintSteps::TextBuffer(rep);
  ThreadReportState().RptName = form.template_name;
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo2", form.title + DateRangeTitle(from, to));
  sql = "select * from enqdata where  enq_date>='" + SqlDate(from) + "' " + "and enq_date<='" +
        SqlDate(to) + "'" + form.sql_tail;
  pokes.RequireQuerySql("enq", sql);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace

void CRepoter::EnqGroupwise(Date FoDate, Date Tdate) {
  PrintEnquiryRegister(*this, FoDate, Tdate,
                       {.template_name = "enqgroupwise",
                        .title = "Enquiry Register Group wise",
                        .sql_tail = " order by enq_model,enq_date,enq_id "});
}

void CRepoter::EnqPending(Date FoDate, Date Tdate, int16_t Yn) {
  // Status 1 is a matured enquiry; every other code is titled pending and filtered as given.
  PrintEnquiryRegister(*this, FoDate, Tdate,
                       {.template_name = "enqpending",
                        .title = std::string(Yn == 1 ? "Matured" : "Pending") + " Enquiry Register",
                        .sql_tail = " and enq_status=" + Digits(Yn) + " order by enq_id "});
}

void CRepoter::EnqBooking(Date FoDate, Date Tdate) {
  PrintEnquiryRegister(*this, FoDate, Tdate,
                       {.template_name = "enqbooking",
                        .title = "Enquiry Booking Register",
                        .sql_tail = " and enq_booking=1 order by enq_id "});
}

// Named before its date test, and selected by two date parameters of a query it tests for.
void CRepoter::RecRegister(Date Fdate, Date Tdate) {
  TemplatePokes pokes(*this);
  ThreadReportState().RptName = "recregister";
  if (!Fdate.IsValid() || !Tdate.IsValid()) return;
  if (!pokes.Prepare()) return;
  pokes.RequireMemo("Memo2", "Receipts Register" + DateRangeTitle(Fdate, Tdate));
  pokes.QueryOrSkip("q_pm");
  pokes.RequireParameter("fromdate", {Fdate});
  pokes.RequireParameter("todate", {Tdate});
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

}  // namespace vantorel
