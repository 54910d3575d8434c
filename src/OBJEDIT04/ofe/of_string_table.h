// A pool of NUL-terminated strings, each text once. A pool read from a file is indexed only when a
// string is added.
#pragma once

#include "OBJEDIT04/ofe/of_state_machine.h"
#include <memory>
#include <string_view>
#include <vector>

class FHM_FILE;

namespace OFE {

class OF_STRING_TABLE_MANAGER {
  public:
    OF_STRING_TABLE_MANAGER() = default;
    OF_STRING_TABLE_MANAGER(const OF_STRING_TABLE_MANAGER&) = delete;
    OF_STRING_TABLE_MANAGER& operator=(const OF_STRING_TABLE_MANAGER&) = delete;
    virtual ~OF_STRING_TABLE_MANAGER() = default;

    virtual const char* pool_name() const { return ""; }
    virtual const char*
    get_string(unsigned offset); // null at or beyond the pool's size, or not terminated
    virtual void unload();
    virtual void clear();
    virtual unsigned add_string(const char* text); // the offset, old or new
    virtual bool find_string(const char* text, unsigned& offset);
    virtual unsigned first_offset() const { return 0; }

    void save_text(FHM_FILE* to); // offset and text of each string

    void set_pool(OF_BYTES bytes); // a pool as read; a view
    unsigned size() const;
    const char* data() const;

  private:
    void index_pool();
    void own_pool();
    // A free slot has the offset 0; others hold one more than the text's.
    struct SLOT {
        unsigned offset = 0;
        uint32_t hash = 0;
    };
    SLOT& slot(std::string_view text, uint32_t hash);
    bool is_at(unsigned offset, std::string_view text) const;
    void grow();
    std::string_view at(unsigned offset) const;

    OF_BYTES view_;           // the pool as read
    std::vector<char> own_;   // the pool once changed
    std::vector<SLOT> slots_; // open addressing
    unsigned entries_ = 0;
    bool owned_ = false;
    bool indexed_ = false;
};

// A string pool that moves through the states with its file.
class OF_STRING_TABLE : public OF_STRING_TABLE_MANAGER, public OF_STATE_MACHINE {
  public:
    explicit OF_STRING_TABLE(OBJECT_FILE* file) : OF_STATE_MACHINE(file) {}
};

} // namespace OFE
