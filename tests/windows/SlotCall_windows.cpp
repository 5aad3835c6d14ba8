#include "boundary/SlotCall.h"

#include <array>
#include <bit>
#include <cstring>
#include <stdexcept>
#include <utility>

/// The libraries of Windows have this identifier by another name only.
extern const IID IID_NULL = {};

namespace Client {
namespace {

/// The arguments of a call, each in the eight bytes that it has by the calling convention of 64-bit Windows.
using Words = std::array<double, 40>;

template <class Function, std::size_t... I>
HRESULT CallWith(Function function, void* self, const Words& words, std::index_sequence<I...>) {
    return function(self, words[I]...);
}

/// Calls a function with all words. The convention passes what stands for further arguments, as those of an ellipsis,
/// in the registers for whole numbers and in those for floats; the function reads the one that its argument has.
HRESULT CallWith(const void* function, void* self, const Words& words) {
    using Variadic = HRESULT (*)(void*, ...);
    return CallWith(reinterpret_cast<Variadic>(const_cast<void*>(function)), self, words,
                    std::make_index_sequence<std::tuple_size_v<Words>>());
}

/// Returns the word of an argument: its value, or the address of one of more than eight bytes.
double WordOf(Binary& argument, bool isVariant) {
    std::uint64_t word = 0;
    if (isVariant)
        word = reinterpret_cast<std::uint64_t>(&argument.variant);
    else
        std::memcpy(&word, &argument, sizeof word);
    return std::bit_cast<double>(word);
}

}  // namespace

HRESULT CallForeignSlot(IUnknown* object, IUnknown* tableOf, const SlotOf& slot, std::vector<Binary> arguments) {
    const Json& described = slot.Member["arguments"];
    if (arguments.size() != described.size() + (HasResult(slot.Member) ? 1 : 0))
        throw std::logic_error("another number of arguments");
    Words words{};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool isVariant =
            i < described.size() && !IsPlace(slot.Member, described[i]) && described[i]["type"] == "variant";
        words.at(i) = WordOf(arguments[i], isVariant);
    }
    const auto* table = *reinterpret_cast<const void* const**>(tableOf);
    return CallWith(table[slot.Index], object, words);
}

}  // namespace Client
