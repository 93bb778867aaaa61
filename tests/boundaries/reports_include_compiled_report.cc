// Must not compile: the print methods drive the engine port, never the compiled template.
#include "report/compile/compiled_report.h"
