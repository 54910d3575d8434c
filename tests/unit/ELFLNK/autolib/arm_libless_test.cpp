// Which of two libraries fits better: one attribute at a time, and the order of the attributes.
#include "ELFLNK/autolib/arm_libless.h"

#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/target/target.h"
#include "OBJEDIT04/attributes/build_attr_table.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_section_table.h"
#include "OPTIONGEN/option_obj.h"

using namespace OFE;

namespace {

constexpr unsigned QV_EXCEPTIONS = 6, QV_EMBEDDED_CONSTS = 0x110, QV_CACHE_WORK = 0x114;
constexpr unsigned CPU_ARCH = 6, PROFILE = 7, ARM_STATE = 8, THUMB_STATE = 9, FP = 10, NEON = 12;
constexpr unsigned V4T = 2, V6 = 6, V7 = 10;

struct VALUE {
    unsigned tag;
    unsigned value;
    bool is_qv;
};
constexpr VALUE qv(unsigned tag, unsigned value) {
    return {tag, value, true};
}
constexpr VALUE abi(unsigned tag, unsigned value) {
    return {tag, value, false};
}

OBJECT_FILE* new_file(const char* name, const std::vector<VALUE>& values) {
    OBJECT_FILE* object =
        new_OBJECT_FILE(OF_FORMAT_ELF, OF_FORMAT_VER_ELF1, OF_MACHINE_ARM, nullptr, name);
    object->section_table()->new_section("");
    for (const VALUE& v : values)
        (v.is_qv ? object->qv_battr_create(v.tag) : object->abi_battr_create(v.tag))->val.uval =
            v.value;
    return object;
}

using VALUES = std::vector<VALUE>;

struct CHOICE {
    const char* rule;
    VALUES output, a, b;
    char better;
};

void PrintTo(const CHOICE& choice, std::ostream* to) {
    *to << choice.rule;
}

// Where nothing tells, the name does, and a is called "b.lib": its name is not the smaller one.
const CHOICE CHOICES[] = {
    {"nothing tells", {}, {}, {}, 'b'},
    {"cache work: equal wins",
     {qv(QV_CACHE_WORK, 1)},
     {qv(QV_CACHE_WORK, 1)},
     {qv(QV_CACHE_WORK, 2)},
     'a'},
    {"cache work: neither is equal",
     {qv(QV_CACHE_WORK, 3)},
     {qv(QV_CACHE_WORK, 1)},
     {qv(QV_CACHE_WORK, 2)},
     'b'},
    {"this vendor's attributes count only if every file has them",
     {qv(QV_CACHE_WORK, 1)},
     {qv(QV_CACHE_WORK, 1)},
     {},
     'b'},
    {"cache work before constants in the code",
     {qv(QV_CACHE_WORK, 1), qv(QV_EMBEDDED_CONSTS, 1)},
     {qv(QV_CACHE_WORK, 1), qv(QV_EMBEDDED_CONSTS, 2)},
     {qv(QV_CACHE_WORK, 2), qv(QV_EMBEDDED_CONSTS, 1)},
     'a'},
    {"constants in the code before vectors",
     {qv(QV_EMBEDDED_CONSTS, 1), abi(NEON, 1)},
     {qv(QV_EMBEDDED_CONSTS, 1)},
     {qv(QV_EMBEDDED_CONSTS, 2), abi(NEON, 1)},
     'a'},
    {"vectors before floating point",
     {abi(NEON, 1), abi(FP, 3)},
     {abi(NEON, 1), abi(FP, 1)},
     {abi(FP, 3)},
     'a'},
    {"floating point: the most of what is used", {abi(FP, 3)}, {abi(FP, 3)}, {abi(FP, 2)}, 'a'},
    {"floating point: not more than is used", {abi(FP, 2)}, {abi(FP, 2)}, {abi(FP, 3)}, 'a'},
    {"floating point: the lesser where one uses more",
     {abi(FP, 2)},
     {abi(FP, 1)},
     {abi(FP, 3)},
     'a'},
    {"floating point before the profile",
     {abi(FP, 3), abi(PROFILE, 'M')},
     {abi(FP, 3)},
     {abi(FP, 2), abi(PROFILE, 'M')},
     'a'},
    {"the profile before the architecture",
     {abi(PROFILE, 'R'), abi(CPU_ARCH, V7)},
     {abi(PROFILE, 'R'), abi(CPU_ARCH, V4T)},
     {abi(PROFILE, 'M'), abi(CPU_ARCH, V7)},
     'a'},
    {"the newest architecture that is not too new",
     {abi(CPU_ARCH, V6)},
     {abi(CPU_ARCH, V6)},
     {abi(CPU_ARCH, V4T)},
     'a'},
    {"the architecture before the state",
     {abi(CPU_ARCH, V7), abi(ARM_STATE, 1)},
     {abi(CPU_ARCH, V7), abi(THUMB_STATE, 2)},
     {abi(CPU_ARCH, V6), abi(ARM_STATE, 1)},
     'a'},
    {"the state that the objects prefer",
     {abi(ARM_STATE, 1)},
     {abi(ARM_STATE, 1)},
     {abi(THUMB_STATE, 2)},
     'a'},
    {"exceptions tell last",
     {qv(QV_EXCEPTIONS, 2)},
     {qv(QV_EXCEPTIONS, 2)},
     {qv(QV_EXCEPTIONS, 1)},
     'a'},
    {"the state before exceptions",
     {qv(QV_EXCEPTIONS, 1), abi(ARM_STATE, 1)},
     {qv(QV_EXCEPTIONS, 2), abi(ARM_STATE, 1)},
     {qv(QV_EXCEPTIONS, 1), abi(THUMB_STATE, 2)},
     'a'},
};

class library_choice : public testing::TestWithParam<CHOICE> {
  protected:
    void SetUp() override {
        global_opts = new option_obj(true);
        global_opts->setopt(OPT_output_file, "/dev/null");
        Target->finalize_options();
        file_manager.create_linker_files(new OBJ_FILE("first.o", new_file("first.o", {})));
        for (const VALUE& v : GetParam().output)
            (v.is_qv ? output_OF_FILE()->qv_battr_create(v.tag)
                     : output_OF_FILE()->abi_battr_create(v.tag))
                ->val.uval = v.value;
    }
};

TEST_P(library_choice, is_the_same_in_either_order) {
    OBJECT_FILE* a = new_file("b.lib", GetParam().a);
    OBJECT_FILE* b = new_file("a.lib", GetParam().b);
    const char* better = GetParam().better == 'a' ? "b.lib" : "a.lib";
    EXPECT_STREQ(choose_lib({a, b}), better);
    EXPECT_STREQ(choose_lib({b, a}), better);
    EXPECT_EQ(choose_lib({}), nullptr);
}

INSTANTIATE_TEST_SUITE_P(rule, library_choice, testing::ValuesIn(CHOICES));

} // namespace
