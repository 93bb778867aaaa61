// Must not compile: an exporter sees the prepared document, never the fill.
#include "report/fill/fill.h"
