// The order in which locators are placed: first what can go nowhere else.
#pragma once

#include <unordered_map>

#include "ELFLNK/locator/locator.h"

/// Sorts a list into placement order. With use_priorities hard constraints (user priorities, run
/// before load, competition for one range) are reconciled with the comparison by a graph.
void sort_worklist(LOCATOR_LIST& list, bool use_priorities);

/// Remembers what the order of a sorted list rests on, to tell whether another sort could change
/// it. Among objects that can all use the same ranges the larger goes first however full those
/// are, and between objects of disjoint ranges the order doesn't matter; so the order stands while
/// nobody gains or loses a range and sets of ranges don't overlap in part.
class WORKLIST_KEYS {
  public:
    /// The list has just been sorted.
    void note(const LOCATOR_LIST& list);
    /// `placed` is out of the list and in its range.
    bool order_may_change(const LOCATOR* placed, const LOCATOR_LIST& rest);

  private:
    struct KEY {
        uint64_t ranges; ///< a bit per range of the map that can be used
        uint64_t size;
    };
    static bool key_of(LOCATOR* locator, KEY& key);

    std::unordered_map<const LOCATOR*, KEY> keys_;
};
