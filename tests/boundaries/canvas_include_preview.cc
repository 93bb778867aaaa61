// Must not compile: the page canvas serves the preview window and the designer alike, so it
// never sees either of them.
#include "report/preview/preview.h"
