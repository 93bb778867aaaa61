#include "data/open_rs.h"

#include <charconv>
#include <exception>

#include "host/messages.h"
#include "host/trace.h"
#include "vantorel/error.h"

namespace vantorel::data {
namespace {

std::string Decimal(int64_t number) {
  char buffer[24];
  return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
}

// The separators " , " and then ", " are the ones support staff know from the field.
void ShowFailure(int64_t number, const std::string& description, int64_t system_code,
                 const std::string& connection_string) {
  ShowMessage("Function OpenRs, ErrNo : " + Decimal(number) + " , " +
                  Redact(description, connection_string) + ", " + Decimal(system_code),
              MessageIcon::kNone);
}

}  // namespace

void OpenRs(const std::string& sql, Recordset& rs, const std::string& connection_string) {
  trace::Event("OpenRs").Text("sql", sql).Write();
  try {
    if (rs.State() == kStateOpen) rs.Close();
    rs.Open(sql, connection_string, kOpenKeyset, kLockReadOnly, kCmdUnspecified);
  } catch (const Error& error) {
    ShowFailure(error.number(), error.description(), error.system_code(), connection_string);
  } catch (const std::exception& error) {
    ShowFailure(errnum::kUnspecified, error.what(), 0, connection_string);
  }
}

}  // namespace vantorel::data
