// The one writer of the document, and the table of elements behind the ids.
#pragma once

#include <span>

#include "UTIL/xmlgen.h"

/// Fills the table.
void assign_xml_tags();
std::span<const XMLTAG> xml_tags();
XMLGEN& xml_gen();
