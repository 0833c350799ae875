pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Chooser
import Aulora.Theme

/// Our own file chooser, for one image, where the desktop has none: the folders at hand beside one
/// folder's contents.
ModalSheet {
    id: chooser

    required property string acceptLabel
    required property string filterName
    /// Where to begin; empty for the folder of the person's pictures.
    required property url startFolder

    /// An image file was chosen.
    signal chosen(url file)
    signal folderOpened(url folder)

    padding: 0

    contentItem: ChooserBody {
        title: chooser.title
        acceptLabel: chooser.acceptLabel
        filterName: chooser.filterName
        startFolder: chooser.startFolder
        onChosen: file => chooser.chosen(file)
        onFolderOpened: folder => chooser.folderOpened(folder)
        onCancelled: chooser.dismissed()
    }
}
