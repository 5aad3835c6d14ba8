#include "Tooth.h"
#include "Views.h"

#include <algorithm>
#include <cmath>

namespace Samples {
namespace {

constexpr int Columns = 1000;
constexpr int Rows = 1200;
constexpr double Spacing_mm = 0.25;

Curve Shape(const std::vector<Point>& points) { return {points, Curve::Kind::Closed}; }
Curve Line(const std::vector<Point>& points) { return {points, Curve::Kind::Open}; }

double Clouds(Point p, unsigned seed) { return Cloud({p.x / 9, p.y / 9}, 4, seed) - 0.5; }

/// A flat bone with its two dense plates at the edge of the skull.
double Vault(double depth) {
    const double plates = Band(0.8, 1.3, depth) + 0.8 * Band(5.2, 1.3, depth);
    return 0.26 * SmoothStep(0, 5, depth) + 0.3 * SmoothStep(0, 1, depth) * SmoothStep(7, 4, depth) + 0.35 * plates;
}

/// Bone that is dense at its edge and spongy inside.
double Bone(double depth, double edge, double inside) {
    return edge * Band(1.1, 1.6, depth) + inside * SmoothStep(0, 1.5, depth);
}

double Ring(Point p, Point middle, double radius, double width) {
    return Band(radius, width, std::hypot(p.x - middle.x, p.y - middle.y));
}

// ------------------------------------------------------------------------------------------- from the side

// Places: the middle of the film is the origin; nose and chin at positive x.

struct SideBones {
    Curve skin = Shape({{75, -105},   {86, -85},   {87, -68},   {81, -54},  {88, -38},  {103, -14},  {98, -7},
                        {87, -2},     {91, 8},     {93, 15},    {87, 21},   {90, 27},   {88, 35},    {81, 43},
                        {84, 54},     {82, 68},    {70, 80},    {48, 84},   {22, 90},   {8, 106},    {4, 130},
                        {6, 165},     {-96, 165},  {-95, 110},  {-98, 60},  {-106, 20}, {-120, -20}, {-124, -70},
                        {-108, -116}, {-72, -142}, {-20, -150}, {30, -144}, {58, -128}});
    Curve vault = Shape({{68, -56},
                         {74, -66},
                         {76, -84},
                         {66, -112},
                         {44, -132},
                         {8, -143},
                         {-36, -142},
                         {-78, -128},
                         {-104, -98},
                         {-112, -62},
                         {-106, -28},
                         {-90, -4},
                         {-68, 6},
                         {-44, 2},
                         {-24, -12},
                         {-10, -30},
                         {4, -42},
                         {30, -52},
                         {52, -56}});
    Curve frontalSinus = Shape({{65, -62}, {71, -66}, {72, -76}, {68, -82}, {65, -74}});
    Curve sella =
        Line({{14, -50}, {8, -48}, {6, -42}, {1, -38}, {-5, -40}, {-7, -47}, {-12, -44}, {-20, -26}, {-28, -8}});
    Curve base = Line({{14, -50}, {30, -54}, {50, -57}, {66, -58}});
    Curve petrous = Shape({{-46, -8}, {-34, -26}, {-18, -32}, {-8, -22}, {-16, -8}, {-30, 4}});
    Curve sphenoid = Shape({{4, -36}, {12, -44}, {20, -40}, {20, -28}, {10, -24}, {2, -28}});
    Curve orbit = Line({{64, -54}, {54, -52}, {48, -44}, {48, -34}, {54, -26}, {64, -24}});
    Curve cheek = Line({{46, -30}, {44, -18}, {40, -6}, {46, 0}});
    Curve maxilla = Shape(
        {{22, -8}, {40, -10}, {62, -9}, {74, -8}, {69, -2}, {71, 8}, {75, 14}, {62, 15}, {46, 13}, {28, 12}, {20, 4}});
    Curve sinus = Shape({{28, -12}, {34, -32}, {50, -34}, {60, -22}, {60, -10}, {48, -4}, {34, -4}});
    Curve palate = Line({{20, -6}, {40, -8}, {62, -7}, {74, -8}});
    Curve nasalBone = Line({{69, -57}, {73, -48}, {79, -37}});
    Curve mandible = Shape({{-10, -22}, {-4, -27}, {2, -22}, {2, -12}, {8, -6},  {14, -16}, {20, -20}, {23, -10},
                            {24, 6},    {28, 22},  {40, 28}, {58, 29}, {70, 30}, {65, 44},  {66, 58},  {70, 66},
                            {64, 74},   {52, 75},  {32, 66}, {12, 56}, {0, 47},  {-7, 32},  {-8, 8},   {-12, -10}});
    Curve canal = Line({{10, 12}, {14, 28}, {24, 42}, {40, 52}, {54, 54}});
    Curve airway = Line({{12, -18}, {8, 0}, {6, 24}, {4, 48}, {2, 74}, {-4, 100}, {-6, 150}});
    Curve tongueBone = Line({{6, 78}, {16, 74}, {24, 76}});
    std::vector<Curve> neck = Vertebrae();

