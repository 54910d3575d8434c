// A walk over many objects that lie scattered in memory.
#pragma once

#include <cstddef>
#include <vector>

#include "ELFLNK/locator/locator.h"
#include "ELFLNK/object/section.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "UTIL/prefetch.h"

/// Runs `visit` on each object. What it will look at is asked for ahead of its turn: the object,
/// then its address and its input section.
template <class VISIT>
void visit_objects(const std::vector<LINKER_OBJECT*>& objects, VISIT visit) {
    constexpr std::size_t FAR = 16, NEAR = 8;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        if (i + FAR < objects.size()) prefetch(objects[i + FAR]);
        if (i + NEAR < objects.size()) {
            prefetch(objects[i + NEAR]->run_locator());
            if (SECTION* next = as_section(objects[i + NEAR])) prefetch(next->OF_SECTION_api());
        }
        visit(objects[i]);
    }
}
