#include "Mouth.h"
#include "Views.h"

#include <algorithm>
#include <cmath>

namespace Samples {
namespace {

constexpr double Spacing_mm = 0.044;
constexpr int LongSide = 900;
constexpr int ShortSide = 700;

/// How far a film of one jaw reaches beyond the biting plane.
constexpr double BeyondEdge_mm = 2.0;

double Ellipse(Point p, Point middle, double halfWidth, double halfHeight) {
    return std::hypot((p.x - middle.x) / halfWidth, (p.y - middle.y) / halfHeight);
}

/// An air-filled cavity where `above` is positive: darker and plainer than bone, with a thin bright wall.
double Cavity(double density, double above) {
    const double inside = SmoothStep(-0.1, 0.5, above);
    return density + inside * (0.2 * density + 0.17 - density) + 0.22 * Band(-0.15, 0.35, above);
}

double MaxillarySinus(Point p, double density) {
    const double x = std::abs(p.x);
    const double front = std::max(0.0, 27 - x);
    const double floor = -19.3 + 1.3 * std::cos(x * 0.66) - 0.3 * front * front;
    return x < 18 ? density : Cavity(density, floor - p.y);
}

double NasalFossa(Point p, double density) {
    const double x = std::abs(p.x);
    const double floor = -27.5 + 1.2 * Band(0, 2.5, x) - 0.35 * std::pow(std::max(0.0, x - 8), 2.0);
    if (x > 15) return density;
    const double septum = 0.35 * SmoothStep(1.6, 0.9, x) * SmoothStep(floor, floor - 1, p.y);
    return Cavity(density, floor - p.y) + septum;
}

double UpperFront(Point p, double density) {
    const double suture = SmoothStep(-13, -15, p.y) * SmoothStep(-28, -26, p.y);
    const double foramen = SmoothStep(1.2, 0.5, Ellipse(p, {0, -17.5}, 1.5, 2.6));
    return density * (1 - 0.35 * suture * Band(0, 0.35, p.x)) * (1 - 0.35 * foramen) +
           0.12 * suture * Band(0.55, 0.3, std::abs(p.x));
}

/// The cheek bone's root, a bright U above the first molar.
double CheekBone(Point p) {
    const double x = std::abs(p.x) - 43;
    return 0.3 * Band(-20.5 - 0.09 * x * x, 1.4, p.y) * SmoothStep(9, 5, std::abs(x));
}

double UpperSurroundings(Point p, double density) {
    return UpperFront(p, NasalFossa(p, MaxillarySinus(p, density))) + CheekBone(p);
}

double NerveCanal(Point p, double density) {
    const double x = std::abs(p.x);
    const double middle = 25.6 - 0.05 * (x - 24) + 0.25 * std::sin(x * 0.5);
    const double there = SmoothStep(23, 25, x);
    const double aside = std::abs(p.y - middle);
    const double foramen = SmoothStep(1.2, 0.6, Ellipse(p, {p.x < 0 ? -22.6 : 22.6, 24.6}, 1.9, 1.5));
    return density * (1 - 0.32 * there * SmoothStep(1.5, 1.0, aside)) * (1 - 0.5 * foramen) +
           0.13 * there * Band(1.6, 0.35, aside);
}

double LowerFront(Point p, double density) {
    const double tubercle = Ellipse(p, {0, 28}, 1.6, 1.6);
    const double ridge = Band(24.0 + 0.35 * std::abs(p.x), 1.6, p.y) * SmoothStep(17, 12, std::abs(p.x));
    const double rim = SmoothStep(32.5, 33.5, p.y) * SmoothStep(18, 10, std::abs(p.x));
    const double below = SmoothStep(36.2, 36.8, p.y);
    return (density + 0.25 * Band(1, 0.4, tubercle) - 0.12 * SmoothStep(0.6, 0.3, tubercle) + 0.16 * ridge +
            0.5 * rim * (1 - below)) *
           (1 - 0.65 * below);
}

/// The ridge that runs down from the ramus across the molars' roots.
double ObliqueRidge(Point p) {
    const double x = std::abs(p.x);
    return 0.24 * Band(20 - 0.42 * (x - 42), 1.3, p.y) * SmoothStep(36, 44, x);
}

double LowerSurroundings(Point p, double density) { return LowerFront(p, NerveCanal(p, density)) + ObliqueRidge(p); }

/// Gum and bone of one jaw over the cheek behind them.
double Jaw(const Mouth& mouth, bool upper, Point p, double density) {
    const double depth = mouth.BoneDepth(upper, p);
    const double bone = SmoothStep(-0.2, 0.6, depth);
    density += 0.13 * SmoothStep(-3.2, -1.5, depth);
    if (bone == 0) return density;
    const double solid = (0.4 + 0.004 * std::max(0.0, depth)) * (1 + 0.36 * Mouth::Net(upper, p));
    density += bone * solid + 0.16 * Band(0.3, 0.5, depth);
    return upper ? UpperSurroundings(p, density) : LowerSurroundings(p, density);
}

bool ShowsUpper(const IntraOralFilm& film) { return film.teeth.front() < 30; }
bool ShowsLower(const IntraOralFilm& film) { return film.teeth.back() > 30; }

Point CentreOf(const IntraOralFilm& film, const Mouth& mouth, double height_mm) {
    double x = 0;
    for (const int tooth : film.teeth) x += mouth.MiddleOf(tooth) / static_cast<double>(film.teeth.size());
    if (ShowsUpper(film) && ShowsLower(film)) return {x, 0};
    const double y = height_mm / 2 - BeyondEdge_mm;
    return {x, ShowsUpper(film) ? -y : y};
}

}  // namespace

Picture DrawIntraOral(const IntraOralFilm& wanted) {
    static const Mouth mouth;
    const int columns = wanted.portrait ? ShortSide : LongSide;
    const int rows = wanted.portrait ? LongSide : ShortSide;
    const double turn = 0.06 * (Noise({wanted.seed * 3.7, 0.5}, 91) - 0.5);
    Film film(columns, rows, Spacing_mm, CentreOf(wanted, mouth, rows * Spacing_mm), turn);
    film.Layer([](Point p, double) { return 0.1 + 0.05 * Cloud({p.x / 9, p.y / 9}, 2, 71); });
    for (const bool upper : {true, false}) {
        if (!(upper ? ShowsUpper(wanted) : ShowsLower(wanted))) continue;
        film.Layer([&](Point p, double density) { return Jaw(mouth, upper, p, density); });
        for (const Tooth& tooth : mouth.Teeth()) {
            if ((tooth.Number() < 30) == upper)
                film.Layer([&](Point p, double density) { return tooth.Over(p, density); });
        }
    }
    return film.Develop({wanted.bits, 1.05, 0.025, 3.0, wanted.seed});
}

}  // namespace Samples
