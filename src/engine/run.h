// The report run: the five engine references a CRepoter holds while one print method runs (the
// report object, database object, query object, memo object and query parameter). Every call
// through them is traced. An empty component reference remembers the name it was looked up by, so
// using it fails with an error that names the missing component.
//
// Thread-safety: one run belongs to one CRepoter and its thread.
#ifndef VANTOREL_ENGINE_RUN_H_
#define VANTOREL_ENGINE_RUN_H_

#include <memory>
#include <string>

#include "engine/port.h"

namespace vantorel::engine {

class MemoRef {
 public:
  explicit operator bool() const { return object_ != nullptr; }
  void SetMemoText(const std::string& text);

 private:
  friend class ReportRun;
  std::shared_ptr<MemoObject> object_;
  std::string name_;
};

class ParamRef {
 public:
  explicit operator bool() const { return object_ != nullptr; }
  void SetParameterValue(const ParameterValue& value);

 private:
  friend class QueryRef;
  std::shared_ptr<QueryParameter> object_;
  std::string query_;
  std::string name_;
};

class QueryRef {
 public:
  explicit operator bool() const { return object_ != nullptr; }
  void SetQueryText(const std::string& sql);
  // The query's parameter "name"; an empty reference when the query has none.
  ParamRef GetQueryParameter(const std::string& name);

 private:
  friend class ReportRun;
  std::shared_ptr<QueryObject> object_;
  std::string name_;
};

class DatabaseRef {
 public:
  explicit operator bool() const { return object_ != nullptr; }
  void SetLoginPrompt(bool prompt);
  void SetConnected(bool connected);
  void SetConnectionString(const std::string& connection_string);

 private:
  friend class ReportRun;
  std::shared_ptr<DatabaseObject> object_;
  std::string name_;
};

class ReportRun {
 public:
  explicit ReportRun(std::shared_ptr<Engine> engine);

  // Replaces the report object with a new one from the engine.
  void CreateReport();

  // Operations on the report object; each creates one first when the reference is empty.
  void SetEngineOption(int32_t value);
  void LoadTemplate(const std::string& file);
  void SetPreviewOptionA(bool value);
  void SetPreviewFeatures(int32_t features);
  void SetPreviewOptionB(bool value);
  void SetPreviewOptionC(bool value);
  void SetTemplateVariable(const std::string& category, const std::string& name,
                           const std::string& value);
  void OpenDesigner();
  void ShowPreview();
  void PrepareReport(bool clear_previous);
  void PrintPrepared();
  // Gets the PDF export filter, exports and releases the filter.
  void ExportPdf(const std::string& file);

  // LocateComponent viewed as the kind the caller expects: an empty reference when the template
  // has no component "name"; an error when it has one of another kind.
  MemoRef LocateMemo(const std::string& name);
  QueryRef LocateQuery(const std::string& name);
  DatabaseRef LocateDatabase(const std::string& name);

  // Empties the five references in the order memo, report, database, query, parameter.
  void Release();

  bool has_report() const { return report_ != nullptr; }

  MemoRef memo;
  DatabaseRef database;
  QueryRef query;
  ParamRef param;

 private:
  ReportObject& Report();
  std::shared_ptr<Component> Locate(const std::string& name);

  std::shared_ptr<Engine> engine_;
  std::shared_ptr<ReportObject> report_;
};

}  // namespace vantorel::engine

#endif  // VANTOREL_ENGINE_RUN_H_
