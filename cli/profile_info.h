#pragma once

#include <cstdio>
#include <string>

#include "profiles.h"

namespace ktcli {

// Prints a profile's header and tag table; throws Failure when the bytes
// do not parse.
void PrintProfileInfo(const std::string& name, const Bytes& bytes, bool json, FILE* out);

}  // namespace ktcli
