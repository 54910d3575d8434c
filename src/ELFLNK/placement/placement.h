// The phase that gives every allocated object an address. Objects are taken one at a time from a
// sorted worklist, the ranges that match are tried in map order, and within a range the holes in
// address order; the first hole in which the whole attempt succeeds takes the object. No best fit
// is computed: the order of the worklist does the work.
//
// Before: collection is over, the ABI has its symbols. After: each object of the tree that needs
// an address has one, in a declared range or, after an error, in a virtual one.
#pragma once

#include <set>
#include <string>
#include <utility>

#include "ELFLNK/locator/locator.h"

class LINKER_OBJECT;

/// The phase: analysis, the three worklists, the splits between them.
void placement();

/// Settles which locators an object and the collections below it use, and enters those that stand
/// on their own in the worklists. The enclosing locators (null: none) are those of an ancestor
/// that takes this object along.
void analyze_object(LINKER_OBJECT* object, LOCATOR* enclosing_run, LOCATOR* enclosing_load);

/// Enters a locator that stands on its own in the worklist of its object's phase.
void enter_worklist(LOCATOR* locator);

/// Places all locators of a worklist, first the one that has the least room to go elsewhere; the
/// list is empty afterwards.
void place_worklist(LOCATOR_LIST& list);

/// Aborts with a message if the placement so far breaks a rule; for builds that check themselves.
void check_placement();

/// What the phase remembers while it runs.
struct PLACEMENT_STATE {
    LOCATOR_LIST worklist[3]; ///< of phases 1, 2 and 3
    int phase = 0;            ///< 0, 1, 2; handed to update_before_placement
    bool ambiguous_page_reported = false;
    LOCATOR_LIST outside;                          ///< what stands at addresses outside of the map
    std::set<std::string> unknown_ranges_reported; ///< by name, page and place in the command file
    /// Priorities of which it was told that another goes first, with that other.
    std::set<std::pair<const LOCATOR*, const LOCATOR*>> priorities_not_honored;
};

PLACEMENT_STATE& placement_state();
