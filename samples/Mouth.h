#pragma once

#include "Tooth.h"

#include <vector>

namespace Samples {

/// Both rows of teeth, unrolled into a plane: the midline at x = 0, the patient's right at negative x, the
/// biting plane at y = 0, the upper jaw at negative y.
class Mouth {
public:
    /// 32 teeth, some with fillings.
    Mouth();

    const std::vector<Tooth>& Teeth() const { return teeth; }

    /// The middle of a tooth along the row.
    double MiddleOf(int number) const;

    /// How deep `place` lies below the edge of a jaw's bone; negative outside the bone. The edge follows
    /// the necks of the teeth.
    double BoneDepth(bool upper, Point place) const;

    /// The fine net of bone, about 0 in the mean, -1 to 1.
    static double Net(bool upper, Point place);

private:
    void AddRow(int rightQuadrant, int leftQuadrant);

    std::vector<Tooth> teeth;
    std::vector<Point> upperNecks;  ///< of one side, from the midline: x along the row, y the distance of the
    std::vector<Point> lowerNecks;  ///< neck from the biting plane
};

}  // namespace Samples
