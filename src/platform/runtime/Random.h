#pragma once

#include "platform/runtime/Types.h"

/// The runtime's random numbers: a 24-bit linear generator, one state a thread.
///
/// Good enough to spread numbers, not to keep secrets. Each thread starts at the same state and may
/// call everything here for itself.
namespace Platform {

/// The next number, at least 0 and below 1.
float Rnd();

/// A positive `argument` gives the next number, 0 the last one again, a negative one the number that
/// belongs to it, from which the sequence then goes on.
float Rnd(float argument);

/// Puts a seed taken from the clock (`Timer`) into the upper 16 bits of the state.
void Randomize();

/// Puts `seed` there. The low 8 bits stay, so that it alone doesn't repeat a sequence; `Rnd` of a
/// negative number followed by it does.
void Randomize(double seed);

}  // namespace Platform
