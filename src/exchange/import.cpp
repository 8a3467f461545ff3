// Import of item files: see import.h.
#include "exchange/import.h"
