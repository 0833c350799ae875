pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// Says one sentence to whoever listens to the screen instead of looking at it.
Item {
    id: announcement

    function say(sentence: string) {
        visible = false;
        Accessible.name = sentence;
        visible = true;
        gone.restart();
    }

    visible: false
    width: 1
    height: 1
    Accessible.role: Accessible.Notification

    Delay {
        id: gone

        interval: 5000
        onTriggered: announcement.visible = false
    }
}
