#include "Drawing.h"

#include <algorithm>
#include <cmath>

namespace Samples {
namespace {

/// A number between 0 and 1 that looks random and depends on the three arguments only.
double Scatter(std::int64_t x, std::int64_t y, unsigned seed) {
    auto h = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15u ^ static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4Fu ^
             (seed * 0x165667B19E3779F9u);
    h = (h ^ (h >> 31)) * 0xBF58476D1CE4E5B9u;
    h = (h ^ (h >> 29)) * 0x94D049BB133111EBu;
    return static_cast<double>((h ^ (h >> 32)) >> 11) / 9007199254740992.0;
}

double Mix(double a, double b, double share) { return a + (b - a) * share; }

/// The point at `t` (0 to 1) between `b` and `c` of a Catmull-Rom spline.
Point Spline(Point a, Point b, Point c, Point d, double t) {
    const auto along = [t](double p, double q, double r, double s) {
        return 0.5 * (2 * q + (r - p) * t + (2 * p - 5 * q + 4 * r - s) * t * t + (3 * q - p - 3 * r + s) * t * t * t);
    };
    return {along(a.x, b.x, c.x, d.x), along(a.y, b.y, c.y, d.y)};
}

double SquaredDistanceToSegment(Point p, Point a, Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length2 = dx * dx + dy * dy;
    const double t = length2 > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length2, 0.0, 1.0) : 0;
    const double x = p.x - a.x - t * dx;
    const double y = p.y - a.y - t * dy;
    return x * x + y * y;
}

}  // namespace

double SmoothStep(double low, double high, double x) {
    const double t = std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

double Band(double middle, double width, double x) { return SmoothStep(width, 0, std::abs(x - middle)); }

double Noise(Point at, unsigned seed) {
    const double fx = std::floor(at.x);
    const double fy = std::floor(at.y);
    const auto x = static_cast<std::int64_t>(fx);
    const auto y = static_cast<std::int64_t>(fy);
    const double tx = SmoothStep(0, 1, at.x - fx);
    const double ty = SmoothStep(0, 1, at.y - fy);
    return Mix(Mix(Scatter(x, y, seed), Scatter(x + 1, y, seed), tx),
               Mix(Scatter(x, y + 1, seed), Scatter(x + 1, y + 1, seed), tx), ty);
}

double Cloud(Point at, int octaves, unsigned seed) {
    double sum = 0;
    double total = 0;
    double strength = 1;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * Noise(at, seed + static_cast<unsigned>(i));
        total += strength;
        strength /= 2;
        at = {at.x * 2 + 17.3, at.y * 2 + 5.9};
    }
    return sum / total;
}

Curve::Curve(const std::vector<Point>& through, Kind kind) : least(through.front()), most(through.front()) {
    constexpr int steps = 8;
    const auto count = static_cast<int>(through.size());
    const bool closed = kind == Kind::Closed;
    const auto at = [&](int i) {
        return through[static_cast<std::size_t>(closed ? (i + count) % count : std::clamp(i, 0, count - 1))];
    };
    for (int i = 0; i < (closed ? count : count - 1); ++i) {
        for (int s = 0; s < steps; ++s)
            points.push_back(Spline(at(i - 1), at(i), at(i + 1), at(i + 2), static_cast<double>(s) / steps));
    }
    points.push_back(closed ? points.front() : through.back());
    for (const Point p : points) {
        least = {std::min(least.x, p.x), std::min(least.y, p.y)};
        most = {std::max(most.x, p.x), std::max(most.y, p.y)};
    }
}

bool Curve::IsFar(Point p) const {
    return p.x < least.x - Reach || p.y < least.y - Reach || p.x > most.x + Reach || p.y > most.y + Reach;
}

double Curve::Distance(Point p) const {
    if (IsFar(p)) return Reach;
    double nearest = 1e9;
    for (std::size_t i = 1; i < points.size(); ++i)
        nearest = std::min(nearest, SquaredDistanceToSegment(p, points[i - 1], points[i]));
    return std::sqrt(nearest);
}

double Curve::Depth(Point p) const { return IsFar(p) ? -Reach : Contains(p) ? Distance(p) : -Distance(p); }

bool Curve::Contains(Point p) const {
    bool inside = false;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point a = points[i - 1];
        const Point b = points[i];
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * (p.y - a.y) / (b.y - a.y)) inside = !inside;
    }
    return inside;
}

std::vector<Point> Mirrored(std::vector<Point> points) {
    for (Point& p : points) p.x = -p.x;
    return points;
}

Film::Film(int columns_, int rows_, double spacing, Point centre_, double turn)
    : columns(columns_),
      rows(rows_),
      spacing_mm(spacing),
      centre(centre_),
      cosine(std::cos(turn)),
      sine(std::sin(turn)),
      densities(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {}

Point Film::PlaceOf(int column, int row) const {
    const double x = (column + 0.5 - columns / 2.0) * spacing_mm;
    const double y = (row + 0.5 - rows / 2.0) * spacing_mm;
    return {centre.x + x * cosine - y * sine, centre.y + x * sine + y * cosine};
}

/// 1 within the exposed area of a plate with rounded corners, 0 on its edge.
double Film::Border(int column, int row, double corner_mm) const {
    if (corner_mm <= 0) return 1;
    const double x = std::abs(column + 0.5 - columns / 2.0) * spacing_mm;
    const double y = std::abs(row + 0.5 - rows / 2.0) * spacing_mm;
    const double dx = std::max(0.0, x - (columns * spacing_mm / 2 - corner_mm));
    const double dy = std::max(0.0, y - (rows * spacing_mm / 2 - corner_mm));
    return SmoothStep(0.2, 0.35, corner_mm - std::hypot(dx, dy));
}

Picture Film::Develop(const Development& how) const {
    Picture picture{columns, rows, how.bits, spacing_mm, {}};
    picture.pixels.reserve(densities.size());
    const double white = (1 << how.bits) - 1;
    const float* density = densities.data();
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column, ++density) {
            const double grain = Scatter(column, row, how.seed) + Scatter(row, ~column, how.seed) - 1;
            const double light = 1 - std::exp(-how.gain * static_cast<double>(*density)) + how.grain * grain;
            const double value = std::clamp(light, 0.0, 1.0) * Border(column, row, how.corner_mm) * white;
            picture.pixels.push_back(static_cast<std::uint16_t>(std::lround(value)));
        }
    }
    return picture;
}

}  // namespace Samples
