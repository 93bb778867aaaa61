#include "report/print/printer.h"

#include <cups/cups.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "report/pdf/queue_pdf.h"
#include "vantorel/error.h"

namespace vantorel::report {
namespace {

constexpr const char* kSource = "Vantorel report engine";

struct HttpClose {
  void operator()(http_t* http) const { httpClose(http); }
};
struct IppDelete {
  void operator()(ipp_t* ipp) const { ippDelete(ipp); }
};
struct DestFree {
  void operator()(cups_dest_t* dest) const { cupsFreeDests(1, dest); }
};
using Http = std::unique_ptr<http_t, HttpClose>;
using Ipp = std::unique_ptr<ipp_t, IppDelete>;
using Dest = std::unique_ptr<cups_dest_t, DestFree>;

[[noreturn]] void Fail(const std::string& description) {
  throw Error(errnum::kEngineFailure, kSource, description);
}

std::string LastCupsError() {
  const char* text = cupsLastErrorString();
  return text != nullptr && *text != '\0' ? text : ippErrorString(cupsLastError());
}

// The server cupsServer() names (CUPS_SERVER, client.conf or the local socket), for messages.
std::string ServerName() {
  std::string server = cupsServer();
  if (server.empty() || server[0] == '/') return server;
  return server + ":" + std::to_string(ippPort());
}

// A connection of our own to the scheduler, so one job's requests share it and threads never
// share one.
Http Connect() {
  http_t* http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1,
                              30000, nullptr);
  if (http == nullptr) {
    Fail("Cannot connect to the CUPS print server at " + ServerName() +
         ". Check that CUPS is running (systemctl status cups) and, when CUPS_SERVER is set, "
         "that it names the right server.");
  }
  return Http(http);
}

// The text of "name" in "response", joined with ", " when it has several values; "" when absent.
std::string Text(ipp_t* response, const char* name) {
  ipp_attribute_t* attribute = ippFindAttribute(response, name, IPP_TAG_ZERO);
  if (attribute == nullptr) return "";
  std::string text;
  for (int i = 0; i < ippGetCount(attribute); ++i) {
    const char* value = ippGetString(attribute, i, nullptr);
    if (value == nullptr) continue;
    if (!text.empty()) text += ", ";
    text += value;
  }
  return text;
}

int Enum(ipp_t* response, const char* name, int missing) {
  ipp_attribute_t* attribute = ippFindAttribute(response, name, IPP_TAG_ENUM);
  return attribute != nullptr ? ippGetInteger(attribute, 0) : missing;
}

struct QueueState {
  ipp_pstate_t state = IPP_PSTATE_IDLE;
  bool accepting = true;
  std::string reasons;  // printer-state-reasons
  std::string message;  // printer-state-message, what an administrator wrote or a backend said

  // "stopped (paused; message: …)" and the like, for error texts.
  std::string Describe() const {
    std::string text = state == IPP_PSTATE_STOPPED      ? "stopped"
                       : state == IPP_PSTATE_PROCESSING ? "processing"
                                                        : "idle";
    if (!accepting) text += ", not accepting jobs";
    if (!reasons.empty() && reasons != "none") text += " (printer-state-reasons: " + reasons + ")";
    if (!message.empty()) text += " — \"" + message + "\"";
    return text;
  }
};

QueueState GetQueueState(http_t* http, const std::string& queue) {
  ipp_t* request = ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES);
  char uri[HTTP_MAX_URI];
  httpAssembleURIf(HTTP_URI_CODING_ALL, uri, sizeof uri, "ipp", nullptr, "localhost", ippPort(),
                   "/printers/%s", queue.c_str());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri);
  static const char* const kAttributes[] = {"printer-state", "printer-state-reasons",
                                            "printer-state-message", "printer-is-accepting-jobs"};
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                static_cast<int>(std::size(kAttributes)), nullptr, kAttributes);
  Ipp response(cupsDoRequest(http, request, "/"));
  if (response == nullptr || cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE) {
    Fail("Cannot read the state of printer queue \"" + queue + "\": " + LastCupsError());
  }
  QueueState state;
  state.state = static_cast<ipp_pstate_t>(Enum(response.get(), "printer-state", IPP_PSTATE_IDLE));
  ipp_attribute_t* accepting =
      ippFindAttribute(response.get(), "printer-is-accepting-jobs", IPP_TAG_BOOLEAN);
  state.accepting = accepting == nullptr || ippGetBoolean(accepting, 0) != 0;
  state.reasons = Text(response.get(), "printer-state-reasons");
  state.message = Text(response.get(), "printer-state-message");
  return state;
}

