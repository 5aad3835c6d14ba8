#include "console/dicom/StandardView.h"

namespace Console {
namespace {

/// Returns the opposite direction; 0 for a letter that does not name a direction.
char Opposite(char direction) {
    switch (direction) {
        case 'L': return 'R';
        case 'R': return 'L';
        case 'A': return 'P';
        case 'P': return 'A';
        case 'H': return 'F';
        case 'F': return 'H';
        default: return 0;
    }
}

bool IsVertical(char direction) { return direction == 'H' || direction == 'F'; }

/// Returns degrees clockwise after which the columns run to the feet.
int DegreesToUpright(char row, char column) {
    if (column == 'F') return 0;
    if (row == 'F') return 90;
    return column == 'H' ? 180 : 270;
}

/// Returns the direction of the rows after a rotation.
char TurnedRow(char row, char column, int degrees) {
    switch (degrees) {
        case 90: return Opposite(column);
        case 180: return Opposite(row);
        case 270: return column;
        default: return row;
    }
}

}  // namespace

Orientation StandardView(std::string_view patientOrientation) {
    const Orientation asStored(1);
    const auto parted = patientOrientation.find('\\');
    if (parted == std::string_view::npos || parted == 0 || parted + 1 == patientOrientation.size()) return asStored;
    const char row = patientOrientation[0], column = patientOrientation[parted + 1];
    const bool known = Opposite(row) != 0 && Opposite(column) != 0;
    if (!known || IsVertical(row) == IsVertical(column)) return asStored;
    const int degrees = DegreesToUpright(row, column);
    const Orientation upright = asStored.Turned(degrees);
    const char turned = TurnedRow(row, column, degrees);
    return turned == 'R' || turned == 'P' ? upright.MirroredAsSeen() : upright;
}

}  // namespace Console
