// Shadow files: what the spooler of Windows keeps of a job beside its spool file.
#pragma once

#include <string>

#include "tools/orvexprint/spool_file.h"

namespace orvex::tools::print {

struct ShadowFile {
    std::string document;  // UTF-8; empty if it is not there
    std::string dataType;  // of the spool file, such as "NT EMF 1.008"; the same
    ByteSpan deviceMode;   // a view into the file's bytes; empty if it is not there
};

// Returns whether the bytes begin as the shadow file of a known version of Windows does.
bool IsShadowFile(ByteSpan bytes);

// Reads a shadow file as Windows NT 4 to 11 write it. Texts that are not within the file are empty. Throws
// SpoolError for another file, and for one whose device mode is not within it.
ShadowFile ReadShadowFile(ByteSpan bytes);

}  // namespace orvex::tools::print
