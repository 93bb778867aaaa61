// A component printing with our report engine: a template folder, a real SQLite database, the
// recording platform, and helpers that read PDFs back with poppler.
#ifndef VANTOREL_TESTS_REPORT_BINDING_ENGINE_FIXTURE_H_
#define VANTOREL_TESTS_REPORT_BINDING_ENGINE_FIXTURE_H_

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "support/shell.h"
#include "support/test_support.h"
#include "vantorel/crepoter.h"

namespace vantorel::testing {

class EngineTest : public ::testing::Test {
 protected:
  EngineTest() {
    db_ = dir_.path().string() + "/dms.db";
    sqlite3* db = nullptr;
    sqlite3_open(db_.c_str(), &db);
    sqlite3_exec(db, R"(
      create table challan (id integer, cname text, amt numeric(12,2));
      insert into challan values (12, 'Ramesh Dattatray Patil', 1250.50);
      insert into challan values (13, 'सुनीता देशमुख', 105000.50);
    )",
                 nullptr, nullptr, nullptr);
    sqlite3_close(db);
    dir_.Write("reports/challan.fr3", R"(<?xml version="1.0" encoding="UTF-8"?>
<report format="vantorel-template" version="1" name="challan">
  <info title="Delivery Challan" author="Shivneri Motors"/>
  <page size="A5" margin="10mm"/>
  <database name="DMSDB"/>
  <query name="Q_CHL">
    <sql>select * from challan where id = :id</sql>
    <param name="id" type="integer" default="12"/>
  </query>
  <variable category="Company" name="logo" value='""'/>
  <title height="40mm">
    <picture name="Logo" width="20mm" height="20mm" source="[Company.logo]"/>
    <text name="Heading" left="25mm" width="100mm" height="8mm" size="14" bold="true">DELIVERY CHALLAN</text>
    <text name="Customer" left="25mm" top="10mm" width="100mm" height="6mm">Customer: [Q_CHL.cname]</text>
    <text name="Amount" left="25mm" top="16mm" width="100mm" height="6mm" format="₹ #,##,##0.00">[Q_CHL.amt]</text>
    <text name="WORDS" left="0" top="24mm" width="128mm" height="10mm" stretch="grow">[AmountInWords(Q_CHL.amt)]</text>
  </title>
</report>
)");
    rep_.put_ReportPath(dir_.folder() + "reports/");
    rep_.put_DbConnectstring(db_);
    rep_.put_RptPDF(kTrue);
    rep_.put_AppPath(dir_.path().string());
  }

  TempDir dir_;
  PlatformScope platform_;
  std::string db_;
  CRepoter rep_;
};

}  // namespace vantorel::testing

#endif  // VANTOREL_TESTS_REPORT_BINDING_ENGINE_FIXTURE_H_
