// The calls that a section makes, and the places in it that are called.
//
// Only sections that take part in a call which may need a trampoline have one; with
// --minimize_trampolines=postorder all that call or are called.
#pragma once

#include <cstdint>
#include <vector>

class LINKER_OBJECT;
class SECTION;
class TRAMP_CALL_SITE;
class TRAMP_CALLEE;

class CALL_INFO {
  public:
    /// In the order of the section's relocations.
    const std::vector<TRAMP_CALL_SITE*>& calls() const { return calls_; }
    /// The called places, in the order in which they were found.
    const std::vector<TRAMP_CALLEE*>& callees() const { return callees_; }
    void add_call(TRAMP_CALL_SITE* site) { calls_.push_back(site); }
    void add_callee(TRAMP_CALLEE* callee) { callees_.push_back(callee); }

    /// The section's number in the walk over the call graph; 0: none, all ones: the walk is there.
    uint32_t postorder() const { return postorder_; }
    void set_postorder(uint32_t n) { postorder_ = n; }
    /// Negative: a goes before b. 0 unless both are sections with a number.
    static int compare_postorder(LINKER_OBJECT* a, LINKER_OBJECT* b);
    static bool less_postorder(LINKER_OBJECT* a, LINKER_OBJECT* b) {
        return compare_postorder(a, b) < 0;
    }

    /// The section's, made if it has none.
    static CALL_INFO& of(SECTION* section);

  private:
    std::vector<TRAMP_CALL_SITE*> calls_;
    std::vector<TRAMP_CALLEE*> callees_;
    uint32_t postorder_ = 0;
};
