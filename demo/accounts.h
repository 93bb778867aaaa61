// The account master (fa_acmaster) as every step of the generator writes into it: one builder
// for an account, one row shape, and the one ledger a customer has in the books.
//
// Thread-safety: plain functions over plain values.
#ifndef VANTOREL_DEMO_ACCOUNTS_H_
#define VANTOREL_DEMO_ACCOUNTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "demo/entities.h"
#include "demo/rows.h"

namespace vantorel::demo {

// An account of the account master; its GSTIN is made from the state code and the PAN when the
// account has both.
Account MakeAccount(int id, std::string name, std::string group, std::string add1, std::string add2,
                    std::string add3, std::string town, std::string district, std::string state,
                    std::string state_code, std::string pin, std::string pan, std::string phone,
                    std::string mobile, std::string email, std::string contact, int64_t opening);

// The columns of an account master row and the row of "account", opening balance last.
const std::vector<std::string>& AccountColumns();
std::vector<Cell> AccountRow(const Account& account);

// A customer's one ledger in the books, whatever posts to it (a vehicle invoice, a receipt, a
// job bill, an exchange): 100000 + the customer id, beyond the 16-bit document ids.
inline constexpr int kCustomerLedgerBase = 100000;
inline int CustomerLedger(int customer) { return kCustomerLedgerBase + customer; }

}  // namespace vantorel::demo

#endif  // VANTOREL_DEMO_ACCOUNTS_H_
