// Messages of the command file preprocessor, 19000 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS CPP_ROWS
#define DIAG_TABLE "DIAG/tables/cpp.def"
#include "DIAG/declare_messages.inc"
