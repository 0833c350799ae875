pragma ComponentBehavior: Bound
import QtQuick
import Aulora.Theme

/// A symbol by name, sized and weighted like the text it goes with.
SymbolItem {
    color: Theme.primary
}
