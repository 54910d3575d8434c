// Named integer switches behind --debug:key and --disable:key.
//
// A switch is a static object of the file that reads it: `static register_option
// debug_fhm("debug:fhm");`. It starts at 0 and converts to int. Switches find each other in one map
// that is made on first use, so that the order in which statics are constructed does not matter.
#pragma once

#include <vector>

class register_option {
  public:
    /// Enters the switch; `key` (such as "debug:fhm") is not copied.
    explicit register_option(const char* key);

    operator int() const { return value_; }
    register_option& operator=(int value) {
        value_ = value;
        return *this;
    }
    register_option(const register_option&) = delete;

    /// The first switch of that key, or null; several files may have one of the same key.
    static register_option* get_option(const char* key);
    /// The values of all switches, in the order in which they were made.
    static std::vector<int> get_state();
    static void set_state(const std::vector<int>& state);
    static void reset_state();

  private:
    int value_ = 0;
};

/// Sets switches `prefix:key` from a list "key,key=value"; unknown keys are ignored.
void process_debug_option(const char* prefix, const char* text);
