#pragma once

#include <algorithm>
#include <cstdint>
#include <thread>
#include <vector>

namespace Samples {

/// A place in the drawing, in millimetres: x to the viewer's right, y downwards.
struct Point {
    double x = 0;
    double y = 0;
};

/// 0 up to `low`, 1 from `high` on, a smooth rise between; with `low` above `high` a fall.
double SmoothStep(double low, double high, double x);

/// A bump of height 1 and the width `width` around `middle`, smooth on both sides.
double Band(double middle, double width, double x);

/// Even noise between 0 and 1 that changes over a distance of about 1; the same for the same arguments.
double Noise(Point at, unsigned seed);

/// Cloudy noise between 0 and 1: `octaves` layers of noise, each twice as fine and half as strong.
double Cloud(Point at, int octaves, unsigned seed);

/// A smooth curve through given points, closed or open.
class Curve {
public:
    enum class Kind { Closed, Open };

    Curve(const std::vector<Point>& through, Kind kind);

    /// The distance to the curve. Points farther from its bounding box than `Reach` get `Reach`.
    double Distance(Point p) const;

    /// How deep `p` lies in the area of a closed curve; negative outside.
    double Depth(Point p) const;

    static constexpr double Reach = 15;

private:
    bool Contains(Point p) const;
    bool IsFar(Point p) const;

    std::vector<Point> points;
    Point least;
    Point most;
};

/// The same points mirrored at the line x = 0.
std::vector<Point> Mirrored(std::vector<Point> points);

/// A gray picture, row by row from the top, values 0 (black) to 2^bits - 1.
struct Picture {
    int columns = 0;
    int rows = 0;
    int bits = 8;
    double spacing_mm = 0;  ///< from pixel to pixel, both ways
    std::vector<std::uint16_t> pixels;
};

/// How a film is turned into a picture.
struct Development {
    int bits = 8;
    double gain = 1;       ///< the larger, the brighter
    double grain = 0.01;   ///< strength of the quantum noise
    double corner_mm = 0;  ///< radius of the black corners; 0 leaves the picture's edge as it is
    unsigned seed = 1;     ///< of the noise
};

/// What the rays met on their way to each pixel: a sum of densities, 0 for air.
///
/// Layers are functions of the place in millimetres, so that one drawing fits films of every size.
class Film {
public:
    /// A film of columns x rows pixels around `centre`, turned by `turn` radians.
    Film(int columns, int rows, double spacing_mm, Point centre, double turn = 0);

    /// Changes each density to `layer(place, density)`. Several threads call `layer` at the same time.
    template <class Function>
    void Layer(const Function& layer) {
        const int threads = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
        std::vector<std::jthread> workers;
        for (int first = 0; first < threads; ++first)
            workers.emplace_back([&layer, this, first, threads] {
                for (int row = first; row < rows; row += threads) LayerRow(layer, row);
            });
    }

    Picture Develop(const Development& how) const;

private:
    template <class Function>
    void LayerRow(const Function& layer, int row) {
        float* density = densities.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(columns);
        for (int column = 0; column < columns; ++column, ++density)
            *density = static_cast<float>(layer(PlaceOf(column, row), static_cast<double>(*density)));
    }

    Point PlaceOf(int column, int row) const;
    double Border(int column, int row, double corner_mm) const;

    int columns;
    int rows;
    double spacing_mm;
    Point centre;
    double cosine;
    double sine;
    std::vector<float> densities;
};

}  // namespace Samples
