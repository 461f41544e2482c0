// Random installations, printers and print engines.
#pragma once

#include "tests/plain/driver/world.h"
#include "tests/system/random_jobs/random.h"

namespace orvex {

// Returns the profiles of 16 and 128 MiB, most of whose bytes are 0, by their file names.
std::map<std::string, plain::SparseFile> LargeProfiles();

// Makes settings, labels to import, profiles and language anew. At most one of the large profiles is
// installed.
void ChangeInstallation(Random& random, const std::map<std::string, plain::SparseFile>& large,
                        plain::Installation& installation);

// Returns the text of a log's control file.
std::string RandomMask(Random& random);

plain::LabelData RandomLabels(Random& random);

// Returns the replies of an engine in a job of a few pages: framing, an opening with its comment line in one
// or more chunks, resolution commands, other bytes, and now and then a refusal.
plain::EngineScript RandomScript(Random& random);

}  // namespace orvex
