// The objects of the link. There is one of each; they are made before main() runs, in this order,
// and live until the process ends.
#include "ELFLNK/compress/compress_db.h"
#include "ELFLNK/crc/crc_table.h"
#include "ELFLNK/ecc/ecc_manager.h"
#include "ELFLNK/file/file_manager.h"
#include "ELFLNK/memmap/memory_map.h"
#include "ELFLNK/object/root_collection.h"
#include "ELFLNK/symbol/symbol_table.h"
#include "ELFLNK/symver/symver_table.h"
#include "ELFLNK/table/copy_table_db.h"
#include "ELFLNK/write/outsym_attr_manager.h"
#include "OPTIONGEN/option_obj.h"

FILE_MANAGER file_manager;

static MEMORY_MAP the_memory_map;
MEMORY_MAP* memory_map = &the_memory_map;

// The tree refers to all other objects of the link and is not taken down with them.
ROOT_COLLECTION* root_collection = new ROOT_COLLECTION;

SYMBOL_TABLE global_symbols;

SYMVER_TABLE symver_table;

static COPY_TABLE_DB the_copy_tables;
COPY_TABLE_DB* global_copy_table_db = &the_copy_tables;
static COMPRESS_DB the_compressed_sections;
COMPRESS_DB* global_compress_db = &the_compressed_sections;

OUTSYM_ATTR_MANAGER outsym_attr_manager;

static CRC_TABLE_DB the_crc_tables;
CRC_TABLE_DB* global_crc_table_db = &the_crc_tables;

ECC_MANAGER ecc_manager;

option_obj* global_opts = nullptr;
