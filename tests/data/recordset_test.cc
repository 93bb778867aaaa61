#include "data/recordset.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <functional>
#include <memory>

#include "data/open_rs.h"
#include "host/recording_platform.h"
#include "temp_database.h"
#include "vantorel/error.h"
#include "vantorel/platform.h"

namespace vantorel::data {
namespace {

using testing::ErrorNumberOf;

// How the print methods read a setting flag: trimmed, upper-cased, compared with "Y"; a NULL is
// never "Y".
bool IsSettingOn(const Value& value) {
  if (value.is_null()) return false;
  std::string text = ToText(value);
  const size_t first = text.find_first_not_of(' ');
  const size_t last = text.find_last_not_of(' ');
  text = first == std::string::npos ? "" : text.substr(first, last - first + 1);
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text == "Y";
}

class DataRecordset : public ::testing::Test {
 protected:
  void SetUp() override {
    path_ = folder_.File("dms.db");
    testing::CreateSqlite(path_, testing::kDealershipScript);
  }

  testing::TempFolder folder_;
  std::string path_;
  Recordset rs_;
};

TEST_F(DataRecordset, NewRecordsetIsClosed) { EXPECT_EQ(rs_.State(), kStateClosed); }

TEST_F(DataRecordset, OpenReadsEveryRowAndCountsThem) {
  rs_.Open("select * from enquiry", path_, kOpenKeyset, kLockReadOnly, kCmdUnspecified);
  EXPECT_EQ(rs_.State(), kStateOpen);
  EXPECT_EQ(rs_.RecordCount(), 4);
}

TEST_F(DataRecordset, FieldsOfTheFirstRowByIndexOrName) {
  rs_.Open("select enq_id, cname, amount from enquiry order by enq_id", path_);
  EXPECT_EQ(rs_.Fields(int16_t{0}).Value(), Value::Integer(1));
  EXPECT_EQ(rs_.Fields(int16_t{1}).Name(), "cname");
  EXPECT_EQ(rs_.Fields("CName").Value(), Value::Text("Ramesh Kumar"));
  EXPECT_EQ(rs_.Fields("AMOUNT").Name(), "amount");
  EXPECT_EQ(&rs_.Fields("cname"), &rs_.Fields(int16_t{1}));
}

TEST_F(DataRecordset, NoRowsCountsZeroAndHasNoCurrentRecord) {
  rs_.Open("select cname from enquiry where enq_id = -1", path_);
  EXPECT_EQ(rs_.State(), kStateOpen);
  EXPECT_EQ(rs_.RecordCount(), 0);
  EXPECT_EQ(rs_.Fields("cname").Name(), "cname");
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields("cname").Value(); }), errnum::kNoCurrentRecord);
}

TEST_F(DataRecordset, ClosedRecordsetRefusesReads) {
  EXPECT_EQ(ErrorNumberOf([&] { rs_.RecordCount(); }), errnum::kObjectClosed);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields(int16_t{0}); }), errnum::kObjectClosed);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields("cname"); }), errnum::kObjectClosed);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Close(); }), errnum::kObjectClosed);
  try {
    rs_.RecordCount();
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Operation is not allowed: the recordset is closed");
  }
}

TEST_F(DataRecordset, CloseThenReadFails) {
  rs_.Open("select 1 as one", path_);
  rs_.Close();
  EXPECT_EQ(rs_.State(), kStateClosed);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.RecordCount(); }), errnum::kObjectClosed);
  rs_.Open("select 2 as two", path_);
  EXPECT_EQ(rs_.Fields("two").Value(), Value::Integer(2));
}

TEST_F(DataRecordset, UnknownFieldIs3265) {
  rs_.Open("select enq_id from enquiry", path_);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields("nosuch"); }), errnum::kItemNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields(int16_t{1}); }), errnum::kItemNotFound);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields(int16_t{-1}); }), errnum::kItemNotFound);
}

TEST_F(DataRecordset, OpeningAnOpenRecordsetIsRefused) {
  rs_.Open("select 1", path_);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Open("select 2", path_); }), 3705);
  EXPECT_EQ(rs_.State(), kStateOpen);
}

