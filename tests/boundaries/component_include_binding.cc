// Must not compile: the component knows engines only through the port.
#include "report/binding/report_engine.h"
