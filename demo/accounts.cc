#include "demo/accounts.h"

#include "demo/identifiers.h"

namespace vantorel::demo {
namespace {

Cell Text(const std::string& text) { return text.empty() ? Cell(kNull) : Cell(text); }

}  // namespace

Account MakeAccount(int id, std::string name, std::string group, std::string add1, std::string add2,
                    std::string add3, std::string town, std::string district, std::string state,
                    std::string state_code, std::string pin, std::string pan, std::string phone,
                    std::string mobile, std::string email, std::string contact, int64_t opening) {
  Account a;
  a.id = id;
  a.name = std::move(name);
  a.group = std::move(group);
  a.add1 = std::move(add1);
  a.add2 = std::move(add2);
  a.add3 = std::move(add3);
  a.town = std::move(town);
  a.district = std::move(district);
  a.state = std::move(state);
  a.state_code = std::move(state_code);
  a.pin = std::move(pin);
  a.pan = std::move(pan);
  a.gstin = a.pan.empty() || a.state.empty() ? "" : MakeGstin(a.state_code, a.pan);
  a.phone = std::move(phone);
  a.mobile = std::move(mobile);
  a.email = std::move(email);
  a.contact = std::move(contact);
  a.opening = opening;
  return a;
}

const std::vector<std::string>& AccountColumns() {
  static const std::vector<std::string> columns = {
      "am_id",   "am_name",     "am_group",  "am_add1",      "am_add2",    "am_add3",
      "am_town", "am_district", "am_state",  "am_statecode", "am_pin",     "am_gst",
      "am_pan",  "am_phone",    "am_mobile", "am_email",     "am_contact", "am_opbal"};
  return columns;
}

std::vector<Cell> AccountRow(const Account& a) {
  return {int64_t{a.id}, a.name,          a.group,          Text(a.add1),  Text(a.add2),
          Text(a.add3),  Text(a.town),    Text(a.district), Text(a.state), Text(a.state_code),
          Text(a.pin),   Text(a.gstin),   Text(a.pan),      Text(a.phone), Text(a.mobile),
          Text(a.email), Text(a.contact), Money{a.opening}};
}

}  // namespace vantorel::demo
