// The load data tables of ARM, and the factories that make them.
#include "ELFLNK/target/arm/arm_load_data.h"

#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/crc/crcgen.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/file/obj_file.h"
#include "ELFLNK/mapfile/map_file.h"
#include "ELFLNK/object/collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/target/abi.h"
#include "ELFLNK/target/arm/arm_target.h"
#include "OBJEDIT04/machine/reloc_type.h"
#include "OBJEDIT04/ofe/object_file.h"
#include "OBJEDIT04/ofe/of_reloc.h"
#include "OBJEDIT04/ofe/of_section.h"
#include "OBJEDIT04/ofe/of_symbol.h"
#include "OBJEDIT04/ofe/of_symbol_table.h"
#include "UTIL/data_map.h"

using namespace OFE;

namespace {

constexpr unsigned word = 4;        // alignment of tables of addresses
constexpr unsigned double_word = 8; // and of CRC values

void write_address(DATA_MAP& data, uint64_t value) {
    data.write32(static_cast<uint32_t>(value));
}

class ARM_COPY_RECORD final : public COPY_RECORD {
  public:
    using COPY_RECORD::COPY_RECORD;
    void write_copy_record(DATA_MAP& data) override {
        check_placed();
        write_address(data, source_addr());
        write_address(data, outsect()->run_address());
        write_address(data, size());
    }
    std::unique_ptr<COPY_RECORD> new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                 const SOURCE_POSITION* pos) const override {
        return std::make_unique<ARM_COPY_RECORD>(outsect, kind, pos);
    }
    void generate_map_file() override {
        mprintf("\t%s: load addr=%08lx, load size=%08x, run addr=%08lx, run size=%08x, "
                "compression=%s\n",
                outsect()->name(), source_addr(), static_cast<unsigned>(load_size()),
                outsect()->run_address(), static_cast<unsigned>(outsect()->size()),
                compression_name());
    }
};

class ARM_CINIT_RECORD final : public CINIT_RECORD {
  public:
    using CINIT_RECORD::CINIT_RECORD;
    void write_copy_record(DATA_MAP& data) override {
        check_placed();
        write_address(data, source_addr());
        write_address(data, outsect()->run_address());
    }
    std::unique_ptr<COPY_RECORD> new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                 const SOURCE_POSITION* pos) const override {
        return std::make_unique<ARM_CINIT_RECORD>(outsect, kind, pos);
    }
    void generate_map_file() override {
        mprintf("\t%s: load addr=%08lx, load size=%08x bytes, run addr=%08lx, run size=%08x bytes, "
                "compression=%s\n",
                outsect()->name(), source_addr(), static_cast<unsigned>(load_size()),
                outsect()->run_address(), static_cast<unsigned>(outsect()->size()),
                compression_name());
    }
};

class ARM_CRC_RECORD final : public CRC_RECORD {
  public:
    using CRC_RECORD::CRC_RECORD;
    void write_crc_record(DATA_MAP& data) override {
        check_placed();
        data.write64(crc());
        data.write32(static_cast<uint32_t>(kind()));
        write_address(data, source_addr());
        write_address(data, size());
        data.write32(0);
    }
    std::unique_ptr<CRC_RECORD> new_CRC_RECORD(COLLECTION* outsect, short kind,
                                               const SOURCE_POSITION* pos) const override {
        return std::make_unique<ARM_CRC_RECORD>(outsect, kind, pos);
    }
    void generate_map_file() override {
        mprintf("\t%s: algorithm=%s, load addr=%08lx, size=%08x, CRC=%016lx\n", outsect()->name(),
                CRCGEN::find_crc_name(static_cast<unsigned>(kind())), source_addr(),
                static_cast<unsigned>(size()), crc());
    }
};

} // namespace

// ---- copy tables ---------------------------------------------------------------------------

ARM_COPY_TABLE::ARM_COPY_TABLE(const char* name, const SOURCE_POSITION* pos)
    : COPY_TABLE(*global_copy_table_db, name, word, pos) {}

std::unique_ptr<COPY_RECORD> ARM_COPY_TABLE::new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                             const SOURCE_POSITION* pos) const {
    return std::make_unique<ARM_COPY_RECORD>(outsect, kind, pos);
}

