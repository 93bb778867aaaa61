// A fill test's fixture: a small SQLite database made from the test's SQL, and templates written
// from their bodies (an A5 page, 10 mm margins, the database as "DMSDB") and rendered on it.
#ifndef VANTOREL_TESTS_REPORT_FILL_TEMPLATE_ON_SQLITE_H_
#define VANTOREL_TESTS_REPORT_FILL_TEMPLATE_ON_SQLITE_H_

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <string>

#include "report/binding/report_engine.h"
#include "support/test_support.h"

namespace vantorel::report {

class TemplateOnSqlite : public ::testing::Test {
 protected:
  explicit TemplateOnSqlite(const std::string& sql) {
    db_ = dir_.path().string() + "/dms.db";
    sqlite3* db = nullptr;
    EXPECT_EQ(sqlite3_open(db_.c_str(), &db), SQLITE_OK);
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK) << error;
    sqlite3_free(error);
    sqlite3_close(db);
  }

  // The document of a template whose body (queries and bands) is "body".
  Document Render(const std::string& body) {
    template_ =
        "<report format=\"vantorel-template\" version=\"1\" name=\"t\">\n"
        "<page size=\"A5\" margin=\"10mm\"/>\n<database name=\"DMSDB\"/>\n" +
        body + "\n</report>\n";
    RenderRequest request;
    request.template_path = dir_.Write("t" + std::to_string(++count_) + ".fr3", template_);
    request.connections["DMSDB"] = db_;
    return RenderTemplate(request).document;
  }

  // The line of the last template rendered on which "text" first appears.
  int LineOf(const std::string& text) const {
    const size_t at = template_.find(text);
    EXPECT_NE(at, std::string::npos) << text;
    return 1 + static_cast<int>(std::count(template_.begin(), template_.begin() + at, '\n'));
  }

  testing::TempDir dir_;
  std::string db_;
  std::string template_;
  int count_ = 0;
};

}  // namespace vantorel::report

#endif  // VANTOREL_TESTS_REPORT_FILL_TEMPLATE_ON_SQLITE_H_
