#pragma once

#include "bench/ByHand.h"
#include "images/cImages.h"

/// Images that the benchmarks save.
namespace Bench {

/// Returns an image with texts of usual lengths; `number` makes its path and its UID unique.
HandImage SampleOf(int number);

/// Returns the same as an object of the library.
OXClass::Ref<OXClass::cImage> ObjectOf(const HandImage& image);

/// Returns the images of a new series of 4, 18 or 20 films in the order of a random capture, without frames.
OXClass::Ref<OXClass::cImages> NewSeries(std::size_t count);

}  // namespace Bench
