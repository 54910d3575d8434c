// Walks over many objects that lie scattered in memory, each behind a pointer: what stands some
// steps ahead is asked for early, so that it has come from memory when its turn comes.
#pragma once

#include <cstddef>

/// Asks for the memory of an object that will be looked at soon.
template <class T>
void prefetch(const T* object) {
    constexpr std::size_t LINE = 64;
    const char* at = reinterpret_cast<const char*>(object);
    __builtin_prefetch(at);
    if constexpr (sizeof(T) > LINE) __builtin_prefetch(at + LINE);
}

/// Runs `visit` on each element, after `ask` was run on it when it was STEPS elements away. `ask`
/// must do with what is at hand: it may prefetch what an element points to.
template <std::size_t STEPS = 8, class LIST, class ASK, class VISIT>
void visit_ahead(LIST& list, ASK ask, VISIT visit) {
    auto ahead = list.begin();
    for (std::size_t i = 0; i < STEPS && ahead != list.end(); ++i, ++ahead) ask(*ahead);
    for (auto& element : list) {
        if (ahead != list.end()) {
            ask(*ahead);
            ++ahead;
        }
        visit(element);
    }
}
