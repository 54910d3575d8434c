// Warnings for specifications that took nothing.
#pragma once

#include <vector>

class SECTION_SPEC;

/// Reports each written specification without members: another one took its sections, or there are
/// none.
void report_empty_specs(const std::vector<SECTION_SPEC*>& specs);
