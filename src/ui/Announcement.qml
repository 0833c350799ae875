pragma ComponentBehavior: Bound

import QtQuick
import Aulora.Theme

/// Has a screen reader say one sentence; of several at once, the last.
Item {
    id: announcement

    property string sentence

    function say(sentence: string) {
        announcement.sentence = sentence;
        together.restart();
    }

    function speak() {
        // A screen reader announces only what appears.
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
        id: together

        interval: 0
        onTriggered: announcement.speak()
    }

    Delay {
        id: gone

        interval: 5000
        onTriggered: announcement.visible = false
    }
}