TEST_F(DataRecordset, FailedOpenThrowsAndStaysClosed) {
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Open("selec 1", path_); }), errnum::kCommandError);
  EXPECT_EQ(rs_.State(), kStateClosed);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Open("select 1", ""); }), errnum::kConnectionInvalid);
  EXPECT_EQ(rs_.State(), kStateClosed);
}

class DataOpenRs : public DataRecordset {
 protected:
  void SetUp() override {
    DataRecordset::SetUp();
    SetPlatform(platform_);
  }
  void TearDown() override { SetPlatform(nullptr); }

  std::vector<RecordingPlatform::Message> Messages() const { return platform_->messages(); }

  std::shared_ptr<RecordingPlatform> platform_ = std::make_shared<RecordingPlatform>();
};

TEST_F(DataOpenRs, OpensTheRecordsetOnTheSql) {
  OpenRs("select enq_id from enquiry where enq_id=3", rs_, path_);
  EXPECT_EQ(rs_.State(), kStateOpen);
  EXPECT_EQ(rs_.RecordCount(), 1);
  EXPECT_EQ(rs_.Fields(int16_t{0}).Value(), Value::Integer(3));
  EXPECT_TRUE(Messages().empty());
}

TEST_F(DataOpenRs, ReopeningAnOpenRecordsetClosesItFirst) {
  OpenRs("select enq_id from enquiry", rs_, path_);
  ASSERT_EQ(rs_.RecordCount(), 4);
  OpenRs("select cname, enq_date from enquiry where enq_id=2", rs_, path_);
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(rs_.State(), kStateOpen);
  EXPECT_EQ(rs_.RecordCount(), 1);
  EXPECT_EQ(rs_.Fields("enq_date").Value(), Value::FromDate(Date::FromYmd(2024, 3, 31)));
  EXPECT_EQ(ErrorNumberOf([&] { rs_.Fields("enq_id"); }), errnum::kItemNotFound);
}

TEST_F(DataOpenRs, BadSqlShowsExactlyOneMessageAndLeavesTheRecordsetClosed) {
  OpenRs("select enq_id from enquiry", rs_, path_);
  ASSERT_EQ(rs_.State(), kStateOpen);
  EXPECT_NO_THROW(OpenRs("selec 1", rs_, path_));
  const std::vector<RecordingPlatform::Message> expected = {
      {"Function OpenRs, ErrNo : -2147217900 , near \"selec\": syntax error, 1",
       MessageIcon::kNone}};
  EXPECT_EQ(Messages(), expected);
  EXPECT_EQ(rs_.State(), kStateClosed);
  EXPECT_EQ(ErrorNumberOf([&] { rs_.RecordCount(); }), errnum::kObjectClosed);
}

TEST_F(DataOpenRs, EmptyConnectionStringIsShown) {
  OpenRs("select 1", rs_, "");
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0].text,
            "Function OpenRs, ErrNo : 3709 , The connection string is empty: set DbConnectstring "
            "to the database's connection string or to the path of its SQLite file, 0");
  EXPECT_EQ(rs_.State(), kStateClosed);
}

TEST_F(DataOpenRs, MissingDatabaseFileIsShownAndNotCreated) {
  const std::string missing = folder_.File("gone.db");
  OpenRs("select 1", rs_, missing);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0].text,
            "Function OpenRs, ErrNo : -2147467259 , unable to open database "
            "file " +
                missing + ": No such file or directory, 14");
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(DataOpenRs, OdbcFailureShowsTheDriverManagersTextButNoPassword) {
  OpenRs("select 1", rs_, "DSN=no_such_dsn;UID=dms;PWD=Secr3t!pw");
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0].text,
            "Function OpenRs, ErrNo : -2147467259 , [unixODBC][Driver Manager]Data source name "
            "not found and no default driver specified, 0");
  EXPECT_EQ(Messages()[0].icon, MessageIcon::kNone);
}

TEST_F(DataOpenRs, UnsupportedProviderIsShownByName) {
  OpenRs("select 1", rs_, "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=dms.mdb;Password=pw77");
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_NE(Messages()[0].text.find("Microsoft.Jet.OLEDB.4.0"), std::string::npos);
  EXPECT_EQ(Messages()[0].text.find("pw77"), std::string::npos);
}