ARM_CINIT_TABLE::ARM_CINIT_TABLE()
    : CINIT_TABLE(*global_copy_table_db, Target->abi()->compressed_cinit_table_name(), word) {}

std::unique_ptr<COPY_RECORD> ARM_CINIT_TABLE::new_COPY_RECORD(COLLECTION* outsect, short kind,
                                                              const SOURCE_POSITION* pos) const {
    return std::make_unique<ARM_CINIT_RECORD>(outsect, kind, pos);
}

// ---- the handler table ---------------------------------------------------------------------

ARM_HANDLER_TABLE::ARM_HANDLER_TABLE(unsigned capacity)
    : HANDLER_TABLE(capacity,
                    Target->abi()->code_address_bit_align() / Target->code_unit_bit_size()) {}

// A symbol of the internal file that stands for the routine.
static OF_SYMBOL* routine_symbol(OBJECT_FILE* internal, const char* routine) {
    OF_SYMBOL* symbol = internal->symbol_table()->new_symbol();
    symbol->set_name_view(routine);
    symbol->set_kind(OF_SYM_KIND_UNDEFINED);
    OF_SYMBOL* definition = global_symbols.lookup_def(routine);
    symbol->set_binding(definition != nullptr ? definition->binding() : OF_SYM_BINDING_GLOBAL);
    if (definition == nullptr) {
        global_symbols.add_symbol(symbol, false);
        return symbol;
    }
    symbol->set_type(definition->type());
    symbol->set_visibility(definition->visibility());
    global_symbols.update_symbol(symbol, definition);
    return symbol;
}

void ARM_HANDLER_TABLE::generate_table_entry(COMPRESSION_INFO* info) {
    constexpr unsigned R_ARM_ABS32 = 2;
    OF_SECTION* section = OF_SECTION_api();
    const unsigned offset = section->size();
    section->write_to_raw_data("\0\0\0", word, offset);
    OF_RELOC* reloc = section->new_reloc(false);
    reloc->set_type(section->ofile()->machine_reloc_type(R_ARM_ABS32));
    reloc->set_offset(offset);
    reloc->set_symbol(routine_symbol(section->ofile(), info->routine));
}

// ---- CRC tables ----------------------------------------------------------------------------

ARM_CRC_TABLE::ARM_CRC_TABLE(const char* name, const SOURCE_POSITION* pos)
    : CRC_TABLE(*global_crc_table_db, name, double_word, pos) {}

void ARM_CRC_TABLE::write_header(DATA_MAP& data) {
    data.write32(record_size() & 0xFFFF);
    data.write32(record_count());
}

std::unique_ptr<CRC_RECORD> ARM_CRC_TABLE::new_CRC_RECORD(COLLECTION* outsect, short kind,
                                                          const SOURCE_POSITION* pos) const {
    return std::make_unique<ARM_CRC_RECORD>(outsect, kind, pos);
}

// ---- load images ---------------------------------------------------------------------------

void ARM_COMPRESSED_SECTION::define_load_section_symbols() {
    if (!mapped_) ARM_TARGET::gen_mapping_symbol(OF_SECTION_api(), ARM_TYPES::SM_DATA, 0);
    mapped_ = true;
}

// ---- factories -----------------------------------------------------------------------------

COPY_TABLE* ARM_TARGET::new_COPY_TABLE(const char* name, const SOURCE_POSITION* pos) {
    return new ARM_COPY_TABLE(name, pos);
}

COPY_TABLE* ARM_TARGET::new_CINIT_TABLE() {
    return new ARM_CINIT_TABLE;
}

CRC_TABLE* ARM_TARGET::new_CRC_TABLE(const char* name, const SOURCE_POSITION* pos) {
    return new ARM_CRC_TABLE(name, pos);
}

HANDLER_TABLE* ARM_TARGET::new_HANDLER_TABLE(unsigned capacity) {
    return new ARM_HANDLER_TABLE(capacity);
}

COMPRESSED_SECTION* ARM_TARGET::new_COMPRESSED_SECTION(const char* name, COLLECTION* run,
                                                       short kind) {
    return new ARM_COMPRESSED_SECTION(name, run, kind);
}
