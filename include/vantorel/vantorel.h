/* A plain C interface to the report-printing component, for hosts in languages that call C
 * (Python's ctypes, Go's cgo, Rust, ...) and need neither C++ nor the COM layout. A handle wraps
 * one CRepoter; properties and methods are named as in the interface (matched without regard to
 * case) and take typed values. Text is UTF-8.
 *
 *   vantorel_repoter* r = vantorel_create();
 *   vantorel_value path = {VANTOREL_STRING};
 *   path.str = "/srv/dms/reports/";
 *   vantorel_set_property(r, "ReportPath", &path);
 *   vantorel_invoke(r, "SetVars", NULL, 0);
 *   vantorel_value id = {VANTOREL_I2};
 *   id.i2 = 12;
 *   if (vantorel_invoke(r, "Challan_Customer", &id, 1) != 0)
 *     fprintf(stderr, "%s\n", vantorel_last_error_text(r));
 *   vantorel_destroy(r);
 *
 * Every function returns 0 on success or the failure's status code (an HRESULT: negative), and
 * no function lets an exception or a signal of its own escape.
 *
 * Thread-safety: a handle belongs to the thread that uses it; the report state is per thread, so
 * call SetVars on the thread that prints. Handles on different threads are independent.
 * vantorel_set_message_box_handler may be called from any thread. */
#ifndef VANTOREL_VANTOREL_H_
#define VANTOREL_VANTOREL_H_

#include <stdint.h>

#include "vantorel/export.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vantorel_repoter vantorel_repoter;

/* Value types: the automation type codes. */
enum {
  VANTOREL_EMPTY = 0,
  VANTOREL_I2 = 2,       /* i2: 16-bit integer (document identifiers) */
  VANTOREL_I4 = 3,       /* i4: 32-bit integer */
  VANTOREL_R8 = 5,       /* r8: double (amounts) */
  VANTOREL_DATE = 7,     /* date: days since 1899-12-30, the fraction being the time of day */
  VANTOREL_STRING = 8,   /* str: UTF-8, NUL-terminated; NULL is the empty text */
  VANTOREL_MISSING = 10, /* an omitted optional argument */
  VANTOREL_BOOL = 11,    /* boolean: true is -1, false 0 */
  VANTOREL_UI1 = 17      /* ui1: unsigned 8-bit integer */
};

typedef struct vantorel_value {
  int type;
  union {
    int16_t i2;
    int32_t i4;
    uint8_t ui1;
    double r8;
    double date;
    const char* str;
    int16_t boolean;
  };
} vantorel_value;

/* A new component with empty properties, or NULL when it cannot be made. */
VANTOREL_EXPORT vantorel_repoter* vantorel_create(void);

/* Destroys "r"; NULL is allowed. */
VANTOREL_EXPORT void vantorel_destroy(vantorel_repoter* r);

/* Writes property "name" ("ReportPath", "RptPDF", ...). The value is converted to the property's
 * type as automation converts it (a text "1" for a number, 1 for a boolean gives true, ...). */
VANTOREL_EXPORT int32_t vantorel_set_property(vantorel_repoter* r, const char* name,
                                              const vantorel_value* value);

/* Reads property "name" into *out. A string points into a buffer the handle owns, valid until
 * the next call with "r" (copy it to keep it). */
VANTOREL_EXPORT int32_t vantorel_get_property(vantorel_repoter* r, const char* name,
                                              vantorel_value* out);

/* Calls method "method" with "nargs" arguments in parameter order ("args" may be NULL when
 * "nargs" is 0). Trailing optional arguments may be left off, or passed as VANTOREL_MISSING.
 * Arguments are converted to the parameter types as automation converts them; by-reference
 * parameters are never written back. */
VANTOREL_EXPORT int32_t vantorel_invoke(vantorel_repoter* r, const char* method,
                                        const vantorel_value* args, int nargs);

/* The error number of the last call with "r" that failed (a runtime error number such as 13, or
 * a status code), 0 when the last call succeeded or "r" is NULL. */
VANTOREL_EXPORT int32_t vantorel_last_error_number(const vantorel_repoter* r);

/* The description of that error, "" when there is none. Owned by the handle, valid until the
 * next call with "r". */
VANTOREL_EXPORT const char* vantorel_last_error_text(const vantorel_repoter* r);

/* Message box icons. */
enum { VANTOREL_ICON_NONE = 0, VANTOREL_ICON_CRITICAL = 16 };

/* Shows the component's message boxes through "handler" instead of the default (a dialog on a
 * desktop, otherwise a line on stderr): it receives "user", the UTF-8 text and the icon, and is
 * called on the thread that prints. The call stands for a modal box with an OK button: printing
 * goes on when it returns. NULL restores the default. */
VANTOREL_EXPORT void vantorel_set_message_box_handler(void (*handler)(void* user, const char* text,
                                                                      int icon),
                                                      void* user);

/* Removes the temporary files of PDFs and pictures still being written, so that a host ending on
 * a signal leaves none behind (a finished file is never touched). Safe to call from a signal
 * handler and from any thread; the component installs no signal handler of its own. */
VANTOREL_EXPORT void vantorel_remove_pending_files(void);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VANTOREL_VANTOREL_H_ */
