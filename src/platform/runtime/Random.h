#pragma once

#include "platform/runtime/Types.h"

/// The runtime's random numbers: a 24-bit linear congruential generator with one state for each thread.
///
/// It is not suitable for secrets. Each thread starts with the same state. Any thread may call the functions, for its
/// own state.
namespace Platform {

/// Returns the next number, at least 0 and below 1.
float Rnd();

/// Returns the next number for a positive `argument`, the last number again for 0, and for a negative one the number
/// that belongs to it, from which the sequence then continues.
float Rnd(float argument);

/// Sets the upper 16 bits of the state to a seed that is taken from `Timer`.
void Randomize();

/// Sets the upper 16 bits of the state to `seed`. The low 8 bits are unchanged, so that this call alone doesn't repeat
/// a sequence; `Rnd` of a negative number followed by it does.
void Randomize(double seed);

}  // namespace Platform
