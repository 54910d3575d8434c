// May this file join the link? An object file is compared to the output, which stands for all files
// that joined before: machine, format and byte order first, then the build attributes by rules that
// each processor family orders, last what its file format says. In merge mode what passes is folded
// into the output's attributes, so that each file is compared to the sum of its predecessors.
//
// Problems are queued; the caller decides when to report them.
#pragma once

#include <memory>
#include <vector>

#include "DIAG/source_position.h"
#include "OBJEDIT04/attributes/build_attr_table.h"

class DIAGNOSTIC;

class FCOMPAT {
  public:
    using LIST = OFE::OFBA_ATTR_LIST;

    /// The attributes of file scope; either list may be null.
    struct FILE_ATTRIBUTES {
        LIST* qv = nullptr;
        LIST* abi = nullptr;
    };
    struct VENDOR_SECTIONS {
        OFE::OFBA_VENDOR_SCN* qv = nullptr;
        OFE::OFBA_VENDOR_SCN* abi = nullptr;
        FILE_ATTRIBUTES extract_file_attrs() const;
    };

    FCOMPAT();
    FCOMPAT(const FCOMPAT&) = delete;
    FCOMPAT& operator=(const FCOMPAT&) = delete;
    virtual ~FCOMPAT();

    /// What a failed rule says in place of the general message; true: that is all.
    virtual bool custom_diagnostic(const OFE::OFBA_TAG* tag, OFE::OFBA_AVAL base,
                                   OFE::OFBA_AVAL file);
    /// True if the file's attributes are not to be compared.
    virtual bool skip_file_battr_check() { return false; }
    virtual void check_target_compatibility() {}
    virtual void check_target_ba_attrlist(FILE_ATTRIBUTES&, FILE_ATTRIBUTES&) {}

    /// The two files. A null name is the file's own; the position stands in front of messages.
    void set_files(OFE::OBJECT_FILE* base, const char* base_name, OFE::OBJECT_FILE* file,
                   const char* file_name, const SOURCE_POSITION* position = nullptr);
    /// An ISA revision that no file may exceed; 0: there is none.
    void set_isa_limit(unsigned version) { isa_limit_ = version; }

    /// True if the files go together: nothing was queued.
    bool check_compatibility(bool merge);
    unsigned error_count() const { return static_cast<unsigned>(queue_.size()); }
    const std::vector<std::unique_ptr<DIAGNOSTIC>>& errors() const { return queue_; }
    void error_report(); // reports all and clears
    void error_clear();

  protected:
    // Value rules. An absent attribute counts as 0, absent text as empty. `any` is a value that
    // goes with every other.
    void ba_exact_uval(unsigned tag, LIST* base, LIST* file);
    void ba_exact_nonzero_uval(unsigned tag, LIST* base, LIST* file);
    void ba_exact_custom_uval(unsigned tag, LIST* base, LIST* file, unsigned any);
    void ba_exact_nonzero_custom_uval(unsigned tag, LIST* base, LIST* file, unsigned any);
    void ba_min_uval(unsigned tag, LIST* base, LIST* file);
    void ba_min_nonzero_uval(unsigned tag, LIST* base, LIST* file);
    void ba_max_uval(unsigned tag, LIST* base, LIST* file);
    void ba_sum_uval(unsigned tag, LIST* base, LIST* file);
    void ba_exact_str(unsigned tag, LIST* base, LIST* file);
    void ba_icase_exact_nonempty_str(unsigned tag, LIST* base, LIST* file);

    /// The values of a tag in both lists; false if a list is missing.
    bool ba_get_attrs(unsigned tag, LIST* base, LIST* file, OFE::OFBA_AVAL& base_val,
                      OFE::OFBA_AVAL& file_val);
    void ba_merge(unsigned tag, LIST* base, unsigned value);
    void ba_failed(unsigned tag, LIST* list, OFE::OFBA_AVAL base, OFE::OFBA_AVAL file);
    const char* ba_value_text(const OFE::OFBA_TAG* tag, OFE::OFBA_AVAL value) const;
    static bool ba_vendor_is_qv(const char* vendor);

    /// Queues the message M.
    template <class M, class... A>
    void queue(const char* source, unsigned line, const A&... arguments) {
        add_to_queue(std::make_unique<M>(source, line, arguments...));
    }

    const char* base_name() const { return base_name_; }
    const char* file_name() const { return file_name_; }
    OFE::OBJECT_FILE* base_file() const { return base_; }
    OFE::OBJECT_FILE* new_file() const { return file_; }
    bool merge() const { return merge_; }
    unsigned isa_limit() const { return isa_limit_; }
    VENDOR_SECTIONS vendor_sections(OFE::OBJECT_FILE* file) const;

  private:
    bool headers_agree();
    void check_build_attributes();
    void check_for_existence_of_build_attributes(const VENDOR_SECTIONS& base,
                                                 const VENDOR_SECTIONS& file);
    void check_ba_attrlist(const VENDOR_SECTIONS& base, const VENDOR_SECTIONS& file);
    void add_to_queue(std::unique_ptr<DIAGNOSTIC> message);

    OFE::OBJECT_FILE* base_ = nullptr;
    OFE::OBJECT_FILE* file_ = nullptr;
    const char* base_name_ = "";
    const char* file_name_ = "";
    bool merge_ = false;
    unsigned isa_limit_ = 0;
    SOURCE_POSITION position_;
    std::vector<std::unique_ptr<DIAGNOSTIC>> queue_;
};

/// Queues the message `id` from within an operation of FCOMPAT.
#define FCOMPAT_QUEUE(id, ...) queue<::DIAG::id>(__FILE__, __LINE__, __VA_ARGS__)

class FCOMPAT_FACTORY {
  public:
    /// The checks of a processor family; the base's for one that has none of its own.
    static std::unique_ptr<FCOMPAT> get_fcompat(OFE::OF_MACHINE machine);
};
