// The order in which locators are placed: first what can go nowhere else.
#pragma once

#include "ELFLNK/locator/locator.h"

class ORDER_CONTEXT;
struct ORDER_KEY;

/// Remembers what the order of a sorted list rests on, to tell whether another sort could change
/// it. Among objects that can use the same ranges the larger goes first however full those are,
/// and between objects of disjoint ranges the order doesn't matter. So the order stands while
/// everybody still fits where it fitted, and no run placement is done that a load placement waits
/// for. Objects without memory, as all of a partial link can be, stand in any order.
class ORDER_WATCH {
  public:
    /// The list has just been sorted with these keys.
    void note(const ORDER_CONTEXT& context, const std::vector<ORDER_KEY>& keys);
    /// `placed` is out of the list and in its range: is the list still in order?
    bool stands_after(const LOCATOR* placed) const;
    /// Nothing but the room in ranges can change the order that was noted.
    bool may_stand() const { return may_stand_; }
    /// The list has just been sorted; does nobody in it use memory?
    void note_no_order(bool none) { no_order_ = none; }
    /// The order changes with each object that is taken from the list.
    void forget() { may_stand_ = false; }

  private:
    struct NEED {
        MEMORY_RANGE* range;
        uint64_t size; ///< of the largest object that counts on the range
    };
    bool may_stand_ = false;
    bool no_order_ = false; ///< nobody in the list uses memory
    size_t map_size_ = 0;
    std::vector<NEED> needs_;
    std::vector<const LINKER_OBJECT*> loads_; ///< objects whose load placement is in the list
};

/// Sorts a list into placement order. With use_priorities hard constraints (user priorities, run
/// before load, competition for one range) are reconciled with the comparison by a graph. A watch
/// notes the order; where it may stand, the list is the order in which objects would come out if
/// it were sorted anew before each, as it must be while some of them have no wish.
void sort_worklist(LOCATOR_LIST& list, bool use_priorities, ORDER_WATCH* watch = nullptr);
