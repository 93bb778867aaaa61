// Workshop lists over a date range: the service follow-up report, and for one mechanic or
// supervisor the parts requisitioned and the labour done. Titles show the dates in the host's
// short date form.
#include "reports/print_steps.h"

namespace vantorel {
namespace {

std::string ShortDate(Date date) { return ShortDateText(date, CurrentPlatform()->RegionalDates()); }

// What one technician list differs in.
struct TechnicianList {
  const char* template_name;
  const char* name_label;                  // " MECHANIC NAME : " or " SUPERVISOR NAME : "
  const std::string* part_type = nullptr;  // parameter "parttype", on the mechanic's
                                           // requisitions only
};

void PrintTechnicianList(CRepoter& rep, int16_t id, const std::string& name, Date from, Date to,
                         const TechnicianList& list) {
  if (!(id > 0)) return;
  ThreadReportState().RptName = list.template_name;
  TemplatePokes pokes(rep);
  if (!pokes.Prepare()) return;
  pokes.QueryOrSkip("mst");
  pokes.ParameterOrSkip("mechid", {id});
  pokes.ParameterOrSkip("fdt", {from});
  pokes.ParameterOrSkip("tdt", {to});
  if (list.part_type != nullptr) pokes.ParameterOrSkip("parttype", {*list.part_type});
  pokes.RequireMemo(
      "TITLE", "REPORT FROM " + ShortDate(from) + " TO " + ShortDate(to) + list.name_label + name);
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

constexpr const char* kMechanic = " MECHANIC NAME : ";
constexpr const char* kSupervisor = " SUPERVISOR NAME : ";

}  // namespace

// The dates only title the list: the template's own query chooses what it shows.
void CRepoter::w_ServiceReport(Date FromDate, Date ToDate) {
  ThreadReportState().RptName = "w_servicefollowup";
  TemplatePokes pokes(*this);
  if (!pokes.Prepare()) return;
  pokes.MemoOrSkip(
      "titel", "Service Followup Report from " + ShortDate(FromDate) + " to " + ShortDate(ToDate));
  pokes.RenderUnlessSkipped();
  pokes.Release();
}

void CRepoter::w_mechreqlist(int16_t Mechid, const std::string& MechName,
                             const std::string& PartType, Date Fdt, Date Tdt) {
  PrintTechnicianList(
      *this, Mechid, MechName, Fdt, Tdt,
      {.template_name = "w_mechreqlist", .name_label = kMechanic, .part_type = &PartType});
}

void CRepoter::w_mechlablist(int16_t Mechid, const std::string& MechName, Date Fdt, Date Tdt) {
  PrintTechnicianList(*this, Mechid, MechName, Fdt, Tdt,
                      {.template_name = "w_mechlablist", .name_label = kMechanic});
}

// A requisition list like the mechanic's, but without a part type.
void CRepoter::w_superreqlist(int16_t Mechid, const std::string& MechName, Date Fdt, Date Tdt) {
  PrintTechnicianList(*this, Mechid, MechName, Fdt, Tdt,
                      {.template_name = "w_superreqlist", .name_label = kSupervisor});
}

void CRepoter::w_superlablist(int16_t Mechid, const std::string& MechName, Date Fdt, Date Tdt) {
  PrintTechnicianList(*this, Mechid, MechName, Fdt, Tdt,
                      {.template_name = "w_superlablist", .name_label = kSupervisor});
}

}  // namespace vantorel
