// The file of a symbol, and its name for messages.
#pragma once

class OBJ_FILE;
namespace OFE {
class OF_SYMBOL;
}

/// The file that a symbol lies in; null when no file of the link holds it.
OBJ_FILE* symbol_obj_file(OFE::OF_SYMBOL* symbol);
/// The file's name for messages: its path, or archive and member; the empty text for null.
const char* file_diag_name(const OBJ_FILE* file);
/// The same of the file that a symbol lies in; the empty text for the linker's own files.
const char* symbol_file_name(OFE::OF_SYMBOL* symbol);