TEST_F(DataOpenRs, SettingFlagIsTrimmedAndUpperCased) {
  OpenRs("select para_value from para_setup where para_flag='CHALLAN' and para_type='GATEPASS'",
         rs_, path_);
  ASSERT_GT(rs_.RecordCount(), 0);
  EXPECT_TRUE(IsSettingOn(rs_.Fields(int16_t{0}).Value()));
  OpenRs("select para_value from para_setup where para_flag='BOOKING' and para_type='FORM'", rs_,
         path_);
  ASSERT_GE(rs_.RecordCount(), 1);
  EXPECT_FALSE(IsSettingOn(rs_.Fields(int16_t{0}).Value()));
}

TEST_F(DataOpenRs, NullSettingIsNotOn) {
  OpenRs("select para_value from para_setup where para_flag='WS_PO' and para_type='PO'", rs_,
         path_);
  ASSERT_EQ(rs_.RecordCount(), 1);
  EXPECT_FALSE(IsSettingOn(rs_.Fields(int16_t{0}).Value()));
}

TEST_F(DataOpenRs, MissingSettingRowCountsZero) {
  OpenRs("select para_value from para_setup where para_flag='NONE' and para_type='X'", rs_, path_);
  EXPECT_EQ(rs_.RecordCount(), 0);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(DataOpenRs, NullAmountCannotBeText) {
  OpenRs("select amount from enquiry where enq_id=4", rs_, path_);
  ASSERT_EQ(rs_.RecordCount(), 1);
  EXPECT_EQ(ErrorNumberOf([&] { ToText(rs_.Fields(int16_t{0}).Value()); }),
            errnum::kInvalidUseOfNull);
}

TEST_F(DataOpenRs, AmountReadsThroughTextAndVal) {
  OpenRs("select amount from enquiry where enq_id=" + std::to_string(1), rs_, path_);
  EXPECT_EQ(Val(ToText(rs_.Fields(int16_t{0}).Value())), 60000.1);
}

TEST_F(DataOpenRs, ZeroOrNegativeIdentifiersAreJustNotFound) {
  for (int16_t id : {int16_t{0}, int16_t{-5}}) {
    OpenRs("select * from enquiry where enq_id=" + std::to_string(id), rs_, path_);
    EXPECT_EQ(rs_.RecordCount(), 0);
  }
  EXPECT_TRUE(Messages().empty());
}

class DataOpenRsTrace : public DataOpenRs {
 protected:
  void SetUp() override {
    DataOpenRs::SetUp();
    trace_ = folder_.File("trace.jsonl");
    ::setenv("VANTOREL_TRACE", trace_.c_str(), 1);
  }
  void TearDown() override {
    ::unsetenv("VANTOREL_TRACE");
    DataOpenRs::TearDown();
  }
  std::string trace_;
};

TEST_F(DataOpenRsTrace, EachCallIsTracedBeforeItsMessage) {
  OpenRs("select \"cname\" from enquiry", rs_, path_);
  OpenRs("selec 1", rs_, path_);
  EXPECT_EQ(testing::ReadFile(trace_),
            "{\"op\":\"OpenRs\",\"sql\":\"select \\\"cname\\\" from enquiry\"}\n"
            "{\"op\":\"OpenRs\",\"sql\":\"selec 1\"}\n"
            "{\"op\":\"MessageBox\",\"text\":\"Function OpenRs, ErrNo : -2147217900 , near "
            "\\\"selec\\\": syntax error, 1\",\"icon\":\"none\"}\n");
}

TEST_F(DataOpenRsTrace, PasswordsNeverReachTheTrace) {
  OpenRs("select 1", rs_, "Provider=OraOLEDB.Oracle;User ID=u;Password=hunter2x");
  EXPECT_EQ(testing::ReadFile(trace_).find("hunter2x"), std::string::npos);
  EXPECT_EQ(Messages().size(), 1u);
}

TEST_F(DataOpenRs, NoTraceFileWithoutTheVariable) {
  ::unsetenv("VANTOREL_TRACE");
  OpenRs("select 1", rs_, path_);
  EXPECT_FALSE(std::filesystem::exists(folder_.File("trace.jsonl")));
}

}  // namespace
}  // namespace vantorel::data
