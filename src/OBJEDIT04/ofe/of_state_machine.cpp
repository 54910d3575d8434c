// The steps between the four states and the guards of the mutators.
#include "OBJEDIT04/ofe/of_state_machine.h"

#include <algorithm>

#include "OBJEDIT04/ofe/object_file.h"

namespace OFE {

OF_STATE OF_STATE_MACHINE::state() const {
    return std::max(state_, file_->own_state());
}

const char* OF_STATE_MACHINE::state_name(OF_STATE s) {
    static constexpr const char* NAMES[] = {"open", "locked", "formatted", "saved"};
    return s >= OF_STATE_OPEN && s <= OF_STATE_SAVED ? NAMES[s] : "unknown";
}

int OF_STATE_MACHINE::set_state(OF_STATE target) {
    if (target == state_) return 0;
    if (target < state_) {
        file_->set_error(OF_ERROR_ILLEGAL,
                         "this OBJECT_FILE object is currently in the %s state, and cannot revert "
                         "to the %s state to "
                         "perform the requested operation ",
                         state_name(state_), state_name(target));
        return -1;
    }
    for (int s = state_ + 1; s <= target; ++s) {
        if (progress_to_state(static_cast<OF_STATE>(s)) != 0) {
            file_->set_error(OF_ERROR_INTERNAL,
                             "an error was encountered while progressing an OBJECT_FILE object "
                             "from the %s to the %s "
                             "state",
                             state_name(static_cast<OF_STATE>(s - 1)),
                             state_name(static_cast<OF_STATE>(s)));
            return -1;
        }
    }
    state_ = target;
    return 0;
}

int OF_STATE_MACHINE::reset_state(OF_STATE target) {
    if (target == state_) return 0;
    if (target > state_) return min_state(target);
    if (revert_to_state(target) != 0) {
        file_->set_error(OF_ERROR_INTERNAL,
                         "an error was encountered while reverting an OBJECT_FILE object from the "
                         "%s to the %s state",
                         state_name(state_), state_name(target));
        return -1;
    }
    state_ = target;
    return 0;
}

int OF_STATE_MACHINE::max_state(OF_STATE s) const {
    if (state_ <= s) return 0;
    file_->set_error(OF_ERROR_ILLEGAL,
                     "this OBJECT_FILE object is currently in the %s state, and must be in at most "
                     "the %s state to "
                     "perform the requested operation ",
                     state_name(state_), state_name(s));
    return -1;
}

int OF_STATE_MACHINE::min_state(OF_STATE s) const {
    if (state_ >= s) return 0;
    file_->set_error(OF_ERROR_ILLEGAL,
                     "this OBJECT_FILE object is currently in the %s state, and must be in at "
                     "least the %s state to "
                     "perform the requested operation ",
                     state_name(state_), state_name(s));
    return -1;
}

NO_REENTRY::NO_REENTRY(bool& running, OBJECT_FILE* file) : running_(running), refused_(running) {
    if (refused_)
        file->set_error(
            OF_ERROR_INTERNAL,
            "recursive call detected to a method that does not support recursive calls");
    running_ = true;
}

} // namespace OFE
