// Must not compile: the design model shares values with the prepared document, not the document.
#include "report/document/document.h"
