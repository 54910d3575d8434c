// The order in which locators are placed: first what can go nowhere else.
#pragma once

#include "ELFLNK/locator/locator.h"

/// Sorts a list into placement order. With use_priorities hard constraints (user priorities, run
/// before load, competition for one range) are reconciled with the comparison by a graph.
void sort_worklist(LOCATOR_LIST& list, bool use_priorities);
