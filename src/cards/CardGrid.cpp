#include "cards/CardGrid.h"

namespace OXClass {

void PlaceInGrid(cImagecardAttribute& placed, Long cell) {
    constexpr Long columns = 5;
    constexpr double step = 0.2, side = 0.19;
    placed.IAHeight = placed.IAWidth = side;
    const Long column = cell % columns, row = cell / columns;
    placed.IAPosX = column * step;
    placed.IAPosY = row * step;
}

}  // namespace OXClass
