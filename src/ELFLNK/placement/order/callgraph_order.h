// The order in which the functions of a program are best placed to call each other: callees before
// their callers, and next to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class CALL_INFO;

/// Numbers the sections of a call graph in the order in which a depth-first walk leaves them.
class DFS_VISITOR {
  public:
    /// From the entry points, then from sections that nobody unvisited calls. Sections of a cycle
    /// that nothing reaches keep the number 0.
    void callgraph_traversal();
    /// Everything that the section reaches and that has no number yet; nothing if it has one.
    void dfs_walk(CALL_INFO* info);

  private:
    struct VISIT {
        CALL_INFO* info;
        std::size_t next_call;
    };
    uint32_t next_number_ = 1;
    std::vector<VISIT> stack_;
};
