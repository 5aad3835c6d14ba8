#include "platform/runtime/Random.h"

#include "platform/runtime/Services.h"

#include <bit>

namespace Platform {
namespace {

thread_local std::uint32_t state = 0x50000;

constexpr std::uint32_t Mask = 0xFFFFFF;

float Scaled() { return static_cast<float>(state) / 16777216.0F; }

void Seed(std::uint32_t bits) { state = (state & 0xFF) | (((bits & 0xFFFF) ^ (bits >> 16)) << 8); }

}  // namespace

float Rnd() {
    state = (state * 0xFD43FDU + 0xC39EC3U) & Mask;
    return Scaled();
}

float Rnd(float argument) {
    if (argument == 0) return Scaled();
    if (argument < 0) {
        const auto bits = std::bit_cast<std::uint32_t>(argument);
        state = (bits + (bits >> 24)) & Mask;
    }
    return Rnd();
}

void Randomize() { Seed(std::bit_cast<std::uint32_t>(Timer())); }

void Randomize(double seed) { Seed(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(seed) >> 32)); }

}  // namespace Platform
