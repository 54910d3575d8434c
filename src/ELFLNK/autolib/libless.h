// Which of several builds of a library fits the objects of a link best. An ordering of the
// candidates by what their build attributes say, seen from the output file, which carries what the
// objects scanned so far agree on.
#pragma once

#include <memory>
#include <vector>

namespace OFE {
class OBJECT_FILE;
}

/// Is one library better than another? Each processor family has its subclass.
class LIBLESS {
  public:
    using CANDIDATES = std::vector<OFE::OBJECT_FILE*>;

    explicit LIBLESS(const CANDIDATES& candidates);
    virtual ~LIBLESS() = default;

    bool operator()(OFE::OBJECT_FILE* a, OFE::OBJECT_FILE* b);
    /// Below 0 if `a` is the better, above 0 if `b` is, 0 if this test can't tell.
    virtual int lib_compare(OFE::OBJECT_FILE* output, OFE::OBJECT_FILE* a, OFE::OBJECT_FILE* b);

    /// The name of a candidate: of the object, else of its file.
    static const char* lib_name(const OFE::OBJECT_FILE* candidate);

  protected:
    /// All candidates and the output carry attributes of this vendor.
    bool all_have_qv_attributes() const { return all_have_qv_; }

    // Rules over the values of the output and of both candidates; below 0 for a.
    static int match(unsigned output, unsigned a, unsigned b);
    static int closest(unsigned output, unsigned a, unsigned b);

  private:
    bool all_have_qv_ = true;
};

/// The ordering of the output's processor family.
std::unique_ptr<LIBLESS> new_LIBLESS(const LIBLESS::CANDIDATES& candidates);

/// The name of the best candidate, or null if there is none.
const char* choose_lib(const LIBLESS::CANDIDATES& candidates);
