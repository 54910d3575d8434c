// Which symbols --make_static makes local.
#pragma once

namespace OFE {
class OF_SYMBOL;
}

// A defined global or weak symbol whose name --make_global does not keep.
bool needs_make_static(OFE::OF_SYMBOL* symbol);
