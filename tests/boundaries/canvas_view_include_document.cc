// Must not compile: where pages lie and what shows needs their sizes only, never the prepared
// document.
#include "report/document/document.h"
