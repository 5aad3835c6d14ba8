#include "Tooth.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Samples {
namespace {

struct Form {
    double crownWidth;
    double crownHeight;
    double neckWidth;
    double rootLength;
    double lean;  ///< radians by which the root's tip points away from the midline
};

constexpr std::array<Form, 8> UpperForms{{{8.5, 10.5, 6.6, 13.0, 0.04},
                                          {6.6, 9.0, 5.0, 13.0, 0.09},
                                          {7.6, 10.0, 5.8, 17.0, 0.12},
                                          {7.1, 8.5, 5.2, 14.0, 0.06},
                                          {6.9, 8.0, 5.0, 14.0, 0.07},
                                          {10.2, 7.5, 8.0, 12.5, 0.05},
                                          {9.2, 7.2, 7.4, 11.5, 0.09},
                                          {8.4, 6.6, 6.8, 10.5, 0.16}}};

constexpr std::array<Form, 8> LowerForms{{{5.2, 9.0, 3.8, 12.5, 0.00},
                                          {5.8, 9.5, 4.2, 14.0, 0.02},
                                          {7.0, 11.0, 5.4, 16.0, 0.05},
                                          {7.1, 8.6, 5.0, 14.0, 0.06},
                                          {7.2, 8.0, 5.2, 14.5, 0.09},
                                          {11.2, 7.6, 9.2, 13.5, 0.10},
                                          {10.6, 7.2, 8.6, 12.8, 0.14},
                                          {9.8, 6.9, 8.0, 11.0, 0.24}}};

const Form& FormOf(int number) {
    const auto place = static_cast<std::size_t>(number % 10 - 1);
    return number < 30 ? UpperForms[place] : LowerForms[place];
}

constexpr double Pi = 3.14159265358979;

}  // namespace

double Tooth::CrownWidth(int number) { return FormOf(number).crownWidth; }
double Tooth::CrownHeight(int number) { return FormOf(number).crownHeight; }

Tooth::Tooth(int number_, Point neck_, double lean) : number(number_), place(number_ % 10), neck(neck_) {
    const Form& form = FormOf(number);
    const int quadrant = number / 10;
    towardsMidline = quadrant == 1 || quadrant == 4 ? 1 : -1;
    towardsApex = number < 30 ? -1 : 1;
    cosine = std::cos(form.lean + lean);
    sine = std::sin(form.lean + lean);
    crownWidth = form.crownWidth;
    crownHeight = form.crownHeight;
    neckWidth = form.neckWidth;
    GrowRoots(form.rootLength);
}

void Tooth::GrowRoots(double length) {
    const double half = neckWidth / 2;
    if (place < 6) {
        const double bend = place == 3 ? -1.0 : -0.5;
        roots = {{0, bend, length, half, 1}};
        return;
    }
    const bool upper = number < 30;
    const double spread = place == 8 ? 0.25 : place == 7 ? 0.55 : 0.8;
    trunk = place == 8 ? 5.5 : 3.6;
    roots = {{half * 0.5, half * spread, length, half * 0.48, 1},
             {-half * 0.5, -half * spread - (upper ? 0 : 0.6), length * 0.95, half * 0.46, 1}};
    if (upper) roots.push_back({0, 0.2, length * 1.08, half * 0.55, 0.45});
}

Point Tooth::Own(Point p) const {
    const double x = (p.x - neck.x) * towardsMidline;
    const double y = (p.y - neck.y) * towardsApex;
    return {x * cosine + y * sine, y * cosine - x * sine};
}

/// How much lower the biting edge lies at `x` than at its highest point.
double Tooth::EdgeDrop(double x) const {
    const double u = x / (crownWidth / 2);
    switch (place) {
        case 1:
        case 2: {
            const double corner = u > 0 ? 0.82 : 0.6;
            return 1.4 * std::pow(std::max(0.0, std::abs(u) - corner) / (1 - corner), 2.0) + 0.25 * (1 - u) / 2;
        }
        case 3: return 2.8 * std::hypot(u + 0.1, 0.16) - 0.45;
        case 4:
        case 5: return 2.0 * std::pow(std::abs(u), 1.5);
        default: {
            const bool threeCusps = number == 36 || number == 46;
            const double wave = threeCusps ? -std::cos(3 * Pi * u) : std::cos(2 * Pi * u);
            return 1.0 * (0.5 + 0.5 * wave) + (threeCusps ? 0.2 : 0.0) - 0.25 * u;
        }
    }
}

double Tooth::CrownDepth(Point p) const {
    const double t = -p.y / crownHeight;
    const double bulge = SmoothStep(-0.05, 0.62, t);
    const double taper = place == 3 ? 0.35 : place < 3 ? 0.04 : 0.16;
    const double upperPart = std::max(0.0, (t - 0.7) / 0.3);
    const double half = (neckWidth + (crownWidth - neckWidth) * bulge) / 2 * (1 - taper * upperPart * upperPart);
    return std::min(half - std::abs(p.x), crownHeight - EdgeDrop(p.x) + p.y);
}

double Tooth::RootMiddle(const Root& root, double y) {
    const double s = std::clamp(y / root.length, 0.0, 1.0);
    return root.top + (root.tip - root.top) * s * (0.4 + 0.6 * s);
}

