// The error limit and the free-text messages, 99900 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS MISC_ROWS
#define DIAG_TABLE "DIAG/tables/misc.def"
#include "DIAG/declare_messages.inc"
