// A memory map and objects of chosen sizes, for tests that place without files or a command line.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DIAG/diagnostic.h"
#include "ELFLNK/locator/locator.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/object/space.h"
#include "ELFLNK/placement/order/worklist.h"
#include "ELFLNK/placement/placement.h"
#include "ELFLNK/target/target.h"
#include "OPTIONGEN/option_obj.h"
#include "UTIL/savestr.h"

/// An object of a size and an alignment.
class SIZED : public SPACE {
  public:
    SIZED(const char* name, uint64_t size, uint32_t align) : SPACE(name, size), align_(align) {}
    uint32_t alignment() const override { return align_; }

  private:
    uint32_t align_;
};

class PLACEMENT_TEST : public testing::Test {
  protected:
    PLACEMENT_TEST() {
        global_opts = new option_obj(true);
        Target->finalize_options();
    }
    static MEMORY_RANGE* add_range(const char* name, uint64_t origin, uint64_t length,
                                   uint32_t attrs = MEMORY_RANGE::ATTR_ALL) {
        auto* range = new MEMORY_RANGE(name, origin, length, attrs);
        memory_map->add(range);
        return range;
    }
    /// An object of its own under the root with an analyzed locator of both kinds.
    static LOCATOR* object(const char* name, uint64_t size, uint32_t align = 1,
                           LOCATOR_KIND kind = LOCATOR_KIND::BOTH) {
        return locate(new SIZED(savestr(name), size, align), kind);
    }
    static LOCATOR* locate(LINKER_OBJECT* object, LOCATOR_KIND kind = LOCATOR_KIND::BOTH) {
        root_collection->add_member(object);
        auto* locator = new LOCATOR(kind, object);
        object->add_locator(locator);
        locator->analyze();
        return locator;
    }
    struct MEMBER {
        const char* name;
        uint64_t size;
        uint32_t align;
    };
    static COLLECTION* collection(const char* name, COLLECTION_KIND kind,
                                  const std::vector<MEMBER>& members) {
        auto* made = new COLLECTION(savestr(name), kind);
        for (const MEMBER& member : members)
            made->add_member(new SIZED(member.name, member.size, member.align));
        made->set_attr(PA_ALLOCATED);
        return made;
    }
    /// Where the members of a collection run, in their order.
    static std::vector<uint64_t> run_addresses(const COLLECTION* of) {
        std::vector<uint64_t> addresses;
        for (const LINKER_OBJECT* member : of->members())
            addresses.push_back(member->run_address());
        return addresses;
    }
    static std::vector<uint64_t> load_addresses(const COLLECTION* of) {
        std::vector<uint64_t> addresses;
        for (const LINKER_OBJECT* member : of->members())
            addresses.push_back(member->load_address());
        return addresses;
    }
    static std::string names(const LOCATOR_LIST& list) {
        std::string text;
        for (const LOCATOR* locator : list) text += std::string(locator->object()->name()) + " ";
        return text;
    }
    /// What is reported while `what` runs, each run of blanks and line ends as one blank.
    template <class WHAT>
    static std::string reported(WHAT what) {
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        what();
        fflush(stdout);
        fflush(stderr);
        std::string text;
        for (char c :
             testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr()) {
            bool blank = c == ' ' || c == '\n';
            if (!blank)
                text += c;
            else if (!text.empty() && text.back() != ' ')
                text += ' ';
        }
        return text;
    }
};

using ADDRESSES = std::vector<uint64_t>;
