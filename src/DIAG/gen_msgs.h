// Messages shared by all components, 6000 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS GEN_ROWS
#define DIAG_TABLE "DIAG/tables/gen.def"
#include "DIAG/declare_messages.inc"
