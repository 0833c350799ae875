pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// Says that something is under way. `size` is 16 points, or less beside small text.
SpinnerItem {
    color: Theme.secondary
}