struct JobState {
  ipp_jstate_t state = IPP_JSTATE_PENDING;
  std::string reasons;  // job-state-reasons
  std::string message;  // job-printer-state-message: the backend's last word on the job
};

JobState GetJobState(http_t* http, int job_id) {
  ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
  char uri[HTTP_MAX_URI];
  httpAssembleURIf(HTTP_URI_CODING_ALL, uri, sizeof uri, "ipp", nullptr, "localhost", ippPort(),
                   "/jobs/%d", job_id);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr, uri);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr,
               cupsUser());
  static const char* const kAttributes[] = {"job-state", "job-state-reasons",
                                            "job-printer-state-message"};
  ippAddStrings(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes",
                static_cast<int>(std::size(kAttributes)), nullptr, kAttributes);
  Ipp response(cupsDoRequest(http, request, "/"));
  if (response == nullptr || cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE) {
    Fail("Cannot follow print job " + std::to_string(job_id) + ": " + LastCupsError());
  }
  JobState state;
  state.state = static_cast<ipp_jstate_t>(Enum(response.get(), "job-state", IPP_JSTATE_PENDING));
  state.reasons = Text(response.get(), "job-state-reasons");
  state.message = Text(response.get(), "job-printer-state-message");
  return state;
}

const char* JobStateName(ipp_jstate_t state) {
  switch (state) {
    case IPP_JSTATE_PENDING:
      return "pending";
    case IPP_JSTATE_HELD:
      return "held";
    case IPP_JSTATE_PROCESSING:
      return "processing";
    case IPP_JSTATE_STOPPED:
      return "stopped";
    case IPP_JSTATE_CANCELED:
      return "cancelled";
    case IPP_JSTATE_ABORTED:
      return "aborted";
    case IPP_JSTATE_COMPLETED:
      return "completed";
  }
  return "unknown";
}

// One job on one queue, from creation to completion. A job that cannot complete is cancelled
// before the error leaves, so it never prints later by surprise.
class Job {
 public:
  Job(http_t* http, std::string queue) : http_(http), queue_(std::move(queue)) {}
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  std::string Name() const { return queue_ + "-" + std::to_string(id_); }

  void Create(const std::string& title, int copies) {
    cups_option_t* options = nullptr;
    int count = 0;
    if (copies > 1)
      count = cupsAddOption("copies", std::to_string(copies).c_str(), count, &options);
    id_ = cupsCreateJob(http_, queue_.c_str(), title.c_str(), count, options);
    cupsFreeOptions(count, options);
    if (id_ == 0) {
      Fail("Printer queue \"" + queue_ + "\" did not take the job: " + LastCupsError());
    }
  }

  void Send(const std::string& pdf, const std::string& document_name) {
    if (cupsStartDocument(http_, queue_.c_str(), id_, document_name.c_str(), CUPS_FORMAT_PDF, 1) !=
        HTTP_STATUS_CONTINUE) {
      CancelAndFail("could not start sending the document: " + LastCupsError());
    }
    constexpr size_t kChunk = 64 * 1024;
    for (size_t offset = 0; offset < pdf.size(); offset += kChunk) {
      const size_t size = std::min(kChunk, pdf.size() - offset);
      if (cupsWriteRequestData(http_, pdf.data() + offset, size) != HTTP_STATUS_CONTINUE) {
        cupsFinishDocument(http_, queue_.c_str());
        CancelAndFail("sending the document failed: " + LastCupsError());
      }
    }
    if (cupsFinishDocument(http_, queue_.c_str()) > IPP_STATUS_OK_EVENTS_COMPLETE) {
      CancelAndFail("the server refused the document: " + LastCupsError());
    }
  }

