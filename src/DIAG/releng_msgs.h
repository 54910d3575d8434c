// Messages of the relocation engine, 17000 and up.
#pragma once

#include "DIAG/message.h"

#define DIAG_ROWS RELENG_ROWS
#define DIAG_TABLE "DIAG/tables/releng.def"
#include "DIAG/declare_messages.inc"
