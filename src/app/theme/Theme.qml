pragma Singleton
import QtQuick
import Aulora.Theme

/// The palette and the type. The functions live here, where a binding that calls them is told when
/// the scheme changes.
ThemeBase {
    /// Behind selected text.
    readonly property color selection: dark ? accent : accentAt(0.25)

    function accentAt(opacity: real): color {
        return atOpacity(accent, opacity);
    }

    function primaryAt(opacity: real): color {
        return atOpacity(primary, opacity);
    }
}
