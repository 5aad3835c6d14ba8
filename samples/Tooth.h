#pragma once

#include "Drawing.h"

#include <vector>

namespace Samples {

/// One tooth as rays see it from the side, and its place in a drawing.
///
/// The tooth's own coordinates start at the middle of its neck: x towards the midline of the mouth (mesial),
/// y towards the tip of the root, so that the crown has negative y. Sizes are averages in millimetres.
class Tooth {
public:
    /// The permanent tooth `number` (11 to 48) with its neck at `neck`. The root's tip leans away from the
    /// midline by the tooth's usual angle plus `lean` radians.
    Tooth(int number, Point neck, double lean = 0);

    int Number() const { return number; }
    Point Neck() const { return neck; }

    /// Marks the crown as filled with metal, or the root canals as filled.
    void FillCrown() { crownFilled = true; }
    void FillRoots() { rootsFilled = true; }

    /// The density at `place` once the tooth is drawn over `density`. Bone around the root becomes the dark
    /// gap of the ligament and the bright wall of the socket.
    double Over(Point place, double density) const;

    /// Width of the crown at the contacts with its neighbours, and height of the crown.
    static double CrownWidth(int number);
    static double CrownHeight(int number);

private:
    struct Root {
        double top;  ///< x of its middle at the neck
        double tip;  ///< x of its tip
        double length;
        double half;    ///< half its width at the neck
        double weight;  ///< 1; less for a root behind the others
    };

    Point Own(Point place) const;
    double CrownDepth(Point p) const;
    double EdgeDrop(double x) const;
    static double RootMiddle(const Root& root, double y);
    static double RootHalf(const Root& root, double y);
    static double RootDepth(const Root& root, Point p);
    double TrunkDepth(Point p) const;
    double RootsDepth(Point p) const;
    double Enamel(Point p, double depth) const;
    double Pulp(Point p) const;
    double Filling(Point p, double depth) const;
    void GrowRoots(double length);

    int number;
    int place;  ///< 1 central incisor to 8 third molar
    Point neck;
    double towardsMidline;  ///< +1 or -1
    double towardsApex;     ///< +1 for the lower jaw, -1 for the upper
    double cosine;
    double sine;
    double crownWidth;
    double crownHeight;
    double neckWidth;
    double trunk = 0;  ///< how far the roots of a molar are one
    std::vector<Root> roots;
    bool crownFilled = false;
    bool rootsFilled = false;
};

}  // namespace Samples
