// Messages about files that do not go together, 16000 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS FCOMPAT_ROWS
#define DIAG_TABLE "DIAG/tables/fcompat.def"
#include "DIAG/declare_messages.inc"