    static std::vector<Curve> Vertebrae() {
        std::vector<Curve> all{Shape({{-26, 10}, {-18, 12}, {-18, 19}, {-28, 20}}),
                               Shape({{-22, 4}, {-17, 6}, {-18, 22}, {-14, 40}, {-32, 41}, {-30, 24}, {-24, 20}})};
        for (int i = 0; i < 5; ++i) {
            const double y = 44 + 19.0 * i;
            const double x = -16 - 1.5 * i;
            all.push_back(
                Shape({{x, y + 2}, {x + 1, y + 15}, {x - 9, y + 14}, {x - 19, y + 13}, {x - 18, y}, {x - 9, y + 1}}));
        }
        for (int i = 0; i < 6; ++i) {
            const double y = 22 + 19.0 * i;
            all.push_back(
                Shape({{-38, y + 5}, {-48, y + 3}, {-62, y + 9}, {-66, y + 15}, {-54, y + 14}, {-40, y + 13}}));
        }
        return all;
    }
};

/// The teeth of one side along the biting plane, which falls a little towards the front.
std::vector<Tooth> SideTeeth() {
    std::vector<Tooth> teeth;
    const auto add = [&](int number, double x, double y, double lean) {
        teeth.emplace_back(number, Point{x, y}, lean);
    };
    add(27, 28, 12.5, 0.02);
    add(26, 37.5, 13, 0.0);
    add(25, 45.5, 13, 0.0);
    add(24, 52, 12.8, -0.02);
    add(23, 59.5, 13, 0.12);
    add(21, 69.5, 12.5, 0.42);
    add(37, 30, 29.5, -0.1);
    add(36, 41, 30, -0.1);
    add(35, 49.5, 30.5, -0.1);
    add(34, 56, 31, -0.06);
    add(33, 62, 32.5, 0.1);
    add(31, 67, 33, 0.36);
    return teeth;
}

double SideSkull(const SideBones& bones, Point p, double density) {
    density += Vault(bones.vault.Depth(p)) * (1 + 0.25 * Clouds(p, 21));
    density *= 1 - 0.4 * SmoothStep(0, 1.5, bones.frontalSinus.Depth(p));
    density += 0.55 * SmoothStep(0, 6, bones.petrous.Depth(p)) * (1 + 0.6 * Clouds(p, 23));
    density += 0.4 * Band(0, 1.6, bones.sella.Distance(p)) + 0.32 * Band(0, 1.6, bones.base.Distance(p));
    return density * (1 - 0.3 * SmoothStep(0, 2, bones.sphenoid.Depth(p)));
}

double SideFace(const SideBones& bones, Point p, double density) {
    const double face =
        SmoothStep(20, 34, p.x) * SmoothStep(-58, -50, p.y) * SmoothStep(6, -4, p.y) * SmoothStep(74, 66, p.x);
    density += 0.16 * face + Bone(bones.maxilla.Depth(p), 0.12, 0.3);
    const double sinus = bones.sinus.Depth(p);
    density = density * (1 - 0.25 * SmoothStep(0, 2, sinus)) + 0.14 * Band(0, 1, sinus);
    density += 0.3 * Band(0, 1.8, bones.orbit.Distance(p)) + 0.3 * Band(0, 2.2, bones.cheek.Distance(p));
    density += 0.42 * Band(0, 1.6, bones.palate.Distance(p)) + 0.4 * Band(0, 1.9, bones.nasalBone.Distance(p));
    const double canal = bones.canal.Distance(p);
    density += Bone(bones.mandible.Depth(p), 0.38, 0.36 * (1 + 0.5 * Clouds(p, 25)));
    return density * (1 - 0.14 * SmoothStep(1.8, 1.0, canal));
}

double SideNeck(const SideBones& bones, Point p, double density) {
    density *= 1 - 0.5 * SmoothStep(7, 4, bones.airway.Distance(p));
    for (const Curve& vertebra : bones.neck) density += Bone(vertebra.Depth(p), 0.2, 0.3);
    return density + 0.3 * SmoothStep(2.4, 1.4, bones.tongueBone.Distance(p));
}

/// The head holder: a ring at the ear and a scale in front of the forehead.
double Holder(Point p) {
    const double ear = 1.2 * Ring(p, {-19, -24}, 4, 0.9);
    const double rod = 1.1 * SmoothStep(0.9, 0.6, std::abs(p.x - 108)) * SmoothStep(-52, -54, p.y);
    const double mark = SmoothStep(0.5, 0.3, std::abs(std::fmod(std::abs(p.y), 10.0) - 5)) *
                        SmoothStep(2.6, 2.4, std::abs(p.x - 110)) * SmoothStep(-52, -54, p.y);
    return ear + rod + mark;
}

// ------------------------------------------------------------------------------------------ from the front

// Places: x = 0 is the midline; drawn once for positive x.

struct FrontBones {
    Curve skin = Shape({{0, -146},
                        {40, -140},
                        {68, -116},
                        {80, -80},
                        {82, -40},
                        {84, -10},
                        {80, 20},
                        {72, 52},
                        {58, 80},
                        {56, 110},
                        {64, 165},
                        {-64, 165},
                        {-40, 0},
                        {-40, -140}});
    Curve vault = Shape(
        {{0, -140}, {38, -134}, {64, -111}, {75, -78}, {74, -44}, {66, -20}, {58, 0}, {0, 6}, {-30, 0}, {-30, -134}});
    Curve orbit = Shape({{12, -36}, {18, -50}, {34, -54}, {48, -48}, {52, -34}, {46, -22}, {30, -18}, {16, -24}});
    Curve nose = Shape({{0, -34}, {5, -26}, {9, -10}, {14, 4}, {10, 12}, {0, 14}, {-6, 10}, {-6, -26}});
    Curve sinus = Shape({{17, -10}, {30, -14}, {46, -10}, {46, 4}, {34, 18}, {22, 16}});
    Curve frontalSinus = Shape({{1, -56}, {12, -58}, {18, -68}, {10, -74}, {1, -70}});
    Curve cheek = Shape({{44, -20}, {54, -28}, {64, -18}, {66, -6}, {56, 2}, {46, 12}, {40, 4}});
    Curve arch = Line({{62, -20}, {74, -14}, {76, -4}, {68, 2}});
    Curve petrous = Line({{8, -22}, {24, -27}, {42, -29}, {60, -24}});
    Curve mastoid = Shape({{56, -10}, {66, -14}, {70, 2}, {64, 16}, {58, 10}});
    Curve maxilla = Shape({{-6, 14}, {14, 13}, {32, 16}, {34, 28}, {26, 34}, {0, 35}, {-6, 34}});
    Curve mandible = Shape({{-8, 52},
                            {12, 52},
                            {30, 46},
                            {42, 34},
                            {48, 10},
                            {52, -10},
                            {60, -14},
                            {62, -2},
                            {60, 24},
                            {55, 48},
                            {40, 70},
                            {22, 82},
                            {0, 85},
                            {-8, 85}});
    Curve spine = Line({{0, 20}, {0, 90}, {0, 170}});
};

/// Front teeth side by side, the others behind one another at the sides, as seen from the front.
std::vector<Tooth> FrontTeeth() {
    std::vector<Tooth> teeth;
    const auto pair = [&](int right, int left, double x, double y, double lean) {
        teeth.emplace_back(right, Point{-x, y}, lean);
        teeth.emplace_back(left, Point{x, y}, lean);
    };
    for (const int place : {7, 6, 5, 4}) {
        const double x = 18.5 + 2.2 * place;
        pair(10 + place, 20 + place, x, 30, -0.05);
        pair(40 + place, 30 + place, x, 48, -0.05);
    }
    pair(13, 23, 18.2, 31, 0.0);
    pair(12, 22, 11.8, 31.5, 0.0);
    pair(11, 21, 4.3, 31, 0.0);
    pair(43, 33, 14.4, 51, 0.0);
    pair(42, 32, 8.2, 50, 0.0);
    pair(41, 31, 2.7, 50, 0.0);
    return teeth;
}

double FrontSkull(const FrontBones& bones, Point p, double density) {
    density += Vault(bones.vault.Depth(p)) * (1 + 0.25 * Clouds(p, 41));
    const double suture = Band(1.2 * std::sin(p.y / 2.3), 0.9, p.x) * SmoothStep(-76, -84, p.y);
    density +=
        0.5 * Band(0, 3.2, bones.petrous.Distance(p)) + 0.3 * SmoothStep(0, 5, bones.mastoid.Depth(p)) - 0.1 * suture;
    return density * (1 - 0.35 * SmoothStep(0, 1.5, bones.frontalSinus.Depth(p)));
}

double FrontFace(const FrontBones& bones, Point p, double density) {
    density += 0.26 * SmoothStep(-62, -50, p.y) * SmoothStep(34, 20, p.y) * SmoothStep(60, 44, p.x);
    const double orbit = bones.orbit.Depth(p);
    density = density * (1 - 0.3 * SmoothStep(0, 3, orbit)) + 0.42 * Band(-0.6, 1.8, orbit);
    const double air = std::max(bones.nose.Depth(p), bones.sinus.Depth(p));
    density = density * (1 - 0.42 * SmoothStep(0, 2.5, air)) + 0.2 * Band(-0.2, 1.2, air);
    const double nose = SmoothStep(0, 1, bones.nose.Depth(p));
    const double concha = SmoothStep(1, 0.6, std::hypot((p.x - 7) / 3.2, (p.y - 2) / 5));
    density += nose * (0.4 * Band(0.5, 1.3, p.x) + 0.25 * concha);
    density += Bone(bones.cheek.Depth(p), 0.16, 0.26) + 0.36 * Band(0, 2, bones.arch.Distance(p));
    return density + Bone(bones.maxilla.Depth(p), 0.1, 0.3);
}

double FrontLower(const FrontBones& bones, Point p, double density) {
    const double aside = bones.spine.Distance(p);
    const double disc = 1 - 0.4 * Band(0, 3, std::fmod(p.y + 200, 17.0) - 8.5);
    density += 0.28 * SmoothStep(13, 9, aside) * disc + 0.12 * Band(11, 1.6, aside) * disc;
    return density + Bone(bones.mandible.Depth(p), 0.4, 0.34 * (1 + 0.5 * Clouds(p, 43)));
}

double Skin(double depth) { return 0.03 + 0.3 * SmoothStep(0, 14, depth) + 0.07 * SmoothStep(0, 1, depth); }

void DrawTeeth(Film& film, const std::vector<Tooth>& teeth) {
    for (const Tooth& tooth : teeth)
        film.Layer(
            [&](Point p, double density) { return std::max(density, 0.55 * density + 0.75 * tooth.Over(p, 0.1)); });
}

}  // namespace

Picture DrawLateralHead(int bits, unsigned seed) {
    static const SideBones bones;
    Film film(Columns, Rows, Spacing_mm, {-6, 0});
    film.Layer([](Point p, double) { return Skin(bones.skin.Depth(p)); });
    film.Layer([](Point p, double density) { return SideNeck(bones, p, density); });
    film.Layer([](Point p, double density) { return SideFace(bones, p, SideSkull(bones, p, density)) + Holder(p); });
    DrawTeeth(film, SideTeeth());
    return film.Develop({bits, 1.0, 0.03, 0, seed});
}

Picture DrawFrontalHead(int bits, unsigned seed) {
    static const FrontBones bones;
    Film film(Columns, Rows, Spacing_mm, {0, 0});
    film.Layer([](Point p, double) { return Skin(bones.skin.Depth({std::abs(p.x), p.y})); });
    film.Layer([](Point at, double density) {
        const Point p{std::abs(at.x), at.y};
        const double ear = 1.2 * Ring(p, {84, -22}, 3, 0.9);
        return FrontLower(bones, p, FrontFace(bones, p, FrontSkull(bones, p, density))) + ear;
    });
    DrawTeeth(film, FrontTeeth());
    return film.Develop({bits, 1.0, 0.03, 0, seed});
}

}  // namespace Samples
