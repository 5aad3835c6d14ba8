#include "console/page/Orientation.h"

#include <array>

namespace Console {
namespace {

struct Form {
    int degrees;
    bool mirrored;
};

/// The forms by their numbers from 1.
constexpr std::array<Form, 8> Forms{
    {{0, false}, {0, true}, {180, false}, {180, true}, {270, true}, {90, false}, {90, true}, {270, false}}};

}  // namespace

Orientation::Orientation(Platform::Long number) {
    if (number < 1 || number > static_cast<Platform::Long>(Forms.size())) return;
    const Form& form = Forms[static_cast<std::size_t>(number - 1)];
    degrees_ = form.degrees;
    mirrored_ = form.mirrored;
}

Platform::Long Orientation::Number() const {
    for (std::size_t i = 0; i < Forms.size(); ++i)
        if (Forms[i].degrees == degrees_ && Forms[i].mirrored == mirrored_) return static_cast<Platform::Long>(i + 1);
    return 1;
}

Orientation Orientation::Turned(int degrees) const { return {((degrees_ + degrees) % 360 + 360) % 360, mirrored_}; }

Orientation Orientation::MirroredAsSeen() const { return {(360 - degrees_) % 360, !mirrored_}; }

}  // namespace Console
