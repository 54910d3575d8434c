// A file and its parts are edited freely while open, frozen when locked, laid out when formatted,
// and on disk when saved. Each part holds its own state; a part of a file that has moved on counts
// as being where the file is. Mutators begin with one of the two guards (max_state, min_state),
// which report through the owning file.
#pragma once

#include "OBJEDIT04/ofe/of_types.h"

namespace OFE {

class OBJECT_FILE;

class OF_STATE_MACHINE {
  public:
    explicit OF_STATE_MACHINE(OBJECT_FILE* file) : file_(file) {}
    OF_STATE_MACHINE(const OF_STATE_MACHINE&) = delete;
    OF_STATE_MACHINE& operator=(const OF_STATE_MACHINE&) = delete;
    virtual ~OF_STATE_MACHINE() = default;

    // One step forward to the state, or back to it: 0 on success. Called by set_state and
    // reset_state only.
    virtual int progress_to_state(OF_STATE target) = 0;
    virtual int revert_to_state(OF_STATE target) = 0;

    OBJECT_FILE* ofile() const { return file_; }
    OF_STATE own_state() const { return state_; }
    OF_STATE state() const;

    int set_state(OF_STATE target);   // forward, step by step
    int reset_state(OF_STATE target); // back, in one step
    int
    max_state(OF_STATE s) const; // guard: 0 while the own state is at most s, else an error and -1
    int
    min_state(OF_STATE s) const; // guard: 0 when the own state is at least s, else an error and -1

    static const char* state_name(OF_STATE s);

  private:
    OBJECT_FILE* file_;
    OF_STATE state_ = OF_STATE_OPEN;
};

/// Keeps a method that works on the whole table from being entered again while it runs. The flag is
/// the method's own; a second entry is reported to the file and refused.
class NO_REENTRY {
  public:
    NO_REENTRY(bool& running, OBJECT_FILE* file);
    ~NO_REENTRY() {
        if (!refused_) running_ = false;
    }
    NO_REENTRY(const NO_REENTRY&) = delete;
    NO_REENTRY& operator=(const NO_REENTRY&) = delete;

    bool refused() const { return refused_; }

  private:
    bool& running_;
    bool refused_;
};

} // namespace OFE
