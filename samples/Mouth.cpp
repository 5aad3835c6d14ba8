#include "Mouth.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Samples {
namespace {

/// Half the gap between the rows, so that their cusps just do not touch.
constexpr double HalfGap = 0.5;

/// The bone's edge lies this far below the necks of the teeth.
constexpr double NeckToBone = 1.5;

bool Among(int number, std::initializer_list<int> numbers) {
    return std::ranges::find(numbers, number) != numbers.end();
}

}  // namespace

Mouth::Mouth() {
    AddRow(1, 2);
    AddRow(4, 3);
    for (Tooth& tooth : teeth) {
        if (Among(tooth.Number(), {16, 25, 36, 37, 46})) tooth.FillCrown();
        if (Among(tooth.Number(), {25, 46})) tooth.FillRoots();
    }
}

void Mouth::AddRow(int rightQuadrant, int leftQuadrant) {
    double edge = 0;
    for (int place = 1; place <= 8; ++place) {
        const int right = rightQuadrant * 10 + place;
        const double middle = edge + Tooth::CrownWidth(right) / 2;
        edge += 0.985 * Tooth::CrownWidth(right);
        const double height = HalfGap + Tooth::CrownHeight(right);
        const double y = rightQuadrant == 1 ? -height : height;
        (rightQuadrant == 1 ? upperNecks : lowerNecks).push_back({middle, height});
        teeth.emplace_back(right, Point{-middle, y});
        teeth.emplace_back(leftQuadrant * 10 + place, Point{middle, y});
    }
}

double Mouth::MiddleOf(int number) const { return std::ranges::find(teeth, number, &Tooth::Number)->Neck().x; }

double Mouth::BoneDepth(bool upper, Point place) const {
    const std::vector<Point>& line = upper ? upperNecks : lowerNecks;
    const double x = std::abs(place.x);
    const auto after = std::ranges::upper_bound(line, x, {}, &Point::x);
    double neck = line.back().y;
    if (after == line.begin()) neck = line.front().y;
    if (after != line.begin() && after != line.end()) {
        const Point before = *std::prev(after);
        neck = before.y + (after->y - before.y) * (x - before.x) / (after->x - before.x);
    }
    return std::abs(place.y) * ((place.y < 0) == upper ? 1 : -1) - neck - NeckToBone;
}

double Mouth::Net(bool upper, Point p) {
    const Point scaled = upper ? Point{p.x / 0.7, p.y / 0.75} : Point{p.x / 1.25, p.y / 0.7};
    const double beams = 1 - std::abs(2 * Cloud(scaled, 3, upper ? 11 : 31) - 1) * 2.2;
    return 0.75 * std::max(-1.0, beams) + 0.7 * (Cloud({p.x / 5, p.y / 5}, 2, 51) - 0.5) - 0.25;
}

}  // namespace Samples
