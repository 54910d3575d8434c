// The order of the members of an output section, of which there may be a hundred thousand.
#pragma once

#include "ELFLNK/locator/locator.h"

/// Sorts input sections of one parent that have no wish: the comparison of locators comes down to
/// size and name. False, and nothing is changed, if there is anything else in the list.
bool sort_by_size_and_name(LOCATOR_LIST& list);
