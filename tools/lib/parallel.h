// parallel.h: independent pieces of work spread over threads.
#pragma once

#include <cstddef>
#include <functional>

namespace stopngo {

/// Calls piece(index) once for every index below count, on up to jobs threads; 0: as many as the machine
/// runs at once. The order is not defined, so pieces write to places of their own. The first exception
/// ends the work and is thrown on.
void ForEachPiece(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& piece);

}  // namespace stopngo
