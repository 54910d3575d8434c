// Trace channels, one per area of the link.
//
// The calls stay in the code as its landmarks; the operations are empty, and arguments cost nothing
// once inlined.
#pragma once

#include <ctime>

class TRACE {
  public:
    static inline int level = 0;
    /// When this process started.
    static inline const std::time_t t_start = std::time(nullptr);

    template <class... A>
    void push(const char*, const A&...) const {}
    template <class... A>
    void pop(const char*, const A&...) const {}
    void pop() const {}
    template <class... A>
    void printf(const char*, const A&...) const {}
};

// clang-format off
inline constexpr TRACE trace_load, trace_alib, trace_comdat, trace_build, trace_orig, trace_collect, trace_placement,
    trace_ifile, trace_icode, trace_mklib, trace_templates, trace_tramps, trace_table, trace_dynamic, trace_eval,
    trace_fdir, trace_fill, trace_ecc, trace_edit, trace_dwlgf, trace_merge, trace_order, trace_worklist, trace_padding,
    trace_outsym_mods, trace_ref_graph, trace_dep_graph, trace_specialization;
// clang-format on
