// The architectures that --silicon_version names, with their numbers in the ARM build attributes.
#pragma once

class ARM_ARCH_TYPES {
  public:
    /// A name that is not known: counts as the newest architecture.
    static constexpr unsigned UNKNOWN = 10;

    /// Takes the architecture of that name, in any case; null takes none.
    void set(const char* name);
    void set(unsigned value) { value_ = value; }
    unsigned value() const { return value_; }

    /// Tag_CPU_arch and Tag_CPU_arch_profile of the architecture; 0 where none is fixed.
    unsigned isa_version() const;
    unsigned profile() const;

    bool is_v5e_or_higher() const { return is_from(62); }
    bool is_v6_or_higher() const { return is_from(63); }
    bool is_v7_or_higher() const { return is_from(65); }

  private:
    static constexpr unsigned LAST = 69;
    bool is_from(unsigned first) const {
        return value_ == UNKNOWN || (value_ >= first && value_ <= LAST);
    }
    unsigned value_ = 0;
};