  // Polls the job, quickly at first and then less often, until it completes, fails, or
  // "timeout" has passed. A pending job on a stopped queue counts as failed: nothing will print
  // it until an administrator intervenes.
  void WaitUntilComplete(std::chrono::seconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    std::chrono::milliseconds pause(50);
    JobState job;
    for (;;) {
      job = GetJobState(http_, id_);
      switch (job.state) {
        case IPP_JSTATE_COMPLETED:
          return;
        case IPP_JSTATE_STOPPED:
        case IPP_JSTATE_ABORTED:
        case IPP_JSTATE_CANCELED:
          CancelAndFail(Describe(job));
        case IPP_JSTATE_PENDING:
        case IPP_JSTATE_HELD: {
          const QueueState queue = GetQueueState(http_, queue_);
          if (queue.state == IPP_PSTATE_STOPPED) {
            CancelAndFail(Describe(job) + "; the queue is " + queue.Describe());
          }
          break;
        }
        case IPP_JSTATE_PROCESSING:
          break;
      }
      const auto now = std::chrono::steady_clock::now();
      if (now >= deadline) {
        CancelAndFail(Describe(job) + " after waiting " + std::to_string(timeout.count()) +
                      " s for it to complete");
      }
      std::this_thread::sleep_for(
          std::min<std::chrono::steady_clock::duration>(pause, deadline - now));
      pause = std::min(pause * 2, std::chrono::milliseconds(1000));
    }
  }

 private:
  std::string Describe(const JobState& job) const {
    std::string text = std::string("job ") + Name() + " is " + JobStateName(job.state);
    if (!job.reasons.empty() && job.reasons != "none") {
      text += " (job-state-reasons: " + job.reasons + ")";
    }
    if (!job.message.empty()) text += " — \"" + job.message + "\"";
    return text;
  }

  [[noreturn]] void CancelAndFail(const std::string& what) {
    std::string description = "Printing to queue \"" + queue_ + "\" failed: " + what;
    if (cupsCancelJob2(http_, queue_.c_str(), id_, 0) <= IPP_STATUS_OK_EVENTS_COMPLETE) {
      description += ". The job was cancelled.";
    } else if (cupsLastError() == IPP_STATUS_ERROR_NOT_POSSIBLE) {
      description += ".";  // already finished: cancelled, aborted or completed meanwhile
    } else {
      description += ". Cancelling the job failed too: " + LastCupsError() + ".";
    }
    Fail(description);
  }

  http_t* http_;
  std::string queue_;
  int id_ = 0;
};

// The queue "requested" names, or when it is empty the user's default: LPDEST or PRINTER, then
// lpoptions, then the server's default, as every CUPS client chooses.
std::string ResolveQueue(http_t* http, const std::string& requested) {
  Dest dest(cupsGetNamedDest(http, requested.empty() ? nullptr : requested.c_str(), nullptr));
  if (dest != nullptr) return dest->name;
  const std::string listing = " (\"lpstat -p\" lists the queues).";
  if (!requested.empty()) {
    Fail("Printer queue \"" + requested + "\" does not exist on the CUPS server at " +
         ServerName() + listing);
  }
  for (const char* variable : {"LPDEST", "PRINTER"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
      Fail(std::string("The default printer queue \"") + value + "\", named by " + variable +
           ", does not exist on the CUPS server at " + ServerName() + listing);
    }
  }
  Fail("No printer was named and there is no default printer on the CUPS server at " +
       ServerName() +
       ". Name a queue in the template's printer setting or in VANTOREL_PRINTER, or choose a "
       "default with \"lpoptions -d QUEUE\"" +
       listing);
}

}  // namespace

void PrintDocument(const Document& document, const PrintOptions& options) {
  if (document.pages.empty()) Fail("The report has no pages, so there is nothing to print.");
  if (options.copies < 1) {
    Fail("The number of copies to print must be at least 1, not " + std::to_string(options.copies) +
         ".");
  }
  const Http http = Connect();
  const std::string queue = ResolveQueue(http.get(), options.queue);
  const QueueState state = GetQueueState(http.get(), queue);
  if (!state.accepting) {
    Fail("Printer queue \"" + queue + "\" is not accepting jobs: " + state.Describe() +
         ". An administrator can enable it with \"cupsaccept " + queue + "\".");
  }

  std::string title = options.title;
  if (title.empty()) title = document.metadata.title;
  if (title.empty()) title = "Vantorel report";
  const std::string pdf = QueuePdfBytes(document);

  Job job(http.get(), queue);
  job.Create(title, options.copies);
  job.Send(pdf, title);
  job.WaitUntilComplete(std::chrono::seconds(std::max(options.timeout_seconds, 1)));
}

}  // namespace vantorel::report
