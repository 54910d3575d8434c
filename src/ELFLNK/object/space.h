// Holes: a SPACE is an object of fixed size without contents of its own, written as its fill.
// A DOT_EXPRESSION is the place of an assignment inside a SECTIONS body: the advance of dot is
// its size; an assignment to a symbol only anchors the symbol at that point of the layout.
#pragma once

#include "ELFLNK/object/linker_object.h"

class SPACE : public LINKER_OBJECT {
  public:
    SPACE(const char* name, uint64_t size, const SOURCE_POSITION* pos = nullptr);

    bool is_space() const override { return true; }
    uint64_t size() override { return size_; }
    void write_data_internal(OFE::OF_SECTION* output, uint32_t offset) override;
    void dump_header(PPRINT* out) override;

    void set_size(uint64_t size);
    uint32_t alignment() const override { return 0; }

  protected:
    uint64_t size_;
};

class DOT_EXPRESSION : public SPACE {
  public:
    DOT_EXPRESSION(EXPRESSION* expr, const SOURCE_POSITION* pos);

    bool has_assign_to_dot_expression() const override { return expr_ != nullptr; }
    /// A dot expression is a space only where it assigns to dot.
    bool is_space() const override { return expr_ != nullptr; }
    bool is_dot_expression() const override { return true; }
    uint64_t size() override;
    void dump_header(PPRINT* out) override;
    void dump_properties(PPRINT* out) override;

    /// The assignment to dot; null when the object only anchors a symbol.
    EXPRESSION* expression() const { return expr_; }
    /// Where dot counts from in an evaluation.
    uint64_t dot_origin() const { return dot_origin_; }
    void set_dot_origin(uint64_t address) { dot_origin_ = address; }
    /// The new dot, seen from the origin; false if it can't be known. There are many attempts at a
    /// placement, but what is wrong with the assignment is said once.
    bool evaluate(int64_t& value);
    bool is_fault_reported() const { return fault_reported_; }
    void set_fault_reported() { fault_reported_ = true; }

  private:
    EXPRESSION* expr_;
    uint64_t dot_origin_ = 0;
    bool fault_reported_ = false;
};
