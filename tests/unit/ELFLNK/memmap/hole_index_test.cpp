// The index of holes against the plain rule: a sorted list of gaps, walked from one end.
#include "ELFLNK/memmap/hole_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

namespace {

/// Gaps between items, worked out anew for each question.
class SLOW_HOLES {
  public:
    void add(uint64_t start, uint64_t end) { items_.emplace(start, end); }
    void remove(uint64_t start, uint64_t end) {
        for (auto at = items_.lower_bound(start); at != items_.end() && at->first == start; ++at) {
            if (at->second != end) continue;
            items_.erase(at);
            return;
        }
    }
    bool has_item_at(uint64_t start) const { return items_.count(start) != 0; }
    std::vector<HOLE> gaps() const {
        std::vector<std::pair<uint64_t, uint64_t>> sorted(items_.begin(), items_.end());
        std::sort(sorted.begin(), sorted.end());
        std::vector<HOLE> list;
        uint64_t cursor = 0;
        for (auto [start, end] : sorted) {
            if (cursor < start) list.push_back({cursor, start});
            cursor = std::max(cursor, end);
        }
        list.push_back({cursor, HOLE_INDEX::TOP});
        return list;
    }
    bool first(uint64_t from, uint64_t to, uint64_t size, uint64_t align, HOLE* out) const {
        for (HOLE hole : gaps()) {
            hole = {std::max(hole.start, from), std::min(hole.end, to)};
            if (hole.start >= hole.end) continue;
            uint64_t start = (hole.start + align - 1) / align * align;
            if (start + size > hole.end) continue;
            *out = hole;
            return true;
        }
        return false;
    }
    bool last(uint64_t from, uint64_t to, uint64_t size, HOLE* out) const {
        std::vector<HOLE> list = gaps();
        for (auto at = list.rbegin(); at != list.rend(); ++at) {
            HOLE hole = {std::max(at->start, from), std::min(at->end, to)};
            if (hole.start >= hole.end || hole.length() < size) continue;
            *out = hole;
            return true;
        }
        return false;
    }

  private:
    std::multimap<uint64_t, uint64_t> items_;
};

class BOTH_HOLES {
  public:
    explicit BOTH_HOLES(unsigned seed) : random_(seed) {}

    void run(int steps) {
        for (int i = 0; i < steps; ++i) {
            change();
            ask();
            if (testing::Test::HasFatalFailure()) return;
        }
    }

  private:
    uint64_t pick(uint64_t below) { return random_() % below; }

    void change() {
        if (pick(5) < 3 || placed_.empty()) {
            place();
            return;
        }
        std::size_t at = pick(placed_.size());
        auto [start, end] = placed_[at];
        placed_.erase(placed_.begin() + static_cast<long>(at));
        slow_.remove(start, end);
        if (start < end)
            fast_.release(start, end, !slow_.has_item_at(start), !slow_.has_item_at(end));
        else if (!slow_.has_item_at(start))
            fast_.heal(start);
    }

    void place() {
        uint64_t size = pick(4) == 0 ? 0 : 1 + pick(12);
        uint64_t align = uint64_t{1} << pick(8);
        HOLE hole;
        if (!slow_.first(pick(400), SPACE, std::max<uint64_t>(size, 1), align, &hole)) return;
        uint64_t start = (hole.start + align - 1) / align * align;
        placed_.emplace_back(start, start + size);
        slow_.add(start, start + size);
        if (size != 0)
            ASSERT_TRUE(fast_.occupy(start, start + size));
        else
            fast_.cut(start);
    }

    void ask() {
        uint64_t from = pick(500);
        uint64_t to = from + pick(500);
        uint64_t size = 1 + pick(20);
        uint64_t align = uint64_t{1} << pick(8);
        HOLE a;
        HOLE b;
        bool found = slow_.first(from, to, size, align, &a);
        ASSERT_EQ(found, fast_.first_fit(from, to, size, align, &b));
        if (found) {
            ASSERT_EQ(a, b) << from << ' ' << to << ' ' << size << ' ' << align;
        }
        found = slow_.last(from, to, size, &a);
        ASSERT_EQ(found, fast_.last_fit(from, to, size, &b));
        if (found) {
            ASSERT_EQ(a, b) << from << ' ' << to << ' ' << size;
        }
        ASSERT_EQ(slow_.gaps().back().start, fast_.tail());
    }

    static constexpr uint64_t SPACE = 900;
    std::mt19937 random_;
    SLOW_HOLES slow_;
    HOLE_INDEX fast_;
    std::vector<std::pair<uint64_t, uint64_t>> placed_;
};

} // namespace

TEST(hole_index, answers_as_a_walk_over_all_gaps_does) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        BOTH_HOLES(seed).run(400);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

TEST(hole_index, space_that_is_not_free_in_one_piece_is_refused_and_nothing_changes) {
    HOLE_INDEX holes;
    ASSERT_TRUE(holes.occupy(0x10, 0x20));
    EXPECT_FALSE(holes.occupy(0x8, 0x11));
    EXPECT_FALSE(holes.occupy(0x1F, 0x28));
    EXPECT_FALSE(holes.occupy(0x14, 0x18));
    EXPECT_EQ(holes.count(), 2u);
    HOLE hole;
    ASSERT_TRUE(holes.first_fit(0, 0x20, 1, 1, &hole));
    EXPECT_EQ(hole, (HOLE{0, 0x10}));
}

TEST(hole_index, an_item_of_size_0_keeps_two_holes_apart) {
    HOLE_INDEX holes;
    holes.cut(0x10);
    HOLE hole;
    ASSERT_TRUE(holes.first_fit(0, 0x30, 0x20, 1, &hole));
    EXPECT_EQ(hole, (HOLE{0x10, 0x30}));
    holes.heal(0x10);
    ASSERT_TRUE(holes.first_fit(0, 0x30, 0x20, 1, &hole));
    EXPECT_EQ(hole, (HOLE{0, 0x30}));
}

TEST(hole_index, the_top_of_the_address_space_can_be_used_up) {
    HOLE_INDEX holes;
    ASSERT_TRUE(holes.occupy(0, HOLE_INDEX::TOP));
    HOLE hole;
    EXPECT_FALSE(holes.first_fit(0, HOLE_INDEX::TOP, 1, 1, &hole));
    EXPECT_FALSE(holes.last_fit(0, HOLE_INDEX::TOP, 1, &hole));
    EXPECT_EQ(holes.tail(), HOLE_INDEX::TOP);
    holes.release(0, HOLE_INDEX::TOP, true, true);
    ASSERT_TRUE(holes.first_fit(0, HOLE_INDEX::TOP, HOLE_INDEX::TOP, 1, &hole));
    EXPECT_EQ(hole, (HOLE{0, HOLE_INDEX::TOP}));
}

TEST(hole_index, an_alignment_that_rounds_past_the_top_fits_nowhere) {
    HOLE_INDEX holes;
    HOLE hole;
    EXPECT_FALSE(holes.first_fit(HOLE_INDEX::TOP - 3, HOLE_INDEX::TOP, 1, 16, &hole));
}
