pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Chooser
import Aulora.Images
import Aulora.Theme

/// The way to one image on the device: the desktop's own file chooser where the desktop has one to
/// ask for, else ours.
Item {
    id: importer

    property bool presented: false

    /// The chooser closed: with the file that was chosen, or with none.
    signal finished(var urls)

    readonly property string title: "Elegí una imagen"
    readonly property string acceptLabel: "Abrir"
    readonly property string filterName: "Imágenes"

    property bool desktopHasNone: false
    /// Where the last choice was made: the next one begins there.
    property url lastFolder

    onPresentedChanged: {
        desktopHasNone = false;
        if (presented)
            portal.open(Window.window, title, acceptLabel, filterName, ImageFileNames.patterns);
    }

    PortalChooser {
        id: portal

        onFinished: urls => importer.finished(urls)
        onUnavailable: importer.desktopHasNone = true
    }

    Presentation {
        presented: importer.presented && importer.desktopHasNone

        ImageChooser {
            presented: importer.presented && importer.desktopHasNone
            title: importer.title
            acceptLabel: importer.acceptLabel
            filterName: importer.filterName
            startFolder: importer.lastFolder
            onFolderOpened: folder => importer.lastFolder = folder
            onChosen: file => importer.finished([file])
            onDismissed: importer.finished([])
        }
    }
}
