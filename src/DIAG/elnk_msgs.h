// Messages of the linker proper, 10000 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS ELNK_ROWS
#define DIAG_TABLE "DIAG/tables/elnk.def"
#include "DIAG/declare_messages.inc"
