// Messages about options, 24000 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS OPTGEN_ROWS
#define DIAG_TABLE "DIAG/tables/optgen.def"
#include "DIAG/declare_messages.inc"
