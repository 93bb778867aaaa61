// Date-range registers of the sales desk: enquiries (grouped by model, pending or matured,
// turned into bookings) and money receipts. Titles show dates as dd-mm-yyyy; the SQL carries them
// as YYYY/MM/DD with the host's regional date separator.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

std::string TitleDate(Date date) { return FormatDate(date, "dd-mm-yyyy", '-'); }
std::string SqlDate(Date date) { return DateText(date, "YYYY/MM/DD"); }

std::string EnquiryRange(Date from, Date to) {
  return "select * from enqdata where  enq_date>='" + SqlDate(from) + "' " + "and enq_date<='" +
         SqlDate(to) + "'";
}

// The three enquiry registers: a title in "Memo2", the rows by the SQL of query "enq".
void PrintEnquiryRegister(CRepoter& rep, Date from, Date to, const char* template_name,
                          const std::string& title, const std::string& sql_tail) {
  if (!from.IsValid() || !to.IsValid()) return;
  engine::ReportRun& run = PrintSteps::Run(rep);
  std::string& sql = PrintSteps::TextBuffer(rep);
  ThreadReportState().RptName = template_name;
  if (!PrintSteps::Prepare(rep)) return;
  run.memo = run.LocateMemo("Memo2");
  run.memo.SetMemoText(title + " from " + TitleDate(from) + " TO " + TitleDate(to));
  run.memo = {};
  run.query = run.LocateQuery("enq");
  sql = EnquiryRange(from, to) + sql_tail;
  run.query.SetQueryText(sql);
  run.database = {};
  run.query = {};
  PrintSteps::Render(rep);
  PrintSteps::Release(rep);
}

}  // namespace

void CRepoter::EnqGroupwise(Date FoDate, Date Tdate) {
  PrintEnquiryRegister(*this, FoDate, Tdate, "enqgroupwise", "Enquiry Register Group wise",
                       " order by enq_model,enq_date,enq_id ");
}

void CRepoter::EnqPending(Date FoDate, Date Tdate, int16_t Yn) {
  // Status 1 is a matured enquiry; every other code is titled pending and filtered as given.
  PrintEnquiryRegister(*this, FoDate, Tdate, "enqpending",
                       std::string(Yn == 1 ? "Matured" : "Pending") + " Enquiry Register",
                       " and enq_status=" + Digits(Yn) + " order by enq_id ");
}

void CRepoter::EnqBooking(Date FoDate, Date Tdate) {
  PrintEnquiryRegister(*this, FoDate, Tdate, "enqbooking", "Enquiry Booking Register",
                       " and enq_booking=1 order by enq_id ");
}

void CRepoter::RecRegister(Date Fdate, Date Tdate) {
  engine::ReportRun& run = PrintSteps::Run(*this);
  ThreadReportState().RptName = "recregister";
  if (!Fdate.IsValid() || !Tdate.IsValid()) return;
  if (!PrintSteps::Prepare(*this)) return;
  run.memo = run.LocateMemo("Memo2");
  run.memo.SetMemoText("Receipts Register from " + TitleDate(Fdate) + " TO " + TitleDate(Tdate));
  run.memo = {};
  run.query = run.LocateQuery("q_pm");
  if (run.query) {
    run.param = run.query.GetQueryParameter("fromdate");
    run.param.SetParameterValue({Fdate});
    run.param = run.query.GetQueryParameter("todate");
    run.param.SetParameterValue({Tdate});
    run.database = {};
    run.query = {};
    PrintSteps::Render(*this);
  }
  PrintSteps::Release(*this);
}

}  // namespace vantorel
