#include "Mouth.h"
#include "Views.h"

#include <algorithm>
#include <cmath>

namespace Samples {
namespace {

// Places in this view: x = 0 is the midline, y = 0 the height of the biting plane beside the molars.

constexpr int Columns = 1600;
constexpr int Rows = 800;
constexpr double Spacing_mm = 0.15;

/// The biting plane hangs through in the middle, which gives the row its smile.
double BitingPlane(double x) {
    const double u = std::min(std::abs(x), 75.0) / 64;
    return 4 - 9 * u * u;
}

/// The place in the unrolled mouth that lies at `p` of the view.
Point InMouth(Point p) { return {p.x, p.y - BitingPlane(p.x)}; }

Curve Shape(const std::vector<Point>& right) { return {right, Curve::Kind::Closed}; }
Curve Line(const std::vector<Point>& right) { return {right, Curve::Kind::Open}; }

/// The patient's jaws are drawn once, for positive x; the view is the same on both sides.
struct Bones {
    Curve mandible =
        Shape({{-12, 15}, {0, 15},   {20, 14},  {40, 11},  {58, 7},   {66, 2},   {70, -10},  {73, -24}, {76, -37},
               {79, -41}, {83, -35}, {87, -31}, {91, -36}, {90, -44}, {95, -49}, {101, -45}, {99, -37}, {97, -24},
               {95, -8},  {92, 6},   {86, 17},  {76, 25},  {60, 33},  {40, 40},  {20, 44},   {0, 45},   {-12, 45}});
    Curve maxilla = Shape({{-12, -8},
                           {0, -8},
                           {22, -10},
                           {45, -14},
                           {62, -19},
                           {68, -24},
                           {66, -36},
                           {58, -47},
                           {30, -52},
                           {0, -54},
                           {-12, -54}});
    Curve sinus =
        Shape({{20, -27}, {28, -20}, {40, -20}, {52, -24}, {61, -28}, {62, -38}, {54, -46}, {36, -48}, {23, -40}});
    Curve nose = Shape({{-6, -24}, {0, -24}, {9, -24}, {14, -29}, {14, -40}, {9, -52}, {0, -56}, {-6, -56}});
    Curve orbit = Shape({{18, -52}, {28, -46}, {42, -45}, {52, -50}, {56, -62}, {36, -75}, {18, -66}});
    Curve palate = Line({{-2, -23}, {14, -24}, {34, -28}, {58, -33}, {70, -36}});
    Curve cheekArch = Line({{50, -42}, {62, -36}, {74, -38}, {88, -44}, {104, -50}, {116, -52}});
    Curve socket = Line({{84, -54}, {90, -53}, {96, -56}, {102, -53}, {107, -48}});
    Curve canal = Line({{84, -12}, {82, 2}, {74, 14}, {60, 23}, {44, 29}, {28, 31}, {23, 28}});
    Curve airway = Line({{64, -60}, {70, -40}, {72, -20}, {68, 0}, {70, 20}, {80, 44}});
    Curve spine = Line({{121, -70}, {118, -30}, {115, 0}, {117, 40}, {121, 70}});
    Curve hyoid = Line({{58, 52}, {72, 47}, {88, 44}});
    Curve rim = Line({{0, 43.5}, {20, 42.5}, {40, 38.5}, {60, 31.5}, {75, 23.5}, {84.5, 16}});
    Curve oblique = Line({{70, -18}, {66, 0}, {58, 12}, {46, 18}});
};

double Net(Point p) { return 1 + 0.5 * (Cloud({p.x / 1.6, p.y / 1.2}, 3, 5) - 0.5); }

double SoftTissue(Point p) {
    const double shadow = 0.12 * Band(0, 26, p.x) * SmoothStep(-30, 20, p.y);
    return 0.3 + 0.1 * (Cloud({p.x / 25, p.y / 25}, 3, 3) - 0.5) + shadow - 0.16 * SmoothStep(42, 58, p.y);
}

double Midface(const Bones& bones, Point p, double density) {
    const double jaw = bones.maxilla.Depth(p);
    density += 0.3 * SmoothStep(0, 5, jaw) * Net(p);
    const double air = std::max(bones.sinus.Depth(p), bones.nose.Depth(p));
    density = density * (1 - 0.42 * SmoothStep(0, 1.5, air)) + 0.16 * Band(-0.2, 0.9, air);
    const double orbit = bones.orbit.Depth(p);
    density = density * (1 - 0.3 * SmoothStep(0, 2, orbit)) + 0.3 * Band(-0.8, 1.4, orbit);
    const double septum = Band(0.6 * std::sin(p.y / 8), 1.3, p.x) * SmoothStep(-22, -24, p.y);
    const double concha = SmoothStep(1.0, 0.6, std::hypot((p.x - 8) / 4.2, (p.y + 34) / 5.5));
    return density + 0.3 * septum + 0.22 * concha + 0.42 * Band(0, 1.3, bones.palate.Distance(p)) +
           0.36 * SmoothStep(3.6, 2.2, bones.cheekArch.Distance(p)) + 0.4 * Band(0, 1.6, bones.socket.Distance(p));
}

double LowerJaw(const Bones& bones, Point p, double density) {
    const double depth = bones.mandible.Depth(p);
    const double plate = Band(1.2, 1.4, depth) * SmoothStep(10, 16, p.y - BitingPlane(p.x) + std::max(0.0, p.x - 60));
    const double canal = bones.canal.Distance(p);
    density += SmoothStep(0, 1.2, depth) * (0.34 + 0.1 * SmoothStep(0, 8, depth)) * Net(p) + 0.3 * plate;
    density += 0.55 * SmoothStep(1.9, 1.0, bones.rim.Distance(p)) + 0.22 * Band(0, 1.8, bones.oblique.Distance(p));
    return density * (1 - 0.22 * SmoothStep(1.5, 0.9, canal)) + 0.1 * Band(1.7, 0.5, canal);
}

/// The bone that holds the teeth, up to its edge between them.
double Alveolus(const Mouth& mouth, Point p, double density) {
    const Point inside = InMouth(p);
    const double reach = SmoothStep(68, 64, std::abs(p.x));
    const double upper = mouth.BoneDepth(true, inside);
    const double lower = mouth.BoneDepth(false, inside);
    const double fill =
        SmoothStep(0, 1, upper) * SmoothStep(16, 9, upper) + SmoothStep(0, 1, lower) * SmoothStep(14, 5, lower);
    return density + reach * (0.24 * fill * Net(p) + 0.12 * (Band(0.4, 0.7, upper) + Band(0.4, 0.7, lower)));
}

double Around(const Bones& bones, Point p, double density) {
    density = density * (1 - 0.35 * SmoothStep(7, 3, bones.airway.Distance(p)));
    return density + 0.4 * SmoothStep(8, 4, bones.spine.Distance(p)) +
           0.25 * SmoothStep(2.4, 1.2, bones.hyoid.Distance(p));
}

/// A darker band between the rows of teeth, where only the lips and cheeks are.
double BitingGap(Point p, double density) {
    const double y = InMouth(p).y;
    return density * (1 - 0.45 * Band(0, 9, y) * SmoothStep(70, 60, std::abs(p.x)));
}

}  // namespace

Picture DrawPanoramic(int bits, unsigned seed) {
    static const Mouth mouth;
    static const Bones bones;
    Film film(Columns, Rows, Spacing_mm, {0, -4});
    film.Layer([](Point p, double) { return SoftTissue(p); });
    film.Layer([](Point p, double density) {
        const Point mirrored{std::abs(p.x), p.y};
        return LowerJaw(bones, mirrored, Midface(bones, mirrored, Around(bones, mirrored, density)));
    });
    film.Layer([](Point p, double density) { return Alveolus(mouth, p, BitingGap(p, density)); });
    for (const Tooth& tooth : mouth.Teeth())
        film.Layer([&](Point p, double density) { return tooth.Over(InMouth(p), density); });
    return film.Develop({bits, 0.85, 0.03, 0, seed});
}

}  // namespace Samples
