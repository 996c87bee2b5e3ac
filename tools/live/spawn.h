// spawn.h: starts a program as a stranger to this one.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace stopngo {

/// Starts argv, along PATH, in a process group of its own: signals as the system has them, no files open but the
/// standard ones, input to read on its standard input, and standard error also as its standard output. environment:
/// "NAME=value" each, in the stead of those of the same names. Throws std::system_error.
pid_t Spawn(const std::vector<std::string>& argv, const std::vector<std::string>& environment,
            const std::string& input);

}  // namespace stopngo
