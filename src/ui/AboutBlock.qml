import QtQuick
import Aulora.Theme

/// What the program is and who made it.
Column {
    id: about

    required property string authorLine
    required property string credentialsLine

    spacing: 12

    AuloraLogo {
        objectName: "logo"
        width: 165
    }

    Label {
        objectName: "tagline"
        width: parent.width
        text: "Inteligencia médica educativa orientada al aprendizaje, integración de contenidos y razonamiento médico."
        points: 11
        color: Theme.secondary
        wrapMode: Text.Wrap
    }

    Divider {
        objectName: "divider"
        width: parent.width
    }

    Label {
        objectName: "author"
        width: parent.width
        text: about.authorLine
        points: 10.5
        weight: Font.DemiBold
        wrapMode: Text.Wrap
    }

    Label {
        objectName: "credentials"
        width: parent.width
        text: about.credentialsLine
        points: 8.5
        color: Theme.secondary
        wrapMode: Text.Wrap
    }
}
