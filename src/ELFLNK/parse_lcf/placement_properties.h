// The placement wishes of one output section, GROUP or UNION while it is parsed: what holds for
// both addresses, and what is said of the run or the load address alone.
#pragma once

#include "ELFLNK/locator/locator.h"

struct PLACEMENT_PROPERTIES {
    explicit PLACEMENT_PROPERTIES(LINKER_OBJECT* object)
        : common(LOCATOR_KIND::BOTH, object),
          run(LOCATOR_KIND::RUN, object),
          load(LOCATOR_KIND::LOAD, object) {}

    LOCATOR common;
    LOCATOR run;
    LOCATOR load;
};
