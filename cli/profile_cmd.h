// `ktclr profile ...` and `ktclr spaces`. Each returns the exit status.
#pragma once

#include <string>

namespace ktcli {

int ProfileInfo(const std::string& file, bool json);
int ProfileExtract(const std::string& image, const std::string& out);
int ProfileEmbed(const std::string& image, const std::string& profile, const std::string& backup);
int ProfileBuiltin(const std::string& name, const std::string& out);
int ListSpaces();

}  // namespace ktcli