double Tooth::RootHalf(const Root& root, double y) {
    const double s = std::clamp(y / root.length, 0.0, 1.0);
    return root.half * (1 - 0.45 * s) * std::sqrt(1 - s * s * s * s);
}

double Tooth::RootDepth(const Root& root, Point p) {
    const double aside = std::abs(p.x - RootMiddle(root, p.y));
    if (p.y > root.length) return -std::hypot(aside, p.y - root.length);
    return std::min(RootHalf(root, p.y) - aside, root.length - p.y + 0.4);
}

/// Depth in the part of a molar's root that is not split yet, between the outer sides of its two roots.
double Tooth::TrunkDepth(Point p) const {
    const double mesial = RootMiddle(roots[0], p.y) + RootHalf(roots[0], p.y);
    const double distal = RootMiddle(roots[1], p.y) - RootHalf(roots[1], p.y);
    return std::min({mesial - p.x, p.x - distal, trunk - 0.5 * std::abs(p.x) - p.y});
}

double Tooth::RootsDepth(Point p) const {
    double depth = trunk > 0 ? TrunkDepth(p) : -1e9;
    for (const Root& root : roots) {
        if (root.weight == 1) depth = std::max(depth, RootDepth(root, p));
    }
    return depth;
}

double Tooth::Enamel(Point p, double depth) const {
    if (p.y > 0) return 0;
    const double full = place > 3 ? 1.35 : 0.9;
    const double thickness = full * SmoothStep(0.0, 0.55, -p.y / crownHeight);
    return SmoothStep(thickness + 0.25, thickness - 0.15, depth) * SmoothStep(0.0, 0.35, depth) *
           SmoothStep(0, 0.12, -p.y / crownHeight);
}

/// 1 in the pulp chamber and the canals, 0 outside.
double Tooth::Pulp(Point p) const {
    double canals = 0;
    const double roof = place > 5 ? -0.05 : -0.5;
    for (const Root& root : roots) {
        const double s = std::clamp(p.y / root.length, 0.0, 1.0);
        const double narrow = place > 5 ? 1 : 0.35 + 0.65 * SmoothStep(roof, 0, p.y / crownHeight);
        const double half = (place > 5 ? 0.42 : 0.12 * neckWidth) * (1 - 0.75 * s) * narrow;
        const double inside = SmoothStep(half + 0.3, half - 0.3, std::abs(p.x - RootMiddle(root, p.y)));
        canals = std::max(canals, inside * SmoothStep(root.length - 0.2, root.length - 1.5, p.y) *
                                      SmoothStep(roof * crownHeight, (roof + 0.15) * crownHeight, p.y));
    }
    if (place < 6) return canals;
    const double half = 0.27 * neckWidth;
    const double horns = -0.22 * crownHeight - 0.16 * crownHeight * std::min(1.0, std::abs(p.x) / half);
    const double chamber = SmoothStep(half + 0.3, half - 0.3, std::abs(p.x)) *
                           SmoothStep(horns - 0.3, horns + 0.3, p.y) * SmoothStep(trunk - 0.9, trunk - 1.6, p.y);
    return std::max(canals, chamber);
}

double Tooth::Filling(Point p, double depth) const {
    double metal = 0;
    if (crownFilled && p.y < 0) {
        const double floor = -0.5 * crownHeight + 0.35 * std::cos(p.x * 1.7);
        const bool box = p.x > 0.22 * crownWidth;
        const double bottom = box ? floor + 1.6 : floor;
        metal = 2.4 * SmoothStep(bottom + 0.15, bottom - 0.15, p.y) * SmoothStep(0.0, 0.2, depth) *
                SmoothStep(-0.34 * crownWidth, -0.31 * crownWidth, p.x);
    }
    if (rootsFilled) metal = std::max(metal, 1.1 * Pulp(p));
    return metal;
}

double Tooth::Over(Point at, double density) const {
    if (std::abs(at.x - neck.x) > 16 || std::abs(at.y - neck.y) > 25) return density;
    const Point p = Own(at);
    const double depth = p.y < 0 ? CrownDepth(p) : RootsDepth(p);
    if (depth < -0.9) return density;
    if (depth < 0) {
        const double bone = SmoothStep(1.2, 2.6, p.y);
        const double gap = Band(-0.1, 0.24, depth);
        const double wall = Band(-0.5, 0.28, depth);
        return density * (1 - 0.55 * bone * gap) + 0.2 * bone * wall;
    }
    double dentine = 0.3 + 0.7 * SmoothStep(0, 0.45 * neckWidth / (place > 5 ? 2 : 1), depth);
    for (const Root& root : roots) {
        if (root.weight < 1 && p.y > 0) dentine += root.weight * 0.6 * SmoothStep(0, 1.4, RootDepth(root, p));
    }
    const double tissue = 0.55 * dentine + 0.8 * Enamel(p, depth) - 0.3 * Pulp(p) * SmoothStep(0, 1, depth);
    return 0.62 * density * SmoothStep(0, 1.5, p.y) + 0.28 + std::max(tissue, 0.0) + Filling(p, depth);
}

}  // namespace Samples
